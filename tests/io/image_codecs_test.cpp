#include <gtest/gtest.h>
#include <jpeglib.h>
#include <openjpeg.h>

#include <cstdio>
#include <functional>
#include <string>

#include "io/codec_dct.h"
#include "io/codec_jbig2.h"
#include "io/codec_jp2.h"
#include "io/memory_file.h"
#include "support/bytes.h"

namespace kapdf {
namespace {

using namespace std::string_literals;

using test::Bytes, test::Drain;

std::string Big(uint32_t value, int bytes = 4) {
  std::string text;
  while (bytes-- > 0) text += static_cast<char>(value >> 8 * bytes);
  return text;
}

// The largest difference of two samples; 256 for other lengths.
int Difference(std::string_view a, std::string_view b) {
  int most = a.size() == b.size() ? 0 : 256;
  for (size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    most = std::max(most, std::abs(static_cast<uint8_t>(a[i]) - static_cast<uint8_t>(b[i])));
  }
  return most;
}

constexpr uint32_t kWidth = 37, kHeight = 50;

// Samples that change slowly, so that little is lost.
std::string Slope(uint32_t components) {
  std::string all;
  for (uint32_t i = 0; i < kWidth * kHeight; ++i) {
    for (uint32_t c = 0; c < components; ++c)
      all += static_cast<char>(40 + 2 * (i % kWidth) + (c + 1) * (i / kWidth) / 2);
  }
  return all;
}

struct JpegKind {
  J_COLOR_SPACE in, stored;
  bool progressive;
  unsigned restart;
};

std::string Jpeg(const JpegKind &kind, int components) {
  jpeg_compress_struct info{};
  jpeg_error_mgr errors;
  info.err = jpeg_std_error(&errors);
  jpeg_create_compress(&info);
  unsigned char *memory = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&info, &memory, &size);
  info.image_width = kWidth;
  info.image_height = kHeight;
  info.input_components = components;
  info.in_color_space = kind.in;
  jpeg_set_defaults(&info);
  jpeg_set_colorspace(&info, kind.stored);
  jpeg_set_quality(&info, 95, TRUE);
  if (kind.progressive) jpeg_simple_progression(&info);
  info.restart_interval = kind.restart;
  jpeg_start_compress(&info, TRUE);
  std::string samples = Slope(static_cast<uint32_t>(components));
  for (size_t row = 0; row < kHeight; ++row) {
    auto *line = reinterpret_cast<JSAMPROW>(samples.data() + row * kWidth * static_cast<size_t>(components));
    jpeg_write_scanlines(&info, &line, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  const std::string coded(reinterpret_cast<char *>(memory), size);
  free(memory);
  return coded;
}

TEST(Dct, DecodesEveryKind) {
  const JpegKind kinds[] = {
      {JCS_GRAYSCALE, JCS_GRAYSCALE, false, 0}, {JCS_RGB, JCS_YCbCr, true, 0}, {JCS_RGB, JCS_RGB, false, 2},
      {JCS_CMYK, JCS_CMYK, false, 0},           {JCS_CMYK, JCS_YCCK, true, 3}, {JCS_GRAYSCALE, JCS_GRAYSCALE, true, 1}};
  for (const JpegKind &kind : kinds) {
    const uint32_t components = kind.in == JCS_GRAYSCALE ? 1 : kind.in == JCS_RGB ? 3 : 4;
    const std::string coded = Jpeg(kind, static_cast<int>(components));
    for (const size_t piece : {size_t{7}, size_t{kWidth} * components, size_t{100000}}) {
      MemorySource source(Bytes(coded));
      CZVDCT codec(source, 0);
      ASSERT_TRUE(codec.Open());
      EXPECT_EQ(codec.width(), kWidth);
      EXPECT_EQ(codec.height(), kHeight);
      EXPECT_EQ(codec.components(), components);
      EXPECT_EQ(codec.adobeMarker(), components == 4 || kind.stored == JCS_RGB);
      EXPECT_LE(Difference(Drain(codec, piece), Slope(components)), 12) << kind.stored << ' ' << piece;
      EXPECT_EQ(codec.error(), kCodecFinished);
    }
  }
}

TEST(Dct, DamagedDataGiveTheRowsThatAreThere) {
  const std::string coded = Jpeg({JCS_GRAYSCALE, JCS_GRAYSCALE, false, 0}, 1), plain = Slope(1);
  std::string endless = coded;  // 65,500 rows
  const size_t frame = coded.find("\xFF\xC0");
  endless.replace(frame + 5, 2, Big(65500, 2));
  struct Case {
    std::string coded;
    uint32_t length;
    size_t least, most;  // rows
  } const cases[] = {{coded.substr(0, coded.size() - 60), 0, 24, 49},
                     {coded, static_cast<uint32_t>(coded.size() - 60), 24, 49},
                     {endless, 0, 50, 64},
                     {coded.substr(0, frame), 0, 0, 0},
                     {"no image", 0, 0, 0}};
  for (const Case &c : cases) {
    MemorySource source(Bytes(c.coded));
    CZVDCT codec(source, c.length);
    const std::string rows = Drain(codec, kWidth);
    EXPECT_GE(rows.size(), c.least * kWidth);
    EXPECT_LE(rows.size(), c.most * kWidth);
    EXPECT_EQ(codec.error(), kCodecDamaged);
    const size_t sure = std::min(rows.size(), size_t{16} * kWidth);
    EXPECT_LE(Difference(rows.substr(0, sure), plain.substr(0, sure)), 12);
  }
}

// Segments of JBIG2 in the fax coding.
std::string Segment(char number, char type, const std::string &references, const std::string &data) {
  return Big(0, 3) + number + type + static_cast<char>(references.size() << 5) + references + '\1' +
         Big(static_cast<uint32_t>(data.size())) + data;
}
std::string PageInfo(uint32_t width, uint32_t height) {
  return Segment(1, 48, "", Big(width) + Big(height) + std::string(11, '\0'));
}
std::string Region(uint32_t width, uint32_t height) { return Big(width) + Big(height) + std::string(9, '\0'); }

TEST(JBig2, DecodesThePage) {
  // 2 white, 3 black, 3 white pixels; the other rows as the first.
  const std::string bars = Segment(2, 38, "", Region(8, 4) + "\1\x2F\x7F\xE0");
  // Patterns of 4 by 4, white and black, and a grid of 2 by 2 of them.
  const std::string patterns = Segment(0, 16, "", "\1\4\4"s + Big(1) + "\x36\xFF");
  const std::string grid =
      Segment(2, 22, "\0"s, Region(8, 8) + "\1" + Big(2) + Big(2) + Big(0) + Big(0) + "\4\0\0\0\x26\xAA\xE0"s);
  const std::string end = Segment(3, 49, "", "");
  struct Case {
    std::string globals, coded, rows;
  } const cases[] = {
      {"", PageInfo(8, 4) + bars + end, "\x38\x38\x38\x38"},
      {"", PageInfo(8, 4) + bars, "\x38\x38\x38\x38"},
      {patterns, PageInfo(8, 8) + grid + end, "\xF0\xF0\xF0\xF0\x0F\x0F\x0F\x0F"},
      {"", PageInfo(8, 8) + grid, std::string(8, '\0')},  // the patterns are missing
      {"", bars + end, ""},
      {"", PageInfo(8, 4000000000) + bars, ""},
      {"", PageInfo(1000001, 4) + bars, ""},
      {"", PageInfo(8, 4) + Segment(2, 38, "", Region(4000000000, 4) + "\1\x2F"), std::string(4, '\0')},
      {"", "no image", ""},
  };
  for (const Case &c : cases) {
    const std::string file = c.globals + c.coded;
    MemorySource source(Bytes(file));
    source.Seek(static_cast<int64_t>(c.globals.size()), SeekOrigin::kStart);
    CZVJBig2 codec(source, static_cast<uint32_t>(c.coded.size()));
    codec.SetGlobals(0, static_cast<uint32_t>(c.globals.size()));
    EXPECT_EQ(Drain(codec, 3), c.rows);
    EXPECT_EQ(codec.error(), c.rows.empty() ? kCodecDamaged : kCodecFinished);
    codec.reset();
    EXPECT_EQ(Drain(codec, 100), c.rows);
  }
}

struct BandKind {
  uint32_t step, depth;
  bool isSigned;
  std::vector<int> samples;
};

std::string CodeStream(const std::vector<BandKind> &bands, uint32_t width, uint32_t height) {
  std::vector<opj_image_cmptparm_t> shapes;
  for (const BandKind &band : bands) {
    const uint32_t s = band.step;
    shapes.push_back({s, s, (width + s - 1) / s, (height + s - 1) / s, 0, 0, band.depth, band.depth, band.isSigned});
  }
  opj_image_t *image = opj_image_create(static_cast<uint32_t>(bands.size()), shapes.data(), OPJ_CLRSPC_UNSPECIFIED);
  image->x1 = width;
  image->y1 = height;
  for (size_t i = 0; i < bands.size(); ++i)
    std::copy(bands[i].samples.begin(), bands[i].samples.end(), image->comps[i].data);
  opj_cparameters_t parameters;
  opj_set_default_encoder_parameters(&parameters);
  parameters.numresolution = 1;
  parameters.tcp_numlayers = 1;
  parameters.cp_disto_alloc = 1;
  std::string coded;
  opj_codec_t *codec = opj_create_compress(OPJ_CODEC_J2K);
  opj_stream_t *stream = opj_stream_create(1000, OPJ_FALSE);
  opj_stream_set_user_data(stream, &coded, nullptr);
  opj_stream_set_write_function(stream, [](void *data, OPJ_SIZE_T count, void *user) {
    static_cast<std::string *>(user)->append(static_cast<char *>(data), count);
    return count;
  });
  EXPECT_TRUE(opj_setup_encoder(codec, &parameters, image) && opj_start_compress(codec, image, stream) &&
              opj_encode(codec, stream) && opj_end_compress(codec, stream));
  opj_stream_destroy(stream);
  opj_destroy_codec(codec);
  opj_image_destroy(image);
  return coded;
}

std::string Box(const char *type, const std::string &data) {
  return Big(static_cast<uint32_t>(data.size()) + 8) + type + data;
}

// A file around a code stream with one band of 8 bits; `more` goes to its header.
std::string Jp2(const std::string &coded, uint32_t width, uint32_t height, const std::string &more) {
  const std::string shape = Box("ihdr", Big(height) + Big(width) + Big(1, 2) + "\7\7\0\0"s);
  return Box("jP  ", "\r\n\x87\n") + Box("ftyp", "jp2 "s + Big(0) + "jp2 ") +
         Box("jp2h", shape + Box("colr", "\1\0\0"s + Big(16)) + more) + Box("jp2c", coded);
}

TEST(Jp2, DeliversEveryKindAsBytes) {
  const std::string indexes = CodeStream({{1, 8, false, {0, 1, 1}}}, 3, 1);
  const std::string palette = Box("pclr", "\0\2\3\7\7\7ABCDEF"s) + Box("cmap", "\0\0\1\0\0\0\1\1\0\0\1\2"s);
  const std::string huge = "\xFF\x4F\xFF\x51\0\x29\0\0"s + Big(900000) + Big(900000) + Big(0) + Big(0) + Big(900000) +
                           Big(900000) + Big(0) + Big(0) + "\0\1\7\1\1"s;
  struct Case {
    std::string coded;
    uint32_t components;
    std::string rows;
    bool indexed = false;
  } const cases[] = {
      {CodeStream({{1, 8, false, {1, 2, 3, 4, 5, 255}}}, 3, 2), 1, "\1\2\3\4\5\xFF"},
      {CodeStream({{1, 8, false, {1, 2}}, {1, 8, false, {3, 4}}, {1, 8, false, {5, 6}}}, 2, 1), 3, "\1\3\5\2\4\6"},
      {CodeStream({{1, 16, false, {0, 0x1280, 0xFFFF}}}, 3, 1), 1, "\0\x12\xFF"s},
      {CodeStream({{1, 8, true, {-128, 0, 127}}}, 3, 1), 1, "\0\x80\xFF"s},
      {CodeStream({{1, 4, false, {0, 1, 15}}}, 3, 1), 1, "\0\x11\xFF"s},
      {CodeStream({{1, 4, false, {0, 1, 15}}}, 3, 1), 1, "\0\1\xF"s, true},
      // Luma with chroma of half the size: none at the left, red at the right.
      {CodeStream({{1, 8, false, {9, 8, 76, 76}}, {2, 8, false, {128, 85}}, {2, 8, false, {128, 255}}}, 4, 1), 3,
       "\x9\x9\x9\x8\x8\x8\xFE\0\0\xFE\0\0"s},
      {Jp2(indexes, 3, 1, palette), 3, "ABCDEFDEF"},
      {Jp2(indexes, 3, 1, palette), 1, "\0\1\1"s, true},
      {huge, 0, ""},
      {"no image", 0, ""},
  };
  for (const Case &c : cases) {
    MemorySource source(Bytes(c.coded));
    CZVJP2000 codec(source, static_cast<uint32_t>(c.coded.size()));
    codec.SetIndexed(c.indexed);
    EXPECT_EQ(Drain(codec, 2), c.rows);
    EXPECT_EQ(codec.components(), c.components);
    codec.reset();
    EXPECT_EQ(Drain(codec, 100), c.rows);
  }
}

}  // namespace
}  // namespace kapdf
