// The operator of inline images.
#include <cstring>

#include "content/interpreter.h"
#include "content/scanner.h"

namespace kapdf {
namespace {

constexpr size_t kBeginImage = 2;  // characters

}  // namespace

// What follows "BI" on its line is read once more in the way of images, where every byte counts.
void Interpreter::RereadBehindBeginImage() {
  const size_t rest = remainder_ ? std::strlen(remainder_) : 0;
  remainder_ = nullptr;
  if (rest == 0) return;
  const auto content = context_->content();
  size_t at = context_->position() - std::min(rest, context_->position());
  // Bytes that a statement leaves out lie between.
  while (at > kBeginImage && !(content[at - 2] == 'B' && content[at - 1] == 'I')) --at;
  context_->SetPosition(at);
}

// Pieces follow each other on one line and line by line. False when the content ends first.
bool Interpreter::ReadImageDictionary(InlineImageReader &image) {
  char *text = nullptr, *line = nullptr;
  size_t lineStart = 0;
  for (;;) {
    if (!text) {
      size_t start = context_->position();
      line = text = context_->ReadStatement(ScanMode::kInlineImage);
      if (!text) return false;
      const auto content = context_->content();
      while (start < content.size() && content[start] != static_cast<uint8_t>(*text)) ++start;
      lineStart = start;
    }
    while (*text == ' ') ++text;
    if (*text == '/') {
      text = image.TakeKey(text);
    } else if (text[0] == 'I' && text[1] == 'D' && (text[2] == ' ' || text[2] == 0)) {
      image.TakeData(lineStart + static_cast<size_t>(text - line) + 2);
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
  RereadBehindBeginImage();
  InlineImageReader image(*context_);
  if (!ReadImageDictionary(image)) return Flow::kNext;
  auto finished = image.Finish(state_.ctm);
  if (!finished) return Flow::kNext;
  inlineRaster_ = std::move(finished);
  inlineWaiting_ = true;
  StartRaster(inlineRaster_->placement, "InlineImage" + std::to_string(inlineCount_++), state_.fillColor);
  return Flow::kRecord;
}

}  // namespace kapdf
