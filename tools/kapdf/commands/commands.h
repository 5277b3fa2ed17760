// The commands. Every path is absolute.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "module/pdf_output.h"
#include "module/session.h"
#include "system/outcome.h"

namespace kapdf::tool {

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
