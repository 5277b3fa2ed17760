// The content context: one content with the resources that its operators name.
#pragma once

#include <memory>

#include "content/content_bytes.h"
#include "content/resources.h"
#include "content/statement_reader.h"
#include "pdfmodel/page_tree.h"

namespace kapdf {

// One per page content and per form.
class CPDFContentStream {
 public:
  // Of a page. `owner`: its dictionary; `diagnostics`: write each decoded stream to a file of its own.
  CPDFContentStream(ObjectLocator &objects, std::unique_ptr<CPDFDictionary> owner, const ResourceSettings &settings,
                    bool diagnostics);
  // Of a form with its decoded content. `owner`: the form's dictionary; `page`: a content of the same page, with which
  // it shares the place for statements.
  CPDFContentStream(ObjectLocator &objects, std::unique_ptr<CPDFDictionary> owner, ByteBuffer content,
                    int32_t objectNumber, const CPDFContentStream &page);

  // Reading goes on there; nothing is kept of what was read before.
  void SetPosition(size_t position);
  // Of a form: whether it, or the form of one of the contexts around it, is that object; and how many are around it.
  bool IsActive(int32_t objectNumber) const;
  int Depth() const;

 private:
  std::unique_ptr<CPDFDictionary> owner_;
  int32_t objectNumber_ = -1;  // of a form

 public:
  ContentBytes bytes;
  StatementReader statements;
  PageResources resources;
  LineStyles lineStyles;
  PageBox clipBox;                      // points, after the matrix
  double opacity = 1.0;                 // product of the alphas of the drawing contexts
  CPDFContentStream *parent = nullptr;  // of a form: the context that draws it
  size_t markedContent = 0;             // levels that were open when reading began
};

}  // namespace kapdf
