#include "io/codec_packbits.h"

#include <algorithm>
#include <cstring>

namespace kapdf {
namespace {

constexpr size_t kLongest = 128;  // bytes of one run, of either kind
constexpr uint8_t kEnd = 128;

}  // namespace

void CZVPackBits::reset() {
  CCompressionClass::reset();
  left_ = run_ = literals_ = 0;
}

bool CZVPackBits::StartRun() {
  const uint8_t head = io_.GetByte();
  if (io_.AtEnd() || head == kEnd) {
    state_ = kCodecFinished;
    return false;
  }
  repeats_ = head > kEnd;
  left_ = repeats_ ? 257 - head : head + 1;
  if (!repeats_) return true;
  byte_ = io_.GetByte();
  if (io_.AtEnd()) state_ = kCodecDamaged;
  return state_ == kCodecOk;
}

size_t CZVPackBits::decompress(uint8_t *buffer, size_t count) {
  size_t done = 0;
  while (done < count && state_ == kCodecOk) {
    if (left_ == 0 && !StartRun()) break;
    const size_t part = std::min(left_, count - done);
    size_t got = part;
    if (repeats_) {
      std::memset(buffer + done, byte_, part);
    } else {
      got = io_.Read(buffer + done, part);
    }
    done += got;
    left_ -= got;
    if (got < part) state_ = kCodecDamaged;
  }
  return done;
}

bool CZVPackBits::PutLiterals() {
  if (literals_ == 0) return true;
  held_[0] = static_cast<uint8_t>(literals_ - 1);
  const size_t bytes = literals_ + 1;
  literals_ = 0;
  return io_.Write(held_, bytes) == bytes;
}

// Two equal bytes are worth a run only where no literals have to end for it.
bool CZVPackBits::PutRun() {
  const size_t times = run_;
  run_ = 0;
  if (times > 2 || (times == 2 && literals_ == 0)) {
    const uint8_t coded[] = {static_cast<uint8_t>(257 - times), byte_};
    return PutLiterals() && io_.Write(coded, 2) == 2;
  }
  for (size_t i = 0; i < times; ++i) {
    held_[++literals_] = byte_;
    if (literals_ == kLongest && !PutLiterals()) return false;
  }
  return true;
}

size_t CZVPackBits::compress(const uint8_t *buffer, size_t count) {
  if (state_ != kCodecOk) return 0;
  for (size_t i = 0; i < count; ++i) {
    if (run_ > 0 && (buffer[i] != byte_ || run_ == kLongest) && !PutRun()) {
      state_ = kCodecDamaged;
      return i;
    }
    byte_ = buffer[i];
    ++run_;
  }
  return count;
}

bool CZVPackBits::flush() {
  if (state_ != kCodecOk) return false;
  const bool ok = PutRun() && PutLiterals() && io_.Write(&kEnd, 1) == 1;
  state_ = ok ? kCodecFinished : kCodecDamaged;
  return ok;
}

}  // namespace kapdf
