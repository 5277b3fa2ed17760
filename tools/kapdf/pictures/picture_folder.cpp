#include "pictures/picture_folder.h"

#include "system/utf.h"

namespace kapdf::tool {
namespace {

constexpr size_t kLongestName = 60;  // bytes of a raster's name

// "page1-Im0": letters, digits and a few marks, whatever the raster is called.
std::string SafeName(int page, const char16_t *raster) {
  std::string name = "page" + std::to_string(page) + "-";
  for (size_t i = 0; i < kLongestName && raster[i] != 0; ++i) {
    const char16_t unit = raster[i];
    const bool safe = (unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'z') ||
                      (unit >= u'A' && unit <= u'Z') || unit == u'-' || unit == u'.' || unit == u'_';
    name += safe ? static_cast<char>(unit) : '_';
  }
  return name;
}

std::string Lower(std::string text) {
  for (char &c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 'a' - 'A');
  }
  return text;
}

}  // namespace

PictureFolder::PictureFolder(const std::string &folder, const std::string &base)
    : folder_(PathOf(folder)), base_(PathOf(base)) {}

PictureFolder::~PictureFolder() {
  picture_.reset();
  output_.reset();
  std::error_code ignored;
  for (const std::filesystem::path &path : written_) std::filesystem::remove(path, ignored);
}

std::string PictureFolder::UniqueName(int page, const char16_t *raster) {
  const std::string name = SafeName(page, raster);
  int &times = names_[Lower(name)];
  std::string unique = name;
  while (++times > 1) {
    unique = name + "-" + std::to_string(times);
    if (names_.try_emplace(Lower(unique), 1).second) break;
  }
  return unique + ".png";
}

Outcome PictureFolder::Begin(int page, const ElementRecord &header, std::optional<uint32_t> ink) {
  if (!RasterPicture::Suits(header)) return {};
  output_ = std::make_unique<Output>();
  picture_ = RasterPicture::Begin(header, ink, [text = &output_->buffer()](std::span<const uint8_t> bytes) {
    text->append(reinterpret_cast<const char *>(bytes.data()), bytes.size());
  });
  const std::filesystem::path path = folder_ / UniqueName(page, header.styleName);
  const std::filesystem::path relative = path.lexically_relative(base_);
  path_ = Utf8Of((relative.empty() ? path : relative).generic_u8string());
  std::error_code error;
  std::filesystem::create_directories(folder_, error);
  if (Outcome opened = output_->OpenFile(Utf8Of(path)); !opened.ok()) return opened;
  written_.push_back(path);
  ++count_;
  return Checked(open());
}

// The steps of the picture write to memory, so that nothing but memory can have run out.
Outcome PictureFolder::Checked(bool done) {
  return done ? output_->Spill() : Fail("there is not enough memory for " + path_);
}

Outcome PictureFolder::AddRow(const ElementRecord &record) { return Checked(picture_->AddRow(record)); }

Outcome PictureFolder::End() {
  Outcome ended = Checked(picture_->Finish());
  picture_.reset();
  return ended.ok() ? output_->Finish() : ended;
}

}  // namespace kapdf::tool
