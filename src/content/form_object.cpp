#include "content/form_object.h"

#include "pdfmodel/stream.h"

namespace kapdf {

bool CPDFFormObject::Load(const CPDFContentStream &page) {
  if (tried_) return content_ != nullptr;
  tried_ = true;
  uint8_t firstChar;
  if (!OpenObject(objects_, objectNumber_, firstChar)) return false;
  CPDFStream stream(objects_);
  ByteBuffer bytes;
  if (!stream.Parse(firstChar) || !stream.ReadAll(bytes)) return false;
  std::unique_ptr<CPDFDictionary> dictionary = stream.TakeDictionary();
  if (const auto *values = dictionary->GetAs<CPDFArray>("Matrix")) {
    double *const cells[] = {&matrix_.a, &matrix_.b, &matrix_.c, &matrix_.d, &matrix_.e, &matrix_.f};
    for (uint32_t i = 0; i < 6; ++i) {
      const auto *number = dynamic_cast<const CPDFNumeric *>(values->GetAt(i));
      if (number && std::isfinite(number->realValue)) *cells[i] = number->realValue;
    }
  }
  content_ =
      std::make_unique<CPDFContentStream>(objects_, std::move(dictionary), std::move(bytes), objectNumber_, page);
  return true;
}

}  // namespace kapdf
