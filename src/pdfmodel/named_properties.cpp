#include "pdfmodel/named_properties.h"

namespace kapdf {
namespace {

constexpr uint32_t kText = 4, kBinary = 32;

}  // namespace

void NamedPropertyQueue::Add(std::u16string_view name, std::span<const uint8_t> value) {
  Item &item = items_.emplace_back();
  item.name = name;
  item.value.reserve(value.size() * 2);
  for (const uint8_t byte : value) {
    item.value += u"0123456789ABCDEF"[byte >> 4];
    item.value += u"0123456789ABCDEF"[byte & 15];
  }
  item.payload = {item.name.data(), kBinary, item.value.data()};
}

void NamedPropertyQueue::AddText(std::u16string_view name, std::string_view value) {
  Item &item = items_.emplace_back();
  item.name = name;
  item.value.assign(value.begin(), value.end());
  item.payload = {item.name.data(), kText, item.value.data()};
}

bool NamedPropertyQueue::Next(ElementRecord &record) {
  if (next_ >= items_.size()) return false;
  record.kind = ElemNamedProperty;
  record.payload = &items_[next_++].payload;
  record.payloadBytes = sizeof(NamedPropertyPayload);
  record.next = nullptr;
  return true;
}

}  // namespace kapdf
