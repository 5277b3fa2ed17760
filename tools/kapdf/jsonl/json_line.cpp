#include "jsonl/json_line.h"

#include <nlohmann/json.hpp>

namespace kapdf::tool {

// Receives the parser's events. An answer of false ends the parsing; the fault is set by then.
class JsonLineBuilder {
 public:
  JsonLineBuilder(JsonLine &line, std::string &fault) : line_(line), fault_(fault) { line_.count_ = 0; }

  bool null() { return Scalar(JsonValue::Type::kNull); }
  bool boolean(bool value) {
    if (!Scalar(JsonValue::Type::kBoolean)) return false;
    current_->boolean = value;
    return true;
  }
  bool number_integer(int64_t value) {
    return Number(JsonValue::Type::kInteger, static_cast<double>(value), value < 0, static_cast<uint64_t>(value));
  }
  bool number_unsigned(uint64_t value) {
    return Number(JsonValue::Type::kInteger, static_cast<double>(value), false, value);
  }
  bool number_float(double value, const std::string &) { return Number(JsonValue::Type::kReal, value, false, 0); }
  bool string(std::string &value) {
    if (!Scalar(JsonValue::Type::kText)) return false;
    current_->text.swap(value);
    return true;
  }
  bool binary(std::vector<uint8_t> &) { return Fault("a value is of a type that is not used here"); }

  bool start_object(size_t) {
    if (inObject_) return Fault("an object stands inside another one");
    inObject_ = true;
    return true;
  }
  bool key(std::string &name) {
    for (size_t i = 0; i < line_.count_; ++i) {
      if (line_.values_[i].key == name) return Fault("\"" + name + "\" stands there twice");
    }
    if (line_.count_ == line_.values_.size()) line_.values_.emplace_back();
    current_ = &line_.values_[line_.count_++];
    current_->key.swap(name);
    current_->used = false;
    current_->numbers.clear();
    current_->ends.clear();
    current_->numberLevel = 0;
    current_->pairs = true;
    return true;
  }
  bool end_object() { return true; }

  bool start_array(size_t) {
    if (current_ == nullptr) return Fault("it is not an object");
    current_->type = JsonValue::Type::kArray;
    if (++level_ > 3) return Fault("\"" + current_->key + "\" is nested too deeply");
    innerStart_ = current_->numbers.size();
    return true;
  }
  bool end_array() {
    if (level_ == 2) current_->ends.push_back(current_->numbers.size());
    if (level_ == 3 && current_->numbers.size() - innerStart_ != 2) current_->pairs = false;
    --level_;
    return true;
  }

  template <class Error>
  bool parse_error(size_t at, const std::string &, const Error &error) {
    return Fault(error.id == 406 ? "a number is too large" : "it is not JSON at character " + std::to_string(at));
  }

 private:
  bool Fault(std::string words) {
    if (fault_.empty()) fault_ = std::move(words);
    return false;
  }
  bool Scalar(JsonValue::Type type) {
    if (current_ == nullptr) return Fault("it is not an object");
    if (level_ > 0) return Fault("\"" + current_->key + "\" holds something that is not a number");
    current_->type = type;
    return true;
  }
  bool Number(JsonValue::Type type, double real, bool negative, uint64_t bits) {
    if (level_ == 0) {
      if (!Scalar(type)) return false;
      current_->real = real;
      current_->negative = negative;
      current_->bits = bits;
      return true;
    }
    if (current_->numberLevel != 0 && current_->numberLevel != level_) {
      return Fault("\"" + current_->key + "\" mixes numbers and arrays");
    }
    current_->numberLevel = level_;
    current_->numbers.push_back(real);
    return true;
  }

  JsonLine &line_;
  std::string &fault_;
  JsonValue *current_ = nullptr;
  bool inObject_ = false;
  int level_ = 0;
  size_t innerStart_ = 0;
};

bool JsonLine::Parse(std::string_view line, std::string &fault) {
  fault.clear();
  JsonLineBuilder builder(*this, fault);
  const bool parsed = nlohmann::json::sax_parse(line.begin(), line.end(), &builder);
  if (!parsed && fault.empty()) fault = "it is not JSON";
  return parsed && fault.empty();
}

const JsonValue *JsonLine::Find(std::string_view key) {
  for (size_t i = 0; i < count_; ++i) {
    if (values_[i].key != key) continue;
    values_[i].used = true;
    return values_[i].type == JsonValue::Type::kNull ? nullptr : &values_[i];
  }
  return nullptr;
}

const JsonValue *JsonLine::Unused() const {
  for (size_t i = 0; i < count_; ++i) {
    if (!values_[i].used) return &values_[i];
  }
  return nullptr;
}

}  // namespace kapdf::tool
