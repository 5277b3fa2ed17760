// A growing memory image as a byte source and sink.
#pragma once

#include <span>
#include <vector>

#include "io/base_io.h"

namespace kapdf {

// One block of memory. Writes at the position overwrite or extend; the position may be anywhere up to the end.
class CZVMemoryFileFlat : public CZVBaseIO {
 public:
  CZVMemoryFileFlat() = default;
  explicit CZVMemoryFileFlat(std::vector<uint8_t> bytes);

  size_t Read(void *buffer, size_t count) override;
  size_t Write(const void *buffer, size_t count) override;
  bool Flush() override { return true; }
  bool Seek(int64_t offset, SeekOrigin origin) override;
  int64_t Tell() const override;

  // The whole image; valid until the next write.
  std::span<const uint8_t> bytes() const { return bytes_; }

 private:
  void SetWindow(size_t position);

  std::vector<uint8_t> bytes_;
};

// The same under the name by which the writers of fonts and inline images know it.
using CZVMemoryFile = CZVMemoryFileFlat;

// A source over bytes that somebody else owns and keeps alive.
class MemorySource : public CZVBaseIO {
 public:
  explicit MemorySource(std::span<const uint8_t> bytes);

  size_t Read(void *buffer, size_t count) override;
  size_t Write(const void *, size_t) override { return 0; }
  bool Flush() override { return true; }
  bool Seek(int64_t offset, SeekOrigin origin) override;
  int64_t Tell() const override { return cursor_ - begin_; }

 protected:
  uint8_t Refill() override;

 private:
  const uint8_t *begin_;
};

}  // namespace kapdf
