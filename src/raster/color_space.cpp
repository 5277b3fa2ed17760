#include "raster/color_space.h"

#include <algorithm>
#include <vector>

#include "base/color.h"
#include "base/limits.h"
#include "pdfmodel/stream.h"

namespace kapdf {
namespace {

constexpr uint64_t kTintSamples = 4 * limits::kPaletteEntries;  // bytes of a sampled function; more fill no palette

std::string NameOf(const CPDFObject *object) {
  const auto *name = dynamic_cast<const CPDFNameObject *>(object);
  return name ? name->name : std::string();
}

// Also of a name behind a reference.
std::string FollowName(ObjectLocator &objects, const CPDFObject *object) {
  std::unique_ptr<CPDFObject> fetched;
  return NameOf(Follow(objects, object, fetched));
}

int32_t DeviceComponents(const std::string &name) {
  return name == "DeviceGray" ? ColorSpace::kGrey : name == "DeviceRGB" ? 3 : name == "DeviceCMYK" ? 4 : -1;
}

// As the file has it: the parser swaps the bytes of strings that start with the marker of UTF-16.
std::vector<uint8_t> PlainBytes(const CPDFString &string) {
  std::vector<uint8_t> bytes(string.bytes.begin(), string.bytes.end());
  if (!string.wide) return bytes;
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) std::swap(bytes[i], bytes[i + 1]);
  bytes.insert(bytes.begin(), {0xFE, 0xFF});
  return bytes;
}

// Reads so many bytes of a stream; fewer when it ends, and none when it cannot be read.
size_t ReadStream(ObjectLocator &objects, const CPDFIndirectObject &reference, std::vector<uint8_t> &bytes) {
  uint8_t firstChar;
  if (!OpenObject(objects, reference.objectNumber, firstChar)) return 0;
  CPDFStream stream(objects);
  if (!stream.Parse(firstChar)) return 0;
  return stream.codec()->Read(bytes.data(), bytes.size());
}

}  // namespace

uint32_t ColorSpace::Convert(double component) const {
  if (!palette_ || palette_->count == 0) return 0;
  const double last = palette_->count - 1;
  const double index = indexed_ ? component : component * last;
  const Palette::Entry &entry = palette_->entries[index > 0 ? static_cast<size_t>(std::min(index, last)) : 0];
  return PackColor(entry.red, entry.green, entry.blue);
}

void ColorSpace::SetDevice(int32_t components) {
  components_ = components;
  if (components == kGrey) palette_ = GreyRamp();
}

bool ColorSpace::Load(const CPDFObject *value) {
  std::unique_ptr<CPDFObject> fetched;
  value = Follow(objects_, value, fetched);
  if (const auto *array = dynamic_cast<const CPDFArray *>(value)) return LoadArray(*array);
  const std::string name = NameOf(value);
  const int32_t device = DeviceComponents(name);
  if (device < 0) return false;
  SetDevice(device);
  return true;
}

bool ColorSpace::LoadArray(const CPDFArray &array) {
  const std::string family = NameOf(array.GetAt(0));
  if (const int32_t device = DeviceComponents(family); device >= 0)
    SetDevice(device);
  else if (family == "ICCBased")
    LoadIccBased(array.GetAt(1));
  else if (family == "Indexed" || family == "I")
    LoadIndexed(array);
  else if (family == "Separation")
    LoadSeparation(array);
  else
    return false;
  return true;
}

// An alternate space that is named has the last word.
void ColorSpace::LoadIccBased(const CPDFObject *profile) {
  const auto *reference = dynamic_cast<const CPDFIndirectObject *>(profile);
  const auto dictionary = reference ? FetchDictionary(objects_, *reference) : nullptr;
  if (!dictionary) return;
  if (const CPDFObject *alternate = dictionary->Get("Alternate")) {
    SetDevice(DeviceComponents(FollowName(objects_, alternate)));
  } else if (const auto *count = dictionary->GetAs<CPDFNumeric>("N")) {
    components_ = count->intValue;
    if (components_ == 1) SetDevice(kGrey);
  }
}

// Bytes that are missing count as 0.
void ColorSpace::FillPalette(const uint8_t *bytes, size_t available, int entries, int bytesPerEntry) {
  palette_ = EmptyPalette(static_cast<uint16_t>(entries));
  const auto at = [&](size_t index) { return index < available ? bytes[index] : uint8_t{0}; };
  for (int i = 0; i < entries; ++i) {
    const size_t first = static_cast<size_t>(i) * static_cast<size_t>(bytesPerEntry);
    if (bytesPerEntry == 1) {
      palette_->Set(static_cast<size_t>(i), at(first), at(first), at(first));
    } else if (bytesPerEntry == 3) {
      palette_->Set(static_cast<size_t>(i), at(first), at(first + 1), at(first + 2));
    } else {
      const uint32_t packed = PackFromCmykBytes(at(first), at(first + 1), at(first + 2), at(first + 3));
      palette_->Set(static_cast<size_t>(i), static_cast<uint8_t>(RedOf(packed)), static_cast<uint8_t>(GreenOf(packed)),
                    static_cast<uint8_t>(BlueOf(packed)));
    }
  }
}

// Three bytes an entry unless the base is grey or CMYK by name, whatever a profile says.
void ColorSpace::LoadIndexed(const CPDFArray &array) {
  components_ = 1;
  indexed_ = true;
  const std::string base = FollowName(objects_, array.GetAt(1));
  const int bytesPerEntry = base == "DeviceCMYK" || base == "CMYK" ? 4 : base == "DeviceGray" || base == "G" ? 1 : 3;
  std::unique_ptr<CPDFObject> fetched;
  const auto *highest = dynamic_cast<const CPDFNumeric *>(Follow(objects_, array.GetAt(2), fetched));
  const int entries = highest ? std::clamp(highest->intValue, 0, 255) + 1 : 0;
  if (entries == 0) return;
  std::unique_ptr<CPDFObject> fetchedTable;
  const CPDFObject *table = Follow(objects_, array.GetAt(3), fetchedTable);
  if (const auto *string = dynamic_cast<const CPDFString *>(table)) {
    const std::vector<uint8_t> bytes = PlainBytes(*string);
    FillPalette(bytes.data(), bytes.size(), entries, bytesPerEntry);
  } else if (dynamic_cast<const CPDFDictionary *>(table) && fetchedTable) {
    std::vector<uint8_t> bytes(static_cast<size_t>(entries * bytesPerEntry));
    const size_t got = ReadStream(objects_, *dynamic_cast<const CPDFIndirectObject *>(array.GetAt(3)), bytes);
    if (got == 0 || got == bytes.size()) FillPalette(bytes.data(), bytes.size(), entries, bytesPerEntry);
  }
  if (palette_ && palette_->count == 2) components_ = kTwoColors;
}

// One ink. Its samples are indexes into a palette that the tint transform gives; the transform itself is never run.
void ColorSpace::LoadSeparation(const CPDFArray &array) {
  const std::string alternate = FollowName(objects_, array.GetAt(2));
  components_ = alternate == "DeviceCMYK" ? 4 : alternate == "DeviceGray" ? kGrey : 3;
  const auto *function = dynamic_cast<const CPDFIndirectObject *>(array.GetAt(3));
  const auto dictionary = function ? FetchDictionary(objects_, *function) : nullptr;
  const auto *type = dictionary ? dictionary->GetAs<CPDFNumeric>("FunctionType") : nullptr;
  if (!type) return;
  if (type->intValue == 0) {
    LoadSampledTint(*function, *dictionary);
  } else if (type->intValue == 4) {
    palette_ = GreyRamp(true);
    components_ = 1;
  }
}

// Each byte counts as one sample, whatever its depth is said to be.
void ColorSpace::LoadSampledTint(const CPDFIndirectObject &function, const CPDFDictionary &dictionary) {
  const auto *range = dictionary.GetAs<CPDFArray>("Range");
  const auto *size = dictionary.GetAs<CPDFArray>("Size");
  if (!range || !size) return;
  const uint32_t outputs = range->Count() / 2;
  uint64_t samples = outputs;
  for (uint32_t i = 0; i < size->Count(); ++i) {
    const auto *side = dynamic_cast<const CPDFNumeric *>(size->GetAt(i));
    samples = std::min(samples * static_cast<uint64_t>(side ? std::max(side->intValue, 0) : 0), kTintSamples);
  }
  if (samples == 0) return;
  std::vector<uint8_t> bytes(samples);
  if (ReadStream(objects_, function, bytes) == 0) return;
  components_ = 1;
  if (outputs != 3 && outputs != 4) {
    palette_ = EmptyPalette(limits::kPaletteEntries);
    return;
  }
  const auto entries = static_cast<int>(std::min<uint64_t>(samples / outputs, limits::kPaletteEntries));
  FillPalette(bytes.data(), bytes.size(), entries, static_cast<int>(outputs));
}

}  // namespace kapdf
