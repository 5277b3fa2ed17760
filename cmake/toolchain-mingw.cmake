# 64-bit Windows with Debian's mingw-w64. GCC 12 has std::thread and std::mutex with the posix thread model only.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_SYSTEM_VERSION 10.0)

set(_triple x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${_triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${_triple}-g++-posix)
set(CMAKE_RC_COMPILER ${_triple}-windres)

# Where scripts/windows-deps puts the libraries.
if(NOT KAPDF_WINDOWS_PREFIX)
  if(DEFINED ENV{KAPDF_CACHE})
    set(_cache $ENV{KAPDF_CACHE})
  elseif(DEFINED ENV{XDG_CACHE_HOME})
    set(_cache $ENV{XDG_CACHE_HOME}/kapdf)
  else()
    set(_cache $ENV{HOME}/.cache/kapdf)
  endif()
  set(KAPDF_WINDOWS_PREFIX ${_cache}/windows-x64 CACHE PATH "Libraries for Windows, made by scripts/windows-deps")
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KAPDF_WINDOWS_PREFIX)

set(CMAKE_FIND_ROOT_PATH ${KAPDF_WINDOWS_PREFIX} /usr/${_triple})
set(CMAKE_PREFIX_PATH ${KAPDF_WINDOWS_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Tests and their discovery.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-run)
