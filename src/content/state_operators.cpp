// Operators of the graphics state other than colours.
#include <cmath>
#include <cstring>

#include "base/limits.h"
#include "content/interpreter.h"

namespace kapdf {
namespace {

constexpr size_t kNameText = 255;
constexpr size_t kDashText = 1023;

}  // namespace

void StateStack::Push(const GraphicsState &state) {
  if (states_.size() < limits::kSavedStates)
    states_.push_back(state);
  else
    ++uncopied_;
}

void StateStack::Pop(GraphicsState &state) {
  if (uncopied_ > 0) {
    --uncopied_;
  } else if (!states_.empty()) {
    state = states_.back();
    states_.pop_back();
  }
}

Flow Interpreter::PushState(const Statement &) {
  stack_.Push(drawing_.state);
  return Flow::kNext;
}

Flow Interpreter::PopState(const Statement &) {
  stack_.Pop(drawing_.state);
  text_.RestoreDecoding();
  return Flow::kNext;
}

Flow Interpreter::ConcatenateMatrix(const Statement &statement) {
  double v[6];
  if (statement.Reals(v, 6) == 6) drawing_.state.ctm = Affine{v[0], v[1], v[2], v[3], v[4], v[5]} * drawing_.state.ctm;
  return Flow::kNext;
}

Flow Interpreter::LineWidth(const Statement &statement) {
  statement.Reals(&drawing_.state.lineWidth, 1);
  return Flow::kNext;
}

// A pattern that is new becomes a line type record; one that was met before only changes the name that elements carry.
// The phase has no effect.
Flow Interpreter::Dash(const Statement &statement) {
  if (*statement.text != '[') return Flow::kNext;
  const char *start = statement.text + 1;
  const char *end = std::strchr(start, ']');
  std::string_view pattern(start, end ? static_cast<size_t>(end - start) : std::strlen(start));
  pattern = pattern.substr(0, kDashText);
  if (pattern.find_first_not_of(' ') == std::string_view::npos) {
    sink_.lineStyle = kContinuous;
    return Flow::kNext;
  }
  const auto [style, isNew] = drawing_.content->lineStyles.Find(pattern);
  sink_.lineStyle = style->name;
  if (!isNew) return Flow::kNext;
  FillLineType(style->pattern, sink_.DefineLineType(style->name));
  return Flow::kRecord;
}

// The parameters that the statement names, from the context at hand or the nearest one around it; null when none has
// them.
const ExtGState *Interpreter::FindState(const Statement &statement) const {
  std::string_view name = statement.Word().substr(0, kNameText);
  if (name.empty()) return nullptr;
  name.remove_prefix(1);  // the slash
  return drawing_.FindOutwards([&](PageResources &resources) { return resources.FindExtGState(name); });
}

Flow Interpreter::StateParameters(const Statement &statement) {
  if (const ExtGState *found = FindState(statement)) {
    drawing_.state.alpha = found->alpha;
    drawing_.state.lineWidth = found->lineWidth;
  }
  return Flow::kNext;
}

Flow Interpreter::StateParametersInText(const Statement &statement) {
  if (const ExtGState *found = FindState(statement)) drawing_.state.alpha = found->alpha;
  return Flow::kNext;
}

}  // namespace kapdf
