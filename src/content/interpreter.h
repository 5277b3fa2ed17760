// The interpreter of one page: a pull generator that turns content into element records, one at a time.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "content/color_operators.h"
#include "content/drawing_context.h"
#include "content/form_object.h"
#include "content/operators.h"
#include "content/path_painter.h"
#include "content/raster_delivery.h"
#include "content/record_sink.h"
#include "content/text_show.h"
#include "kapdf/kapdf.h"

namespace kapdf {

// What page set-up leaves for the interpreter.
struct PageToRead {
  std::unique_ptr<FontCache> fonts;
  std::unique_ptr<CPDFContentStream> stream;
  Affine baseMatrix;  // content coordinates to page coordinates, points
};

// A loop over statements with parts that do the work. All state lives here and in the parts between two calls, so that
// the depth of the machine's stack never depends on the file. Records are filled with millimetres; what they point to
// stays valid until the next call.
class Interpreter {
 public:
  Interpreter(PageToRead page, const InterpreterSettings &settings);
  ~Interpreter();

  // Fills the record with the next element. 0, or 0xFFFF0004 at the end of the page, then and on every later call.
  uint32_t InterpretNext(ElementRecord &record);

  // Gets the raster of a name ready for its rows: one of the resources at hand or around them, or, for an empty name,
  // the one drawn last. An inline image that waits comes first, whatever the name is. False when there is none or it
  // cannot be read; else the description is filled and `name` is its own one where it was empty.
  bool PrepareRaster(std::string &name, ImageDescription &description) { return rasters_.Prepare(name, description); }
  // The next row of the raster that was prepared last: 0, 16 after its last row, 2 without one. The row stays valid
  // until the next one is asked for; `bytes` are a run list's own, or the whole row buffer's.
  uint32_t ReadRasterRow(uint8_t *&row, size_t &bytes) { return rasters_.ReadRow(row, bytes); }
  // Counts a raster that no record has announced.
  void CountRaster() { rasters_.CountRaster(); }

  // Finished part of the page, or of the raster in delivery, 0 to 1.
  double Fraction() const;

  // ---- handlers of operators; those of colours, paths and text are with their parts ----
  Flow PushState(const Statement &);
  Flow PopState(const Statement &);
  Flow ConcatenateMatrix(const Statement &);
  Flow LineWidth(const Statement &);
  Flow Dash(const Statement &);
  Flow StateParameters(const Statement &);
  Flow StateParametersInText(const Statement &);
  Flow BeginMarkedContent(const Statement &);
  Flow BeginUnnamedContent(const Statement &);
  Flow EndMarkedContent(const Statement &);
  Flow InlineImage(const Statement &);
  Flow PaintXObject(const Statement &);

  // The part that handlers of its class belong to.
  template <class T>
  T &Part() {
    if constexpr (std::is_same_v<T, ColorOperators>) return colors_;
    if constexpr (std::is_same_v<T, PathPainter>) return paths_;
    if constexpr (std::is_same_v<T, TextShow>) return text_;
    if constexpr (std::is_same_v<T, Interpreter>) return *this;
  }

 private:
  Flow RunStatements();
  Flow RunOne(bool &ended);
  void DefineDefaults();
  const ExtGState *FindState(const Statement &statement) const;
  bool LoadForm(CPDFFormObject &form);
  Flow EnterForm(CPDFFormObject &form);
  bool LeaveForm();
  bool ReadImageDictionary(InlineImageReader &image);
  bool ReadLexedImage(InlineImageReader &image);
  void EnterMarkedContent();
  void EndLayersOf(const CPDFContentStream &content);

  std::unique_ptr<FontCache> fonts_;
  std::unique_ptr<CPDFContentStream> page_;
  DrawingContext drawing_;
  StateStack stack_;
  RecordSink sink_;
  ColorOperators colors_;
  PathPainter paths_;
  TextShow text_;
  RasterDelivery rasters_;
  std::vector<std::u16string> outerLayers_;  // of the marked content that is open, where it nests
  struct {
    uint32_t entered = 0;
    size_t content = 0;  // bytes of those
    size_t loaded = 0;   // bytes of all that are kept
  } forms_;
  bool defaultsSent_ = false;
  bool ended_ = false;
};

}  // namespace kapdf
