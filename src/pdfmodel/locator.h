// How everyone but the cross-reference itself finds an object.
#pragma once

#include <cstdint>
#include <memory>

#include "pdfmodel/block_source.h"
#include "pdfmodel/objects.h"

namespace kapdf {

class ObjectLocator {
 public:
  virtual ~ObjectLocator() = default;

  // The position of an object in `source`, or 0 when it is unknown. For an object inside an object stream the source is
  // switched to its memory block, where the position lies; for any other it is switched back to the file.
  virtual uint32_t Resolve(int32_t objectNumber) = 0;

  CPDFBlockSource &source() const { return source_; }

 protected:
  explicit ObjectLocator(CPDFBlockSource &source) : source_(source) {}

 private:
  CPDFBlockSource &source_;
};

// Seeks to an object and reads its "n g obj". On success `firstChar` is the byte that the object's Parse takes.
// `foundNumber` takes the number that stands there, which is not compared.
bool OpenObject(ObjectLocator &objects, int32_t objectNumber, uint8_t &firstChar, int32_t *foundNumber = nullptr);
// The same for an object whose position was just resolved.
bool OpenAt(ObjectLocator &objects, uint32_t position, uint8_t &firstChar, int32_t *foundNumber = nullptr);

// A dictionary of its own behind a reference, or null. The source's position afterwards is behind it.
std::unique_ptr<CPDFDictionary> FetchDictionary(ObjectLocator &objects, const CPDFIndirectObject &reference);

// Any object of its own behind a reference, or null.
std::unique_ptr<CPDFObject> FetchAny(ObjectLocator &objects, const CPDFIndirectObject &reference);

// The object itself, or what it refers to, which `fetched` then keeps. Null for a reference that leads nowhere.
const CPDFObject *Follow(ObjectLocator &objects, const CPDFObject *value, std::unique_ptr<CPDFObject> &fetched);

// A number behind a reference. Does not seek back.
bool ReadIndirectInteger(const CPDFIndirectObject &reference, ObjectLocator &objects, int32_t &value);

}  // namespace kapdf
