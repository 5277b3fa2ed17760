// One page on its way through a writing filter.
#pragma once

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "module/module.h"
#include "records/dash_breaker.h"
#include "records/shapes.h"
#include "records/summary.h"
#include "system/progress.h"

namespace kapdf::tool {

// Definitions, as opposed to what is drawn.
bool IsTable(uint32_t kind);
bool IsRaster(uint32_t kind);

// What a page's definitions say that its export itself needs. The first definition of a name counts.
struct Tables {
  std::unordered_map<std::u16string, double> layerWidths;
  std::unordered_map<std::u16string, DashPattern> patterns;

  void Note(const ElementRecord &definition);
  // Of a drawn element: the layer's, unless that leaves it to the element.
  double StrokeWidth(const ElementRecord &element) const;
};

// The sheet for a drawing that covers this box: an A4 one when it is empty, and none without an area.
Box SheetFor(Box drawn);

// Puts records into sections, sends what the module refuses for its line type in dashes, and counts what became of it
// all. Filter and tables are borrowed; the filter must be open.
class PageWriter {
 public:
  PageWriter(Filter &filter, const Tables &tables) : filter_(filter), tables_(tables) {}

  // The section that later records belong to.
  void Enter(int32_t section);
  // Interrupted when the module was asked to stop.
  Outcome Write(ElementRecord &record);
  // A layer that elements stand on without a definition: black, with the elements' own widths.
  void DefineLayer(std::u16string name);

  // A raster's header and rows, ahead of everything drawn. A header that is refused is counted and gives false.
  bool OpenRaster(ElementRecord &header);
  bool WriteRow(ElementRecord &row);
  // Rows that did not come are zero.
  void FillRaster();

  // Count what `Write` does not.
  void Count(uint32_t kind) { written_.Count(kind); }
  void Refuse(uint32_t kind) { refused_.Count(kind); }
  void EndPage();

  const KindCounts &written() const { return written_; }
  const KindCounts &refused() const { return refused_; }
  const KindCounts &drawnPlain() const { return drawnPlain_; }

 private:
  uint32_t Send(ElementRecord &record);
  Outcome WriteInPieces(ElementRecord &record);

  Filter &filter_;
  const Tables &tables_;
  int32_t section_ = 0;
  RasterHeaderPayload raster_{};
  uint32_t rowsLeft_ = 0;
  KindCounts written_, refused_, drawnPlain_;
};

}  // namespace kapdf::tool
