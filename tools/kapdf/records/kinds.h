// The element kinds as the program's own files name them: one table says for each kind what its line is called, which
// keys it has and where their values lie in the payload. Writing and reading both walk it.
#pragma once

#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>

#include "kapdf/kapdf.h"

namespace kapdf::tool {

enum class FieldType {
  kReal,    // double
  kPoints,  // `count` pairs of doubles; a single pair is [x, y], more are [[x, y], ...]
  kU32,
  kFlag,   // u32; true for 1, other values as numbers
  kColor,  // u32 code; "#rrggbb" may stand for a direct colour when read
  kText    // pointer to UTF-16; null is a missing key
};

enum class Need {
  kRequired,  // must be there
  kShown,     // may be missing when read, is always written
  kOptional   // is left out when it has its default value
};

struct Field {
  const char *key;
  uint16_t offset;
  FieldType type;
  Need need = Need::kOptional;
  double fallback = 0;
  uint8_t count = 1;
};

struct Kind {
  uint32_t kind;
  const char *word;
  const char *many;      // for counts: "lines"
  const char *styleKey;  // what `styleName` is for this kind
  uint32_t payloadBytes;
  uint32_t section;  // where the import puts it
  bool drawn;        // a missing layer is layer "0"
  std::span<const Field> fields;
};

// Null for a code that no file can hold.
const Kind *FindKind(uint32_t kind);
const Kind *FindKind(std::string_view word);
// "a line", "an arc".
std::string WithArticle(const Kind &kind);
// "line", or "kind 99".
const char *KindWord(uint32_t kind);

// A payload by copy: its members are packed to 4. False when the record carries less than that.
template <class Payload>
bool CopyPayload(const ElementRecord &record, Payload &payload) {
  if (record.payload == nullptr || record.payloadBytes < sizeof(Payload)) return false;
  std::memcpy(&payload, record.payload, sizeof(Payload));
  return true;
}

template <class Value>
Value ReadAt(const void *block, size_t offset) {
  Value value;
  std::memcpy(&value, static_cast<const char *>(block) + offset, sizeof value);
  return value;
}

template <class Value>
void WriteAt(void *block, size_t offset, Value value) {
  std::memcpy(static_cast<char *>(block) + offset, &value, sizeof value);
}

}  // namespace kapdf::tool
