// The loaded plug-in and the filter objects made by it.
#pragma once

#include <memory>
#include <string>

#include "kapdf/kapdf.h"
#include "system/os.h"
#include "system/outcome.h"

namespace kapdf::tool {

// "major.minor" of `FilterInfo.version`, which holds each in one half.
std::string VersionText(uint32_t version);

class Module {
 public:
  // `path` absolute. Loading makes the module's folder the current directory.
  Outcome Load(const std::string &path);

  const std::string &path() const { return path_; }
  const FilterInfo &info() const { return info_; }
  std::string Version() const { return VersionText(info_.version); }
  // Null when there is no such row.
  const FilterRow *ReadingRow() const { return FindRow(KAPDF_ROW_READS, KAPDF_ROW_READS); }
  const FilterRow *WritingRow() const { return FindRow(KAPDF_ROW_WRITES, KAPDF_ROW_WRITES); }

 private:
  const FilterRow *FindRow(uint32_t mask, uint32_t bits) const;

  Library library_;
  std::string path_;
  FilterInfo info_{};
};

// The `destroy` of the row that made an object.
struct DestroyFilter {
  void (*destroy)(FilterObject *) = nullptr;
  void operator()(FilterObject *object) const { destroy(object); }
};

// A filter object, destroyed through its row.
class Filter {
 public:
  Outcome Create(const FilterRow *row, const char16_t *registryPath);
  FilterObject *get() const { return object_.get(); }
  const FilterTable &table() const { return *object_->table; }

 private:
  std::unique_ptr<FilterObject, DestroyFilter> object_;
};

}  // namespace kapdf::tool
