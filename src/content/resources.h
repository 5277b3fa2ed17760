// What the operators of a content may name, and the line styles that its dashes have made.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "base/settings_table.h"
#include "fonts/font_cache.h"
#include "kapdf/kapdf.h"
#include "pdfmodel/locator.h"
#include "raster/color_space.h"
#include "raster/raster_object.h"

namespace kapdf {

// Graphics state parameters. A value that its dictionary does not hold is 0.
struct ExtGState {
  double alpha = 0;      // `ca`
  double lineWidth = 0;  // `LW`, PDF units
};

struct ResourceSettings {
  bool combineStripes = DefaultOf<bool>("CombineStripes");  // images that share a container and a width are one image
  RasterSettings raster;
  FontCache *fonts = nullptr;  // of the document; must outlive the holders
};

// A font in a holder's table.
struct FontUse {
  std::shared_ptr<const CPDFFontObject> font;
  bool announced = false;  // the host has its definition
};

// Optional content that a holder names.
struct LayerUse {
  std::u16string name;     // at most 255 units
  bool announced = false;  // the host has its definition
};

// The resources of one page or form. Each table is read when something in it is first asked for, and each XObject when
// it is. Lookups give null when this holder has none of that name; the first of equal names counts. What they give
// stays where it is as long as the holder lives.
class PageResources {
 public:
  // `owner`: the page or stream dictionary whose `Resources` counts, or null; it must outlive the object. Resources of
  // the tree above a page are not looked at.
  PageResources(ObjectLocator &objects, const CPDFDictionary *owner, const ResourceSettings &settings)
      : objects_(objects), owner_(owner), settings_(settings) {}

  const ExtGState *FindExtGState(std::string_view name);
  const ColorSpace *FindColorSpace(std::string_view name);
  FontUse *FindFont(std::string_view name);
  LayerUse *FindLayer(std::string_view name);
  // An image, a form, or the container of the stripe of that name. A form is not loaded.
  CPDFXObject *FindXObject(std::string_view name);
  // Images among the XObjects, counted once; for that all of them are read.
  uint32_t RasterCount();

  const ResourceSettings &settings() const { return settings_; }

 private:
  struct XObjectEntry {
    int32_t objectNumber = 0;
    bool tried = false;
    std::unique_ptr<CPDFXObject> object;
  };

  const CPDFDictionary *Dictionary();
  const CPDFDictionary *ColorSpaces();
  void LoadFonts();
  void LoadLayers();
  void LoadXObjects();
  void LoadXObjectsBehind(const CPDFIndirectObject &reference);
  CPDFXObject *Resolve(XObjectEntry &entry, const std::string &name);
  void LoadExtGStates();
  // Nothing when the object is no dictionary or holds neither value.
  std::optional<ExtGState> ReadExtGState(const CPDFIndirectObject &reference);

  ObjectLocator &objects_;
  const CPDFDictionary *owner_;
  ResourceSettings settings_;
  std::unique_ptr<CPDFDictionary> ownDictionary_;  // `Resources` when it came through a reference
  const CPDFDictionary *dictionary_ = nullptr;
  bool dictionaryRead_ = false;
  bool extGStatesRead_ = false;
  std::unordered_map<std::string, ExtGState> extGStates_;
  bool fontsRead_ = false;
  std::unordered_map<std::string, int32_t> fontNumbers_;
  std::unordered_map<std::string, FontUse> fonts_;
  bool layersRead_ = false;
  std::unordered_map<std::string, LayerUse> layers_;
  bool colorSpacesRead_ = false;
  const CPDFDictionary *colorSpaceTable_ = nullptr;
  std::unique_ptr<CPDFObject> ownColorSpaces_;  // when it came through a reference
  std::unordered_map<std::string, std::optional<ColorSpace>> colorSpaces_;
  bool xObjectsRead_ = false;
  std::unordered_map<std::string, XObjectEntry> xObjects_;
  std::unique_ptr<CPDFRasterObject> container_;  // an XObject table that is one image, or images that show as one
  std::unordered_set<std::string> stripeNames_;  // of the container
  std::optional<uint32_t> rasterCount_;
};

// The dash patterns of one content, named in the order in which they came.
class LineStyles {
 public:
  struct Entry {
    std::u16string name;  // "D1", "D2", ...
    std::string pattern;
  };
  // The style of a dash pattern's text, and whether it is new. The pattern is the text between the brackets. The
  // pointer stays valid as long as the object lives.
  std::pair<const Entry *, bool> Find(std::string_view pattern);

 private:
  std::unordered_map<std::string, std::unique_ptr<Entry>> entries_;
};

// Fills a line type's definition from a dash pattern in PDF units: dashes above zero, gaps below. More segments than
// the structure holds are counted and not stored.
void FillLineType(std::string_view pattern, LineTypeDefPayload &lineType);

}  // namespace kapdf
