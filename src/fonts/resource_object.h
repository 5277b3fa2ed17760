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

  // In the resources. On the reading side, where holders share fonts and have names of their own for them: the name
  // that the object gives itself; may be empty.
  std::string name;
  int32_t objectNumber = 0;

 protected:
  bool WriteNamedReference(CZVBaseIO &sink) const;
};

}  // namespace kapdf
