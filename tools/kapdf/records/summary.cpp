#include "records/summary.h"

#include "records/kinds.h"

namespace kapdf::tool {

std::string KindCounts::Tell() const {
  std::string out;
  for (const auto &[code, count] : counts_) {
    if (!out.empty()) out += ", ";
    const Kind *kind = FindKind(code);
    out += std::to_string(count) + " ";
    if (kind == nullptr) {
      out += "of unknown kind " + std::to_string(code);
    } else if (count == 1) {
      // "ellipse arcs" without its s; the words of the file have no blanks.
      const std::string many = kind->many;
      out += many == "properties" ? "property" : many.substr(0, many.size() - 1);
    } else {
      out += kind->many;
    }
  }
  return out.empty() ? "nothing" : out;
}

}  // namespace kapdf::tool
