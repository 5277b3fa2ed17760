#include "intake/page_list.h"

#include <exception>

#include "base/limits.h"

namespace kapdf {
namespace {

bool IsPage(QPDFObjectHandle object) {
  return object.isDictionary() && !object.hasKey("/Kids") &&
         (object.isDictionaryOfType("/Page") || (object.hasKey("/Contents") && object.hasKey("/Resources")));
}

// Every page object of the file, whether a tree leads to it or not.
std::vector<QPDFObjectHandle> LoosePages(QPDF &pdf) {
  std::vector<QPDFObjectHandle> pages;
  for (QPDFObjectHandle &object : pdf.getAllObjects()) {
    if (pages.size() < limits::kPages && IsPage(object)) pages.push_back(object);
  }
  return pages;
}

}  // namespace

std::vector<QPDFObjectHandle> ListPages(QPDF &pdf) {
  try {
    std::vector<QPDFObjectHandle> pages = pdf.getAllPages();
    if (pages.size() > limits::kPages) pages.resize(limits::kPages);
    if (!pages.empty()) return pages;
  } catch (const std::bad_alloc &) {
    throw;
  } catch (const std::exception &) {
    // no tree at all: look for its leaves
  }
  try {
    return LoosePages(pdf);
  } catch (const std::bad_alloc &) {
    throw;
  } catch (const std::exception &) {
    return {};
  }
}

}  // namespace kapdf
