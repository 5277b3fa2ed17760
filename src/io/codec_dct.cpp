#include "io/codec_dct.h"

#include <jerror.h>
#include <jpeglib.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio>  // jpeglib.h wants it

#include "base/limits.h"

namespace kapdf {
namespace {

constexpr size_t kPieceBytes = 65536;
constexpr size_t kRowsAtOnce = 16;
// Of progressive images, which are decoded as a whole.
constexpr uint64_t kCoefficientBytes = uint64_t{1} << 30;
constexpr uint64_t kScans = 500;
constexpr uint64_t kScannedBytes = uint64_t{32} << 30;  // of coefficients, in all scans together

// libjpeg's errors come back here. No object with a destructor may stand between `Guarded` and the error.
struct ErrorManager : jpeg_error_mgr {
  jmp_buf jump;
};

[[noreturn]] void Fail(j_common_ptr info) { std::longjmp(static_cast<ErrorManager *>(info->err)->jump, 1); }
void Discard(j_common_ptr) {}

jpeg_error_mgr *SetUp(ErrorManager &errors, void (*emit)(j_common_ptr, int)) {
  jpeg_std_error(&errors);
  errors.error_exit = Fail;
  errors.output_message = Discard;
  errors.emit_message = emit;
  return &errors;
}

template <class Action>
bool Guarded(ErrorManager &errors, const Action &action) {
  if (setjmp(errors.jump) != 0) return false;
  action();
  return true;
}

}  // namespace

struct CZVDCT::Decoder : jpeg_source_mgr {
  jpeg_decompress_struct info{};
  ErrorManager errors{};
  jpeg_progress_mgr progress{};
  CZVBaseIO &io;
  uint64_t left;  // coded bytes that may still be read
  bool started = false;
  JDIMENSION rowsThere = 0;  // of these data
  uint64_t coefficientBytes = 0;
  std::array<uint8_t, kPieceBytes> coded;

  Decoder(CZVBaseIO &source, uint32_t length) : jpeg_source_mgr{}, io(source), left(length != 0 ? length : UINT64_MAX) {
    info.err = SetUp(errors, [](j_common_ptr common, int level) {
      if (level < 0 && common->err->msg_code == JWRN_HIT_MARKER) Of(common).NoteEnd();
    });
    info.client_data = this;
  }
  ~Decoder() { jpeg_destroy_decompress(&info); }
  Decoder(const Decoder &) = delete;
  Decoder &operator=(const Decoder &) = delete;

  static Decoder &Of(j_common_ptr common) { return *static_cast<Decoder *>(common->client_data); }
  static Decoder &Of(j_decompress_ptr decompressor) { return *static_cast<Decoder *>(decompressor->client_data); }

  // The entropy-coded data have met a marker too early. When no restart can follow, libjpeg would go on with grey rows,
  // however many the header announces.
  void NoteEnd() {
    const int marker = info.unread_marker;
    if (jpeg_has_multiple_scans(&info) || (marker >= JPEG_RST0 && marker < JPEG_RST0 + 8)) return;
    const JDIMENSION band = static_cast<JDIMENSION>(info.max_v_samp_factor * DCTSIZE);
    rowsThere = std::min(rowsThere, (info.input_iMCU_row + 1) * band);
  }
  void Fill() {
    const size_t got = io.Read(coded.data(), static_cast<size_t>(std::min<uint64_t>(kPieceBytes, left)));
    left -= got;
    next_input_byte = coded.data();
    bytes_in_buffer = got;
    if (got > 0) return;
    coded[0] = 0xFF;
    coded[1] = JPEG_EOI;
    bytes_in_buffer = 2;
    left = 0;
  }
  void Skip(size_t count) {
    while (count > bytes_in_buffer && left > 0) {
      count -= bytes_in_buffer;
      Fill();
    }
    const size_t here = std::min(count, bytes_in_buffer);
    next_input_byte += here;
    bytes_in_buffer -= here;
  }
  static void LimitScans(j_common_ptr common) {
    const Decoder &self = Of(common);
    const uint64_t scan = static_cast<uint64_t>(std::max(self.info.input_scan_number, 0));
    if (scan > kScans || scan * self.coefficientBytes > kScannedBytes) Fail(common);
  }

  void SetSource() {
    init_source = [](j_decompress_ptr) {};
    fill_input_buffer = [](j_decompress_ptr decompressor) -> boolean {
      Of(decompressor).Fill();
      return TRUE;
    };
    skip_input_data = [](j_decompress_ptr decompressor, long count) {
      if (count > 0) Of(decompressor).Skip(static_cast<size_t>(count));
    };
    resync_to_restart = jpeg_resync_to_restart;
    term_source = [](j_decompress_ptr) {};
    info.src = this;
    progress.progress_monitor = LimitScans;
    info.progress = &progress;
  }

  // Whether what the header tells is decoded here; chooses the output's colours.
  bool Accept() {
    for (int i = 0; i < info.num_components; ++i) {
      coefficientBytes +=
          uint64_t{info.comp_info[i].width_in_blocks} * info.comp_info[i].height_in_blocks * sizeof(JBLOCK);
    }
    if (info.image_width > limits::kImageSide || info.image_height > limits::kImageSide) return false;
    if (jpeg_has_multiple_scans(&info) && coefficientBytes > kCoefficientBytes) return false;
    rowsThere = info.image_height;
    switch (info.jpeg_color_space) {
      case JCS_GRAYSCALE:
        info.out_color_space = JCS_GRAYSCALE;
        break;
      case JCS_RGB:
      case JCS_YCbCr:
        info.out_color_space = JCS_RGB;
        break;
      case JCS_CMYK:
      case JCS_YCCK:
        info.out_color_space = JCS_CMYK;
        break;
      default:
        return false;
    }
    return true;
  }
  bool ReadHeader() {
    const bool read = Guarded(errors, [this] {
      jpeg_create_decompress(&info);
      SetSource();
      jpeg_read_header(&info, TRUE);
    });
    return read && Accept();
  }
  bool Start() {
    started = Guarded(errors, [this] { jpeg_start_decompress(&info); });
    return started;
  }
  // Rows that came, 0 at the end.
  JDIMENSION ReadRows(JSAMPARRAY rows, JDIMENSION count) {
    JDIMENSION got = 0;
    if (info.output_scanline >= rowsThere) return 0;
    const bool read = Guarded(errors, [&] { got = jpeg_read_scanlines(&info, rows, count); });
    // What was decoded ahead of the end that showed meanwhile is delivered all the same.
    return read ? got : 0;
  }
};

struct CZVDCT::Encoder : jpeg_destination_mgr {
  jpeg_compress_struct info{};
  ErrorManager errors{};
  CZVBaseIO &io;
  std::array<uint8_t, kPieceBytes> coded;

  explicit Encoder(CZVBaseIO &sink) : jpeg_destination_mgr{}, io(sink) {
    info.err = SetUp(errors, [](j_common_ptr, int) {});
    info.client_data = this;
  }
  ~Encoder() { jpeg_destroy_compress(&info); }
  Encoder(const Encoder &) = delete;
  Encoder &operator=(const Encoder &) = delete;

  static Encoder &Of(j_compress_ptr compressor) { return *static_cast<Encoder *>(compressor->client_data); }
  void Renew() {
    next_output_byte = coded.data();
    free_in_buffer = coded.size();
  }
  bool Put(size_t count) { return io.Write(coded.data(), count) == count; }
  void SetSink() {
    init_destination = [](j_compress_ptr compressor) { Of(compressor).Renew(); };
    empty_output_buffer = [](j_compress_ptr compressor) -> boolean {
      Encoder &self = Of(compressor);
      if (!self.Put(self.coded.size())) Fail(reinterpret_cast<j_common_ptr>(compressor));
      self.Renew();
      return TRUE;
    };
    term_destination = [](j_compress_ptr compressor) {
      Encoder &self = Of(compressor);
      if (!self.Put(self.coded.size() - self.free_in_buffer)) Fail(reinterpret_cast<j_common_ptr>(compressor));
    };
    info.dest = this;
  }
  bool Start(uint32_t columns, uint32_t rows, int components, int quality) {
    return Guarded(errors, [&] {
      jpeg_create_compress(&info);
      SetSink();
      info.image_width = columns;
      info.image_height = rows;
      info.input_components = components;
      info.in_color_space = components == 1 ? JCS_GRAYSCALE : JCS_RGB;
      jpeg_set_defaults(&info);
      jpeg_set_quality(&info, quality, TRUE);
      jpeg_start_compress(&info, TRUE);
    });
  }
};

CZVDCT::CZVDCT(CZVBaseIO &io, uint32_t length) : CCompressionClass(io, length), mode_(CodecMode::kDecode) {}
CZVDCT::CZVDCT(CZVBaseIO &io, const JpegShape &shape)
    : CCompressionClass(io, 0), mode_(CodecMode::kEncode), shape_(shape) {}

CZVDCT::~CZVDCT() = default;

void CZVDCT::reset() {
  CCompressionClass::reset();
  decoder_.reset();
  encoder_.reset();
  rowUsed_ = 0;
  row_.clear();
}

uint32_t CZVDCT::width() const { return decoder_ ? decoder_->info.image_width : 0; }
uint32_t CZVDCT::height() const { return decoder_ ? decoder_->info.image_height : 0; }
uint32_t CZVDCT::components() const { return decoder_ ? static_cast<uint32_t>(decoder_->info.num_components) : 0; }
bool CZVDCT::adobeMarker() const { return decoder_ && decoder_->info.saw_Adobe_marker; }

bool CZVDCT::Open() {
  if (decoder_) return true;
  if (mode_ != CodecMode::kDecode || state_ != kCodecOk) return false;
  decoder_ = std::make_unique<Decoder>(io_, length_);
  if (decoder_->ReadHeader()) return true;
  decoder_.reset();
  state_ = kCodecDamaged;
  return false;
}

size_t CZVDCT::DecodeRows(uint8_t *samples, size_t count) {
  if (state_ != kCodecOk) return 0;
  const size_t rowBytes = size_t{width()} * components();
  JSAMPROW rows[kRowsAtOnce];
  const size_t most = std::min(count, kRowsAtOnce);
  for (size_t i = 0; i < most; ++i) rows[i] = samples + i * rowBytes;
  const size_t got =
      decoder_->started || decoder_->Start() ? decoder_->ReadRows(rows, static_cast<JDIMENSION>(most)) : 0;
  if (got == 0)
    state_ = decoder_->started && decoder_->info.output_scanline == height() ? kCodecFinished : kCodecDamaged;
  if (invertedCmyk_ && components() == 4) {
    for (size_t i = 0; i < got * rowBytes; ++i) samples[i] = static_cast<uint8_t>(255 - samples[i]);
  }
  return got;
}

size_t CZVDCT::decompress(uint8_t *buffer, size_t count) {
  if (!Open()) return 0;
  const size_t rowBytes = size_t{width()} * components();
  size_t done = 0;
  while (done < count) {
    if (rowUsed_ < row_.size()) {  // the rest of a row that was asked for in part
      const size_t part = std::min(count - done, row_.size() - rowUsed_);
      std::copy_n(row_.data() + rowUsed_, part, buffer + done);
      rowUsed_ += part;
      done += part;
    } else if (count - done >= rowBytes) {
      const size_t got = DecodeRows(buffer + done, (count - done) / rowBytes);
      if (got == 0) break;
      done += got * rowBytes;
    } else {
      row_.resize(rowBytes);
      rowUsed_ = 0;
      if (DecodeRows(row_.data(), 1) == 0) {
        row_.clear();
        break;
      }
    }
  }
  return done;
}

bool CZVDCT::StartEncoder() {
  if (mode_ != CodecMode::kEncode || (shape_.bitsPerPixel != 8 && shape_.bitsPerPixel != 24)) return false;
  encoder_ = std::make_unique<Encoder>(io_);
  return encoder_->Start(shape_.columns, rows_, static_cast<int>(shape_.bitsPerPixel / 8), shape_.quality);
}

size_t CZVDCT::EncodeRows(const uint8_t *samples, size_t count) {
  const size_t rowBytes = codedRowBytes();
  JSAMPROW rows[kRowsAtOnce];
  const size_t most = std::min({count, kRowsAtOnce, size_t{rows_ - encoder_->info.next_scanline}});
  for (size_t i = 0; i < most; ++i) rows[i] = const_cast<uint8_t *>(samples + i * rowBytes);
  JDIMENSION put = 0;
  const bool written = most == 0 || Guarded(encoder_->errors, [&] {
                         put = jpeg_write_scanlines(&encoder_->info, rows, static_cast<JDIMENSION>(most));
                       });
  if (!written) state_ = kCodecDamaged;
  return written ? put : 0;
}

size_t CZVDCT::compress(const uint8_t *buffer, size_t count) {
  if (state_ != kCodecOk) return 0;
  if (!encoder_ && !StartEncoder()) {
    state_ = kCodecDamaged;
    return 0;
  }
  const size_t rowBytes = codedRowBytes();
  size_t done = 0;
  while (done < count && encoder_->info.next_scanline < rows_) {
    if (rowUsed_ == 0 && count - done >= rowBytes) {
      const size_t put = EncodeRows(buffer + done, (count - done) / rowBytes);
      if (put == 0) break;
      done += put * rowBytes;
      continue;
    }
    row_.resize(rowBytes);
    const size_t part = std::min(count - done, rowBytes - rowUsed_);
    std::copy_n(buffer + done, part, row_.data() + rowUsed_);
    rowUsed_ += part;
    done += part;
    if (rowUsed_ < rowBytes) break;
    rowUsed_ = 0;
    if (EncodeRows(row_.data(), 1) == 0) break;
  }
  return done;
}

bool CZVDCT::flush() {
  if (!encoder_ || state_ != kCodecOk) return false;
  const bool ended = Guarded(encoder_->errors, [this] { jpeg_finish_compress(&encoder_->info); });
  state_ = ended ? kCodecFinished : kCodecDamaged;
  encoder_.reset();
  return ended;
}

}  // namespace kapdf
