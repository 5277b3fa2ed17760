# How every target of the project is compiled and linked.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

find_program(KAPDF_CCACHE ccache)
if(KAPDF_CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER ${KAPDF_CCACHE})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${KAPDF_CCACHE})
endif()

# Linked by the project's own targets only, so that dependencies built along keep their own warnings.
add_library(kapdf_options INTERFACE)
target_compile_options(kapdf_options INTERFACE -Wall -Wextra -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 reports overlap in operator+(const char *, std::string), wrongly (its bug 105651).
  target_compile_options(kapdf_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
endif()
target_compile_options(kapdf_options INTERFACE -ffunction-sections -fdata-sections)
target_link_options(kapdf_options INTERFACE -Wl,--gc-sections)

if(KAPDF_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(KAPDF_SANITIZE)
  add_compile_options(-fsanitize=${KAPDF_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${KAPDF_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # A host calls the slots by its own declaration of their types.
    add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-fno-sanitize=function>)
  endif()
endif()

if(WIN32)
  # The compiler takes the stack to be aligned for wide registers, which it is not on Windows.
  target_compile_options(kapdf_options INTERFACE -Wa,-muse-unaligned-vector-move)
  target_compile_definitions(kapdf_options INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601)
  # System DLLs only, and the same bytes from the same sources.
  target_link_options(kapdf_options INTERFACE -static -Wl,--no-insert-timestamp $<$<CONFIG:Release>:-s>)
else()
  target_compile_definitions(kapdf_options INTERFACE _FILE_OFFSET_BITS=64)
endif()
