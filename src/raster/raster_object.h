// Image XObjects: one image, or a container of stripes that show as one.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/settings_table.h"
#include "pdfmodel/locator.h"
#include "raster/color_space.h"
#include "raster/image_codec.h"
#include "raster/image_rows.h"
#include "raster/placement.h"

namespace kapdf {

// What a name in a page's resources may stand for.
class CPDFXObject {
 public:
  explicit CPDFXObject(ObjectLocator &objects) : objects_(objects) {}
  CPDFXObject(const CPDFXObject &) = delete;
  CPDFXObject &operator=(const CPDFXObject &) = delete;
  virtual ~CPDFXObject() = default;

  std::string name;

 protected:
  ObjectLocator &objects_;
};

// What a host is told before the rows.
struct ImageDescription {
  uint32_t width = 0;
  uint32_t height = 0;
  uint32_t dpi = 0;
  bool invert = false;  // of run lists: the runs are what is not painted
  RasterKind kind = RasterKind::kInvalid;
  PaletteHandle palette;
};

struct RasterSettings {
  bool jbig2 = DefaultOf<bool>("JSupport");
};

class CPDFRasterObject final : public CPDFXObject {
 public:
  CPDFRasterObject(ObjectLocator &objects, const RasterSettings &settings)
      : CPDFXObject(objects), settings_(settings) {}

  // The objects that are being loaded one inside the other; none twice, none too deep.
  struct LoadPath {
    int32_t objectNumber;
    const LoadPath *above;
    uint32_t *stripes;  // loaded so far
  };
  // Reads the dictionary, its masks' or, for a dictionary that is neither image nor form, its stripes'. False when it
  // is something else, perhaps a form, or cannot be read.
  // A mask is an image, and has no mask of its own.
  bool Load(int32_t objectNumber, const LoadPath *above = nullptr, bool isMask = false);

  // Reads what the dictionary says of the samples. False when they cannot be delivered. A second call starts the rows
  // anew.
  bool Prepare();
  // Of a prepared raster.
  ImageDescription Describe() const;
  // Where it is drawn: a matrix from the unit square to points on the page.
  void SetMatrix(const Affine &matrix);
  const Placement &placement() const { return placement_; }
  // The next row of a prepared raster into a buffer of `RowBytes` of its width, aligned for u32; gives the bytes used.
  size_t ReadLine(uint8_t *row);
  static size_t RowBytes(uint32_t width) { return size_t{4} * width + 12; }
  // Back to the first row; memory that only reading needs is given back.
  void Rewind();

  // The name that the image gives itself, empty for none; known once it is prepared.
  const std::string &givenName() const { return givenName_; }
  bool isMask() const { return imageMask_; }
  bool isContainer() const { return !dictionary_ && !stripes_.empty(); }
  std::vector<std::unique_ptr<CPDFRasterObject>> &stripes() { return stripes_; }
  // Of the rows that are delivered.
  uint32_t width() const { return mask_ ? mask_->width_ : turned_ ? height_ : width_; }
  uint32_t height() const { return mask_ ? mask_->height_ : turned_ ? width_ : height_; }

  // Whether a small 1-bit image is all painted or all blank. Decodes it once.
  enum class Solid { kUntested = -1, kNo = 0, kSolid = 1, kBlank = 2 };
  Solid TestSolid();

  bool placed = false;  // of a stripe: it was drawn

 private:
  enum class Prepared { kNotYet, kFailed, kReady };

  // Loading.
  bool LoadImage(const LoadPath &path);
  bool LoadStripes(const LoadPath &path);
  void LoadSoftMask(const LoadPath &path);
  bool FindData();

  // Preparing, in this order.
  bool PrepareImage();
  bool PrepareContainer();
  bool ReadSize();
  bool ReadColorSpace();
  void ReadDecode();
  bool UseCoding();
  bool ReadJpegHeader();
  void ReadMask();
  void ReadColorKey();
  void ChooseMaskedKind();
  RasterKind KindOfSamples() const;
  bool HidesNothing();
  bool RunsAreBlank() const;
  uint32_t Integer(const char *key, uint32_t otherwise) const;

  // Reading.
  bool OpenRows();
  size_t ReadPlainLine(uint8_t *row);
  size_t ReadStripeLine(uint8_t *row);
  size_t ReadTurnedLine(uint8_t *row);
  size_t ReadMaskedLine(uint32_t line, uint8_t *row);
  void FetchImageRow(uint32_t line);
  SampleShape Shape() const;

  RasterSettings settings_;
  std::string givenName_;
  std::unique_ptr<CPDFDictionary> dictionary_;
  std::vector<std::unique_ptr<CPDFRasterObject>> stripes_;
  std::unique_ptr<CPDFRasterObject> mask_;      // the explicit mask, or a soft mask of 1 bit
  std::unique_ptr<CPDFRasterObject> softMask_;  // of more bits: kept, and not used for reading
  PaletteHandle palette_;
  ImageCoding coding_;
  Prepared prepared_ = Prepared::kNotYet;
  Solid solid_ = Solid::kUntested;
  uint32_t width_ = 0, height_ = 0;  // of the coded image
  uint32_t bitsPerComponent_ = 0;
  uint32_t components_ = 1;
  RasterKind codedKind_ = RasterKind::kInvalid;  // without a mask
  RasterKind kind_ = RasterKind::kInvalid;
  bool invert_ = false;
  bool imageMask_ = false;
  bool isMask_ = false;  // of another image
  bool turned_ = false;  // one pixel wide: its column is delivered as a row
  Affine matrix_;
  Placement placement_;

  std::unique_ptr<ImageSource> opened_;
  std::unique_ptr<RowReader> reader_;
  bool failed_ = false;     // the codec could not be opened: the rows are blank
  uint32_t line_ = 0;       // the next one to deliver
  uint32_t imageLine_ = 0;  // of a masked image: rows of the image itself that were read
  size_t stripe_ = 0;
  std::vector<uint8_t> imageRow_, maskRow_;
};

}  // namespace kapdf
