// Plays the renderer's library of conversions. It writes files of bytes that the test names.
#include <cstdint>
#include <cstring>
#include <string>

#include "fake.h"
#include "renderer/functions.h"

namespace {
std::string output;

template <class Value>
void Put(char *at, Value value) {
  std::memcpy(at, &value, sizeof value);
}
}  // namespace

extern "C" {
void SetFakeOutput(const char *bytes, size_t size) { output.assign(bytes, size); }
int VgPsSetLicense(const char *) { return Say("VgPsSetLicense"); }
int VgPsLoadOptions(int code, const char *file) { return Say("VgPsLoadOptions %i %s", code, file); }
int VgPsSetMessageFile(const char *path) { return Say("VgPsSetMessageFile %s", path); }
int VgPdfNoPages(const char *path) { return Say("VgPdfNoPages %s", path); }
void VgPdfConvertPages() {}
void VgPdfDeleteImageDIB(void *) { Say("VgPdfDeleteImageDIB"); }
int VgPdfGetLayerInfoOnPage(const char *path, int page, void *layerInfo) {
  return static_cast<char *>(layerInfo)[0] = 7, Say("VgPdfGetLayerInfoOnPage %s %i", path, page);
}

int VgPdfGetPageSize(const char *path, int page, double *width, double *height) {
  return *width = *height = 2000, Say("VgPdfGetPageSize %s %i", path, page);
}

int VgPdfBitmapConvertPages(const char *path, const char *target, int format, int first, int last,
                            kapdf::RendererProgressFunction progress) {
  const int answer = Say("VgPdfBitmapConvertPages %s %s %i %i %i", path, target, format, first, last);
  std::string name = target;
  if (first > 1) name.insert(name.size() - 4, "-" + std::to_string(first));
  if (std::FILE *file = std::fopen(name.c_str(), "wb")) {
    std::fwrite(output.data(), 1, output.size(), file);
    std::fclose(file);
  }
  return progress(50, nullptr, nullptr, nullptr) != 0 ? 1 : answer;
}

// A piece that is no text, one of three characters, and one that claims to have more of them than there is room.
int VgPdfConvertPage2Custom(const char *path, int page, kapdf::RendererPieceFunction piece) {
  static char style[1200 + 296], run[4632];
  for (int i = 0; i < 3; ++i) {
    Put(style + 1200 + 272, 2.5 + i);
    Put(style + 1200 + 280, uint64_t{0x100000009});
    Put(style + 1200 + 288, 0x800000FFu);
    Put(run, 10.5);
    Put(run + 8, 20.25);
    Put(run + 16, 90);
    for (int k = 0; k < 1024; ++k) Put(run + 20 + 4 * k, k == 1 ? 0xE4 : 'A' + i);
    Put(run + 4116, i == 2 ? 1 << 30 : 3);
    piece(i == 0 ? 4 : 5, nullptr, style, run);
  }
  return Say("VgPdfConvertPage2Custom %s %i", path, page);
}

int VgPdfConvertPage2DIB(const char *path, int page, const void *layerInfo, void *header, void **bits) {
  static char pixels[] = "12345678";
  const int32_t fields[] = {40, 2, 1, 1 | 24 << 16};
  std::memcpy(header, fields, sizeof fields);
  *bits = pixels;
  return Say("VgPdfConvertPage2DIB %s %i %i", path, page, static_cast<const char *>(layerInfo)[0]);
}
}
