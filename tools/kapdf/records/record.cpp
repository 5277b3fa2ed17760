#include "records/record.h"

#include <cstring>

#include "records/kinds.h"

namespace kapdf::tool {

uint32_t NameTable::Add(std::u16string_view name) {
  if (const auto found = index_.find(name); found != index_.end()) return found->second;
  const auto index = static_cast<uint32_t>(names_.size());
  index_.emplace(names_.emplace_back(name), index);
  return index;
}

void InitElement(ElementRecord &out) {
  ProgressObject *progress = out.progress;
  std::memset(&out, 0, sizeof out);
  out.color = KAPDF_COLOR_BY_LAYER;
  out.progress = progress;
}

void SetName(char16_t (&target)[256], std::u16string_view name) {
  const size_t count = std::min<size_t>(name.size(), 255);
  std::memcpy(target, name.data(), count * sizeof(char16_t));
  target[count] = 0;
}

void FillElement(const Record &record, const NameTable &names, ElementRecord &out) {
  out.kind = record.kind;
  out.flags = record.flags;
  out.color = record.color;
  out.section = record.section;
  out.imageKey = record.imageKey;
  out.payloadBytes = record.payloadBytes;
  out.payload = record.payload.get();
  out.reserved2 = 0;
  out.next = nullptr;
  SetName(out.layerName, names[record.layer]);
  SetName(out.styleName, names[record.style]);
}

void PayloadBuilder::Attach(size_t pointerAt, const void *data, size_t size) {
  if (pointerAt != kNoPointer) {
    bytes_.resize((bytes_.size() + 7) / 8 * 8);
    links_.push_back({pointerAt, bytes_.size()});
  }
  if (size == 0) return;
  const size_t at = bytes_.size();
  bytes_.resize(at + size);
  std::memcpy(bytes_.data() + at, data, size);
}

std::unique_ptr<uint64_t[]> PayloadBuilder::Finish() {
  // Two words more than needed: an attached array of no elements still points into the block, and a polygon's block
  // stays as long as `payloadBytes` says.
  auto block = std::make_unique_for_overwrite<uint64_t[]>(bytes_.size() / 8 + 2);
  if (!bytes_.empty()) std::memcpy(block.get(), bytes_.data(), bytes_.size());
  auto *start = reinterpret_cast<char *>(block.get());
  for (const Link &link : links_) WriteAt<void *>(start, link.pointerAt, start + link.target);
  return block;
}

}  // namespace kapdf::tool
