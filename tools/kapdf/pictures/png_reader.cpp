#include "pictures/png_reader.h"

#include "pictures/png_call.h"

namespace kapdf::tool {
namespace {

constexpr int kAutomaticWeights = -1;  // of red, green and blue in a grey

void Get(png_structp png, png_bytep bytes, size_t size) {
  auto *file = static_cast<std::ifstream *>(png_get_io_ptr(png));
  if (!file->read(reinterpret_cast<char *>(bytes), static_cast<std::streamsize>(size))) png_error(png, "too short");
}

}  // namespace

template <class Step>
bool PngReader::Try(Step step) {
  return TryPng(png_, failed_, step);
}

PngReader::~PngReader() { png_destroy_read_struct(&png_, &info_, nullptr); }

bool PngReader::Open(const std::filesystem::path &path) {
  file_.open(path, std::ios::binary);
  png_ = file_ ? png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, JumpOutOfPng, IgnorePng) : nullptr;
  info_ = png_ != nullptr ? png_create_info_struct(png_) : nullptr;
  failed_ = info_ == nullptr;
  png_colorp colors = nullptr;
  int count = 0;
  const bool read = Try([&] {
    png_set_read_fn(png_, &file_, Get);
    png_read_info(png_, info_);
    width_ = png_get_image_width(png_, info_);
    height_ = png_get_image_height(png_, info_);
    png_get_PLTE(png_, info_, &colors, &count);
  });
  failed_ = !read || png_get_interlace_type(png_, info_) != PNG_INTERLACE_NONE;
  if (failed_) return false;
  if (png_get_color_type(png_, info_) != PNG_COLOR_TYPE_PALETTE) count = 0;
  for (int i = 0; i < count; ++i) palette_.push_back({colors[i].red, colors[i].green, colors[i].blue, 255});
  return true;
}

bool PngReader::Begin(PngForm form) {
  const int type = failed_ ? 0 : png_get_color_type(png_, info_);
  const bool grey = type == PNG_COLOR_TYPE_GRAY || type == PNG_COLOR_TYPE_GRAY_ALPHA;
  if (form == PngForm::kIndices && !grey && palette_.empty()) return false;
  return Try([&] {
    png_set_strip_16(png_);
    if (form == PngForm::kIndices && !palette_.empty()) {
      png_set_packing(png_);
    } else {
      png_color_16 white{};
      white.red = white.green = white.blue = white.gray = 255;
      png_set_expand(png_);
      png_set_background(png_, &white, PNG_BACKGROUND_GAMMA_SCREEN, 0, 1.0);
      if (form == PngForm::kRgb) {
        png_set_gray_to_rgb(png_);
      } else if (!grey) {
        png_set_rgb_to_gray(png_, PNG_ERROR_ACTION_NONE, kAutomaticWeights, kAutomaticWeights);
      }
    }
    png_read_update_info(png_, info_);
    if (png_get_rowbytes(png_, info_) != size_t{width_} * (form == PngForm::kRgb ? 3 : 1)) png_error(png_, "form");
  });
}

bool PngReader::ReadRow(uint8_t *row) {
  return Try([&] { png_read_row(png_, row, nullptr); });
}

}  // namespace kapdf::tool
