// A filter as a host holds it.
#pragma once

#include <memory>

#include "filter/filter.h"

namespace kapdf::test {

struct FilterDestroyer {
  void operator()(CPDFFilter *filter) const { filter->Destroy(1); }
};
using FilterPointer = std::unique_ptr<CPDFFilter, FilterDestroyer>;

}  // namespace kapdf::test
