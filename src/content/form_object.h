// Form XObjects: content of their own that a page draws.
#pragma once

#include <memory>

#include "content/content_stream.h"
#include "geometry/affine.h"
#include "raster/raster_object.h"

namespace kapdf {

class CPDFFormObject final : public CPDFXObject {
 public:
  CPDFFormObject(ObjectLocator &objects, int32_t objectNumber) : CPDFXObject(objects), objectNumber_(objectNumber) {}

  // Reads and decodes the stream on the first call. False when that fails; the form is then as good as missing.
  // `page`: a content of the same page.
  bool Load(const CPDFContentStream &page);

  bool tried() const { return tried_; }
  int32_t objectNumber() const { return objectNumber_; }
  // Of a form that was loaded.
  CPDFContentStream &content() const { return *content_; }
  const Affine &matrix() const { return matrix_; }

 private:
  int32_t objectNumber_;
  bool tried_ = false;
  std::unique_ptr<CPDFContentStream> content_;
  Affine matrix_;
};

}  // namespace kapdf
