#include "pdfmodel/locator.h"

namespace kapdf {

bool OpenObject(ObjectLocator &objects, int32_t objectNumber, uint8_t &firstChar, int32_t *foundNumber) {
  const uint32_t position = objects.Resolve(objectNumber);
  if (position == 0 || !objects.source().Seek(position, SeekOrigin::kStart)) return false;
  CPDFObjectIntro intro(objects.source());
  if (intro.Parse(255) != 0) return false;
  firstChar = intro.lastChar;
  if (foundNumber) *foundNumber = intro.objectNumber;
  return true;
}

std::unique_ptr<CPDFDictionary> FetchDictionary(ObjectLocator &objects, const CPDFIndirectObject &reference) {
  uint8_t firstChar;
  if (!OpenObject(objects, reference.objectNumber, firstChar)) return nullptr;
  auto dictionary = std::make_unique<CPDFDictionary>(objects.source());
  return dictionary->Parse(firstChar) == 0 ? std::move(dictionary) : nullptr;
}

int ReadIndirectInteger(const CPDFIndirectObject &reference, ObjectLocator &objects, int32_t &value) {
  uint8_t firstChar;
  CPDFNumeric number(objects.source());
  if (!OpenObject(objects, reference.objectNumber, firstChar) || number.Parse(firstChar) != 0) return 1;
  value = number.intValue;
  return 0;
}

}  // namespace kapdf
