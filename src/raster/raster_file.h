// A temporary store on disk, for what a first filter has decoded.
#pragma once

#include "io/ffile.h"
#include "platform/file.h"

namespace kapdf {

// Gone when the object is. As a byte source it stands behind what was written last.
class CRasterFile final : private platform::FileHandle, public CZVFFile {
 public:
  // Null when there is no place for a temporary file.
  static std::unique_ptr<CRasterFile> Create();

  // Rows of equal size, in any order: a row that was never written may be missing or zero.
  void SetRowBytes(size_t bytes) { rowBytes_ = bytes; }
  bool WriteRow(uint32_t index, const void *row);
  bool ReadRow(uint32_t index, void *row);

 private:
  explicit CRasterFile(platform::FileHandle file);
  bool SeekRow(uint32_t index);

  size_t rowBytes_ = 0;
};

}  // namespace kapdf
