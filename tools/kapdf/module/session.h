// One run of the program: the module it loaded, and where it reads and writes.
#pragma once

#include <istream>
#include <ostream>

#include "module/module.h"

namespace kapdf::tool {

struct Streams {
  std::istream &in;
  std::ostream &out;
  std::ostream &err;
};

// How PDF files are read.
struct Reading {
  bool classic = false;  // to the letter of old, instead of as other readers do
  std::string password;  // UTF-8; empty for none
};

// What the commands share.
struct Session {
  const Module &module;
  const char16_t *registryPath;  // null: the module's own settings
  Streams streams;
  bool showProgress;
  bool quiet;
  Reading reading{};
};

}  // namespace kapdf::tool
