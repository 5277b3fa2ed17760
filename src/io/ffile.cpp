#include "io/ffile.h"

#include <algorithm>
#include <cstring>

#include "platform/file.h"
#include "platform/settings.h"

namespace kapdf {

CZVFFile::CZVFFile(std::FILE *stream, bool readBuffer, std::u16string_view registryPath)
    : CZVBaseIO(registryPath),
      stream_(stream),
      readBuffer_(readBuffer),
      buffer_(std::make_unique_for_overwrite<uint8_t[]>(kBufferBytes)) {
  const platform::SettingsAt<SettingKey::kRoot> settings(registryPath);
  settings.CreateKey();
  if (settings.Switch("DisableReadBuffer")) readBuffer_ = false;
  position_ = std::max<int64_t>(platform::TellFile(stream_), 0);
}

void CZVFFile::DropReadBuffer() {
  const auto unread = windowEnd_ - cursor_;
  cursor_ = windowEnd_ = nullptr;
  if (unread > 0 && platform::SeekFile(stream_, -unread, SEEK_CUR)) position_ -= unread;
}

size_t CZVFFile::Read(void *buffer, size_t count) {
  auto *out = static_cast<uint8_t *>(buffer);
  const size_t held = std::min<size_t>(count, static_cast<size_t>(windowEnd_ - cursor_));
  if (held > 0) std::memcpy(out, cursor_, held);
  cursor_ += held;
  if (held == count) return count;
  if (lastWasWrite_) {  // the C library wants a positioning call between a write and a read
    platform::SeekFile(stream_, 0, SEEK_CUR);
    lastWasWrite_ = false;
  }
  const size_t got = std::fread(out + held, 1, count - held, stream_);
  position_ += static_cast<int64_t>(got);
  return held + got;
}

uint8_t CZVFFile::Refill() {
  if (!readBuffer_) return CZVBaseIO::Refill();
  cursor_ = windowEnd_ = nullptr;
  const size_t got = Read(buffer_.get(), kBufferBytes);
  if (got == 0) {
    atEnd_ = true;
    return 255;
  }
  cursor_ = buffer_.get();
  windowEnd_ = cursor_ + got;
  return *cursor_++;
}

size_t CZVFFile::Write(const void *buffer, size_t count) {
  DropReadBuffer();
  if (!lastWasWrite_) platform::SeekFile(stream_, 0, SEEK_CUR);
  lastWasWrite_ = true;
  const size_t put = std::fwrite(buffer, 1, count, stream_);
  position_ += static_cast<int64_t>(put);
  return put;
}

bool CZVFFile::Flush() {
  DropReadBuffer();
  return std::fflush(stream_) == 0;
}

// A C stream would go beyond its end, and leave a gap there with the next byte written; and it may not take a refused
// position for the positioning call that it wants between a write and a read.
bool CZVFFile::Seek(int64_t offset, SeekOrigin origin) {
  DropReadBuffer();
  atEnd_ = false;
  const int64_t here = position_;
  int64_t base = origin == SeekOrigin::kCurrent ? here : 0;
  if (origin == SeekOrigin::kEnd || offset > here - base) {
    if (!SeekStream(0, SEEK_END)) return false;
    position_ = std::max<int64_t>(platform::TellFile(stream_), 0);
    if (origin == SeekOrigin::kEnd) base = position_;
    if (offset >= position_ - base) return true;
  }
  const bool exists = offset >= -base;
  const int64_t target = exists ? base + offset : here;
  if (!SeekStream(target, SEEK_SET)) return false;
  position_ = target;
  return exists;
}

bool CZVFFile::SeekStream(int64_t offset, int whence) {
  if (!platform::SeekFile(stream_, offset, whence)) return false;
  lastWasWrite_ = false;
  return true;
}

int64_t CZVFFile::Tell() const { return position_ - (windowEnd_ - cursor_); }

}  // namespace kapdf
