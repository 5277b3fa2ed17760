// Makes a record of a line of JSON.
#pragma once

#include <optional>
#include <string>

#include "jsonl/json_line.h"
#include "records/record.h"

namespace kapdf::tool {

// Nothing on success; otherwise the fault as the end of the sentence "line 12: ...".
std::optional<std::string> ReadRecord(JsonLine &line, NameTable &names, Record &record);

// An array of exactly four finite numbers; false when it is something else.
bool ReadBox(const JsonValue &value, double (&box)[4]);
// A whole number from 0 to 4294967295; false when it is something else.
bool ReadU32(const JsonValue &value, uint32_t &number);

}  // namespace kapdf::tool
