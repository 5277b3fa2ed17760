// The three commands. Every path is absolute.
#pragma once

#include <istream>
#include <optional>
#include <ostream>
#include <string>

#include "module.h"
#include "outcome.h"

namespace kapdf::tool {

struct Streams {
  std::istream &in;
  std::ostream &out;
  std::ostream &err;
};

// What the commands share.
struct Session {
  const Module &module;
  const char16_t *registryPath;  // null: the module's own settings
  Streams streams;
  bool showProgress;
  bool quiet;
};

struct InfoRequest {
  std::string file;
  int page = 1;
};

struct ImportRequest {
  std::string file;
  std::optional<int> page;  // from 1; the first without it
  bool all = false;
  std::string options;
  std::string output;  // empty: JSON Lines to the standard output
  std::string images;  // folder for the rasters as PNG files; empty: they stand in the output
  std::string folder;  // the current one when the program started
};

struct ExportRequest {
  std::string drawing;  // "-": the standard input
  std::string folder;   // that the drawing's pictures are named from
  std::optional<int> page;
  std::string options;
  std::string output;
};

Outcome RunInfo(const Session &session, const InfoRequest &request);
Outcome RunImport(const Session &session, const ImportRequest &request);
Outcome RunExport(const Session &session, const ExportRequest &request);

}  // namespace kapdf::tool
