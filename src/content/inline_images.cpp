// The operator of inline images.
#include <utility>

#include "content/interpreter.h"
#include "content/scanner.h"

namespace kapdf {
namespace {

constexpr size_t kData = 2;  // characters of "ID"

}  // namespace

// Pieces follow each other on one line, beginning with that of "BI", and line by line. False when the content ends
// first.
bool Interpreter::ReadImageDictionary(InlineImageReader &image) {
  char *text = std::exchange(remainder_, nullptr);
  for (;;) {
    const bool startsLine = text == nullptr;
    if (startsLine) text = context_->ReadStatement(ScanMode::kInlineImage);
    if (!text) return false;
    while (IsBlank(*text)) ++text;
    if (*text == '/') {
      text = image.TakeKey(text);
    } else if (text[0] == 'I' && text[1] == 'D' && (text[2] == ' ' || text[2] == 0)) {
      image.TakeData(context_->PositionOf(text + kData), startsLine);
      text = nullptr;
    } else {
      char *rest = nullptr;
      if (FindOperator(text, rest) == kOpEndImage) {
        remainder_ = rest;
        return true;
      }
      text = rest;
    }
  }
}

Flow Interpreter::InlineImage(const Statement &) {
  inlineWaiting_ = false;
  InlineImageReader image(*context_);
  if (!ReadImageDictionary(image)) return Flow::kNext;
  auto finished = image.Finish(state_.ctm);
  if (!finished) return Flow::kNext;
  inlineRaster_ = std::move(finished);
  inlineWaiting_ = true;
  inlinePrepared_ = false;
  StartRaster(inlineRaster_->placement, "InlineImage" + std::to_string(inlineCount_++), state_.fillColor);
  return Flow::kRecord;
}

}  // namespace kapdf
