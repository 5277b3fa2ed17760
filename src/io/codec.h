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

// What a codec is made for, where its first call does not tell.
enum class CodecMode : uint8_t { kDecode, kEncode };

// What row prediction needs to know of the samples.
struct SampleShape {
  uint32_t columns = 1;  // pixels of a row
  uint32_t colors = 1;   // samples of a pixel
  uint32_t bitsPerComponent = 8;
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
  // Undoes row prediction in what `Read` delivers: 2 is TIFF's, 10 and above are PNG's (each row says which), any other
  // value is none. `SetSampleShape` goes with it. Codecs other than Flate and LZW have no use for it.
  virtual void UsePredictor(uint8_t) {}
  virtual void SetSampleShape(const SampleShape &) {}
  // Rows as run lists in place of packed bits: `Read(buffer, columns)` delivers one row as a u32 count and as many
  // pairs of u32, first and last black pixel, and answers with the bytes of these, 0 when there is no further row. The
  // buffer has 4 * columns + 12 bytes. Only the CCITT codecs know it.
  virtual void SetBitlineOutput(bool) {}
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

// Pass-through, both ways. Only the length ends what is read: behind the data stands the rest of the file.
class CZVUncompressed final : public CCompressionClass {
 public:
  using CCompressionClass::CCompressionClass;
  void reset() override;

 protected:
  size_t compress(const uint8_t *buffer, size_t count) override;
  size_t decompress(uint8_t *buffer, size_t count) override;
  std::string_view name() const override { return "Uncompressed"; }

 private:
  size_t read_ = 0;
};

}  // namespace kapdf
