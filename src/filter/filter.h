// The filter object: what a host drives through the table of fourteen operations.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "filter/filter_settings.h"
#include "filter/rendered_page.h"
#include "kapdf/kapdf.h"
#include "platform/file.h"
#include "writer/sections.h"

namespace kapdf {

class CPDFWriteFile;
class DocumentReader;

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

  std::unique_ptr<uint8_t[]> previewBitmap_;
  std::u16string registryPath_;
  bool registryPathGiven_;
  uint32_t ioFailed_ = 0;
};

// One document, for reading or for writing. No exception leaves an operation.
class CPDFFilter final : public CZVFilter {
 public:
  explicit CPDFFilter(const char16_t *registryPath);

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
  ~CPDFFilter();

  void ReadSettings();
  uint32_t OpenDocument(const char16_t *path, FileInfo &info);
  uint32_t OpenInterpretedPage(const char16_t *path, FileInfo &info, FilterContext *context);
  platform::FileHandle OpenOutput(std::u16string_view path, FileInfo &info) const;
  uint32_t StartWriter(const char16_t *path, FileInfo &info);

  FilterSettings settings_;
  Sections sections_;
  std::u16string optionString_;
  platform::FileHandle stream_;             // of what reads or writes below
  std::unique_ptr<DocumentReader> reader_;  // at most one of the two
  std::unique_ptr<CPDFWriteFile> writer_;
  RenderedPage rendered_;
};

}  // namespace kapdf
