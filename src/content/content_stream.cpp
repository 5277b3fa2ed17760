// Loading a page's content, stream by stream.
#include "content/content_stream.h"

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

CPDFContentStream::CPDFContentStream(ObjectLocator &objects, std::unique_ptr<CPDFDictionary> owner,
                                     const ResourceSettings &settings, bool diagnostics)
    : resources(objects, owner.get(), settings),
      objects_(objects),
      owner_(std::move(owner)),
      diagnostics_(diagnostics),
      statement_(std::make_shared<StatementBuffer>()) {}

CPDFContentStream::CPDFContentStream(ObjectLocator &objects, std::unique_ptr<CPDFDictionary> owner, ByteBuffer content,
                                     int32_t objectNumber, const CPDFContentStream &page)
    : resources(objects, owner.get(), page.resources.settings()),
      objects_(objects),
      owner_(std::move(owner)),
      objectNumber_(objectNumber),
      buffer_(std::move(content)),
      length_(buffer_.size()),
      statement_(page.statement_) {
  buffer_.Resize(length_ + 1);
  buffer_.ShrinkToFit();
  buffer_.data()[length_] = 0;
}

void CPDFContentStream::SetPosition(size_t position) {
  position_ = std::min(position, length_);
  lineStart_ = kNoLine;
  noPlainBefore_ = kept_ = keptBlanks_ = 0;
  followsBytes_ = ended_ = false;
}

bool CPDFContentStream::IsActive(int32_t objectNumber) const {
  for (const CPDFContentStream *context = this; context; context = context->parent) {
    if (context->objectNumber_ == objectNumber) return true;
  }
  return false;
}

int CPDFContentStream::Depth() const {
  int depth = 0;
  for (const CPDFContentStream *context = parent; context; context = context->parent) ++depth;
  return depth;
}

double CPDFContentStream::Fraction() const {
  if (streamCount_ == 0 || nextStream_ == 0) return 0.0;
  const double part = length_ == 0 ? 0.0 : static_cast<double>(position_) / static_cast<double>(length_);
  return std::clamp((nextStream_ - 1 + part) / streamCount_, 0.0, 1.0);
}

// True with bytes to read; empty streams are passed over.
bool CPDFContentStream::FillBuffer() {
  while (position_ >= length_) {
    if (ended_ || !LoadNextStream()) {
      ended_ = true;  // a stream that cannot be read ends the page, whatever stands behind it
      return false;
    }
  }
  return true;
}

bool CPDFContentStream::LoadNextStream() {
  if (parent) return false;  // a form is one stream, already loaded
  if (!contents_) contents_ = owner_ ? owner_->GetAs<CPDFArray>("Contents") : nullptr;
  if (contents_) {
    streamCount_ = contents_->Count();
    if (nextStream_ >= streamCount_) return false;
    const auto *reference = dynamic_cast<const CPDFIndirectObject *>(contents_->GetAt(nextStream_++));
    return reference &&
           (ReadStreamBytes(reference->objectNumber, nextStream_) || LoadArrayInPlace(reference->objectNumber));
  }
  const auto *lone = owner_ ? owner_->GetAs<CPDFIndirectObject>("Contents") : nullptr;
  if (!lone || loneStreamDone_) return false;
  loneStreamDone_ = true;
  nextStream_ = streamCount_ = 1;
  return ReadStreamBytes(lone->objectNumber, 0) || LoadArrayInPlace(lone->objectNumber);
}

// The reference led to an array in place of a stream: it becomes the list of streams, in place of the one that named
// it, and its first one is loaded. The count goes on (deliberate): as many as were read before it are passed over. An
// array inside it does not count.
bool CPDFContentStream::LoadArrayInPlace(int32_t objectNumber) {
  uint8_t firstChar;
  if (ownContents_ || !OpenObject(objects_, objectNumber, firstChar)) return false;
  auto list = std::make_unique<CPDFArray>(objects_.source());
  if (list->Parse(firstChar) != 0) return false;
  ownContents_ = std::move(list);
  contents_ = ownContents_.get();
  streamCount_ = contents_->Count();
  const auto *first = dynamic_cast<const CPDFIndirectObject *>(contents_->GetAt(0));
  return first && ReadStreamBytes(first->objectNumber, nextStream_);
}

bool CPDFContentStream::ReadStreamBytes(int32_t objectNumber, uint32_t index) {
  buffer_.Clear();
  length_ = position_ = noPlainBefore_ = 0;
  noImageEnd[0] = noImageEnd[1] = SIZE_MAX;
  lineStart_ = kNoLine;
  uint8_t firstChar;
  if (!OpenObject(objects_, objectNumber, firstChar)) return false;
  CPDFStream stream(objects_);
  if (stream.Parse(firstChar) != 0 || !stream.ReadAll(buffer_)) return false;
  contentBytes_ += buffer_.size();
  if (contentBytes_ > limits::kPageContent) return false;  // a stream that is listed again and again ends the page
  length_ = buffer_.size();
  buffer_.Resize(length_ + 1);
  buffer_.ShrinkToFit();
  buffer_.data()[length_] = 0;
  if (diagnostics_) DumpContent(index, {buffer_.data(), length_});
  return true;
}

}  // namespace kapdf
