// An element record that owns what it points to, small enough to keep a whole drawing in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kapdf/kapdf.h"

namespace kapdf::tool {

// Names of layers and styles, each kept once.
class NameTable {
 public:
  uint32_t Add(std::u16string_view name);
  const std::u16string &operator[](uint32_t index) const { return names_[index]; }

 private:
  std::deque<std::u16string> names_;
  std::unordered_map<std::u16string_view, uint32_t> index_;
};

struct Record {
  uint32_t kind = ElemNone;
  uint32_t flags = 0;
  uint32_t color = KAPDF_COLOR_BY_LAYER;
  uint32_t section = 0;
  uint32_t layer = 0, style = 0;  // in the drawing's NameTable
  uint32_t payloadBytes = 0;
  uint64_t imageKey = 0;
  std::unique_ptr<uint64_t[]> payload;  // structure, then everything it points to
  std::unique_ptr<std::string> file;    // of a raster header, the picture that holds the rows
};

// Fills `out`, whose payload then belongs to `record`; `out.progress` stays as it is.
void FillElement(const Record &record, const NameTable &names, ElementRecord &out);

// A record as a host makes one: everything zero, the layer's colour.
void InitElement(ElementRecord &out);
// At most 255 units fit.
void SetName(char16_t (&target)[256], std::u16string_view name);

// Lays a payload out as one block: the structure, then each attached array at a multiple of 8 with the structure's
// pointer to it set.
class PayloadBuilder {
 public:
  explicit PayloadBuilder(size_t structureBytes) : bytes_(structureBytes) {}

  void *data() { return bytes_.data(); }
  // `pointerAt`: offset of the pointer in the structure; kNoPointer only keeps the bytes, straight behind the rest.
  void Attach(size_t pointerAt, const void *data, size_t size);
  void AttachText(size_t pointerAt, const std::u16string &text) {
    Attach(pointerAt, text.c_str(), (text.size() + 1) * sizeof(char16_t));
  }
  std::unique_ptr<uint64_t[]> Finish();

  static constexpr size_t kNoPointer = static_cast<size_t>(-1);

 private:
  struct Link {
    size_t pointerAt, target;
  };
  std::vector<std::byte> bytes_;
  std::vector<Link> links_;
};

}  // namespace kapdf::tool
