#include "raster/stream_data.h"

#include <algorithm>
#include <cstring>

namespace kapdf {

size_t StreamData::ReadDirectly(uint8_t *buffer, size_t count) {
  const auto mark = source_.GetMark();
  source_.LeaveBlock();
  const size_t got = source_.Seek(position_, SeekOrigin::kStart) ? source_.Read(buffer, count) : 0;
  source_.Restore(mark);
  position_ += static_cast<int64_t>(got);
  if (got < count) atEnd_ = true;
  return got;
}

size_t StreamData::Read(void *buffer, size_t count) {
  auto *to = static_cast<uint8_t *>(buffer);
  const size_t held = std::min(count, static_cast<size_t>(windowEnd_ - cursor_));
  if (held > 0) std::memcpy(to, cursor_, held);
  cursor_ += held;
  return held == count ? count : held + ReadDirectly(to + held, count - held);
}

uint8_t StreamData::Refill() {
  if (!window_) window_.reset(new uint8_t[kWindowBytes]);
  const size_t got = ReadDirectly(window_.get(), kWindowBytes);
  atEnd_ = got == 0;
  if (got == 0) return 255;
  cursor_ = window_.get();
  windowEnd_ = cursor_ + got;
  return *cursor_++;
}

bool StreamData::Seek(int64_t offset, SeekOrigin origin) {
  const int64_t base = origin == SeekOrigin::kStart ? 0 : origin == SeekOrigin::kCurrent ? Tell() : source_.length();
  position_ = std::clamp<int64_t>(base + offset, 0, source_.length());
  cursor_ = windowEnd_ = nullptr;
  atEnd_ = false;
  return true;
}

}  // namespace kapdf
