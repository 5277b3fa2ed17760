// The handle of the loaded module, which its resources and its file name hang on.
#pragma once

#include <windows.h>

namespace kapdf::platform {

void KeepInstance(HINSTANCE instance);
HINSTANCE Instance();  // null in a program that links this code itself

}  // namespace kapdf::platform
