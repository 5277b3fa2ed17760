#include "pdfmodel/locator.h"

namespace kapdf {

bool OpenObject(ObjectLocator &objects, int32_t objectNumber, uint8_t &firstChar, int32_t *foundNumber) {
  return OpenAt(objects, objects.Resolve(objectNumber), firstChar, foundNumber);
}

bool OpenAt(ObjectLocator &objects, uint32_t position, uint8_t &firstChar, int32_t *foundNumber) {
  if (position == 0 || !objects.source().Seek(position, SeekOrigin::kStart)) return false;
  CPDFObjectIntro intro(objects.source());
  if (!intro.Parse(255)) return false;
  firstChar = intro.lastChar;
  if (foundNumber) *foundNumber = intro.objectNumber;
  return true;
}

std::unique_ptr<CPDFDictionary> FetchDictionary(ObjectLocator &objects, const CPDFIndirectObject &reference) {
  uint8_t firstChar;
  if (!OpenObject(objects, reference.objectNumber, firstChar)) return nullptr;
  auto dictionary = std::make_unique<CPDFDictionary>(objects.source());
  return dictionary->Parse(firstChar) ? std::move(dictionary) : nullptr;
}

std::unique_ptr<CPDFObject> FetchAny(ObjectLocator &objects, const CPDFIndirectObject &reference) {
  uint8_t firstChar;
  if (!OpenObject(objects, reference.objectNumber, firstChar)) return nullptr;
  objects.source().StartItems();
  return ParseAny(objects.source(), firstChar, 0);
}

const CPDFObject *Follow(ObjectLocator &objects, const CPDFObject *value, std::unique_ptr<CPDFObject> &fetched) {
  const auto *reference = dynamic_cast<const CPDFIndirectObject *>(value);
  if (!reference) return value;
  fetched = FetchAny(objects, *reference);
  return fetched.get();
}

bool ReadIndirectInteger(const CPDFIndirectObject &reference, ObjectLocator &objects, int32_t &value) {
  uint8_t firstChar;
  CPDFNumeric number(objects.source());
  if (!OpenObject(objects, reference.objectNumber, firstChar) || !number.Parse(firstChar)) return false;
  value = number.intValue;
  return true;
}

}  // namespace kapdf
