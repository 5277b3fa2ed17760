#include "pictures/png_writer.h"

#include <algorithm>
#include <new>

#include "pictures/png_call.h"

namespace kapdf::tool {
namespace {

constexpr int kCompression = 3;  // large scans are written in a fraction of the default's time, a little larger
constexpr double kInchesPerMetre = 1 / 0.0254;

void Flush(png_structp) {}

void Put(png_structp png, png_bytep bytes, size_t size) {
  bool put = true;
  try {
    (*static_cast<PngWriter::Sink *>(png_get_io_ptr(png)))({bytes, size});
  } catch (const std::bad_alloc &) {
    put = false;
  }
  if (!put) png_error(png, "no memory");
}

int ColorType(const PngShape &shape) {
  if (!shape.palette.empty()) return PNG_COLOR_TYPE_PALETTE;
  return shape.channels == 1   ? PNG_COLOR_TYPE_GRAY
         : shape.channels == 3 ? PNG_COLOR_TYPE_RGB
                               : PNG_COLOR_TYPE_RGB_ALPHA;
}

void SetPalette(png_structp png, png_infop info, std::span<const PngColor> palette) {
  png_color colors[256] = {};
  png_byte opacities[256] = {};
  int count = 0, opacityCount = 0;
  for (const PngColor &color : palette.first(std::min<size_t>(palette.size(), 256))) {
    colors[count] = {color.red, color.green, color.blue};
    opacities[count++] = color.opacity;
    if (color.opacity != 255) opacityCount = count;
  }
  png_set_PLTE(png, info, colors, count);
  if (opacityCount > 0) png_set_tRNS(png, info, opacities, opacityCount, nullptr);
}

}  // namespace

template <class Step>
bool PngWriter::Try(Step step) {
  return TryPng(png_, failed_, step);
}

PngWriter::~PngWriter() { png_destroy_write_struct(&png_, &info_); }

bool PngWriter::Begin(const PngShape &shape) {
  png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, JumpOutOfPng, IgnorePng);
  info_ = png_ != nullptr ? png_create_info_struct(png_) : nullptr;
  failed_ = info_ == nullptr;
  return !failed_ && Try([&] {
    png_set_write_fn(png_, &sink_, Put, Flush);
    png_set_compression_level(png_, kCompression);
    const int type = ColorType(shape);
    png_set_filter(png_, PNG_FILTER_TYPE_BASE,
                   shape.bits < 8 || type == PNG_COLOR_TYPE_PALETTE ? PNG_FILTER_NONE : PNG_FILTER_SUB);
    png_set_IHDR(png_, info_, shape.width, shape.height, shape.bits, type, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (!shape.palette.empty()) SetPalette(png_, info_, shape.palette);
    if (shape.dpi != 0) {
      const auto perMetre = static_cast<png_uint_32>(std::min(shape.dpi * kInchesPerMetre + 0.5, 2e9));
      png_set_pHYs(png_, info_, perMetre, perMetre, PNG_RESOLUTION_METER);
    }
    png_write_info(png_, info_);
  });
}

bool PngWriter::AddRow(const uint8_t *row) {
  return Try([&] { png_write_row(png_, row); });
}

bool PngWriter::Finish() {
  return Try([&] { png_write_end(png_, info_); });
}

}  // namespace kapdf::tool
