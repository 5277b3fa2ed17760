// The loaded module itself: its folder, and its start and end in a process.
#pragma once

#include <string>

namespace kapdf::platform {

// Folder of the module with its trailing separator; empty when unknown.
std::u16string ModuleFolder();
bool SetCurrentFolder(const std::u16string &folder);

// Called by the module's entry at process attach and detach; the filter room defines them.
void OnModuleAttach();
void OnModuleDetach();

}  // namespace kapdf::platform
