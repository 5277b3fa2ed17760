// The module's result codes in words.
#pragma once

#include <cstdint>
#include <string>

namespace kapdf::tool {

// "the file is encrypted (result 11)"
std::string OpenResult(uint32_t result);
std::string ElementResult(uint32_t result);

}  // namespace kapdf::tool
