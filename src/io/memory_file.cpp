#include "io/memory_file.h"

#include <algorithm>
#include <cstring>

namespace kapdf {
namespace {

// Target of a seek, limited to 0..length.
int64_t SeekTarget(int64_t offset, SeekOrigin origin, int64_t position, int64_t length) {
  const int64_t base = origin == SeekOrigin::kStart ? 0 : origin == SeekOrigin::kCurrent ? position : length;
  if (offset > 0 && base > length - std::min(offset, length)) return length;
  return std::clamp<int64_t>(base + std::max(offset, -length - 1), -1, length);
}

}  // namespace

CZVMemoryFileFlat::CZVMemoryFileFlat(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) { SetWindow(0); }

void CZVMemoryFileFlat::SetWindow(size_t position) {
  cursor_ = bytes_.data() + position;
  windowEnd_ = bytes_.data() + bytes_.size();
}

size_t CZVMemoryFileFlat::Read(void *buffer, size_t count) {
  const size_t got = std::min<size_t>(count, static_cast<size_t>(windowEnd_ - cursor_));
  if (got > 0) std::memcpy(buffer, cursor_, got);
  cursor_ += got;
  return got;
}

size_t CZVMemoryFileFlat::Write(const void *buffer, size_t count) {
  const auto position = static_cast<size_t>(Tell());
  const auto *from = static_cast<const uint8_t *>(buffer);
  const size_t overlap = std::min(count, bytes_.size() - position);
  std::copy_n(from, overlap, bytes_.begin() + static_cast<std::ptrdiff_t>(position));
  bytes_.insert(bytes_.end(), from + overlap, from + count);
  SetWindow(position + count);
  return count;
}

bool CZVMemoryFileFlat::Seek(int64_t offset, SeekOrigin origin) {
  atEnd_ = false;
  const int64_t target = SeekTarget(offset, origin, Tell(), static_cast<int64_t>(bytes_.size()));
  if (target < 0) return false;
  SetWindow(static_cast<size_t>(target));
  return true;
}

int64_t CZVMemoryFileFlat::Tell() const { return cursor_ - bytes_.data(); }

MemorySource::MemorySource(std::span<const uint8_t> bytes) : begin_(bytes.data()) {
  cursor_ = begin_;
  windowEnd_ = begin_ + bytes.size();
}

size_t MemorySource::Read(void *buffer, size_t count) {
  const size_t got = std::min<size_t>(count, static_cast<size_t>(windowEnd_ - cursor_));
  if (got > 0) std::memcpy(buffer, cursor_, got);
  cursor_ += got;
  return got;
}

bool MemorySource::Seek(int64_t offset, SeekOrigin origin) {
  atEnd_ = false;
  const int64_t target = SeekTarget(offset, origin, Tell(), windowEnd_ - begin_);
  if (target < 0) return false;
  cursor_ = begin_ + target;
  return true;
}

uint8_t MemorySource::Refill() {
  atEnd_ = true;
  return 255;
}

}  // namespace kapdf
