// The widths of simple and of CID fonts.
#include <algorithm>
#include <cmath>

#include "base/limits.h"
#include "base/scan.h"
#include "fonts/font_loader.h"

namespace kapdf {
namespace {

constexpr double kUnitsPerEm = 1000.0;
constexpr int64_t kCodes = 65536;
constexpr int64_t kCids = 65535;  // the last code has the default width

}  // namespace

// `glyphProcedures`: the font's own matrix tells the unit.
void FontLoader::ReadSimpleWidths(bool glyphProcedures) {
  std::unique_ptr<CPDFObject> fetched, fetchedMatrix;
  const auto *widths = Value<CPDFArray>("Widths", fetched);
  const auto first = Number(dictionary_->Get("FirstChar"));
  if (!widths || !first || !Number(dictionary_->Get("LastChar"))) return;
  double divisor = kUnitsPerEm;
  const auto *matrix = glyphProcedures ? Value<CPDFArray>("FontMatrix", fetchedMatrix) : nullptr;
  if (matrix) {
    const double scale = Number(matrix->GetAt(0)).value_or(0.0);
    if (scale != 0.0 && std::isfinite(1.0 / scale)) divisor = 1.0 / scale;
  }
  const int64_t start = TruncateToInteger(*first);
  if (start < 0 || start + widths->Count() > kCodes) return;
  font_.hasWidths_ = true;
  font_.widths_.assign(static_cast<size_t>(start) + widths->Count(), 0.0);
  for (uint32_t i = 0; i < widths->Count(); ++i) {
    // Decimals do not count.
    const double width = TruncateToInteger(Number(widths->GetAt(i)).value_or(0.0)) / divisor;
    if (std::isfinite(width)) font_.widths_[static_cast<size_t>(start) + i] = width;
  }
}

// "code [width ...]" and "first last width", in any order; a later one counts more.
void FontLoader::ReadCidWidths() {
  std::unique_ptr<CPDFObject> fetched;
  const auto *widths = Value<CPDFArray>("W", fetched);
  if (!widths) return;
  font_.hasWidths_ = true;
  font_.widths_.clear();
  const auto usual = Number(dictionary_->Get("DW"));
  font_.widthBeyond_ = usual ? *usual / kUnitsPerEm : 1.0;
  uint32_t i = 0;
  while (i + 1 < widths->Count()) {
    const auto number = Number(widths->GetAt(i++));
    if (!number) continue;
    const int64_t first = TruncateToInteger(*number);
    std::unique_ptr<CPDFObject> fetchedItem;
    const CPDFObject *item = Follow(objects_, widths->GetAt(i++), fetchedItem);
    if (const auto *list = dynamic_cast<const CPDFArray *>(item)) {
      for (uint32_t k = 0; k < list->Count(); ++k)
        SetWidths(first + k, first + k, Number(list->GetAt(k)).value_or(0.0) / kUnitsPerEm);
      continue;
    }
    if (i >= widths->Count()) break;
    const auto last = Number(item);
    const auto width = Number(widths->GetAt(i++));
    if (last && width) SetWidths(first, TruncateToInteger(*last), *width / kUnitsPerEm);
  }
  if (cidOfCode_) MapWidthsToCodes();
}

// A code without a CID has the width of the first one, which stands for missing characters.
void FontLoader::MapWidthsToCodes() {
  std::vector<double> byCode;
  for (uint32_t code = 0; code < kCodes; ++code) {
    const uint16_t cid = (*cidOfCode_)[code];
    const double width = font_.Width(cid == kNoTarget ? 0 : cid);
    if (width == font_.widthBeyond_) continue;
    byCode.resize(code + 1, font_.widthBeyond_);
    byCode[code] = width;
  }
  font_.widths_ = std::move(byCode);
}

// Of the codes from first to last, as far as they are in the table. It has the places that were set.
void FontLoader::SetWidths(int64_t first, int64_t last, double width) {
  first = std::max<int64_t>(first, 0);
  last = std::min(last, kCids - 1);
  if (first > last || widthsSet_ > limits::kFontWidths) return;
  widthsSet_ += last - first + 1;
  if (static_cast<size_t>(last) >= font_.widths_.size())
    font_.widths_.resize(static_cast<size_t>(last) + 1, font_.widthBeyond_);
  std::fill_n(font_.widths_.begin() + first, last - first + 1, width);
}

}  // namespace kapdf
