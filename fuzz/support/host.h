// The host of the fuzz targets: it takes every page of a document as a drawing program would, looks at every byte that
// it is given and ends the process when a record breaks its promises.
#pragma once

#include <cstdint>
#include <string_view>

#include "support/filter_pointer.h"

namespace kapdf::fuzz {

using test::FilterPointer;

inline constexpr char16_t kSettingsPath[] = u"Software\\kaPDF-fuzz";

// Prints the text and ends the process, as a sanitizer would, unless the condition holds.
void Require(bool condition, const char *text);

// Reads the first pages to their ends, each after an `OpenRead` of its own with these options. Gives the result of the
// first one.
uint32_t ImportPages(const char16_t *path, int most = 20, const char16_t *options = nullptr);
// The same for bytes, which stand in a temporary file meanwhile. A large file is opened less often.
uint32_t ImportBytes(std::string_view bytes, const char16_t *options = nullptr);

}  // namespace kapdf::fuzz
