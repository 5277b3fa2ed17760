// The document around its pages: header, information, catalogue, page tree, optional content.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/environment.h"
#include "writer/existing_document.h"
#include "writer/objects_out.h"
#include "writer/tables.h"
#include "writer/write_options.h"

namespace kapdf {

// Values of the page index that are no page.
inline constexpr int32_t kNewDocument = -1, kAddPage = -2;

class DocumentOut {
 public:
  // Both are borrowed and must outlive the object.
  DocumentOut(ObjectsOut &objects, const WriteOptions &options) : objects_(objects), options_(options) {}

  // The pages of an older document stay, but for the one that `pageIndex` replaces.
  void Continue(ExistingDocument existing, int32_t pageIndex);
  // Header, information and catalogue; `path` names the document.
  void Start(std::u16string_view path);
  // The page tree, with the page's number at its place.
  void WritePages(int32_t page);
  int32_t pagesObject() const { return pagesObject_; }
  // Behind the page's dictionary.
  void WriteMetadataAgain();

  // Behind the page: the layers' groups, and their names in the resources.
  void WriteOptionalContent(const LayerTable &layers);
  void WriteLayerResources(const LayerTable &layers);

 private:
  void WriteInfo(const platform::LocalMoment &moment, std::string_view title);
  void WriteCatalog();
  void WriteMetadata(std::string_view end);
  void WriteKids(int32_t page);

  ObjectsOut &objects_;
  const WriteOptions &options_;
  int32_t pageIndex_ = kNewDocument;  // where the page goes in `oldPages_`
  std::vector<uint32_t> oldPages_;    // object numbers
  std::string metadata_;              // the packet; empty unless PDF/A
  int32_t metadataObject_ = 0;
  int32_t optionalContentObject_ = 0;
  int32_t pagesObject_ = 0;
  int32_t firstGroupObject_ = 0;  // of the layers' groups, which follow one another
};

}  // namespace kapdf
