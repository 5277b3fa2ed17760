// Plays one of the renderer's two libraries: every call is told to the test, whose answer is the result. Files get the
// bytes that the test names.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "renderer/functions.h"

namespace {

int (*hook)(const char *call) = nullptr;
std::string output;

template <class... Values>
int Say(const char *format, Values... values) {
  char call[1024];
  std::snprintf(call, sizeof call, format, values...);
  return hook ? hook(call) : 0;
}

}  // namespace

extern "C" {
void SetHook(int (*to)(const char *call)) { hook = to; }
void SetOutput(const char *bytes, size_t size) { output.assign(bytes, size); }

#ifdef FAKE_vgflow
int VgSetImageScale(int value) { return Say("VgSetImageScale %i", value); }
int VgSetColorDepth(int value) { return Say("VgSetColorDepth %i", value); }
int VgSetDPI(int value) { return Say("VgSetDPI %i", value); }
int VgIgnoreImages(int value) { return Say("VgIgnoreImages %i", value); }
int VgIgnoreText(int value) { return Say("VgIgnoreText %i", value); }
int VgIgnorePaths(int value) { return Say("VgIgnorePaths %i", value); }
int VgSetFontPath(const char *text) { return Say("VgSetFontPath %s", text); }
int VgLoadOptionsFromString(const char *text) { return Say("VgLoadOptionsFromString %s", text); }
int VgSetImagePixWorH(int width, int height) { return Say("VgSetImagePixWorH %i %i", width, height); }
#else
int VgPsSetLicense(const char *text) { return Say("VgPsSetLicense %s", text); }
int VgPsSetMessageFile(const char *text) { return Say("VgPsSetMessageFile %s", text); }
int VgPdfNoPages(const char *text) { return Say("VgPdfNoPages %s", text); }
void VgPdfConvertPages() {}
void VgPdfDeleteImageDIB(void *bits) { Say("VgPdfDeleteImageDIB %s", static_cast<char *>(bits)); }
int VgPsLoadOptions(int code, const char *file) { return Say("VgPsLoadOptions %i %s", code, file); }
int VgPdfGetLayerInfoOnPage(const char *path, int page, void *layerInfo) {
  return std::memset(layerInfo, 7, 1), Say("VgPdfGetLayerInfoOnPage %s %i", path, page);
}
int VgPdfGetPageSize(const char *path, int page, double *width, double *height) {
  return *width = *height = 2000, Say("VgPdfGetPageSize %s %i", path, page);
}

int VgPdfBitmapConvertPages(const char *path, const char *target, int format, int first, int last,
                            kapdf::RendererProgressFunction progress) {
  const int answer = Say("VgPdfBitmapConvertPages %s %s %i %i %i", path, target, format, first, last);
  std::string name = target;
  if (first > 1) name.insert(name.size() - 4, "-" + std::to_string(first));
  std::FILE *file = std::fopen(name.c_str(), "wb");
  std::fwrite(output.data(), 1, output.size(), file);
  std::fclose(file);
  return progress(50, nullptr, nullptr, nullptr) != 0 ? 1 : answer;
}

// A piece that is no text, one of three characters, and one that claims to have more of them than there is room.
int VgPdfConvertPage2Custom(const char *path, int page, kapdf::RendererPieceFunction piece) {
  static char style[1200 + 296], run[4632];
  const double height = 2.5, position[] = {10.5, 20.25};
  const uint64_t value[] = {0x100000009, 0x800000FF}, degrees = 90;
  std::memcpy(style + 1200 + 272, &height, 8);
  std::memcpy(style + 1200 + 280, value, 12);
  std::memcpy(run, position, 16);
  std::memcpy(run + 16, &degrees, 4);
  for (int i = 0; i < 1024; ++i) run[20 + 4 * i] = static_cast<char>(i == 1 ? 0xE4 : 'A');
  for (const int count : {1, 3, 1 << 30}) {
    std::memcpy(run + 4116, &count, 4);
    piece(count == 1 ? 4 : 5, nullptr, style, run);
  }
  return Say("VgPdfConvertPage2Custom %s %i", path, page);
}

int VgPdfConvertPage2DIB(const char *path, int page, const void *layerInfo, void *header, void **bits) {
  static char pixels[] = "12345678";
  const int32_t fields[] = {40, 2, 1, 1 | 24 << 16};
  std::memcpy(header, fields, sizeof fields);
  return *bits = pixels, Say("VgPdfConvertPage2DIB %s %i %i", path, page, *static_cast<const char *>(layerInfo));
}
#endif
}
