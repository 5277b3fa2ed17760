// Which family of the system stands for a font of the document, and how its letters are built.
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "fonts/font_loader.h"
#include "platform/system_fonts.h"
#include "platform/text.h"

namespace kapdf {
namespace {

constexpr size_t kTagBytes = 6;  // of a subset, ahead of its plus sign
constexpr int32_t kUsualCapHeight = 716;
constexpr int32_t kLookPixels = 1000;
constexpr int32_t kMostPixels = 16384;

bool HasTag(std::string_view name) { return name.size() > kTagBytes && name[kTagBytes] == '+'; }
std::string_view WithoutTag(std::string_view name) { return HasTag(name) ? name.substr(kTagBytes + 1) : name; }

std::string WithSeparator(std::string_view family, std::string_view separator) {
  std::string copy;
  for (const char c : family) {
    if (c == ' ')
      copy += separator;
    else
      copy += c;
  }
  return copy;
}

// The size for a cap height that a document tells. Some programs write 0, fractions of an em or negative numbers, which
// stand for a size as well.
int32_t EmPixels(int32_t capHeight) {
  const int64_t size = std::abs(int64_t{capHeight});
  return size < 1 ? kLookPixels : static_cast<int32_t>(std::min<int64_t>(size, kMostPixels));
}

double RatioOr(double ratio, double fallback) { return std::isfinite(ratio) && ratio > 0.0 ? ratio : fallback; }

}  // namespace

void FontLoader::FindFamily() {
  const std::string_view separator = baseFont_.find('-') != std::string::npos   ? "-"
                                     : baseFont_.find('_') != std::string::npos ? "_"
                                                                                : "";
  matched_ = MatchFamily(baseFont_, separator);
  if (!matched_ && HasTag(baseFont_)) {
    face_ = WithoutTag(baseFont_);
    matched_ = MatchFamily(face_, "");
  }
  if (!matched_) return;
  for (const auto &[word, bit] : {std::pair("Bold", CPDFFontObject::kBold), {"Italic", CPDFFontObject::kItalic}}) {
    if (baseFont_.find(word) != std::string::npos && face_.find(word) == std::string::npos) font_.style_ |= bit;
  }
  TakeLook(font_.familyName_, kLookPixels);
}

bool FontLoader::MatchFamily(std::string_view name, std::string_view separator) {
  for (const DocumentFamilies::Family &family : families_.List()) {
    if (family.italic && !BeginsWithItalic(WithoutTag(baseFont_))) continue;  // it would match the word for a style
    if (name.find(WithSeparator(family.narrow, separator)) == std::string_view::npos) continue;
    font_.familyName_ = family.name;
    face_ = family.narrow;
    return true;
  }
  return false;
}

void FontLoader::TakeLook(const std::u16string &family, int32_t emPixels) {
  const auto font = platform::SystemFont::Open({family, emPixels});
  if (!font) return;
  const platform::FontMetrics metrics = font->Metrics();
  platform::GlyphBox letter;
  FontLook &look = font_.look_;
  look.capHeight = font->Box(u'A', letter) && letter.top != 0 ? letter.top : kUsualCapHeight;
  look.ascent = metrics.ascent;
  look.descent = metrics.descent;
  look.height = metrics.height;
  look.internalLeading = metrics.internalLeading;
  const double em = metrics.height - metrics.internalLeading;
  look.widthRatio = RatioOr(metrics.averageWidth / em, look.widthRatio);
  look.heightRatio = RatioOr(em / look.capHeight, look.heightRatio);
}

void FontLoader::FindByPostScriptName() {
  const std::u16string family = families_.OfPostScriptName(platform::ToWide(face_, platform::kSystemCodePage));
  if (family.empty()) return;
  face_ = platform::ToNarrow(family, platform::kSystemCodePage);
  font_.familyName_ = family;
  TakeLook(family, EmPixels(font_.look_.height));
}

}  // namespace kapdf
