// What the two renderer libraries export, as far as it is used: the form of each function, and the table of them.
#pragma once

namespace kapdf {

// Takes the finished part in percent; a result other than 0 asks the renderer to stop.
using RendererProgressFunction = int (*)(int percent, void *a, void *b, void *c);
// Takes the pieces of a page; see hidden_text.h for the two blocks.
using RendererPieceFunction = int (*)(int type, void *a, const void *styleBlock, const void *runBlock);
// Exported and looked up, but called by nobody here.
using RendererUnusedFunction = void (*)();

// Filled once when the module is loaded. Any entry may be null, and every use tests it. Paths are 8-bit text, pages
// count from 1; unless told otherwise 0 is success.
struct RendererFunctions {
  // From `vgpsflow`.
  int (*VgPsSetLicense)(const char *key);
  RendererUnusedFunction VgPsLoad;
  int (*VgPdfBitmapConvertPages)(const char *path, const char *target, int format, int firstPage, int lastPage,
                                 RendererProgressFunction progress);
  RendererUnusedFunction VgPdfConvert2Unicode;
  RendererUnusedFunction VgPsConvert2Custom;
  int (*VgPdfConvertPage2Custom)(const char *path, int page, RendererPieceFunction piece);
  RendererUnusedFunction VgPsSavePageAs;
  int (*VgPsLoadOptions)(int code, const char *file);
  // The number of pages; 0 when the file cannot be read.
  int (*VgPdfNoPages)(const char *path);
  // Fills the 40 bytes of a bitmap header and makes the pixels, which VgPdfDeleteImageDIB frees.
  int (*VgPdfConvertPage2DIB)(const char *path, int page, const void *layerInfo, void *header, void **bits);
  // There or not, it tells whether pages can be read as images.
  RendererUnusedFunction VgPdfConvertPages;
  void (*VgPdfDeleteImageDIB)(void *bits);
  int (*VgPdfGetLayerInfoOnPage)(const char *path, int page, void *layerInfo);
  int (*VgPsSetMessageFile)(const char *path);
  // In points.
  int (*VgPdfGetPageSize)(const char *path, int page, double *width, double *height);

  // From `vgflow`: switches and values of the conversions that follow.
  int (*VgSetImageScale)(int mode);  // 0 by resolution, 1 by size in pixels
  int (*VgSetImagePixWorH)(int width, int height);
  RendererUnusedFunction VgSetDither;
  int (*VgSetColorDepth)(int depth);
  RendererUnusedFunction VgSetColorMode;
  int (*VgSetDPI)(int dpi);
  RendererUnusedFunction VgSetChars2String;
  RendererUnusedFunction VgConvertCharactersToPaths;
  int (*VgIgnoreImages)(int ignore);
  int (*VgIgnoreText)(int ignore);
  int (*VgIgnorePaths)(int ignore);
  int (*VgSetFontPath)(const char *folder);
  int (*VgLoadOptionsFromString)(const char *options);
};

// Output formats of VgPdfBitmapConvertPages. For a page above 1 the renderer adds "-page" to the name of its output.
inline constexpr int kRendererTiff = 13, kRendererBmp = 28;
// Room for what VgPdfGetLayerInfoOnPage fills in, zeroed.
inline constexpr int kRendererLayerInfoBytes = 4096;

}  // namespace kapdf
