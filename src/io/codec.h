// The interface of every codec.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "io/base_io.h"

namespace kapdf {

// What `CCompressionClass::error` answers.
enum CodecState : unsigned {
  kCodecOk = 0,
  kCodecFinished = 1,  // the coded data have ended in good order
  kCodecDamaged = 2    // what was delivered so far is all that there is
};

// Sits on a byte source or sink that somebody else owns. Decoding starts at the source's position. A short read is how
// the end shows.
class CCompressionClass {
 public:
  // `length`: coded bytes that belong to the stream, 0 when unknown. Codecs whose data mark their own end take it as a
  // hint.
  CCompressionClass(CZVBaseIO &io, uint32_t length) : io_(io), length_(length) {}
  CCompressionClass(const CCompressionClass &) = delete;
  CCompressionClass &operator=(const CCompressionClass &) = delete;
  virtual ~CCompressionClass() = default;

  // Decoded bytes delivered.
  size_t Read(void *buffer, size_t count) { return decompress(static_cast<uint8_t *>(buffer), count); }
  // Plain bytes taken, to be coded into the sink.
  size_t Write(const void *buffer, size_t count) { return compress(static_cast<const uint8_t *>(buffer), count); }
  // One decoded byte; 255 at the end, which `error` tells.
  uint8_t getByte();
  bool putByte(uint8_t byte) { return Write(&byte, 1) == 1; }
  // Ends the coded data; false when the sink did not take them.
  virtual bool flush() { return io_.Flush(); }
  // Forgets all state, so that the next read or write starts a new stream at the sink's or source's position.
  virtual void reset() { state_ = kCodecOk; }
  unsigned error() const { return state_; }
  // Writes the codec's name with its zero, cut to `size` bytes.
  void GetInfo(char *buffer, size_t size) const;

 protected:
  virtual size_t compress(const uint8_t *buffer, size_t count) = 0;
  virtual size_t decompress(uint8_t *buffer, size_t count) = 0;
  virtual std::string_view name() const = 0;

  CZVBaseIO &io_;
  uint32_t length_;
  unsigned state_ = kCodecOk;
};

// Pass-through, both ways.
class CZVUncompressed final : public CCompressionClass {
 public:
  using CCompressionClass::CCompressionClass;

 protected:
  size_t compress(const uint8_t *buffer, size_t count) override;
  size_t decompress(uint8_t *buffer, size_t count) override;
  std::string_view name() const override { return "Uncompressed"; }
};

}  // namespace kapdf
