// A file read in blocks on demand; no byte is read from disk twice.
#pragma once

#include <memory>
#include <vector>

#include "base/byte_buffer.h"
#include "io/base_io.h"
#include "platform/file.h"

namespace kapdf {

// Blocks stay in memory until the object dies. Read only.
class CZVMemoryFileRead : public CZVBaseIO {
 public:
  CZVMemoryFileRead(size_t blockBytes, std::u16string_view registryPath);

  // Opens by path, shared for reading.
  bool Open(std::u16string_view path, const char *mode) override;
  // Reads from a stream that somebody else owns and keeps open.
  bool Attach(std::FILE *stream);
  // Reads bytes that are in memory already.
  void Attach(ByteBuffer bytes);

  size_t Read(void *buffer, size_t count) override;
  size_t Write(const void *, size_t) override { return 0; }
  bool Flush() override { return true; }
  bool Seek(int64_t offset, SeekOrigin origin) override;
  int64_t Tell() const override;

  int64_t length() const { return length_; }

 protected:
  uint8_t Refill() override;
  // Forgets the window, for a class that had put another one in its place; the position is then that of the window's
  // end.
  void DropWindow() { cursor_ = windowEnd_ = nullptr; }

 private:
  struct Block {
    std::unique_ptr<uint8_t[]> own;
    const uint8_t *bytes = nullptr;  // null until they are read
    size_t size = 0;
  };
  void Close();
  bool LoadWindow(int64_t position);  // makes the block around the position the window; false at the end

  size_t blockBytes_;
  platform::FileHandle owned_;
  std::FILE *stream_ = nullptr;
  int64_t length_ = 0;
  int64_t position_ = 0;  // of the window's end when there is a window, else the position itself
  std::vector<Block> blocks_;
  ByteBuffer memory_;  // the one block of a source in memory
};

}  // namespace kapdf
