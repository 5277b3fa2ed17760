// What a document names in its resources and refers to by an object number.
#pragma once

#include <cstdint>
#include <string>

#include "io/base_io.h"

namespace kapdf {

class CPDFResourceObject {
 public:
  virtual ~CPDFResourceObject() = default;
  // "/NAME NUMBER 0 R" and a carriage return. False when the sink did not take it.
  virtual bool WriteReference(CZVBaseIO &sink) const = 0;

  std::string name;  // in the resources; on the reading side each holder has its own
  int32_t objectNumber = 0;

 protected:
  bool WriteNamedReference(CZVBaseIO &sink) const;
};

}  // namespace kapdf
