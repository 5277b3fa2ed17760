// The loop of the interpreter and the records of a page's first call.
#include "content/interpreter.h"

namespace kapdf {

Interpreter::Interpreter(PageToRead page, const InterpreterSettings &settings)
    : fonts_(std::move(page.fonts)),
      page_(std::move(page.stream)),
      drawing_{settings, page_.get(), {}},
      colors_(drawing_),
      paths_(drawing_, sink_),
      text_(drawing_, sink_),
      rasters_(drawing_, sink_, *page_) {
  drawing_.state.ctm = page.baseMatrix;
}

Interpreter::~Interpreter() = default;

uint32_t Interpreter::InterpretNext(ElementRecord &record) {
  sink_.Begin(record);
  if (!defaultsSent_) {
    DefineDefaults();
    return FilterOk;
  }
  // Painting comes back here: a path operator leaves its paths in the list, and each call hands out one of them.
  for (;;) {
    if (paths_.HandOut()) return FilterOk;
    if (ended_) return FilterEndOfElements;
    if (RunStatements() == Flow::kRecord) return FilterOk;
  }
}

// The default line type and, chained to it, the default layer.
void Interpreter::DefineDefaults() {
  defaultsSent_ = true;
  sink_.DefineLineType(kContinuous);
  sink_.Chain(sink_.blocks().spare);
  sink_.DefineLayer(kDefaultLayer, KAPDF_COLOR_BLACK);
}

// Inside a text object statements are read in a mode of their own, and only the operators with a handler for it act.
// What follows a form starts like a call: a text object that the form left open takes up the state that came back.
// What follows a form starts like a call: a text object that the form left open takes up the state that came back.
Flow Interpreter::RunStatements() {
  do {
    if (text_.active()) text_.StartPass();
    paths_.ForgetDroppedPaint();
    for (bool ended = false; !ended;) {
      const Flow flow = RunOne(ended);
      if (flow != Flow::kNext) return flow;
    }
  } while (LeaveForm());
  ended_ = true;
  rasters_.ForgetInline();
  return Flow::kNext;
}

Flow Interpreter::RunOne(bool &ended) {
  const ReadingRules &rules = drawing_.settings.rules;
  StatementReader &statements = drawing_.content->statements;
  const bool inText = text_.active(), plain = drawing_.settings.plainStatements;
  Statement statement;
  if (rules.lexed)
    ended = !statements.NextLexed(plain, statement);
  else
    ended = !statements.Next(inText ? ScanMode::kText : ScanMode::kGraphics, plain && !inText, statement);
  if (ended || !statement.row) return Flow::kNext;
  OperatorHandler handler = inText ? statement.row->inside : statement.row->outside;
  if (!handler && inText && rules.allOperatorsInText) handler = statement.row->outside;
  return handler ? handler(*this, statement) : Flow::kNext;
}

double Interpreter::Fraction() const {
  const double raster = rasters_.Fraction();
  return raster >= 0 ? raster : page_->bytes.Fraction();
}

}  // namespace kapdf
