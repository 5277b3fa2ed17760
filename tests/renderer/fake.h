// What the two libraries that play the renderer share: every call is told to the test, whose answer is the result.
#pragma once

#include <cstdarg>
#include <cstdio>

using FakeHook = int (*)(const char *call);
inline FakeHook hook = nullptr;
extern "C" inline __attribute__((used)) void SetFakeHook(FakeHook to) { hook = to; }

inline int Say(const char *format, ...) {
  char call[1024];
  va_list values;
  va_start(values, format);
  std::vsnprintf(call, sizeof call, format, values);
  va_end(values);
  return hook ? hook(call) : 0;
}
