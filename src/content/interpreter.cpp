// The loop of the interpreter and the records of a page's first call.
#include "content/interpreter.h"

#include <cstring>

#include "content/scanner.h"

namespace kapdf {

void CopyName(char16_t (&field)[256], std::u16string_view name) {
  const size_t length = name.copy(field, 255);
  field[length] = 0;
}

void InitializeRecord(ElementRecord &record) {
  std::memset(&record, 0, sizeof record);
  record.color = KAPDF_COLOR_BY_LAYER;
}

Interpreter::Interpreter(PageToRead page, const InterpreterSettings &settings)
    : fonts_(std::move(page.fonts)), page_(std::move(page.stream)), context_(page_.get()), settings_(settings) {
  state_.ctm = page.baseMatrix;
  InitializeRecord(blocks_.spare);
}

Interpreter::~Interpreter() = default;

uint32_t Interpreter::InterpretNext(ElementRecord &record) {
  record_ = &record;
  record.section = KAPDF_SECTION_DRAWING;
  if (!defaultsSent_) {
    FillDefaultRecords();
    return FilterOk;
  }
  // Painting comes back here: a path operator leaves its paths in the list, and each call hands out one of them.
  for (;;) {
    if (EmitPending()) return FilterOk;
    if (ended_) return FilterEndOfElements;
    if (RunStatements() == Flow::kRecord) return FilterOk;
  }
}

// The default line type and, chained to it, the default layer.
void Interpreter::FillDefaultRecords() {
  defaultsSent_ = true;
  blocks_.lineTypeName = u"Continuous";
  blocks_.lineType = {};
  blocks_.lineType.name = blocks_.lineTypeName.data();
  StartDefinition(ElemLineTypeDef, &blocks_.lineType, sizeof blocks_.lineType);
  CopyName(record_->styleName, currentLineStyle_);

  FillLayerBlock(currentLayer_, KAPDF_COLOR_BLACK);
  ElementRecord *first = record_;
  InitializeRecord(blocks_.spare);
  record_ = &blocks_.spare;
  StartDefinition(ElemLayerDef, &blocks_.layer, sizeof blocks_.layer);
  record_->color = blocks_.layer.color;
  CopyName(record_->layerName, currentLayer_);
  record_ = first;
  record_->next = &blocks_.spare;
}

void Interpreter::FillLayerBlock(std::u16string_view name, uint32_t color) {
  static char16_t continuous[] = u"Continuous";
  blocks_.layerName = name;
  blocks_.layer = {};
  blocks_.layer.name = blocks_.layerName.data();
  blocks_.layer.lineType = continuous;
  blocks_.layer.color = color;
  blocks_.layer.width = -2.0;
}

void Interpreter::StartRecord(uint32_t kind, uint32_t color, void *payload, size_t bytes) {
  ElementRecord &record = *record_;
  record.kind = kind;
  record.flags = 0;
  record.color = color;
  record.payload = payload;
  record.payloadBytes = static_cast<uint32_t>(bytes);
  record.reserved2 = 0;
  record.section = KAPDF_SECTION_DRAWING;
  record.next = nullptr;
  CopyName(record.layerName, currentLayer_);
  CopyName(record.styleName, currentLineStyle_);
}

void Interpreter::StartDefinition(uint32_t kind, void *payload, size_t bytes) {
  StartRecord(kind, KAPDF_COLOR_BY_LAYER, payload, bytes);
  record_->section = KAPDF_SECTION_TABLES;
  record_->layerName[0] = 0;
  record_->styleName[0] = 0;
}

// Inside a text object statements are read in a mode of their own, and only the operators with a handler for it act.
// What follows a form starts like a call: a text object that the form left open takes up the state that came back.
Flow Interpreter::RunStatements() {
  do {
    if (text_.active) StartTextPass();
    compound_ = alsoStroke_ = false;
    for (bool ended = false; !ended;) {
      const Flow flow = RunOne(ended);
      if (flow != Flow::kNext) return flow;
    }
  } while (LeaveForm());
  ended_ = true;
  inlineWaiting_ = false;
  return Flow::kNext;
}

// One statement. A plain one is taken from where it stands; any other goes through the statement buffer.
Flow Interpreter::RunOne(bool &ended) {
  PlainStatement plain;
  if (!remainder_ && !text_.active && settings_.plainStatements && context_->ReadPlain(plain)) {
    return Dispatch(plain.number, Statement{nullptr, &plain});
  }
  const bool fromContent = remainder_ == nullptr;
  const ScanMode mode = text_.active ? ScanMode::kText : ScanMode::kGraphics;
  char *text = NextText(mode);
  if (!text) {
    ended = true;
    return Flow::kNext;
  }
  search_.from = fromContent ? context_->keptLength() : 0;
  if (search_.from == 0) search_.within = OperatorSearch::Within::kNothing;
  const uint8_t number = FindOperator(text, remainder_, search_);
  if (number == 0) {
    // A line end may have broken a statement inside an operand: the line behind it is read together with it. Where
    // there is none, the statement is dropped.
    if (*text) context_->RejoinLine(text, search_.from, mode);
    return Flow::kNext;
  }
  while (*text == ' ') ++text;
  return Dispatch(number, Statement{text, nullptr});
}

char *Interpreter::NextText(ScanMode mode) {
  if (!remainder_) return context_->ReadStatement(mode);
  char *text = remainder_;
  remainder_ = nullptr;
  return text;
}

Flow Interpreter::Dispatch(uint8_t number, const Statement &statement) {
  const OperatorHandler handler = text_.active ? HandlerInside(number) : HandlerOutside(number);
  return handler ? (this->*handler)(statement) : Flow::kNext;
}

}  // namespace kapdf
