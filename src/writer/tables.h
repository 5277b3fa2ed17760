// What the elements fill and the end of the file writes: layers, line types, transparency states.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kapdf/kapdf.h"
#include "writer/name_map.h"

namespace kapdf {

// Text of a name field, up to its zero or to the end of the field.
std::u16string_view FieldText(const char16_t (&field)[256]);
// Text behind a pointer of a payload; null is empty.
std::u16string_view NameText(const char16_t *text);

struct Layer {
  std::u16string name;
  uint32_t color = 0;  // packed
  double width = -1;   // millimetres; below zero each element's own width counts
  bool off = false;
};

// Layers in the order of their definition. A name defined twice is in the table twice and found once, at its first
// place.
class LayerTable {
 public:
  void Add(const LayerDefPayload &definition);
  // -1 when the name is not there.
  int32_t Find(std::u16string_view name) const;
  bool empty() const { return layers_.empty(); }
  const Layer &operator[](int32_t index) const { return layers_[static_cast<size_t>(index)]; }
  const std::vector<Layer> &all() const { return layers_; }

 private:
  std::vector<Layer> layers_;
  FirstNameMap<int32_t> indices_;
};

// Which line types are one unbroken line. The host breaks elements of the others into pieces itself.
class LineTypeTable {
 public:
  void Add(const LineTypeDefPayload &definition);
  // A name that is empty or not in the table counts as plain.
  bool IsPlain(std::u16string_view name);

 private:
  bool empty_ = true;
  FirstNameMap<bool> plain_;
  std::u16string lastName_;
  bool lastPlain_ = true;
};

// States of fill opacity, by the key opacity * 100 of a percentage: 10000 is opaque.
class TransparencyTable {
 public:
  static constexpr int32_t kOpaque = 10000;
  // Truncated; a percentage that is not a number is 0.
  static int32_t KeyOf(double percent);
  // Name of the state with that key, added when there is none.
  static std::string NameOf(size_t index) { return "GS" + std::to_string(index + 1); }
  size_t FindOrAdd(int32_t key);

  bool empty() const { return keys_.empty(); }
  const std::vector<int32_t> &keys() const { return keys_; }

 private:
  std::vector<int32_t> keys_;
  std::unordered_map<int32_t, size_t> indices_;
};

}  // namespace kapdf
