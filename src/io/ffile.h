// A byte sink and source over a C stream that somebody else owns.
#pragma once

#include <cstdio>
#include <memory>
#include <string_view>

#include "io/base_io.h"

namespace kapdf {

// Reads go through a small buffer of its own unless the setting `DisableReadBuffer`, directly at the registry path, is
// non-zero. Reading and writing may alternate at will; positions are those of the bytes, not of the buffer.
class CZVFFile : public CZVBaseIO {
 public:
  // `stream` is borrowed and must outlive the object.
  CZVFFile(std::FILE *stream, bool readBuffer, std::u16string_view registryPath);

  size_t Read(void *buffer, size_t count) override;
  size_t Write(const void *buffer, size_t count) override;
  bool Flush() override;
  bool Seek(int64_t offset, SeekOrigin origin) override;
  int64_t Tell() const override;

 protected:
  uint8_t Refill() override;

 private:
  bool SeekStream(int64_t offset, int whence);
  void DropReadBuffer();  // puts the stream where the next unread byte stands

  static constexpr size_t kBufferBytes = 512;
  std::FILE *stream_;
  bool readBuffer_;
  bool lastWasWrite_ = false;
  int64_t position_ = 0;  // of the stream, that is behind the buffered bytes
  std::unique_ptr<uint8_t[]> buffer_;
};

}  // namespace kapdf
