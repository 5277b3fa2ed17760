// Announces images by their place and delivers their rows when the host asks for them.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "content/drawing_context.h"
#include "content/inline_raster.h"
#include "content/operators.h"
#include "content/record_sink.h"

namespace kapdf {

class RasterDelivery {
 public:
  // `page`: the page's own content.
  RasterDelivery(const DrawingContext &drawing, RecordSink &sink, CPDFContentStream &page)
      : drawing_(drawing), sink_(sink), page_(page) {}

  // `Do` names something: nothing is announced by it yet.
  void ForgetAnnounced() { announced_ = nullptr; }
  // An image of the resources. `fromRoot`: it was found on the page itself from inside a form.
  Flow Draw(CPDFRasterObject &raster, std::string_view name, bool fromRoot);
  // One stripe of an image that comes in several.
  Flow DrawStripe(CPDFRasterObject &container, std::string_view name);
  // An inline image is announced and waits for its rows; one that waited before is forgotten.
  Flow DrawInline(std::unique_ptr<InlineRaster> image);
  void ForgetInline() { inlineWaiting_ = false; }

  // The interface of the interpreter, which tells more.
  bool Prepare(std::string &name, ImageDescription &description);
  uint32_t ReadRow(uint8_t *&row, size_t &bytes);
  void CountRaster() { ++sequence_; }
  // Finished part of the raster in delivery, 0 to 1; less than 0 when there is none.
  double Fraction() const;

 private:
  Flow DrawSolid(const CPDFRasterObject &raster);
  void StartPlacement(const Placement &placement, std::string_view name, uint32_t color);

  const DrawingContext &drawing_;
  RecordSink &sink_;
  CPDFContentStream &page_;
  CPDFRasterObject *announced_ = nullptr;  // drawn by the last `Do`
  CPDFRasterObject *raster_ = nullptr;     // prepared
  std::unique_ptr<InlineRaster> inline_;
  bool inlineWaiting_ = false;
  bool inlinePrepared_ = false;  // the one that waits
  uint32_t inlineCount_ = 0;
  std::vector<uint32_t> row_;
  RasterKind rowKind_ = RasterKind::kInvalid;
  uint32_t rowsDelivered_ = 0;
  uint32_t height_ = 0;
  uint32_t sequence_ = 0;
  uint64_t stripesSeen_ = 0;
};

}  // namespace kapdf
