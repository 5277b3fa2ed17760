#include "fonts/font_object.h"

#include "base/bytes.h"

namespace kapdf {
namespace {

char16_t kNoFile[] = u"";

}  // namespace

void CPDFFontObject::Define(int32_t codePage) {
  if (definition_.size() < kDefinitionBytes) definition_.Resize(kDefinitionBytes);
  FontDefPayload block{};
  block.styleName = faceName_.data();
  block.faceName = familyName_.empty() ? faceName_.data() : familyName_.data();
  block.fileName = kNoFile;
  block.defaultHeight = 3.0;
  block.defaultWidthFactor = 1.0;
  const int32_t page = codePage_ == -1 ? codePage : codePage_;
  block.charsetAndCodePage = static_cast<uint32_t>(page) << 16 | (style_ & 0xFFFF);
  StoreAs(definition_.data(), block);
}

size_t CPDFFontObject::MemoryUsed() const {
  return sizeof *this + widths_.capacity() * sizeof(double) + (unicode_ ? sizeof *unicode_ : 0) + cidToGid_.size() +
         characterMap_.capacity() * sizeof(uint16_t) + definition_.size();
}

}  // namespace kapdf
