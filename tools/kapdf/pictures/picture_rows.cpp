#include "pictures/picture_rows.h"

#include <algorithm>

#include "records/kinds.h"

namespace kapdf::tool {
namespace {

constexpr uint32_t kTypeBits = 0xFFFF;  // above them stand hints
constexpr uint32_t kRgb = 4, kMasked = 5;
constexpr size_t kPaletteBytes = 1028;
constexpr size_t kPaletteHead = 4;
constexpr uint8_t kHidden = 255;    // flags of a palette entry
constexpr uint8_t kLightest = 127;  // of what counts as black

}  // namespace

Outcome PictureRows::Open(const std::filesystem::path &path, const std::string &name, ElementRecord &header) {
  name_ = name;
  if (!CopyPayload(header, header_)) return Fail("the raster of " + name + " has no header");
  if (!png_.Open(path)) return Fail("cannot read " + name + ", or it is no PNG picture that goes row by row");
  if (png_.width() != header_.width || png_.height() != header_.height) {
    return Fail(name + " is " + std::to_string(png_.width()) + " x " + std::to_string(png_.height()) +
                " pixels, its header says otherwise");
  }
  const uint32_t type = header_.pixelType & kTypeBits;
  bilevel_ = type == 0;
  const bool indexed = type == 1 || type == 2;
  if (bilevel_) header_.depthHint = 0;
  if (type == kMasked) header_.pixelType = (header_.pixelType & ~kTypeBits) | kRgb;
  if (indexed) SetPalette(header_.palette);
  if (!png_.Begin(bilevel_ ? PngForm::kGrey : indexed ? PngForm::kIndices : PngForm::kRgb)) {
    return Fail(name + " is of another form than its header");
  }
  row_.resize(size_t{header_.width} * (bilevel_ || indexed ? 1 : 3));
  header.payload = &header_;
  return {};
}

// A grey picture's indices are its greys.
void PictureRows::SetPalette(const void *given) {
  palette_.assign(kPaletteBytes, 0);
  WriteAt<uint16_t>(palette_.data(), 2, 256);
  uint8_t *entry = palette_.data() + kPaletteHead;
  const std::vector<PngColor> &colors = png_.palette();
  if (given != nullptr) std::memcpy(palette_.data(), given, kPaletteBytes);
  for (size_t i = 0; i < 256; ++i, entry += 4) {
    const auto grey = static_cast<uint8_t>(i);
    if (given != nullptr) {
      if (entry[3] == kHidden) std::fill_n(entry, 3, uint8_t{255});
    } else if (colors.empty()) {
      std::fill_n(entry, 3, grey);
    } else if (i < colors.size()) {
      entry[0] = colors[i].red;
      entry[1] = colors[i].green;
      entry[2] = colors[i].blue;
    }
  }
  header_.palette = palette_.data();
}

void PictureRows::SetRuns() {
  const auto black = [](uint8_t grey) { return grey <= kLightest; };
  runs_.assign(1, 0);
  for (auto at = row_.begin(); (at = std::find_if(at, row_.end(), black)) != row_.end();) {
    const auto end = std::find_if_not(at, row_.end(), black);
    runs_.push_back(static_cast<uint32_t>(at - row_.begin()));
    runs_.push_back(static_cast<uint32_t>(end - row_.begin() - 1));
    at = end;
  }
  runs_[0] = static_cast<uint32_t>(runs_.size() / 2);
}

Outcome PictureRows::Next(ElementRecord &record) {
  if (!png_.ReadRow(row_.data())) return Fail("cannot read " + name_ + " to its end");
  if (bilevel_) SetRuns();
  record.payload = bilevel_ ? static_cast<void *>(runs_.data()) : row_.data();
  record.payloadBytes = static_cast<uint32_t>(bilevel_ ? runs_.size() * sizeof(uint32_t) : row_.size());
  return {};
}

}  // namespace kapdf::tool
