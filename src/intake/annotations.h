// The annotations of a page as a screen shows them.
#pragma once

#include <qpdf/QPDF.hh>
#include <string>
#include <vector>

namespace kapdf {

// An appearance that is drawn, and the content that draws it under the name it was given.
struct Appearance {
  std::string name;
  QPDFObjectHandle form;
  std::string content;
};

// In the order of the page, those that are not hidden. Text and choice fields without an appearance get one.
std::vector<Appearance> ShownAnnotations(QPDF &pdf, QPDFObjectHandle page, int32_t rotate);

}  // namespace kapdf
