#include "io/codec_lzw.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "base/bytes.h"

namespace kapdf {
namespace {

constexpr unsigned kClear = 256, kEnd = 257, kFirstCode = 258, kCodes = 4096;
constexpr unsigned kFirstBits = 9, kMostBits = 12;
constexpr size_t kPieceBytes = 65536;
constexpr size_t kChunk = 8;  // strings are kept and copied in pieces of so many bytes
constexpr unsigned kNoCode = kCodes;

// A string: its last piece, and the code whose string ends with the piece in front of it.
struct Entry {
  uint8_t chunk[kChunk];
  uint16_t before;
  uint16_t length;
  uint8_t first;  // byte of the string
};

}  // namespace

struct CZVLzw::Decoder {
  Decoder() {
    for (unsigned i = 0; i < kClear; ++i) {
      const auto byte = static_cast<uint8_t>(i);
      table[i] = {{byte}, 0, 1, byte};
    }
  }

  void Clear() {
    next = kFirstCode;
    bits = kFirstBits;
    previous = kNoCode;
  }

  // The string of `previous` with one more byte gets the next code.
  void Add(uint8_t byte) {
    const Entry &from = table[previous];
    Entry &to = table[next++];
    const size_t at = from.length % kChunk;
    std::memcpy(to.chunk, from.chunk, kChunk);
    to.chunk[at] = byte;
    to.before = at == 0 ? static_cast<uint16_t>(previous) : from.before;
    to.length = static_cast<uint16_t>(from.length + 1);
    to.first = from.first;
  }

  // Writes up to kChunk - 1 bytes beyond the string.
  void Copy(const Entry &string, uint8_t *out) const {
    const Entry *piece = &string;
    size_t at = (string.length - 1u) / kChunk * kChunk;
    for (; at > 0; at -= kChunk, piece = &table[piece->before]) std::memcpy(out + at, piece->chunk, kChunk);
    std::memcpy(out, piece->chunk, kChunk);
  }

  Entry table[kCodes];
  unsigned next = kFirstCode;
  unsigned bits = kFirstBits;
  unsigned previous = kNoCode;
  uint64_t window = 0;  // coded bits, the next one on top
  unsigned held = 0;    // of them are there
  std::vector<uint8_t> coded = std::vector<uint8_t>(kPieceBytes);
  const uint8_t *cursor = nullptr;
  const uint8_t *end = nullptr;
  uint8_t spill[kCodes + kChunk];  // a string for which the reader had no room
  size_t spillNext = 0, spillEnd = 0;
};

struct CZVLzw::Encoder {
  static constexpr uint32_t kFree = ~uint32_t{0};
  static constexpr unsigned kSlotBits = 13;  // twice as many slots as codes

  void Clear() {
    std::fill(std::begin(slots), std::end(slots), kFree);
    next = kFirstCode;
    bits = kFirstBits;
  }
  // The slot of a string with one more byte: either its own, or the free one that is to be its own.
  uint32_t &Find(uint32_t key) {
    for (uint32_t at = key * 2654435761u >> (32 - kSlotBits);; at = (at + 1) & ((1u << kSlotBits) - 1))
      if (slots[at] == kFree || slots[at] >> kMostBits == key) return slots[at];
  }

  uint32_t slots[1u << kSlotBits];  // string and byte, and the code for both
  unsigned next = kFirstCode;
  unsigned bits = kFirstBits;
  unsigned previous = kNoCode;  // the string that is not out yet
  uint64_t window = 0;
  unsigned held = 0;
  std::vector<uint8_t> coded;
};

CZVLzw::CZVLzw(CZVBaseIO &io, uint32_t length, CodecMode mode) : RowPredictedCodec(io, length), mode_(mode) {}

CZVLzw::~CZVLzw() = default;

void CZVLzw::reset() {
  RowPredictedCodec::reset();
  decoder_.reset();
  encoder_.reset();
}

// Provides as many bits as the longest code has; false when there are not even enough for the next one.
bool CZVLzw::FillBits() {
  Decoder &d = *decoder_;
  if (d.end - d.cursor >= 8) {
    d.window |= LoadBigEndian(d.cursor, 8) >> d.held;
    d.cursor += (63 - d.held) / 8;
    d.held |= 56;
    return true;
  }
  while (d.held < kMostBits) {
    if (d.cursor == d.end) {
      const size_t got = io_.Read(d.coded.data(), d.coded.size());
      if (got == 0) break;
      d.cursor = d.coded.data();
      d.end = d.cursor + got;
    }
    d.window |= uint64_t{*d.cursor++} << (56 - d.held);
    d.held += 8;
  }
  return d.held >= d.bits;
}

size_t CZVLzw::DecodePlain(uint8_t *buffer, size_t count) {
  if (mode_ != CodecMode::kDecode || state_ != kCodecOk) return 0;
  if (!decoder_) decoder_ = std::make_unique<Decoder>();
  Decoder &d = *decoder_;
  size_t done = std::min(count, d.spillEnd - d.spillNext);
  std::memcpy(buffer, d.spill + d.spillNext, done);
  d.spillNext += done;
  while (done < count) {
    if (d.held < kMostBits && !FillBits()) {
      state_ = kCodecDamaged;
      break;
    }
    const auto code = static_cast<unsigned>(d.window >> (64 - d.bits));
    d.window <<= d.bits;
    d.held -= d.bits;
    if (code == kClear) {
      d.Clear();
      continue;
    }
    const bool known = code < d.next && code != kEnd;
    if (!known && (code != d.next || d.previous == kNoCode || d.next == kCodes)) {
      state_ = code == kEnd ? kCodecFinished : kCodecDamaged;
      break;
    }
    if (d.previous != kNoCode && d.next < kCodes) {
      d.Add(d.table[known ? code : d.previous].first);
      if (d.next + early_ >= 1u << d.bits && d.bits < kMostBits) ++d.bits;
    }
    d.previous = code;
    const Entry &string = d.table[code];
    if (count - done >= string.length + kChunk) {
      d.Copy(string, buffer + done);
      done += string.length;
      continue;
    }
    d.Copy(string, d.spill);
    d.spillEnd = string.length;
    d.spillNext = std::min<size_t>(string.length, count - done);
    std::memcpy(buffer + done, d.spill, d.spillNext);
    done += d.spillNext;
  }
  return done;
}

bool CZVLzw::Put(unsigned code) {
  Encoder &e = *encoder_;
  e.window = e.window << e.bits | code;
  for (e.held += e.bits; e.held >= 8; e.held -= 8) e.coded.push_back(static_cast<uint8_t>(e.window >> (e.held - 8)));
  if (e.coded.size() < kPieceBytes) return true;
  const bool ok = io_.Write(e.coded.data(), e.coded.size()) == e.coded.size();
  e.coded.clear();
  return ok;
}

// The reader of the codes enters each string one code later than it is entered here.
bool CZVLzw::PutAndGrow(unsigned code) {
  Encoder &e = *encoder_;
  if (!Put(code)) return false;
  ++e.next;
  if (e.next - 1 + early_ >= 1u << e.bits && e.bits < kMostBits) ++e.bits;
  if (e.next < kCodes - 1) return true;
  if (!Put(kClear)) return false;
  e.Clear();
  return true;
}

size_t CZVLzw::compress(const uint8_t *buffer, size_t count) {
  if (mode_ != CodecMode::kEncode || state_ != kCodecOk) return 0;
  bool ok = true;
  if (!encoder_) {
    encoder_ = std::make_unique<Encoder>();
    encoder_->Clear();
    ok = Put(kClear);
  }
  Encoder &e = *encoder_;
  size_t done = 0;
  for (; done < count && ok; ++done) {
    const uint8_t byte = buffer[done];
    if (e.previous == kNoCode) {
      e.previous = byte;
      continue;
    }
    const uint32_t key = e.previous << 8 | byte;
    uint32_t &slot = e.Find(key);
    if (slot != Encoder::kFree) {
      e.previous = slot & (kCodes - 1);
      continue;
    }
    slot = key << kMostBits | e.next;
    ok = PutAndGrow(e.previous);
    e.previous = byte;
  }
  if (!ok) state_ = kCodecDamaged;
  return done;
}

bool CZVLzw::flush() {
  if (mode_ != CodecMode::kEncode || state_ != kCodecOk) return false;
  bool ok = encoder_ || compress(nullptr, 0) == 0;
  Encoder &e = *encoder_;
  if (ok && e.previous != kNoCode) ok = PutAndGrow(e.previous);
  ok = ok && Put(kEnd);
  if (e.held > 0) e.coded.push_back(static_cast<uint8_t>(e.window << (8 - e.held)));
  ok = ok && io_.Write(e.coded.data(), e.coded.size()) == e.coded.size();
  encoder_.reset();
  state_ = ok ? kCodecFinished : kCodecDamaged;
  return ok;
}

}  // namespace kapdf
