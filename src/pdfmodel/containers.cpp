// Arrays, dictionaries, and the choice of an object's class.
#include <algorithm>

#include "base/ascii.h"
#include "base/limits.h"
#include "pdfmodel/objects.h"

namespace kapdf {
namespace {

constexpr size_t kLargeDictionary = 16;

// Reads past a comment whose "%" was read, and gives the first byte behind it that is not white space.
uint8_t SkipComment(CZVBaseIO &source) {
  uint8_t c;
  do c = source.GetByte();
  while (c != '\n' && c != '\r' && !source.AtEnd());
  while (IsSpace(c)) c = source.GetByte();
  return c;
}

std::unique_ptr<CPDFObject> MakeObject(CZVBaseIO &source, uint8_t first, int depth) {
  switch (first) {
    case '[':
      return std::make_unique<CPDFArray>(source, depth);
    case '<':
      return std::make_unique<CPDFDictionary>(source, depth);
    case '/':
      return std::make_unique<CPDFNameObject>(source);
    case '(':
      return std::make_unique<CPDFString>(source);
    case 'n':
      return std::make_unique<CPDFNull>(source);
    case 't':
    case 'f':
      return std::make_unique<CPDFBool>(source);
    default:
      return nullptr;
  }
}

}  // namespace

std::unique_ptr<CPDFObject> ParseAny(CZVBaseIO &source, uint8_t &byte, int depth) {
  if (depth >= limits::kObjectNesting || !source.TakeItem()) return nullptr;
  if (byte == 255 || IsSpace(byte)) {
    do byte = source.GetByte();
    while (IsSpace(byte));
  }
  if (byte == '%') byte = SkipComment(source);
  const uint8_t first = byte;
  if (IsNumberByte(first)) return ParseNumber(source, byte);
  std::unique_ptr<CPDFObject> object = MakeObject(source, first, depth + 1);
  if (!object) return nullptr;
  const int64_t position = first == '<' ? source.Tell() : 0;
  if (!object->Parse(first)) {
    byte = object->lastChar;
    if (first != '<' || !source.Seek(position, SeekOrigin::kStart)) return nullptr;
    object = std::make_unique<CPDFString>(source);  // what is no dictionary may be a hexadecimal string
    if (!object->Parse(first)) return nullptr;
  }
  byte = object->lastChar;
  return object;
}

bool CPDFArray::Parse(uint8_t firstChar) {
  items_.clear();
  if (depth_ == 0) source_->StartItems();
  uint8_t c = FirstByte(firstChar);
  if (IsDigit(c)) {
    if (auto item = ParseAny(*source_, c, depth_)) items_.push_back(std::move(item));
    lastChar = c;
    return !items_.empty();
  }
  if (c != '[') return false;
  c = source_->GetByte();
  while (auto item = ParseAny(*source_, c, depth_)) {
    items_.push_back(std::move(item));
    if (c == ']') break;
  }
  lastChar = c;
  return c == ']' && SkipRest();
}

bool CPDFArray::SkipRest() {
  while (lastChar != ']' && !source_->AtEnd()) lastChar = source_->GetByte();
  SkipSpace();
  return true;
}

bool CPDFDictionary::Parse(uint8_t firstChar) {
  entries_.clear();
  byName_.clear();
  if (depth_ == 0) source_->StartItems();
  uint8_t c = FirstByte(firstChar);
  if (c == '[') return false;
  for (int64_t passed = 0; c != '<' && c != 255 && passed < limits::kDictionarySearch && source_->PassOver();
       ++passed) {
    c = source_->GetByte();
  }
  lastChar = c;
  if (c != '<') return false;
  lastChar = source_->GetByte();
  if (lastChar != '<') return false;
  lastChar = 255;
  ParseEntries();
  SkipRest();
  return true;
}

void CPDFDictionary::ParseEntries() {
  CPDFNameObject key(*source_);
  for (;;) {
    uint8_t c = FirstByte(lastChar);
    // Any number of comments may stand ahead of the first key, one ahead of every other.
    while (c == '%') {
      c = lastChar = SkipComment(*source_);
      if (!entries_.empty()) break;
    }
    if (!key.Parse(c)) {
      lastChar = key.lastChar;
      return;
    }
    c = key.lastChar;
    auto value = ParseAny(*source_, c, depth_);
    lastChar = c;
    if (!value) return;
    entries_.push_back({std::move(key.name), std::move(value)});
    if (lastChar == 255) return;
  }
}

bool CPDFDictionary::SkipRest() {
  for (int64_t passed = 0; lastChar != '>'; ++passed) {
    if (source_->AtEnd() || passed >= limits::kDictionarySearch || !source_->PassOver()) return false;
    lastChar = source_->GetByte();
  }
  lastChar = source_->GetByte();
  if (lastChar == '>') lastChar = source_->GetByte();
  if (IsSpace(lastChar)) SkipSpace();
  return true;
}

size_t CPDFDictionary::Index(std::string_view name) const {
  if (entries_.size() <= kLargeDictionary) {
    const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry &e) { return e.name == name; });
    return static_cast<size_t>(found - entries_.begin());
  }
  if (byName_.empty()) {
    for (size_t i = 0; i < entries_.size(); ++i) byName_.emplace(entries_[i].name, i);
  }
  const auto found = byName_.find(name);
  return found == byName_.end() ? entries_.size() : found->second;
}

CPDFObject *CPDFDictionary::Get(std::string_view name) const {
  const size_t index = Index(name);
  return index < entries_.size() ? entries_[index].value.get() : nullptr;
}

std::vector<const CPDFDictionary::Entry *> CPDFDictionary::Sorted() const {
  std::vector<const Entry *> sorted;
  for (const Entry &entry : entries_) {
    if (Get(entry.name) == entry.value.get()) sorted.push_back(&entry);
  }
  std::sort(sorted.begin(), sorted.end(), [](const Entry *a, const Entry *b) { return a->name < b->name; });
  return sorted;
}

size_t CPDFDictionary::Count() const { return Sorted().size(); }

}  // namespace kapdf
