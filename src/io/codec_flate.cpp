#include "io/codec_flate.h"

#include <zlib.h>

#include <algorithm>
#include <limits>

#include "io/memory_file.h"

namespace kapdf {
namespace {

constexpr size_t kPieceBytes = 65536;
constexpr size_t kPieceBeyondLength = 4096;  // a length that is too small must not stop a stream that goes on

uInt Clip(size_t count) { return static_cast<uInt>(std::min<size_t>(count, std::numeric_limits<uInt>::max())); }

}  // namespace

void CZVFlate::EndInflate::operator()(z_stream_s *stream) const {
  inflateEnd(stream);
  delete stream;
}

void CZVFlate::EndDeflate::operator()(z_stream_s *stream) const {
  deflateEnd(stream);
  delete stream;
}

CZVFlate::CZVFlate(CZVBaseIO &io, uint32_t length, std::unique_ptr<CCompressionClass> inner)
    : RowPredictedCodec(io, length), inner_(std::move(inner)) {}

CZVFlate::~CZVFlate() = default;

void CZVFlate::reset() {
  RowPredictedCodec::reset();
  inflate_.reset();
  deflate_.reset();
  codedRead_ = 0;
  if (inner_) inner_->reset();
}

bool CZVFlate::FillInput() {
  size_t wanted = kPieceBytes;
  if (length_ != 0 && !inner_) {
    wanted = codedRead_ < length_ ? std::min<size_t>(kPieceBytes, length_ - static_cast<size_t>(codedRead_))
                                  : kPieceBeyondLength;
  }
  coded_.resize(std::max(coded_.size(), wanted));
  const size_t got = inner_ ? inner_->Read(coded_.data(), wanted) : io_.Read(coded_.data(), wanted);
  codedRead_ += got;
  inflate_->next_in = coded_.data();
  inflate_->avail_in = Clip(got);
  return got > 0;
}

size_t CZVFlate::DecodePlain(uint8_t *buffer, size_t count) {
  if (state_ != kCodecOk) return 0;
  if (!inflate_) {
    auto stream = std::make_unique<z_stream>();
    *stream = {};
    if (inflateInit(stream.get()) != Z_OK) {
      state_ = kCodecDamaged;
      return 0;
    }
    inflateValidate(stream.get(), 0);  // a wrong checksum at the end takes nothing from the data
    inflate_.reset(stream.release());
  }
  size_t done = 0;
  while (done < count) {
    if (inflate_->avail_in == 0 && !FillInput()) {
      state_ = kCodecDamaged;
      break;
    }
    const uInt room = Clip(count - done);
    inflate_->next_out = buffer + done;
    inflate_->avail_out = room;
    const int result = inflate(inflate_.get(), Z_NO_FLUSH);
    done += room - inflate_->avail_out;
    if (result == Z_OK || result == Z_BUF_ERROR) continue;
    state_ = result == Z_STREAM_END ? kCodecFinished : kCodecDamaged;
    break;
  }
  return done;
}

bool CZVFlate::Deflate(int flushMode) {
  do {
    deflate_->next_out = coded_.data();
    deflate_->avail_out = Clip(coded_.size());
    deflate(deflate_.get(), flushMode);
    const size_t put = coded_.size() - deflate_->avail_out;
    if (io_.Write(coded_.data(), put) != put) {
      state_ = kCodecDamaged;
      return false;
    }
  } while (deflate_->avail_out == 0);
  return true;
}

size_t CZVFlate::compress(const uint8_t *buffer, size_t count) {
  if (state_ != kCodecOk) return 0;
  if (!deflate_) {
    auto stream = std::make_unique<z_stream>();
    *stream = {};
    if (deflateInit(stream.get(), Z_DEFAULT_COMPRESSION) != Z_OK) {
      state_ = kCodecDamaged;
      return 0;
    }
    deflate_.reset(stream.release());
    coded_.resize(kPieceBytes);
  }
  size_t done = 0;
  while (done < count) {
    const uInt piece = Clip(count - done);
    deflate_->next_in = const_cast<Bytef *>(buffer + done);
    deflate_->avail_in = piece;
    if (!Deflate(Z_NO_FLUSH)) return done;
    done += piece;
  }
  return done;
}

bool CZVFlate::flush() {
  if (!deflate_ || state_ != kCodecOk) return false;
  deflate_->next_in = nullptr;
  deflate_->avail_in = 0;
  const bool ok = Deflate(Z_FINISH);
  deflate_.reset();
  if (ok) state_ = kCodecFinished;
  return ok;
}

std::vector<uint8_t> Deflated(std::span<const uint8_t> bytes) {
  CZVMemoryFile file;
  CZVFlate flate(file, 0);
  flate.Write(bytes.data(), bytes.size());
  flate.flush();
  return {file.bytes().begin(), file.bytes().end()};
}

}  // namespace kapdf
