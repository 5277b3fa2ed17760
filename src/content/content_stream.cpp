#include "content/content_stream.h"

namespace kapdf {

CPDFContentStream::CPDFContentStream(ObjectLocator &objects, std::unique_ptr<CPDFDictionary> owner,
                                     const ResourceSettings &settings, bool diagnostics)
    : owner_(std::move(owner)),
      bytes(objects, owner_.get(), diagnostics),
      statements(bytes),
      resources(objects, owner_.get(), settings) {}

CPDFContentStream::CPDFContentStream(ObjectLocator &objects, std::unique_ptr<CPDFDictionary> owner, ByteBuffer content,
                                     int32_t objectNumber, const CPDFContentStream &page)
    : owner_(std::move(owner)),
      objectNumber_(objectNumber),
      bytes(objects, std::move(content)),
      statements(bytes, page.statements),
      resources(objects, owner_.get(), page.resources.settings()) {}

void CPDFContentStream::SetPosition(size_t position) {
  bytes.Seek(position);
  statements.Restart();
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

}  // namespace kapdf
