// The document that is read, its page, and the raster that the host asks for.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "content/interpreter.h"
#include "filter/filter_settings.h"
#include "intake/intake.h"
#include "pdfmodel/pdf_file.h"

namespace kapdf {

// Results are those of the contract's operations.
class DocumentReader {
 public:
  // `stream` is borrowed and must stay open as long as this object lives.
  DocumentReader(std::FILE *stream, std::u16string_view registryPath) : registryPath_(registryPath), stream_(stream) {}

  // By the option, or by the setting where no option tells.
  uint32_t Open(const ImportOptions &options, FileInfo &info);
  // The page `index` of the open document; messages go to the window, null for none.
  uint32_t OpenPage(int32_t index, const FilterSettings &settings, void *window);
  uint32_t Read(ElementRecord &record);

 private:
  uint32_t OpenIntake(std::u16string_view password, FileInfo &info);
  bool TakePage(int32_t index);
  uint32_t ReadRasterHeader(ElementRecord &record);
  uint32_t ReadRasterRow(ElementRecord &record);

  std::u16string registryPath_;
  std::FILE *stream_;
  // In this order, since each stands on the one before.
  std::unique_ptr<Intake> intake_;      // in extended reading,
  std::unique_ptr<CPDFFile> document_;  // which is then that of the page alone
  std::unique_ptr<Interpreter> interpreter_;
  std::unique_ptr<RasterHeaderPayload> rasterHeader_;  // of the raster in hand, as the host got it
  PaletteHandle rasterPalette_;
  bool rasterAnnounced_ = false;  // a raster's place has gone out
};

}  // namespace kapdf
