// The bits of coded facsimile rows, first bit of a byte first.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "io/base_io.h"

namespace kapdf::ccitt {

inline constexpr size_t kPieceBytes = 65536;

// Eight bytes as a big-endian number, written so that compilers make one load of it.
inline uint64_t LoadWord(const uint8_t *at) {
  return uint64_t{at[0]} << 56 | uint64_t{at[1]} << 48 | uint64_t{at[2]} << 40 | uint64_t{at[3]} << 32 |
         uint64_t{at[4]} << 24 | uint64_t{at[5]} << 16 | uint64_t{at[6]} << 8 | uint64_t{at[7]};
}

// Takes the coded bytes from the source in large pieces.
class CodedPieces {
 public:
  // `length`: bytes that may be taken, 0 for all.
  CodedPieces(CZVBaseIO &io, uint32_t length) : io_(io), length_(length), bytes_(2 * kUsedKept + kPieceBytes) {}

  const uint8_t *begin() const { return bytes_.data(); }
  uint64_t taken() const { return taken_; }
  // Moves the bytes from `next` to `end`, fewer than 8, to the front, some used ones ahead of them, and reads more
  // behind them.
  void More(const uint8_t *&next, const uint8_t *&end);

 private:
  static constexpr ptrdiff_t kUsedKept = 16;

  CZVBaseIO &io_;
  uint32_t length_;
  std::vector<uint8_t> bytes_;
  uint64_t taken_ = 0;
  bool ended_ = false;
};

// A place in the bits. Behind the last one there are zeros without end. A copy without pieces looks ahead, in the
// bytes that are there, while the original stays where it is. All members are 64 bits wide so that no store of a
// 32-bit position makes the compiler load them again.
class BitReader {
 public:
  BitReader() = default;
  explicit BitReader(CodedPieces &pieces) : next_(pieces.begin()), end_(pieces.begin()), pieces_(&pieces) {}

  BitReader LookAhead() const {
    BitReader copy = *this;
    copy.pieces_ = nullptr;
    return copy;
  }

  // At least 32 bits can be looked at and skipped then.
  void Need() {
    if (held_ >= 32) return;
    if (end_ - next_ < 8) [[unlikely]] {
      NeedSlowly();
      return;
    }
    window_ |= LoadWord(next_) >> held_;
    next_ += (63 - held_) >> 3;
    held_ |= 56;
  }
  uint32_t Peek(int bits) const { return static_cast<uint32_t>(window_ >> (64 - bits)); }
  void Skip(uint64_t bits) {
    window_ <<= bits;
    held_ -= bits;
  }
  // Zeros that come next, of at least 32 bits.
  int Zeros() {
    Need();
    return std::countl_zero(window_ | uint64_t{1} << 31);
  }
  bool TakeBit() {
    Need();
    const bool bit = Peek(1) != 0;
    Skip(1);
    return bit;
  }
  // True when nothing but the zeros behind the last bit is left.
  bool AtEnd() {
    Need();
    return phantom_ >= held_;
  }
  void Align() { Skip(held_ & 7); }

  // Goes to the next one; gives the number of zeros that were skipped. At the end it stays behind the last bit.
  uint64_t SkipZeros();
  // Goes behind the next end-of-line code, with the zeros that may fill the line ahead of it. False at the end.
  bool FindEndOfLine();
  // The same when nothing else stands ahead of the code; else stays where it is.
  bool TakeEndOfLine();
  // Bits from the start of the data.
  uint64_t Position() const {
    return (pieces_->taken() - static_cast<uint64_t>(end_ - next_)) * 8 - (held_ > phantom_ ? held_ - phantom_ : 0);
  }
  // Goes back by up to 32 bits, fewer where they are gone.
  void GoBack(uint64_t bits);

 private:
  void NeedSlowly();

  uint64_t window_ = 0;   // the next bits, the first one on top; below `held_` bits whatever follows them, or zeros
  uint64_t held_ = 0;     // bits of the window that may be used
  uint64_t phantom_ = 0;  // of all bits that came into the window: zeros behind the end
  const uint8_t *next_ = nullptr;
  const uint8_t *end_ = nullptr;
  CodedPieces *pieces_ = nullptr;
};

}  // namespace kapdf::ccitt
