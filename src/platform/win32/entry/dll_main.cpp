#include <windows.h>

#include "platform/module.h"
#include "platform/win32/instance.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) {
    kapdf::platform::KeepInstance(instance);
    DisableThreadLibraryCalls(instance);
    kapdf::platform::OnModuleAttach();
  } else if (reason == DLL_PROCESS_DETACH) {
    kapdf::platform::OnModuleDetach();
  }
  return TRUE;
}
