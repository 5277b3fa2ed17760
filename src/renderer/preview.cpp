#include "renderer/preview.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "base/bytes.h"
#include "base/limits.h"
#include "base/scan.h"
#include "platform/file.h"
#include "platform/narrow_path.h"
#include "renderer/renderer.h"

namespace kapdf {
namespace {

using Block = std::unique_ptr<uint8_t[]>;

constexpr size_t kFileHeader = 14, kFileSizeAt = 2;
constexpr size_t kHeader = 40, kWidthAt = 4, kHeightAt = 8, kBitCountAt = 14, kImageSizeAt = 20;
constexpr int kPixelsWide = 100;
constexpr int kScreenDpi = 96;

// Cuts the page off the path.
int TakePage(std::string &path) {
  const size_t blank = path.rfind(" <");
  if (blank == std::string::npos) return 1;
  const char *at = path.c_str() + blank + 2;
  int32_t page = 1;
  if (!ScanAnyInteger(at, page) || std::string_view(at) != ">") return 1;
  path.resize(blank);
  return std::max(page, 1);
}

Block ReadBitmap(std::u16string_view path) {
  const platform::FileHandle file = platform::OpenFile(path, "rb", platform::Share::kExclusive);
  std::array<uint8_t, kFileHeader> header;
  if (!file || std::fread(header.data(), 1, header.size(), file.get()) != header.size()) return nullptr;
  const auto size = LoadAs<uint32_t>(header.data() + kFileSizeAt);
  if (size < kFileHeader || !platform::SeekFile(file.get(), 0, SEEK_END) || size > platform::TellFile(file.get()) ||
      !platform::SeekFile(file.get(), kFileHeader, SEEK_SET)) {
    return nullptr;
  }
  // Never less than the description that a host looks at first.
  auto block = std::make_unique<uint8_t[]>(std::max<size_t>(size, kHeader));
  const size_t rest = size - kFileHeader;
  return std::fread(block.get(), 1, rest, file.get()) == rest ? std::move(block) : nullptr;
}

Block PreviewFromFile(const std::string &path, int page, ProgressObject *progress) {
  const RendererFunctions &renderer = Renderer();
  const RendererConversion conversion(progress);
  CallIfThere(renderer.VgSetImageScale, 1);
  CallIfThere(renderer.VgSetImagePixWorH, kPixelsWide, 0);
  CallIfThere(renderer.VgSetDPI, kScreenDpi);
  CallIfThere(renderer.VgLoadOptionsFromString, "dither(1) color_mode(1)");
  const std::string target = platform::TemporaryFolder() + "pdf.bmp";
  const std::u16string output = platform::FromNarrowPath(RendererOutputName(target, page));
  const bool made =
      renderer.VgPdfBitmapConvertPages(path.c_str(), target.c_str(), kRendererBmp, page, page, RendererProgress) == 0;
  Block block = made ? ReadBitmap(output) : nullptr;
  platform::RemoveFile(output);
  return block;
}

// Bytes of the pixels: as the header tells, or for rows without compression from width, height and depth.
size_t PixelBytes(const uint8_t *header) {
  if (const auto told = LoadAs<uint32_t>(header + kImageSizeAt)) return told;
  const int64_t width = LoadAs<int32_t>(header + kWidthAt);
  const int64_t height = std::abs(int64_t{LoadAs<int32_t>(header + kHeightAt)});  // below zero: from the top
  if (width < 1 || width > limits::kImageSide || height > limits::kImageSide) return 0;
  const int64_t row = (width * LoadAs<uint16_t>(header + kBitCountAt) + 31) / 32 * 4;
  return static_cast<size_t>(row * height);
}

Block PreviewFromMemory(const std::string &path, int page) {
  const RendererFunctions &renderer = Renderer();
  CallIfThere(renderer.VgSetImageScale, 1);
  CallIfThere(renderer.VgSetImagePixWorH, kPixelsWide, 0);
  alignas(8) std::array<uint8_t, kHeader> header{};
  alignas(8) std::array<uint8_t, kRendererLayerInfoBytes> layerInfo{};
  if (renderer.VgPdfGetLayerInfoOnPage) renderer.VgPdfGetLayerInfoOnPage(path.c_str(), page, layerInfo.data());
  void *bits = nullptr;
  if (renderer.VgPdfConvertPage2DIB(path.c_str(), page, layerInfo.data(), header.data(), &bits) != 0 || !bits)
    return nullptr;
  struct Bits {
    ~Bits() { CallIfThere(Renderer().VgPdfDeleteImageDIB, memory); }
    void *memory;
  } const owned{bits};
  // Four bytes lie between the header and the pixels, deliberate: hosts know them.
  constexpr size_t kPixelsAt = kHeader + 4;
  const size_t size = PixelBytes(header.data());
  if (size > limits::kDecodedStream) return nullptr;
  auto block = std::make_unique<uint8_t[]>(kPixelsAt + size);
  std::copy(header.begin(), header.end(), block.get());
  std::memcpy(block.get() + kPixelsAt, bits, size);
  return block;
}

}  // namespace

bool CanPreview() { return Renderer().VgPdfBitmapConvertPages || Renderer().VgPdfConvertPage2DIB; }

std::unique_ptr<uint8_t[]> MakePreview(std::string path, ProgressObject *progress) {
  const int page = TakePage(path);
  return Renderer().VgPdfBitmapConvertPages ? PreviewFromFile(path, page, progress) : PreviewFromMemory(path, page);
}

}  // namespace kapdf
