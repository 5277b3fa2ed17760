#include "fonts/resource_object.h"

namespace kapdf {

bool CPDFResourceObject::WriteNamedReference(CZVBaseIO &sink) const {
  const std::string text = "/" + name + " " + std::to_string(objectNumber) + " 0 R\r";
  return sink.Write(text.data(), text.size()) == text.size();
}

}  // namespace kapdf
