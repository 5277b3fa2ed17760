// A page that the outside renderer has made a picture of: a filter of the host reads the picture, and the text that
// belongs to it follows.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "filter/options.h"
#include "kapdf/kapdf.h"
#include "renderer/hidden_text.h"

namespace kapdf {

// What the host gave to `OpenRead`; its filter for the picture gets the same.
struct PictureHost {
  ProgressObject *progress;
  const char16_t *options;
  FilterContext *context;
  FilterCreateFunction create;
  const char16_t *registryPath;
};

// Outlives the document's end, until the next one or the end of the filter.
class RenderedPage {
 public:
  RenderedPage() = default;
  RenderedPage(const RenderedPage &) = delete;
  RenderedPage &operator=(const RenderedPage &) = delete;
  ~RenderedPage() { Drop(); }

  // Has the picture of the page `info.pageIndex` made and its filter opened; the result is that of `OpenRead`. After a
  // failure the caller drops the page.
  uint32_t Open(std::u16string_view source, FileInfo &info, const ImportOptions &options, const PictureHost &host);
  // False when there is nothing to read from, or no more.
  bool Read(ElementRecord &record, uint32_t &result);
  // The host's filter; sections go to it as long as there is one.
  FilterObject *subFilter() const { return subFilter_; }
  // Closes and destroys the host's filter and removes the picture.
  void Drop();

 private:
  bool ReadPicture(ElementRecord &record, uint32_t &result);
  uint32_t ReadHiddenText(ElementRecord &record);
  void DropSubFilter();

  std::u16string sourcePath_;  // as the host gave it
  int32_t colorDepth_ = 0;     // that the picture was made with
  std::string picturePath_;    // empty for none
  FilterObject *subFilter_ = nullptr;
  FilterDestroyFunction subFilterDestroy_ = nullptr;
  HiddenText hiddenText_;
  size_t hiddenTextIndex_ = 0;
  TextPayload hiddenTextPayload_{};
  std::u16string hiddenTextUnits_;
};

// Asks the renderer for the number of pages. False when it is not to be asked.
bool CountRenderedPages(std::u16string_view path, FileInfo &info, uint32_t &result);

}  // namespace kapdf
