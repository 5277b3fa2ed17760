// Painting XObjects.
#include <cstring>

#include "base/limits.h"
#include "content/interpreter.h"

namespace kapdf {
// The context at hand comes first, then the page's own.
Flow Interpreter::PaintXObject(const Statement &statement) {
  const char *slash = std::strchr(statement.text, '/');
  if (!slash) return Flow::kNext;
  const std::string name(std::string_view(slash + 1)
                             .substr(0, std::strcspn(slash + 1, " "))
                             .substr(0, drawing_.settings.rules.xObjectName));
  rasters_.ForgetAnnounced();
  for (CPDFContentStream *context = drawing_.content;; context = page_.get()) {
    CPDFXObject *found = context->resources.FindXObject(name);
    const bool fromRoot = context != drawing_.content;
    if (auto *form = dynamic_cast<CPDFFormObject *>(found)) {
      if (LoadForm(*form)) return EnterForm(*form);
    } else if (auto *raster = dynamic_cast<CPDFRasterObject *>(found)) {
      return raster->isContainer() ? rasters_.DrawStripe(*raster, name) : rasters_.Draw(*raster, name, fromRoot);
    }
    if (context == page_.get()) return Flow::kNext;
  }
}

// The contents of all forms that were loaded stay in memory.
bool Interpreter::LoadForm(CPDFFormObject &form) {
  if (form.tried()) return form.Load(*page_);
  if (forms_.loaded >= limits::kDecodedStream || !form.Load(*page_)) return false;
  forms_.loaded += form.content().bytes.length();
  return true;
}

// What is left of the statement is read behind the form.
Flow Interpreter::EnterForm(CPDFFormObject &form) {
  if (drawing_.content->IsActive(form.objectNumber()) || drawing_.content->Depth() >= limits::kFormDepth)
    return Flow::kNext;
  CPDFContentStream &content = form.content();
  if (++forms_.entered > limits::kFormsPerPage || forms_.content + content.bytes.length() > limits::kFormContent)
    return Flow::kNext;
  forms_.content += content.bytes.length();
  drawing_.content->statements.Suspend();
  stack_.Push(drawing_.state);
  drawing_.state.ctm = form.matrix() * drawing_.state.ctm;
  content.parent = drawing_.content;
  content.clipBox = drawing_.content->clipBox;
  content.opacity = drawing_.state.alpha * drawing_.content->opacity;
  content.markedContent = outerLayers_.size();
  content.SetPosition(0);
  drawing_.content = &content;
  drawing_.state.alpha = 1.0;
  return Flow::kNext;
}

// At the end of a form's content: one state comes back, also when the form has left others behind. False on the page.
bool Interpreter::LeaveForm() {
  if (!drawing_.content->parent) return false;
  CPDFContentStream *around = drawing_.content->parent;
  EndLayersOf(*drawing_.content);
  drawing_.content->SetPosition(0);
  drawing_.content->parent = nullptr;
  drawing_.content = around;
  around->statements.Resume();
  stack_.Pop(drawing_.state);
  return true;
}

}  // namespace kapdf
