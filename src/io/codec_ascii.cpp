#include "io/codec_ascii.h"

#include "base/ascii.h"

namespace kapdf {

void CZVASCII85::reset() {
  CCompressionClass::reset();
  held_ = next_ = 0;
}

void CZVASCII85::DecodeGroup() {
  uint32_t value = 0;
  unsigned digits = 0;
  held_ = next_ = 0;
  while (digits < 5) {
    const uint8_t c = io_.GetByte();
    if (c == 0 || IsSpace(c)) continue;
    if (c == 'z' && digits == 0) {
      group_[0] = group_[1] = group_[2] = group_[3] = 0;
      held_ = 4;
      return;
    }
    if (c < '!' || c > 'u') {  // "~", the end of the source, or rubbish
      state_ = c == '~' || io_.AtEnd() ? kCodecFinished : kCodecDamaged;
      break;
    }
    value = value * 85 + (c - '!');  // a group above 2^32 - 1 wraps
    ++digits;
  }
  if (digits < 2) return;
  for (unsigned i = digits; i < 5; ++i) value = value * 85 + 84;
  for (unsigned i = 0; i < 4; ++i) group_[i] = static_cast<uint8_t>(value >> (24 - 8 * i));
  held_ = digits - 1;
}

size_t CZVASCII85::decompress(uint8_t *buffer, size_t count) {
  size_t done = 0;
  while (done < count) {
    if (next_ == held_) {
      if (state_ != kCodecOk) break;
      DecodeGroup();
      continue;
    }
    buffer[done++] = group_[next_++];
  }
  return done;
}

int CZVASCIIHex::NextDigit() {
  for (;;) {
    const uint8_t c = io_.GetByte();
    const int value = HexValue(c);
    if (value >= 0) return value;
    if (c == 0 || IsSpace(c)) continue;
    state_ = c == '>' || io_.AtEnd() ? kCodecFinished : kCodecDamaged;
    return -1;
  }
}

size_t CZVASCIIHex::decompress(uint8_t *buffer, size_t count) {
  size_t done = 0;
  while (done < count && state_ == kCodecOk) {
    const int high = NextDigit();
    if (high < 0) break;
    const int low = NextDigit();
    buffer[done++] = static_cast<uint8_t>(high << 4 | (low < 0 ? 0 : low));
  }
  return done;
}

}  // namespace kapdf
