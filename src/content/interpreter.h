// The interpreter of one page: a pull generator that turns content into element records, one at a time.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/limits.h"
#include "content/content_stream.h"
#include "content/form_object.h"
#include "content/graphics_state.h"
#include "content/inline_raster.h"
#include "content/operators.h"
#include "content/path.h"
#include "content/record_blocks.h"
#include "content/scanner.h"
#include "content/statement.h"
#include "content/text_state.h"
#include "kapdf/kapdf.h"

namespace kapdf {

// What page set-up leaves for the interpreter.
struct PageToRead {
  std::unique_ptr<FontCache> fonts;
  std::unique_ptr<CPDFContentStream> stream;
  Affine baseMatrix;  // content coordinates to page coordinates, points
};

struct InterpreterSettings {
  uint32_t imageFrame = 1;      // handed to the host with every raster
  bool clipping = true;         // points outside the page's box are dropped
  bool convertPoly = true;      // smooth polylines may become circles, arcs and ellipses
  double fitTolerance = 0.002;  // of that recognition
  int32_t codePage = 0;         // of fonts that imply none
  double defaultTextWidth = 1;  // width factor of text before the content tells one
  bool plainStatements =
      true;  // numbers before an operator are taken straight from the content; the result is the same
};

// All state lives here between two calls, so that the depth of the machine's stack never depends on the file. Records
// are filled with millimetres; what they point to stays valid until the next call.
class Interpreter {
 public:
  Interpreter(PageToRead page, const InterpreterSettings &settings);
  ~Interpreter();

  // Fills the record with the next element. 0, or 0xFFFF0004 at the end of the page, then and on every later call.
  uint32_t InterpretNext(ElementRecord &record);

  // Gets the raster of a name ready for its rows: one of the resources at hand or around them, or, for an empty name,
  // the one drawn last. An inline image that waits comes first, whatever the name is. False when there is none or it
  // cannot be read; else the description is filled and `name` is its own one where it was empty.
  bool PrepareRaster(std::string &name, ImageDescription &description);
  // The next row of the raster that was prepared last: 0, 16 after its last row, 2 without one. The row stays valid
  // until the next one is asked for; `bytes` are a run list's own, or the whole row buffer's.
  uint32_t ReadRasterRow(uint8_t *&row, size_t &bytes);
  // Counts a raster that no record has announced.
  void CountRaster() { ++rasterSequence_; }

  // Finished part of the page, or of the raster in delivery, 0 to 1.
  double Fraction() const;

  // ---- handlers of operators, named in the operator table ----
  Flow PushState(const Statement &);
  Flow PopState(const Statement &);
  Flow ConcatenateMatrix(const Statement &);
  Flow LineWidth(const Statement &);
  Flow Dash(const Statement &);
  Flow StateParameters(const Statement &);
  Flow StateParametersInText(const Statement &);
  Flow StrokeRgb(const Statement &);
  Flow StrokeGray(const Statement &);
  Flow StrokeCmyk(const Statement &);
  Flow StrokeColor(const Statement &);
  Flow StrokeColorSpace(const Statement &);
  Flow FillRgb(const Statement &);
  Flow FillRgbInText(const Statement &);
  Flow FillGray(const Statement &);
  Flow FillGrayInText(const Statement &);
  Flow FillCmyk(const Statement &);
  Flow FillCmykInText(const Statement &);
  Flow FillColor(const Statement &);
  Flow FillColorInText(const Statement &);
  Flow FillColorSpace(const Statement &);
  Flow MoveTo(const Statement &);
  Flow LineTo(const Statement &);
  Flow CurveTo(const Statement &);
  Flow CurveFromCurrent(const Statement &);
  Flow CurveToEnd(const Statement &);
  Flow ClosePath(const Statement &);
  Flow Rectangle(const Statement &);
  Flow Fill(const Statement &);
  Flow FillEvenOdd(const Statement &);
  Flow FillStroke(const Statement &);
  Flow FillStrokeEvenOdd(const Statement &);
  Flow CloseFillStroke(const Statement &);
  Flow CloseFillStrokeEvenOdd(const Statement &);
  Flow Stroke(const Statement &);
  Flow CloseStroke(const Statement &);
  Flow DiscardPath(const Statement &);
  Flow BeginText(const Statement &);
  Flow EndText(const Statement &);
  Flow CharSpacing(const Statement &);
  Flow WordSpacing(const Statement &);
  Flow HorizontalScale(const Statement &);
  Flow Leading(const Statement &);
  Flow RenderMode(const Statement &);
  Flow SelectFont(const Statement &);
  Flow MoveText(const Statement &);
  Flow MoveTextSetLeading(const Statement &);
  Flow NextLine(const Statement &);
  Flow TextMatrix(const Statement &);
  Flow ShowText(const Statement &);
  Flow NextLineShow(const Statement &);
  Flow SpacedNextLineShow(const Statement &);
  Flow BeginMarkedContent(const Statement &);
  Flow EndMarkedContent(const Statement &);
  Flow InlineImage(const Statement &);
  Flow PaintXObject(const Statement &);

 private:
  enum class Pass { kStroke, kFill };
  static constexpr int64_t kIdle = -1;
  static constexpr std::u16string_view kDefaultLayer = u"PDF";

  // The loop.
  Flow RunStatements();
  Flow RunOne(bool &ended);
  char *NextText(ScanMode mode);
  Flow Dispatch(uint8_t number, const Statement &statement);

  // Records.
  void FillDefaultRecords();
  void FillLayerBlock(std::u16string_view name, uint32_t color);
  void StartRecord(uint32_t kind, uint32_t color, void *payload, size_t bytes);
  void StartDefinition(uint32_t kind, void *payload, size_t bytes);
  bool EmitPending();
  void EmitStroke();
  bool EmitCurve(std::span<const double> points, double width);
  void EmitCompoundPolygon();
  void FillPolygonRecord(size_t first, size_t end);
  bool EmitPolygon();
  double RecordWidth() const;

  // Points and paths.
  bool TransformPoint(double &x, double &y) const;
  void AppendPoint(double x, double y);
  void StartSubpath();
  void AppendRectangle(const double (&v)[4]);
  bool RebuildRectangle(const Statement &statement);
  void AppendCurve(double (&v)[6]);
  void ReleasePaths();
  bool ContoursTurnBothWays() const;
  Flow StartPainting(Pass pass);
  Flow PaintFill(const Statement &statement, bool compound, bool stroke);

  // Colours.
  static bool ScanRgb(const Statement &statement, uint32_t &packed);
  static bool ScanGray(const Statement &statement, uint32_t &packed);
  static bool ScanCmyk(const Statement &statement, uint32_t &packed);
  bool ScanByKind(const Statement &statement, ColorKind kind, uint32_t &packed) const;
  bool ScanOne(const Statement &statement, uint32_t &packed) const;
  static bool ScanCmykWhole(const Statement &statement, uint32_t &packed);
  Flow SetStroke(ColorKind kind, const Statement &statement);
  Flow SetFill(ColorKind kind, const Statement &statement, uint32_t white);
  void SelectColorSpace(const Statement &statement, ColorKind &kind);
  const ExtGState *FindState(const Statement &statement);

  // Text.
  void StartTextPass();
  void MoveLine(double x, double y);
  FontUse *FindFont(std::string_view name);
  void UseDecoding(const CPDFFontObject *font);
  void RestoreDecoding();
  void Show(const char *at);
  void ShowString(const char *first, const char *end, bool hex);
  void AppendCharacter(char16_t character, double width, double blank);
  bool EmitRun();
  void ChainRecord(ElementRecord &spare);
  void StartTextRecord(TextPiece &piece);

  // XObjects.
  bool LoadForm(CPDFFormObject &form);
  Flow EnterForm(CPDFFormObject &form);
  bool LeaveForm();
  Flow DrawRaster(CPDFRasterObject &raster, std::string_view name, bool fromRoot);
  Flow DrawStripe(CPDFRasterObject &container, std::string_view name);
  Flow DrawSolid(const CPDFRasterObject &raster);
  void StartRaster(const Placement &placement, std::string_view name, uint32_t color);
  double OpacityPercent() const;

  // Inline images.
  bool ReadImageDictionary(InlineImageReader &image);

  std::unique_ptr<FontCache> fonts_;
  std::unique_ptr<CPDFContentStream> page_;
  CPDFContentStream *context_;
  InterpreterSettings settings_;
  GraphicsState state_;
  StateStack stack_;
  OperatorSearch search_;
  char *remainder_ = nullptr;  // of the statement in the context's buffer
  bool defaultsSent_ = false;
  bool ended_ = false;
  std::u16string currentLayer_{kDefaultLayer};
  std::u16string currentLineStyle_ = u"Continuous";  // not part of the saved state

  PathList paths_;
  size_t curvePointsLeft_ = limits::kPageCurvePoints;
  size_t nextPolygon_ = 0;  // the first path that was not handed out as a polygon of its own
  int64_t pendingPaths_ = kIdle;
  Pass pass_ = Pass::kStroke;
  bool compound_ = false;  // contours form one polygon
  bool alsoStroke_ = false;
  bool contoursChecked_ = false;
  bool closeContours_ = false;  // paths go out closed: they were the contours of one polygon before

  TextState text_;

  // The raster in delivery.
  CPDFRasterObject *announced_ = nullptr;  // drawn by the last `Do`
  CPDFRasterObject *raster_ = nullptr;     // prepared
  std::unique_ptr<InlineRaster> inlineRaster_;
  bool inlineWaiting_ = false;
  bool inlinePrepared_ = false;  // the one that waits
  uint32_t inlineCount_ = 0;
  std::vector<uint32_t> row_;
  RasterKind rowKind_ = RasterKind::kInvalid;
  uint32_t rowsDelivered_ = 0;
  uint32_t rasterHeight_ = 0;
  uint32_t rasterSequence_ = 0;

  uint32_t formsEntered_ = 0;
  size_t formContent_ = 0;  // bytes of those
  size_t formsLoaded_ = 0;  // bytes of all that are kept
  uint64_t stripesSeen_ = 0;

  ElementRecord *record_ = nullptr;  // of the call under way
  RecordBlocks blocks_;
};

}  // namespace kapdf
