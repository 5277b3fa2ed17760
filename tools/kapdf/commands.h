// The commands. Every path is absolute.
#pragma once

#include <istream>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

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
  std::string preview;  // BMP file to write; empty for none
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

// Where pages go. Without the two a new document is made, over an older one if need be.
struct Target {
  std::string path;
  std::string options;         // of the export
  bool append = false;         // behind the last page; a file that does not exist is made
  std::optional<int> replace;  // the page, from 1; for one page only
};

struct ExportRequest {
  std::vector<std::string> drawings;  // a page each; "-": the standard input
  std::string folder;                 // that the pictures of the standard input are named from
  std::optional<int> page;            // of each drawing
  Target target;
};

struct ConvertRequest {
  std::string file;
  std::optional<int> page;  // from 1; the first without it
  bool all = false;
  Target target;
};

Outcome RunInfo(const Session &session, const InfoRequest &request);
Outcome RunImport(const Session &session, const ImportRequest &request);
Outcome RunExport(const Session &session, const ExportRequest &request);
Outcome RunConvert(const Session &session, const ConvertRequest &request);

}  // namespace kapdf::tool
