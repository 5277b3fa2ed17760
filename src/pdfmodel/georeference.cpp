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

const CPDFDictionary *FirstDictionary(const CPDFObject *object) {
  const auto *list = dynamic_cast<const CPDFArray *>(object);
  return dynamic_cast<const CPDFDictionary *>(list ? list->GetAt(0) : object);
}

// A reference leads to the dictionary or to an array with it.
DictionaryAt FindDictionary(ObjectLocator &objects, const CPDFObject *value) {
  const auto *reference = dynamic_cast<const CPDFIndirectObject *>(value);
  if (!reference) return {FirstDictionary(value), nullptr};
  if (auto dictionary = FetchDictionary(objects, *reference)) {
    const CPDFDictionary *found = dictionary.get();
    return {found, std::move(dictionary)};
  }
  uint8_t firstChar;
  auto list = std::make_unique<CPDFArray>(objects.source());
  if (!OpenObject(objects, reference->objectNumber, firstChar) || list->Parse(firstChar) != 0) return {};
  const CPDFDictionary *found = FirstDictionary(list.get());
  return {found, std::move(list)};
}

// A number, or the number that a text begins with.
double RealOf(const CPDFObject *object) {
  double value = 0;
  if (const auto *text = dynamic_cast<const CPDFString *>(object)) value = RealFrom(text->bytes.c_str());
  if (const auto *number = dynamic_cast<const CPDFNumeric *>(object)) value = number->realValue;
  return std::isfinite(value) ? value : 0;
}

void ReadProjection(const CPDFDictionary &system, CoordinateSystemBlock &block) {
  const auto *type = system.GetAs<CPDFString>("ProjectionType");
  if (!type) return;
  const auto *row = std::ranges::find(kProjections, std::string_view(type->bytes), &Projection::code);
  if (row == std::end(kProjections) || row->id < 0) return;
  block.methodCode = kMethods[row->id];
  for (size_t slot = 0; slot < row->slots.size(); ++slot) {
    if (row->slots[slot] < 0) continue;
    const Parameter &parameter = kParameters[row->slots[slot]];
    block.paramValues[slot] = RealOf(system.Get(parameter.key)) / parameter.factor;
    block.paramCodes[slot] = parameter.code;
    ++block.paramCount;
  }
}

void ReadEllipsoid(const CPDFObject *object, CoordinateSystemBlock &block) {
  if (const auto *text = dynamic_cast<const CPDFString *>(object)) {
    for (const auto &[name, code] : kEllipsoids) {
      if (text->bytes == name) block.ellipsoidCode = code;
    }
  } else if (const auto *axes = dynamic_cast<const CPDFDictionary *>(object)) {
    block.semiMajorAxis = RealOf(axes->Get("SemiMajorAxis"));
    block.semiMinorAxis = RealOf(axes->Get("SemiMinorAxis"));
    block.invFlattening = RealOf(axes->Get("InvFlattening"));
  } else {
    block.datumCode = kDatumWgs84;
  }
}

void ReadDatum(const CPDFObject *object, CoordinateSystemBlock &block) {
  if (const auto *datum = dynamic_cast<const CPDFDictionary *>(object)) {
    ReadEllipsoid(datum->Get("Ellipsoid"), block);
    return;
  }
  block.datumCode = kDatumWgs84;
  if (const auto *text = dynamic_cast<const CPDFString *>(object)) {
    const auto *found =
        std::ranges::find_if(kDatums, [&](const CodeOf &row) { return text->bytes.starts_with(row.text); });
    if (found != std::end(kDatums)) block.datumCode = found->code;
  }
}

std::optional<CoordinateSystemBlock> ReadSystem(const CPDFDictionary &dictionary) {
  const auto *system = dictionary.GetAs<CPDFDictionary>("Projection");
  if (!system) system = dictionary.GetAs<CPDFDictionary>("Display");
  const auto *type = system ? system->GetAs<CPDFNameObject>("Type") : nullptr;
  if (!type || type->name != "Projection") return std::nullopt;
  CoordinateSystemBlock block = MakeCoordinateSystem(kClassOfImport, 1.0);
  block.unitCode = kUnitDegree;
  ReadProjection(*system, block);
  ReadDatum(system->Get("Datum"), block);
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
  Georeference georeference{ReadSystem(*at.dictionary), std::nullopt};
  if (const auto *list = at.dictionary->GetAs<CPDFArray>("CTM")) {
    auto &matrix = georeference.matrix.emplace();
    for (uint32_t i = 0; i < matrix.size(); ++i) matrix[i] = RealOf(list->GetAt(i));
  }
  return georeference;
}

}  // namespace kapdf
