// The page that is written: its dictionary and its content.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "io/codec_flate.h"
#include "writer/images_out.h"
#include "writer/objects_out.h"
#include "writer/page_content.h"
#include "writer/page_layout.h"

namespace kapdf {

// The dictionary stays open until the end of its section; content follows with the first element.
class PageOut {
 public:
  // All are borrowed and must outlive the object.
  PageOut(CZVBaseIO &file, ObjectsOut &objects, const WriteOptions &options, const LayerTable &layers)
      : file_(file),
        objects_(objects),
        options_(options),
        content_(objects.text(), options, layout_, layers, states_) {}

  void LayOut(const FileInfo &info);
  const PageLayout &layout() const { return layout_; }

  // Its number, given out here; the dictionary follows.
  int32_t Reserve() { return object_ = objects_.Reserve(); }
  void OpenDictionary(int32_t parent);
  void CloseDictionary();
  bool dictionaryOpen() const { return dictionaryOpen_; }

  // Puts the element's layer and colour in force; starts the content with the first one.
  void Select(const ElementRecord &record);
  PageContent &content() { return content_; }
  // True while what is written goes through the content's codec.
  bool compressing() const { return compressor_ != nullptr; }
  // The codec goes away unfinished, and what follows of the content stands in the file as plain text.
  void StopCompressing();
  // Ends the content. A page without any shows the images that wait, each at its place.
  void End(const PlacementTable &placements);
  bool ended() const { return ended_; }

  // Behind the page, in this order.
  TextOut &BeginResources() { return objects_.BeginReserved(resourcesObject_); }
  void WriteStateResources();
  void WriteStates();

 private:
  void OpenContent();
  void CloseContent();
  void WriteEmptyContent();
  void WriteImagesContent(const PlacementTable &placements);
  void BeginPlainContent();

  CZVBaseIO &file_;
  ObjectsOut &objects_;
  const WriteOptions &options_;
  PageLayout layout_;
  TransparencyTable states_;
  std::vector<int32_t> stateObjects_;
  PageContent content_;
  std::unique_ptr<CZVFlate> compressor_;  // of open content
  int64_t contentStart_ = 0;              // position behind the line of the keyword; 0: no open content

  int32_t object_ = 0;
  int32_t resourcesObject_ = 0;
  int32_t contentsObject_ = 0;
  int32_t lengthObject_ = 0;
  bool dictionaryOpen_ = false;
  bool ended_ = false;
};

}  // namespace kapdf
