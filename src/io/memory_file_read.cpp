#include "io/memory_file_read.h"

#include <algorithm>
#include <cstring>

namespace kapdf {

CZVMemoryFileRead::CZVMemoryFileRead(size_t blockBytes, std::u16string_view registryPath)
    : CZVBaseIO(registryPath), blockBytes_(blockBytes) {}

void CZVMemoryFileRead::Close() {
  owned_.reset();
  stream_ = nullptr;
  blocks_.clear();
  cursor_ = windowEnd_ = nullptr;
  length_ = position_ = 0;
}

bool CZVMemoryFileRead::Open(std::u16string_view path, const char *mode) {
  Close();
  if (path.empty()) return false;
  owned_ = platform::OpenFile(path, mode, platform::Share::kRead);
  return owned_ && Attach(owned_.get());
}

bool CZVMemoryFileRead::Attach(std::FILE *stream) {
  if (stream != owned_.get()) Close();
  stream_ = stream;
  if (!platform::SeekFile(stream_, 0, SEEK_END)) return false;
  length_ = std::max<int64_t>(platform::TellFile(stream_), 0);
  blocks_.resize(static_cast<size_t>(length_) / blockBytes_ + 1);
  return Seek(0, SeekOrigin::kStart);
}

void CZVMemoryFileRead::Attach(ByteBuffer bytes) {
  Close();
  memory_ = std::move(bytes);
  length_ = static_cast<int64_t>(memory_.size());
  blockBytes_ = std::max<size_t>(memory_.size(), 1);
  blocks_.resize(1);
  blocks_[0].bytes = memory_.data();
  blocks_[0].size = memory_.size();
  Seek(0, SeekOrigin::kStart);
}

bool CZVMemoryFileRead::LoadWindow(int64_t position) {
  cursor_ = windowEnd_ = nullptr;
  position_ = position;
  if (position >= length_) return false;
  const auto index = static_cast<size_t>(position) / blockBytes_;
  const auto start = static_cast<int64_t>(index * blockBytes_);
  Block &block = blocks_[index];
  if (!block.bytes) {
    block.own = std::make_unique_for_overwrite<uint8_t[]>(blockBytes_);
    block.bytes = block.own.get();
    const auto wanted = std::min<size_t>(blockBytes_, static_cast<size_t>(length_ - start));
    if (platform::SeekFile(stream_, start, SEEK_SET)) block.size = std::fread(block.own.get(), 1, wanted, stream_);
  }
  const auto offset = static_cast<size_t>(position - start);
  if (offset >= block.size) return false;
  cursor_ = block.bytes + offset;
  windowEnd_ = block.bytes + block.size;
  position_ = start + static_cast<int64_t>(block.size);
  return true;
}

uint8_t CZVMemoryFileRead::Refill() {
  if (LoadWindow(CZVMemoryFileRead::Tell())) return *cursor_++;
  atEnd_ = true;
  return 255;
}

size_t CZVMemoryFileRead::Read(void *buffer, size_t count) {
  auto *out = static_cast<uint8_t *>(buffer);
  size_t done = 0;
  while (done < count) {
    if (cursor_ == windowEnd_ && !LoadWindow(CZVMemoryFileRead::Tell())) break;
    const size_t part = std::min<size_t>(count - done, static_cast<size_t>(windowEnd_ - cursor_));
    std::memcpy(out + done, cursor_, part);
    cursor_ += part;
    done += part;
  }
  return done;
}

bool CZVMemoryFileRead::Seek(int64_t offset, SeekOrigin origin) {
  const int64_t here = CZVMemoryFileRead::Tell();
  const int64_t base = origin == SeekOrigin::kStart ? 0 : origin == SeekOrigin::kCurrent ? here : length_;
  atEnd_ = false;
  if (offset < -base) return false;
  const int64_t target = offset > length_ - base ? length_ : base + offset;
  // Stay in the window when the target lies in it: the parser steps back a few bytes all the time.
  if (windowEnd_ != nullptr) {
    const int64_t blockStart = (position_ - 1) / static_cast<int64_t>(blockBytes_) * static_cast<int64_t>(blockBytes_);
    if (target >= blockStart && target < position_) {
      cursor_ = windowEnd_ - (position_ - target);
      return true;
    }
  }
  cursor_ = windowEnd_ = nullptr;
  position_ = target;
  return true;
}

int64_t CZVMemoryFileRead::Tell() const { return position_ - (windowEnd_ - cursor_); }

}  // namespace kapdf
