/* Loading of a library: the only place of this program that knows an operating system. */
#include <string.h>

#include "host.h"

#ifdef _WIN32
#include <windows.h>

int LoadFilterModule(const char *path, Module *module, int *movedToModule) {
  WCHAR wide[MAX_PATH], before[MAX_PATH], now[MAX_PATH];
  if (!MultiByteToWideChar(CP_ACP, 0, path, -1, wide, MAX_PATH) || !GetCurrentDirectoryW(MAX_PATH, before)) return 0;
  HMODULE library = LoadLibraryW(wide);
  if (!library || !GetCurrentDirectoryW(MAX_PATH, now)) return 0;
  const WCHAR *name = wcsrchr(wide, L'/') > wcsrchr(wide, L'\\') ? wcsrchr(wide, L'/') : wcsrchr(wide, L'\\');
  HANDLE found = CreateFileW(name ? name + 1 : wide, GENERIC_READ, FILE_SHARE_READ, NULL, OPEN_EXISTING, 0, NULL);
  *movedToModule = found != INVALID_HANDLE_VALUE;
  if (*movedToModule) CloseHandle(found);
  FARPROC version = GetProcAddress(library, "ZVGetFilterApiVersion"), info = GetProcAddress(library, "ZVGetFilterInfo");
  memcpy(&module->version, &version, sizeof version);
  memcpy(&module->info, &info, sizeof info);
  return SetCurrentDirectoryW(before);
}

#else
#include <dlfcn.h>
#include <unistd.h>

int LoadFilterModule(const char *path, Module *module, int *movedToModule) {
  char before[4096];
  if (!getcwd(before, sizeof before)) return 0;
  void *library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (!library) {
    fprintf(stderr, "%s\n", dlerror());
    return 0;
  }
  const char *name = strrchr(path, '/');
  *movedToModule = access(name ? name + 1 : path, R_OK) == 0;
  void *version = dlsym(library, "ZVGetFilterApiVersion"), *info = dlsym(library, "ZVGetFilterInfo");
  memcpy(&module->version, &version, sizeof version);
  memcpy(&module->info, &info, sizeof info);
  return chdir(before) == 0;
}

#endif
