#include "io/codec_jp2.h"

#include <openjpeg.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "base/limits.h"
#include "io/jp2_bounds.h"

namespace kapdf {
namespace {

constexpr size_t kPieceBytes = 65536;

// The coded bytes as a stream of the library.
struct Coded {
  std::vector<uint8_t> bytes;
  size_t position = 0;

  Coded(CZVBaseIO &io, uint32_t length) {
    const size_t most = length != 0 ? length : limits::kDecodedStream;
    for (size_t size = 0; size < most;) {
      const size_t wanted = std::min(most - size, kPieceBytes);
      bytes.resize(size + wanted);
      const size_t got = io.Read(bytes.data() + size, wanted);
      size += got;
      bytes.resize(size);
      if (got < wanted) break;
    }
  }
  static OPJ_SIZE_T Read(void *buffer, OPJ_SIZE_T count, void *user) {
    Coded &self = *static_cast<Coded *>(user);
    const size_t part = std::min<size_t>(count, self.bytes.size() - self.position);
    if (part == 0) return static_cast<OPJ_SIZE_T>(-1);
    std::memcpy(buffer, self.bytes.data() + self.position, part);
    self.position += part;
    return part;
  }
  static OPJ_OFF_T Skip(OPJ_OFF_T count, void *user) {
    Coded &self = *static_cast<Coded *>(user);
    const auto left = static_cast<OPJ_OFF_T>(self.bytes.size() - self.position);
    if (count < 0 || left == 0) return -1;
    const OPJ_OFF_T part = std::min(count, left);
    self.position += static_cast<size_t>(part);
    return part;
  }
  static OPJ_BOOL Seek(OPJ_OFF_T position, void *user) {
    Coded &self = *static_cast<Coded *>(user);
    if (position < 0 || static_cast<uint64_t>(position) > self.bytes.size()) return OPJ_FALSE;
    self.position = static_cast<size_t>(position);
    return OPJ_TRUE;
  }
  bool IsBare() const { return bytes.size() > 1 && bytes[0] == 0xFF && bytes[1] == 0x4F; }
};

template <auto function>
struct Destroy {
  template <class Object>
  void operator()(Object *object) const {
    function(object);
  }
};
using Stream = std::unique_ptr<opj_stream_t, Destroy<opj_stream_destroy>>;
using Codec = std::unique_ptr<opj_codec_t, Destroy<opj_destroy_codec>>;
using Image = std::unique_ptr<opj_image_t, Destroy<opj_image_destroy>>;

Image DecodeImage(Coded &coded, bool indexed) {
  const Stream stream(opj_stream_create(kPieceBytes, OPJ_TRUE));
  const Codec codec(opj_create_decompress(coded.IsBare() ? OPJ_CODEC_J2K : OPJ_CODEC_JP2));
  if (!stream || !codec) return nullptr;
  opj_stream_set_user_data(stream.get(), &coded, nullptr);
  opj_stream_set_user_data_length(stream.get(), coded.bytes.size());
  opj_stream_set_read_function(stream.get(), Coded::Read);
  opj_stream_set_skip_function(stream.get(), Coded::Skip);
  opj_stream_set_seek_function(stream.get(), Coded::Seek);
  opj_dparameters_t parameters;
  opj_set_default_decoder_parameters(&parameters);
  if (indexed) parameters.flags |= OPJ_DPARAMETERS_IGNORE_PCLR_CMAP_CDEF_FLAG;
  if (!opj_setup_decoder(codec.get(), &parameters)) return nullptr;
  opj_decoder_set_strict_mode(codec.get(), OPJ_FALSE);
  opj_image_t *header = nullptr;
  const bool read = opj_read_header(stream.get(), codec.get(), &header);
  Image image(header);
  if (!read) return nullptr;
  // Tiles that came before the damage are in the image.
  opj_decode(codec.get(), stream.get(), image.get());
  return image;
}

bool Usable(const opj_image_comp_t &band) {
  return band.data && band.w > 0 && band.h > 0 && band.dx > 0 && band.dy > 0 && band.prec > 0 && band.prec < 32;
}

// One band as bytes, at the size of the first one.
class Band {
 public:
  Band(const opj_image_comp_t &band, const opj_image_comp_t &first, bool scaled)
      : band_(band), first_(first), scaled_(scaled), offset_(band.sgnd ? int64_t{1} << (band.prec - 1) : 0) {}

  // Every `step`th byte from `out` on, first_.w of them.
  void Row(uint32_t y, uint8_t *out, size_t step) const {
    const uint32_t row = Place(y, first_.y0, first_.dy, band_.y0, band_.dy, band_.h);
    const int32_t *samples = band_.data + size_t{row} * band_.w;
    const bool same = band_.dx == first_.dx && band_.x0 == first_.x0 && band_.w == first_.w;
    if (same && band_.prec == 8 && !band_.sgnd) {
      for (uint32_t x = 0; x < first_.w; ++x) out[x * step] = static_cast<uint8_t>(std::clamp(samples[x], 0, 255));
      return;
    }
    for (uint32_t x = 0; x < first_.w; ++x) {
      out[x * step] = Byte(samples[same ? x : Place(x, first_.x0, first_.dx, band_.x0, band_.dx, band_.w)]);
    }
  }

 private:
  // The sample of this band that covers the first one's.
  static uint32_t Place(uint32_t i, uint32_t from, uint32_t fromStep, uint32_t to, uint32_t toStep, uint32_t count) {
    const uint64_t place = (uint64_t{from} + i) * fromStep / toStep;
    return static_cast<uint32_t>(std::min<uint64_t>(place > to ? place - to : 0, count - 1));
  }
  uint8_t Byte(int32_t sample) const {
    const int64_t most = (int64_t{1} << band_.prec) - 1;
    const int64_t value = std::clamp<int64_t>(sample + offset_, 0, most);
    if (!scaled_) return static_cast<uint8_t>(std::min<int64_t>(value, 255));
    return static_cast<uint8_t>(band_.prec >= 8 ? value >> (band_.prec - 8) : (value * 255 + most / 2) / most);
  }

  const opj_image_comp_t &band_, &first_;
  bool scaled_;
  int64_t offset_;
};

// Luma and chroma in place to RGB.
void ToRgb(uint8_t *row, size_t pixels) {
  const auto byte = [](double value) { return static_cast<uint8_t>(std::clamp(value + 0.5, 0.0, 255.0)); };
  for (uint8_t *pixel = row; pixel != row + 3 * pixels; pixel += 3) {
    const double y = pixel[0], cb = pixel[1] - 128.0, cr = pixel[2] - 128.0;
    pixel[0] = byte(y + 1.402 * cr);
    pixel[1] = byte(y - 0.344136 * cb - 0.714136 * cr);
    pixel[2] = byte(y + 1.772 * cb);
  }
}

bool IsLumaChroma(const opj_image_t &image) {
  if (image.color_space == OPJ_CLRSPC_SYCC || image.color_space == OPJ_CLRSPC_EYCC) return true;
  // Nobody sub-samples red, green or blue.
  return image.color_space != OPJ_CLRSPC_SRGB && image.numcomps == 3 && image.comps[0].dx == image.comps[0].dy &&
         image.comps[1].dx != image.comps[0].dx;
}

}  // namespace

void CZVJP2000::reset() {
  CCompressionClass::reset();
  used_ = 0;
}

void CZVJP2000::Decode() {
  Coded coded(io_, length_);
  if (!Jp2WithinBounds(coded.bytes, mostSamples_)) return;
  const Image image = DecodeImage(coded, indexed_);
  if (!image) return;
  std::vector<const opj_image_comp_t *> bands;
  for (uint32_t i = 0; i < image->numcomps && Usable(image->comps[i]); ++i) {
    if (image->comps[i].alpha == 0) bands.push_back(&image->comps[i]);
  }
  if (bands.empty()) return;
  const opj_image_comp_t &first = *bands[0];
  uint32_t wanted = indexed_ ? 1 : colorBands_;
  if (wanted == 0) wanted = bands.size() == 4 && image->color_space == OPJ_CLRSPC_CMYK ? 4 : 3;
  const uint32_t components = bands.size() >= 4 && wanted == 4 ? 4 : bands.size() >= 3 && wanted != 1 ? 3 : 1;
  if (uint64_t{first.w} * first.h * components > mostSamples_) return;
  samples_.resize(size_t{first.w} * first.h * components);
  for (uint32_t c = 0; c < components; ++c) {
    const Band band(*bands[c], first, !indexed_);
    for (uint32_t y = 0; y < first.h; ++y)
      band.Row(y, samples_.data() + size_t{y} * first.w * components + c, components);
  }
  if (components == 3 && IsLumaChroma(*image)) ToRgb(samples_.data(), size_t{first.w} * first.h);
  width_ = first.w;
  height_ = first.h;
  components_ = components;
}

bool CZVJP2000::Open() {
  if (!decoded_) {
    decoded_ = true;
    Decode();
  }
  if (!samples_.empty()) return true;
  state_ = kCodecDamaged;
  return false;
}

size_t CZVJP2000::decompress(uint8_t *buffer, size_t count) {
  if (!Open()) return 0;
  const size_t part = std::min(count, samples_.size() - used_);
  std::memcpy(buffer, samples_.data() + used_, part);
  used_ += part;
  if (part < count) state_ = kCodecFinished;
  return part;
}

}  // namespace kapdf
