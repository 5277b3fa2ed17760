// Drives a reading filter over one page after the other.
#pragma once

#include <cstdint>
#include <string>

#include "module/session.h"
#include "system/progress.h"

namespace kapdf::tool {

// What a sink wants of rasters besides their places.
enum class RasterWish { kNothing, kHeaders, kRows };

// Takes the records of a page in the order in which the module gives them.
class RecordSink {
 public:
  virtual ~RecordSink() = default;
  // Both from 1.
  virtual Outcome BeginPage(int page, int pages) = 0;
  // The record is valid during the call only.
  virtual Outcome Take(const ElementRecord &record) = 0;
  virtual RasterWish rasters() const { return RasterWish::kRows; }
  // The rows of the header that was taken last have ended.
  virtual Outcome EndRaster() { return {}; }
  virtual Outcome EndPage() = 0;
};

class PageReader {
 public:
  PageReader(const Session &session, std::string file) : session_(session), file_(std::move(file)) {}

  // Makes the filter and counts the pages.
  Outcome Open();
  int pages() const { return info_.pageCount; }
  // "Adobe PDF ", as the module calls the form.
  std::u16string FormatName() const;
  // What the module says of the file itself, as in KAPDF_PROPERTY_SOURCE; known once a page was read.
  const std::string &source() const { return source_; }
  // From 1. Records of unknown kinds and rasters that cannot be had are counted, not passed on.
  Outcome Read(int page, const std::string &options, Progress &progress, RecordSink &sink);

  // A small picture of a page, from 1, as the bytes of a BMP file.
  Outcome Preview(int page, Progress &progress, std::string &bytes);

  uint64_t unknownRecords() const { return unknown_; }
  uint64_t missingRasters() const { return missingRasters_; }

 private:
  uint32_t OpenPage(int page, const std::string &options, ProgressObject *progress, FileInfo &info);
  std::string Reason(uint32_t result) const;
  bool TakeSource(const ElementRecord &record);
  Outcome ReadRecords(Progress &progress, RecordSink &sink);
  Outcome ReadRaster(const ElementRecord &placement, Progress &progress, RecordSink &sink);

  const Session &session_;
  std::string file_;
  Filter filter_;
  FileInfo info_{};
  std::string source_;
  uint64_t unknown_ = 0, missingRasters_ = 0;
};

}  // namespace kapdf::tool
