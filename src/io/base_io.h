// The one family of byte sources and sinks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "base/limits.h"

namespace kapdf {

enum class SeekOrigin { kStart = 0, kCurrent = 1, kEnd = 2 };

// Byte source or sink. A source exposes a window of bytes that are in memory; `GetByte` takes from it inline and calls
// the virtual refill only at its end. A short read is how the end shows; nothing is raised.
class CZVBaseIO {
 public:
  explicit CZVBaseIO(std::u16string_view registryPath = {}) : registryPath_(registryPath) {}
  CZVBaseIO(const CZVBaseIO &) = delete;
  CZVBaseIO &operator=(const CZVBaseIO &) = delete;
  virtual ~CZVBaseIO() = default;

  // Mode as for fopen. False when this class opens nothing or the open failed.
  virtual bool Open(std::u16string_view path, const char *mode);
  // Bytes delivered; fewer than asked at the end.
  virtual size_t Read(void *buffer, size_t count) = 0;
  // Bytes taken.
  virtual size_t Write(const void *buffer, size_t count) = 0;
  virtual bool PutByte(uint8_t byte) { return Write(&byte, 1) == 1; }
  virtual bool Flush() = 0;
  // False when the position does not exist; a position past the end lands on the end. Clears the end flag.
  virtual bool Seek(int64_t offset, SeekOrigin origin) = 0;
  virtual int64_t Tell() const = 0;

  // The next byte. At the end 255, and `AtEnd` is true from then on until the next `Seek`.
  uint8_t GetByte() { return cursor_ != windowEnd_ ? *cursor_++ : Refill(); }
  bool AtEnd() const { return atEnd_; }
  // What `GetByte` gives next, as far as it is in memory; may be nothing ahead of the end, too.
  std::span<const uint8_t> Ahead() const { return {cursor_, windowEnd_}; }
  // Takes bytes of those.
  void Skip(size_t count) { cursor_ += count; }

  // For searches through damaged data: counts one byte that was passed over, false once there were too many of them, so
  // that many broken objects cannot make one file be searched again and again.
  bool PassOver() { return rubbishLeft_-- > 0; }
  // Counts the items of one object, those of its inner ones included; false once there were too many of them.
  void StartItems() { itemsLeft_ = limits::kObjectItems; }
  bool TakeItem() { return itemsLeft_-- > 0; }

  const std::u16string &registryPath() const { return registryPath_; }

 protected:
  // Called with an empty window: provides the next one and takes its first byte, or sets the end flag and gives 255.
  virtual uint8_t Refill();

  const uint8_t *cursor_ = nullptr;
  const uint8_t *windowEnd_ = nullptr;
  bool atEnd_ = false;

 private:
  std::u16string registryPath_;
  int64_t rubbishLeft_ = limits::kRubbish;
  int64_t itemsLeft_ = limits::kObjectItems;
};

}  // namespace kapdf
