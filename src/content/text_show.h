// Text objects: where the pen stands, how bytes become characters, and the runs of characters that leave.
#pragma once

#include <string_view>

#include "content/drawing_context.h"
#include "content/operators.h"
#include "content/record_sink.h"
#include "content/statement.h"
#include "content/text_state.h"

namespace kapdf {

class TextShow {
 public:
  TextShow(DrawingContext &drawing, RecordSink &sink) : drawing_(drawing), sink_(sink) {}

  // Between BT and ET.
  bool active() const { return text_.active; }
  // The host has taken the runs of the last call.
  void StartPass();
  // After `Q`: bytes are decoded by the font that the restored state names.
  void RestoreDecoding();

  // ---- handlers of operators ----
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

 private:
  void MoveLine(double x, double y);
  FontUse *FindFont(std::string_view name) const;
  void UseDecoding(const CPDFFontObject *font);
  void Show(const char *at);
  void ShowString(const char *first, const char *end, bool hex);
  void AppendCharacter(char16_t character, double width, double blank);
  bool EmitRun();
  void StartTextRecord(TextPiece &piece);
  void AnnounceHiddenLayer();

  DrawingContext &drawing_;
  RecordSink &sink_;
  TextState text_;
};

}  // namespace kapdf
