// The images of the document that is written: rasters of the host, and where they are wanted.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "io/base_io.h"
#include "writer/objects_out.h"
#include "writer/placements.h"
#include "writer/raster_out.h"

namespace kapdf {

// One image is open at a time; its rows go straight to the file. What it lacks when something else is written, it
// never gets.
class ImagesOut {
 public:
  struct Plan {
    RasterShape shape;
    RasterCoding coding;
  };

  // All are borrowed and must outlive the object.
  ImagesOut(CZVBaseIO &file, ObjectsOut &objects, const WriteSettings &settings)
      : file_(file), objects_(objects), settings_(settings) {}

  // How a header's raster is written; nothing for a form that cannot be.
  std::optional<Plan> PlanOf(const ElementRecord &header) const;
  // The rows of the raster can come. One that is open already ends here, and its name goes to the new one. False for
  // colours that are never written.
  bool Open(Plan plan);
  // `FilterNoRasterOpen`, or what RasterOut says of the row; the last one ends the image.
  uint32_t AddRow(const ElementRecord &record);
  void CutShort();
  bool open() const { return raster_.has_value(); }
  // Finished part of the rows, 0.0 to 1.0, and 1.0 behind the last one.
  double fraction() const { return fraction_; }

  PlacementTable &placements() { return placements_; }
  const PlacementTable &placements() const { return placements_; }
  // The images' part of the page's resources.
  void WriteResources();

 private:
  void WritePalette(const std::vector<uint8_t> &colors);
  bool WriteForm(const Plan &plan, int32_t paletteObject);
  void End();

  CZVBaseIO &file_;
  ObjectsOut &objects_;
  const WriteSettings &settings_;
  PlacementTable placements_;
  std::optional<RasterOut> raster_;  // that rows are awaited for
  int32_t finished_ = 0;
  int32_t lengthObject_ = 0;
  int64_t start_ = 0;
  double fraction_ = 1;
};

}  // namespace kapdf
