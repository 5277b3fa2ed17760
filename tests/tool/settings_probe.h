// Reads a setting the way a module would, without the module's code.
#pragma once

#include <string>

namespace fake {

// "PATH\suffix" and a value name; "none" when it is not there. Integers in decimal.
std::string ReadSetting(const std::u16string &key, const std::string &name);
// Puts a value into the user's own settings, and takes it out again.
void WriteUserSetting(const std::string &suffix, const std::string &name, int value);
void RemoveUserSettings();

}  // namespace fake
