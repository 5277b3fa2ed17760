// The loaded module itself: its folder, and its start and end in a process. Libraries that it loads in its turn.
#pragma once

#include <string>
#include <string_view>

namespace kapdf::platform {

// Folder of the module with its trailing separator; empty when unknown.
std::u16string ModuleFolder();
bool SetCurrentFolder(const std::u16string &folder);

// A library by its full path; on Windows, what it needs itself is looked for beside it. Null on failure.
void *OpenLibrary(const std::u16string &path);
// Null when the library does not export the name.
void *FindSymbol(void *library, const char *name);
// Null is fine.
void CloseLibrary(void *library);
// File name of a library on this system: "name.dll" or "name.so".
std::u16string LibraryFileName(std::u16string_view name);

// Called by the module's entry at process attach and detach; the filter room defines them.
void OnModuleAttach();
void OnModuleDetach();

}  // namespace kapdf::platform
