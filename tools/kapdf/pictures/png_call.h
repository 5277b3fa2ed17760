// Calls of libpng that may fail.
#pragma once

#include <png.h>

#include <csetjmp>

namespace kapdf::tool {

// For the reading or writing structure: errors end the call under way, warnings are passed over.
inline void JumpOutOfPng(png_structp png, png_const_charp) { png_longjmp(png, 1); }
inline void IgnorePng(png_structp, png_const_charp) {}

// Runs a step unless one before it failed. libpng leaves a failed call by a jump to here; what lies between has nothing
// to clean up.
template <class Step>
bool TryPng(png_structp png, bool &failed, Step step) {
  if (failed) return false;
  failed = true;
  if (setjmp(png_jmpbuf(png)) == 0) {
    step();
    failed = false;
  }
  return !failed;
}

}  // namespace kapdf::tool
