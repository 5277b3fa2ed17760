// Reads the text of a CMap: a ToUnicode stream of a font, or a file of the encoding folder.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "fonts/code_spaces.h"
#include "fonts/code_table.h"

namespace kapdf {

// Not a reader of PostScript: the text is taken line by line, and what does not look like an entry of a block is passed
// over without a word. Codes and targets of more than 16 bits, arrays as targets and usecmap are not understood.
class CMap {
 public:
  // Reads a text, which it cuts up; limits::kCMapText bytes of it count. Code spaces add up over the texts that were
  // read. Ranges do so only with `append`; afterwards they are sorted by target. Answers the number of code spaces.
  size_t Parse(std::string text, bool append);

  const std::vector<CodeRange> &ranges() const { return ranges_; }
  // May be changed or moved from.
  CodeSpaces &codeSpaces() { return codeSpaces_; }
  const CodeSpaces &codeSpaces() const { return codeSpaces_; }

 private:
  std::vector<CodeRange> ranges_;
  CodeSpaces codeSpaces_;
};

}  // namespace kapdf
