#include "pdfmodel/georeference.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "base/scan.h"
#include "pdfmodel/georeference_tables.h"

namespace kapdf {
namespace {

using namespace georeference;

constexpr uint32_t kClassOfImport = 3;

struct DictionaryAt {
  const CPDFDictionary *dictionary = nullptr;
  std::unique_ptr<CPDFObject> owner;  // what had to be read for it
};

DictionaryAt Fetched(ObjectLocator &objects, const CPDFIndirectObject &reference) {
  auto dictionary = FetchDictionary(objects, reference);
  const CPDFDictionary *found = dictionary.get();
  return {found, std::move(dictionary)};
}

// The object, which `owner` keeps, or the first item of an array, which may be a reference.
DictionaryAt FirstDictionary(ObjectLocator &objects, const CPDFObject *object, std::unique_ptr<CPDFObject> owner) {
  const auto *list = dynamic_cast<const CPDFArray *>(object);
  const CPDFObject *item = list ? list->GetAt(0) : object;
  if (const auto *reference = dynamic_cast<const CPDFIndirectObject *>(item)) return Fetched(objects, *reference);
  return {dynamic_cast<const CPDFDictionary *>(item), std::move(owner)};
}

// A reference leads to the dictionary or to an array with it.
DictionaryAt FindDictionary(ObjectLocator &objects, const CPDFObject *value) {
  const auto *reference = dynamic_cast<const CPDFIndirectObject *>(value);
  if (!reference) return FirstDictionary(objects, value, nullptr);
  if (DictionaryAt at = Fetched(objects, *reference); at.dictionary) return at;
  uint8_t firstChar;
  auto list = std::make_unique<CPDFArray>(objects.source());
  if (!OpenObject(objects, reference->objectNumber, firstChar) || !list->Parse(firstChar)) return {};
  const CPDFArray *items = list.get();
  return FirstDictionary(objects, items, std::move(list));
}

// A number, or the number that a text begins with.
double RealOf(ObjectLocator &objects, const CPDFObject *object) {
  std::unique_ptr<CPDFObject> fetched;
  object = Follow(objects, object, fetched);
  double value = 0;
  if (const auto *text = dynamic_cast<const CPDFString *>(object)) value = RealFrom(text->bytes.c_str());
  if (const auto *number = dynamic_cast<const CPDFNumeric *>(object)) value = number->realValue;
  return std::isfinite(value) ? value : 0;
}

void ReadProjection(ObjectLocator &objects, const CPDFDictionary &system, CoordinateSystemBlock &block) {
  const auto *type = system.GetAs<CPDFString>("ProjectionType");
  if (!type) return;
  const auto *row = std::ranges::find(kProjections, std::string_view(type->bytes), &Projection::code);
  if (row == std::end(kProjections) || row->id < 0) return;
  block.methodCode = kMethods[row->id];
  for (size_t slot = 0; slot < row->slots.size(); ++slot) {
    if (row->slots[slot] < 0) continue;
    const Parameter &parameter = kParameters[row->slots[slot]];
    block.paramValues[slot] = RealOf(objects, system.Get(parameter.key)) / parameter.factor;
    block.paramCodes[slot] = parameter.code;
    ++block.paramCount;
  }
}

void ReadEllipsoid(ObjectLocator &objects, const CPDFObject *object, CoordinateSystemBlock &block) {
  if (const auto *text = dynamic_cast<const CPDFString *>(object)) {
    for (const auto &[name, code] : kEllipsoids) {
      if (text->bytes == name) block.ellipsoidCode = code;
    }
  } else if (const auto *axes = dynamic_cast<const CPDFDictionary *>(object)) {
    block.semiMajorAxis = RealOf(objects, axes->Get("SemiMajorAxis"));
    block.semiMinorAxis = RealOf(objects, axes->Get("SemiMinorAxis"));
    block.invFlattening = RealOf(objects, axes->Get("InvFlattening"));
  } else {
    block.datumCode = kDatumWgs84;
  }
}

void ReadDatum(ObjectLocator &objects, const CPDFObject *object, CoordinateSystemBlock &block) {
  if (const auto *datum = dynamic_cast<const CPDFDictionary *>(object)) {
    ReadEllipsoid(objects, datum->Get("Ellipsoid"), block);
    return;
  }
  block.datumCode = kDatumWgs84;
  if (const auto *text = dynamic_cast<const CPDFString *>(object)) {
    const auto *found =
        std::ranges::find_if(kDatums, [&](const CodeOf &row) { return text->bytes.starts_with(row.text); });
    if (found != std::end(kDatums)) block.datumCode = found->code;
  }
}

std::optional<CoordinateSystemBlock> ReadSystem(ObjectLocator &objects, const CPDFDictionary &dictionary) {
  std::unique_ptr<CPDFObject> fetched;
  const CPDFDictionary *system = nullptr;
  for (const char *key : {"Projection", "Display"}) {
    if (!system) system = dynamic_cast<const CPDFDictionary *>(Follow(objects, dictionary.Get(key), fetched));
  }
  const auto *type = system ? system->GetAs<CPDFNameObject>("Type") : nullptr;
  if (!type || type->name != "Projection") return std::nullopt;
  CoordinateSystemBlock block = MakeCoordinateSystem(kClassOfImport, 1.0);
  block.unitCode = kUnitDegree;
  ReadProjection(objects, *system, block);
  ReadDatum(objects, system->Get("Datum"), block);
  return block;
}

}  // namespace

CoordinateSystemBlock MakeCoordinateSystem(uint32_t systemClass, double scale) {
  CoordinateSystemBlock block{};
  block.marker = 768;
  block.size = sizeof block;
  block.systemClass = systemClass;
  block.scale = scale;
  block.epsgCode = block.methodCode = block.datumCode = block.ellipsoidCode = block.unitCode = -1;
  block.reserved1692 = -1;
  std::memset(block.reserved1696, 255, sizeof block.reserved1696);
  block.projectionId = -1;
  block.reserved1712 = 2;
  return block;
}

std::optional<Georeference> ReadGeoreference(ObjectLocator &objects, const CPDFDictionary &page) {
  const DictionaryAt at = FindDictionary(objects, page.Get("LGIDict"));
  if (!at.dictionary) return std::nullopt;
  Georeference georeference{ReadSystem(objects, *at.dictionary), std::nullopt};
  std::unique_ptr<CPDFObject> fetched;
  const auto *list = dynamic_cast<const CPDFArray *>(Follow(objects, at.dictionary->Get("CTM"), fetched));
  if (list) {
    auto &matrix = georeference.matrix.emplace();
    for (uint32_t i = 0; i < matrix.size(); ++i) matrix[i] = RealOf(objects, list->GetAt(i));
  }
  return georeference;
}

}  // namespace kapdf
