#include "io/codec_ccitt_bits.h"

#include <algorithm>
#include <cstring>

#include "io/codec_ccitt_tables.h"

namespace kapdf::ccitt {

void CodedPieces::More(const uint8_t *&next, const uint8_t *&end) {
  if (ended_) return;
  const ptrdiff_t used = std::min<ptrdiff_t>(kUsedKept, next - bytes_.data());
  const ptrdiff_t kept = used + (end - next);
  std::memmove(bytes_.data(), next - used, static_cast<size_t>(kept));
  const size_t wanted = length_ == 0 ? kPieceBytes : std::min<uint64_t>(kPieceBytes, length_ - taken_);
  const size_t got = wanted == 0 ? 0 : io_.Read(bytes_.data() + kept, wanted);
  taken_ += got;
  ended_ = got < kPieceBytes;
  next = bytes_.data() + used;
  end = bytes_.data() + kept + got;
}

void BitReader::NeedSlowly() {
  if (pieces_ != nullptr) pieces_->More(next_, end_);
  if (end_ - next_ >= 8) {
    Need();
    return;
  }
  for (; held_ <= 56; held_ += 8) {
    if (next_ != end_) {
      window_ |= uint64_t{*next_++} << (56 - held_);
    } else {
      phantom_ += 8;
    }
  }
}

uint64_t BitReader::SkipZeros() {
  uint64_t skipped = 0;
  for (;;) {
    const int zeros = Zeros();
    Skip(static_cast<uint64_t>(zeros));
    skipped += static_cast<uint64_t>(zeros);
    if (zeros < 32 || AtEnd()) return skipped;
  }
}

bool BitReader::FindEndOfLine() {
  for (;;) {
    const uint64_t zeros = SkipZeros();
    if (AtEnd()) return false;
    Skip(1);
    if (zeros >= kEndOfLineZeros) return true;
  }
}

bool BitReader::TakeEndOfLine() { return Zeros() >= kEndOfLineZeros && FindEndOfLine(); }

void BitReader::GoBack(uint64_t bits) {
  const uint64_t unread = held_ > phantom_ ? held_ - phantom_ : 0;
  const uint64_t place = static_cast<uint64_t>(next_ - pieces_->begin()) * 8 - unread;
  const uint64_t target = place - std::min(place, bits);
  next_ = pieces_->begin() + target / 8;
  window_ = held_ = phantom_ = 0;
  Need();
  Skip(target % 8);
}

}  // namespace kapdf::ccitt
