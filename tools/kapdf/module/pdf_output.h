// The PDF file that takes pages, made or extended page by page.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "module/module.h"
#include "module/session.h"
#include "records/shapes.h"
#include "records/summary.h"
#include "system/progress.h"

namespace kapdf::tool {

class PageWriter;

// Where pages go. Without the two a new document is made, over an older one if need be.
struct Target {
  std::string path;
  std::string options;         // of the export
  bool append = false;         // behind the last page; a file that does not exist is made
  std::optional<int> replace;  // the page, from 1; for one page only
};

// What was written goes away again unless it is kept: a new file as a whole, of an older one all that stands behind
// what it held, if nobody else added to it meanwhile. A file that is overwritten comes back from a copy beside it,
// where there was room for one.
class PdfOutput {
 public:
  PdfOutput(const Session &session, const Target &target) : session_(session), target_(target) {}
  PdfOutput(const PdfOutput &) = delete;
  PdfOutput &operator=(const PdfOutput &) = delete;
  ~PdfOutput();

  // Looks at the file that is to be extended; it must be one that the module can read, since otherwise its pages would
  // be lost to readers. `pages`: how many are to come.
  Outcome Prepare(int pages);
  // Opens the next page for a drawing of these extents in millimetres.
  Outcome BeginPage(const Box &extents, Progress &progress);
  Filter &filter() { return filter_; }
  // Looks whether all of the page is there: the module does not tell of a full disk.
  Outcome EndPage(const PageWriter &page);
  // Looks whether the older pages are still found.
  Outcome Keep();
  // What became of the pages, as sentences on the error stream.
  void TellSummary() const;

 private:
  Outcome LookAtOlderFile();
  void NoteOlderBytes(std::optional<uintmax_t> before);
  void CopyOlderFile();
  bool HoldsAnEnd() const;

  const Session &session_;
  const Target &target_;
  Filter filter_;
  int pagesToCome_ = 0, pages_ = 0, olderPages_ = 0;
  bool begun_ = false;    // the file holds something that is not kept yet
  bool extends_ = false;  // an older file
  std::optional<uintmax_t> olderBytes_;
  std::optional<uintmax_t> pageEnd_;          // of the last page, in the file
  uintmax_t pageStart_ = 0;                   // of the one under way, or ahead of it
  std::filesystem::path overwritten_, copy_;  // the copy is of what stood there; empty for none
  KindCounts written_, refused_, drawnPlain_;
};

}  // namespace kapdf::tool
