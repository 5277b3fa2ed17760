// Loading a page's content, stream by stream.
#include "content/content_bytes.h"

#include <algorithm>
#include <cstdio>

#include "base/limits.h"
#include "pdfmodel/stream.h"
#include "platform/file.h"

namespace kapdf {
namespace {

void DumpContent(uint32_t index, std::span<const uint8_t> bytes) {
  const auto path = platform::DiagnosticPath("pdf_" + std::to_string(index) + ".txt");
  const auto file = platform::OpenFile(path, "wb", platform::Share::kRead);
  if (file) std::fwrite(bytes.data(), 1, bytes.size(), file.get());
}

}  // namespace

ContentBytes::ContentBytes(ObjectLocator &objects, ByteBuffer form)
    : objects_(objects), buffer_(std::move(form)), length_(buffer_.size()) {
  EndWithZero();
}

void ContentBytes::EndWithZero() {
  buffer_.Resize(length_ + 1);
  buffer_.ShrinkToFit();
  buffer_.data()[length_] = 0;
}

void ContentBytes::Seek(size_t to) {
  position = std::min(to, length_);
  ended_ = false;
}

double ContentBytes::Fraction() const {
  if (streamCount_ == 0 || nextStream_ == 0) return 0.0;
  const double part = length_ == 0 ? 0.0 : static_cast<double>(position) / static_cast<double>(length_);
  return std::clamp((nextStream_ - 1 + part) / streamCount_, 0.0, 1.0);
}

ContentBytes::Filled ContentBytes::Fill() {
  Filled filled = Filled::kSame;
  while (AtEnd()) {
    if (ended_ || !LoadNextStream()) {
      ended_ = true;
      return Filled::kEnd;
    }
    filled = Filled::kNewStream;
  }
  return filled;
}

bool ContentBytes::LoadNextStream() {
  if (!page_) return false;
  if (!contents_) contents_ = page_->GetAs<CPDFArray>("Contents");
  if (contents_) {
    streamCount_ = contents_->Count();
    if (nextStream_ >= streamCount_) return false;
    const auto *reference = dynamic_cast<const CPDFIndirectObject *>(contents_->GetAt(nextStream_++));
    return reference && (ReadStream(reference->objectNumber, nextStream_) || LoadArrayInPlace(reference->objectNumber));
  }
  const auto *lone = page_->GetAs<CPDFIndirectObject>("Contents");
  if (!lone || loneStreamDone_) return false;
  loneStreamDone_ = true;
  nextStream_ = streamCount_ = 1;
  return ReadStream(lone->objectNumber, 0) || LoadArrayInPlace(lone->objectNumber);
}

// The reference led to an array in place of a stream: it becomes the list of streams, in place of the one that named
// it, and its first one is loaded. The count goes on (deliberate): as many as were read before it are passed over. An
// array inside it does not count.
bool ContentBytes::LoadArrayInPlace(int32_t objectNumber) {
  uint8_t firstChar;
  if (ownContents_ || !OpenObject(objects_, objectNumber, firstChar)) return false;
  auto list = std::make_unique<CPDFArray>(objects_.source());
  if (!list->Parse(firstChar)) return false;
  ownContents_ = std::move(list);
  contents_ = ownContents_.get();
  streamCount_ = contents_->Count();
  const auto *first = dynamic_cast<const CPDFIndirectObject *>(contents_->GetAt(0));
  return first && ReadStream(first->objectNumber, nextStream_);
}

bool ContentBytes::ReadStream(int32_t objectNumber, uint32_t index) {
  buffer_.Clear();
  length_ = position = 0;
  noImageEnd[0] = noImageEnd[1] = SIZE_MAX;
  uint8_t firstChar;
  if (!OpenObject(objects_, objectNumber, firstChar)) return false;
  CPDFStream stream(objects_);
  if (!stream.Parse(firstChar) || !stream.ReadAll(buffer_)) return false;
  decoded_ += buffer_.size();
  if (decoded_ > limits::kPageContent) return false;  // a stream that is listed again and again ends the page
  length_ = buffer_.size();
  EndWithZero();
  if (diagnostics_) DumpContent(index, {buffer_.data(), length_});
  return true;
}

}  // namespace kapdf
