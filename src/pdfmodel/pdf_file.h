// The document that is read: bytes, objects, cross-reference and page table. It knows nothing of content.
#pragma once

#include <cstdio>
#include <memory>

#include "kapdf/kapdf.h"
#include "pdfmodel/named_properties.h"
#include "pdfmodel/page_tree.h"
#include "pdfmodel/xref_reader.h"

namespace kapdf {

// What a page gets from the tree, unless it says otherwise itself.
struct PagePosition {
  int32_t objectNumber = -1;
  double rotate = 0;  // radians
  PageBox box;        // points
};

class CPDFFile final : public CPDFBlockSource {
 public:
  // `stream` is borrowed and must stay open as long as this object lives.
  CPDFFile(std::FILE *stream, std::u16string_view registryPath);
  // A document in memory.
  CPDFFile(ByteBuffer bytes, std::u16string_view registryPath);
  ~CPDFFile() override;

  // Reads the cross-reference and walks the page tree; runs once. 0; 2, 5 for a file that cannot be read far enough or
  // has no root; 11 for an encrypted one; 12 when it is not a PDF file or has no usable cross-reference. On 0
  // `info.pageCount` and `info.formatName` are set.
  uint32_t Open(FileInfo &info);
  using CZVMemoryFileRead::Open;

  // False for an index outside the page table.
  bool GetPage(int32_t index, PagePosition &page) const;

  ObjectLocator &objects() { return *xref_; }
  const PDFXRef &xrefTable() const { return xref_->table(); }
  const std::vector<uint32_t> &pageObjects() const { return pageTree_->pageObjects(); }
  NamedPropertyQueue &properties() { return properties_; }

  // The host's window for messages; null, as at first, for none.
  void SetParentWindow(void *window) { parentWindow_ = window; }
  void *parentWindow() const { return parentWindow_; }

 private:
  explicit CPDFFile(std::u16string_view registryPath);
  uint32_t FindStartXRef(int32_t &position);
  uint32_t ReadSections();
  // Result of one classic section's trailer. `previous` becomes the next section's position, or 0.
  uint32_t ReadTrailer(int64_t &previous);
  uint32_t ReadRoot();

  std::unique_ptr<XRefReader> xref_;
  std::unique_ptr<PDFPageTree> pageTree_;
  std::unique_ptr<CPDFIndirectObject> root_;
  std::unique_ptr<CPDFIndirectObject> pagesRoot_;
  NamedPropertyQueue properties_;
  void *parentWindow_ = nullptr;
};

// "Adobe PDF " into the host's structure.
void SetFormatName(FileInfo &info);

}  // namespace kapdf
