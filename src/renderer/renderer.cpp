#include "renderer/renderer.h"

#include <atomic>

#include "platform/environment.h"
#include "platform/module.h"
#include "platform/narrow_path.h"

namespace kapdf {
namespace {

constexpr int kStopWaits = 100;
constexpr uint32_t kStopWaitMilliseconds = 100;
constexpr int kOptionFileCode = 6;

// No destructors: the end of the module may come after that of its static objects.
constinit RendererFunctions functions{};
constinit void *pageLibrary = nullptr;
constinit void *optionLibrary = nullptr;

// Set by one thread and watched by another that waits for the conversion's end.
constinit std::atomic<ProgressObject *> currentProgress = nullptr;

template <class Function>
void Find(void *library, const char *name, Function *&function) {
  function = reinterpret_cast<Function *>(platform::FindSymbol(library, name));
}

void FindPageFunctions(void *library, RendererFunctions &to) {
  Find(library, "VgPsSetLicense", to.VgPsSetLicense);
  Find(library, "VgPsLoad", to.VgPsLoad);
  Find(library, "VgPdfBitmapConvertPages", to.VgPdfBitmapConvertPages);
  Find(library, "VgPdfConvert2Unicode", to.VgPdfConvert2Unicode);
  Find(library, "VgPsConvert2Custom", to.VgPsConvert2Custom);
  Find(library, "VgPdfConvertPage2Custom", to.VgPdfConvertPage2Custom);
  Find(library, "VgPsSavePageAs", to.VgPsSavePageAs);
  Find(library, "VgPsLoadOptions", to.VgPsLoadOptions);
  Find(library, "VgPdfNoPages", to.VgPdfNoPages);
  Find(library, "VgPdfConvertPage2DIB", to.VgPdfConvertPage2DIB);
  Find(library, "VgPdfConvertPages", to.VgPdfConvertPages);
  Find(library, "VgPdfDeleteImageDIB", to.VgPdfDeleteImageDIB);
  Find(library, "VgPdfGetLayerInfoOnPage", to.VgPdfGetLayerInfoOnPage);
  Find(library, "VgPsSetMessageFile", to.VgPsSetMessageFile);
  Find(library, "VgPdfGetPageSize", to.VgPdfGetPageSize);
}

void FindOptionFunctions(void *library, RendererFunctions &to) {
  Find(library, "VgSetImageScale", to.VgSetImageScale);
  Find(library, "VgSetImagePixWorH", to.VgSetImagePixWorH);
  Find(library, "VgSetDither", to.VgSetDither);
  Find(library, "VgSetColorDepth", to.VgSetColorDepth);
  Find(library, "VgSetColorMode", to.VgSetColorMode);
  Find(library, "VgSetDPI", to.VgSetDPI);
  Find(library, "VgSetChars2String", to.VgSetChars2String);
  Find(library, "VgConvertCharactersToPaths", to.VgConvertCharactersToPaths);
  Find(library, "VgIgnoreImages", to.VgIgnoreImages);
  Find(library, "VgIgnoreText", to.VgIgnoreText);
  Find(library, "VgIgnorePaths", to.VgIgnorePaths);
  Find(library, "VgSetFontPath", to.VgSetFontPath);
  Find(library, "VgLoadOptionsFromString", to.VgLoadOptionsFromString);
}

}  // namespace

void LoadRenderer() {
  const std::u16string folder = platform::ModuleFolder();
  if (folder.empty()) return;
  pageLibrary = platform::OpenLibrary(folder + platform::LibraryFileName(u"vgpsflow"));
  if (!pageLibrary) return;
  optionLibrary = platform::OpenLibrary(folder + platform::LibraryFileName(u"vgflow"));
  if (!optionLibrary) return ReleaseRenderer();
  FindPageFunctions(pageLibrary, functions);
  FindOptionFunctions(optionLibrary, functions);
  CallIfThere(functions.VgPsSetLicense, "");
  CallIfThere(functions.VgPsLoadOptions, kOptionFileCode, "pdf2xxx.ini");
  CallIfThere(functions.VgSetFontPath, platform::ToNarrowPath(folder + u"Fonts").c_str());
}

void ReleaseRenderer() {
  functions = {};
  platform::CloseLibrary(optionLibrary);
  platform::CloseLibrary(pageLibrary);
  optionLibrary = pageLibrary = nullptr;
}

RendererFunctions &Renderer() { return functions; }

RendererConversion::RendererConversion(ProgressObject *progress) { currentProgress = progress; }
RendererConversion::~RendererConversion() { currentProgress = nullptr; }

bool RendererIsBusy() { return currentProgress != nullptr; }

bool StopRenderer() {
  ProgressObject *const other = currentProgress;
  if (!other) return true;
  other->table->Stop(other);
  for (int wait = 0; wait < kStopWaits && RendererIsBusy(); ++wait) platform::SleepMilliseconds(kStopWaitMilliseconds);
  return !RendererIsBusy();
}

int RendererProgress(int percent, void *, void *, void *) {
  ProgressObject *const progress = currentProgress;
  return progress && progress->table->Report(progress, percent / 100.0) != 0 ? 1 : 0;
}

std::string RendererOutputName(const std::string &target, int page) {
  if (page <= 1) return target;
  const size_t point = target.rfind('.');
  return target.substr(0, point) + "-" + std::to_string(page) + target.substr(point);
}

}  // namespace kapdf
