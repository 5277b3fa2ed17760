// The filter object: what a host drives through the table of fourteen operations.
#pragma once

#include <deque>
#include <memory>
#include <string>

#include "content/interpreter.h"
#include "filter/options.h"
#include "kapdf/kapdf.h"
#include "pdfmodel/pdf_file.h"
#include "platform/file.h"
#include "renderer/hidden_text.h"
#include "writer/write_file.h"

namespace kapdf {

// The generic base with a harmless default for every operation. Its virtual functions, in this order, are the
// contract's table; there is no virtual destructor, since compilers disagree on how many slots one takes.
class CZVFilter {
 public:
  virtual void Destroy(uint32_t deleteFlag) = 0;
  virtual uint32_t Identify(const char16_t *path, FileInfo *info);
  virtual void *GetPreview(const char16_t *path, ProgressObject *progress);
  virtual uint32_t OpenRead(const char16_t *path, FileInfo *info, ProgressObject *progress, const char16_t *options,
                            FilterContext *context, FilterCreateFunction create);
  virtual uint32_t ReadElement(ElementRecord *record);
  virtual uint32_t OpenWrite(const char16_t *path, FileInfo *info, ProgressObject *progress, const char16_t *options);
  virtual uint32_t Reserved6(void *value);
  virtual uint32_t BeginSection(int32_t section, uintptr_t a, uintptr_t b);
  virtual uint32_t EndSection(int32_t section, uintptr_t a, uintptr_t b);
  virtual uint32_t WriteElement(ElementRecord *record);
  virtual uint32_t WriteBlock(const void *buffer, uint32_t size, uint32_t count, std::FILE *stream, uint32_t reset);
  virtual uint32_t Close();
  virtual uint32_t ShowOptions(int32_t which, void *parent, void *options);
  virtual uint32_t Extended(void *a, int32_t b, void *c);

 protected:
  explicit CZVFilter(const char16_t *registryPath)
      : registryPath_(registryPath ? registryPath : u""), registryPathGiven_(registryPath != nullptr) {}
  CZVFilter(const CZVFilter &) = delete;
  CZVFilter &operator=(const CZVFilter &) = delete;
  ~CZVFilter() = default;

  // As the host gave it: null and an empty path name the same settings here, but not necessarily to the host.
  const char16_t *GivenRegistryPath() const { return registryPathGiven_ ? registryPath_.c_str() : nullptr; }

  ProgressObject *hostContext_ = nullptr;  // given to the open operations
  uint32_t currentSection_ = 0;
  std::unique_ptr<uint8_t[]> previewBitmap_;
  std::u16string registryPath_;
  bool registryPathGiven_;
  uint32_t ioFailed_ = 0;
};

// One document, for reading or for writing. No exception leaves an operation.
class CPDFFilter final : public CZVFilter {
 public:
  CPDFFilter(const char16_t *registryPath, bool writing);

  void Destroy(uint32_t deleteFlag) override;
  uint32_t Identify(const char16_t *path, FileInfo *info) override;
  void *GetPreview(const char16_t *path, ProgressObject *progress) override;
  uint32_t OpenRead(const char16_t *path, FileInfo *info, ProgressObject *progress, const char16_t *options,
                    FilterContext *context, FilterCreateFunction create) override;
  uint32_t ReadElement(ElementRecord *record) override;
  uint32_t OpenWrite(const char16_t *path, FileInfo *info, ProgressObject *progress, const char16_t *options) override;
  uint32_t BeginSection(int32_t section, uintptr_t a, uintptr_t b) override;
  uint32_t EndSection(int32_t section, uintptr_t a, uintptr_t b) override;
  uint32_t WriteElement(ElementRecord *record) override;
  uint32_t Close() override;
  uint32_t ShowOptions(int32_t which, void *parent, void *options) override;

 private:
  ~CPDFFilter() { DropRenderedPage(); }

  void ReadSettings();
  uint32_t OpenDocument(const char16_t *path, FileInfo &info);
  uint32_t OpenPage(const FileInfo &info);
  uint32_t OpenInterpretedPage(const char16_t *path, FileInfo &info, FilterContext *context);
  uint32_t ReadRasterHeader(ElementRecord &record);
  uint32_t ReadRasterRow(ElementRecord &record);
  void DropDocument();
  // False when the renderer is not to be asked.
  bool CountRenderedPages(const char16_t *path, FileInfo &info, uint32_t &result) const;
  uint32_t OpenRenderedPage(FileInfo &info, ProgressObject *progress, const char16_t *options, FilterContext *context,
                            FilterCreateFunction create);
  bool ReadRenderedPage(ElementRecord &record, uint32_t &result);
  uint32_t ReadHiddenText(ElementRecord &record);
  void DropSubFilter();
  void DropRenderedPage();
  platform::FileHandle OpenOutput(std::u16string_view path, FileInfo &info) const;
  uint32_t StartWriter(const char16_t *path, FileInfo &info);
  uint32_t DispatchElement(ElementRecord &record);

  bool writing_;
  WriteSettings writeSettings_{};
  ImportOptions importOptions_;
  InterpreterSettings interpreterSettings_;
  std::deque<int32_t> sectionStack_{0};  // its first 0 is never popped
  std::u16string optionString_;

  // In this order, since each stands on the one before.
  platform::FileHandle stream_;
  std::unique_ptr<CPDFFile> document_;
  std::unique_ptr<Interpreter> interpreter_;
  std::unique_ptr<RasterHeaderPayload> rasterHeader_;  // of the raster in hand, as the host got it
  PaletteHandle rasterPalette_;
  bool rasterAnnounced_ = false;  // a raster's place has gone out since the document was opened
  std::unique_ptr<CPDFWriteFile> writer_;

  // A page that the renderer has made a picture of. It outlives Close, until the next document or the end.
  int32_t dither_ = 0;
  int32_t renderedDepth_ = 0;  // the colour depth that the picture was made with
  std::u16string sourcePath_;  // as the host gave it
  std::string tempPath_;       // of the picture; empty for none
  FilterObject *subFilter_ = nullptr;
  FilterDestroyFunction subFilterDestroy_ = nullptr;
  HiddenText hiddenText_;
  size_t hiddenTextIndex_ = 0;
  TextPayload hiddenTextPayload_{};
  std::u16string hiddenTextUnits_;
};

}  // namespace kapdf
