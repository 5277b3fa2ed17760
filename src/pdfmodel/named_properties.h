// Named properties that a page has for the host, ahead of its elements.
#pragma once

#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>

#include "kapdf/kapdf.h"

namespace kapdf {

// Records point into the queue, so what it gave stays valid as long as it lives.
class NamedPropertyQueue {
 public:
  // A binary value, which goes out as hexadecimal text.
  void Add(std::u16string_view name, std::span<const uint8_t> value);
  // A text of ASCII letters.
  void AddText(std::u16string_view name, std::string_view value);
  // Fills kind and payload of the record with the next property; false, and the record is as it was, behind the last.
  bool Next(ElementRecord &record);

 private:
  struct Item {
    std::u16string name, value;
    NamedPropertyPayload payload{};
  };
  std::deque<Item> items_;
  size_t next_ = 0;
};

}  // namespace kapdf
