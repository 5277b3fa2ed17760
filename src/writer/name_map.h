// Values by UTF-16 name, the first definition of a name winning. Of a longer name 255 units count, as many as a record
// has room for.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace kapdf {

template <class Value>
class FirstNameMap {
 public:
  // Does nothing when the name is there already.
  void Add(std::u16string_view name, Value value) { values_.emplace(Known(name), std::move(value)); }
  // Null when the name is not there.
  const Value *Find(std::u16string_view name) const {
    const auto found = values_.find(Known(name));
    return found == values_.end() ? nullptr : &found->second;
  }

 private:
  static std::u16string_view Known(std::u16string_view name) { return name.substr(0, 255); }
  struct Hash {
    using is_transparent = void;
    size_t operator()(std::u16string_view name) const { return std::hash<std::u16string_view>()(name); }
  };
  std::unordered_map<std::u16string, Value, Hash, std::equal_to<>> values_;
};

}  // namespace kapdf
