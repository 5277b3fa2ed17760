// The encoding folder beside the module: text files of CMaps, under the names of the encodings and of the maps to
// Unicode.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "fonts/cmap.h"

namespace kapdf {

// Reads each file once and keeps what came of it until it dies; one for a document, not for several threads at a time.
class EncodingFolder {
 public:
  struct Encoding {
    CodeSpaces codeSpaces;
    std::shared_ptr<const CodeTable> table;  // null when the files have no range
  };

  // The folder "fonts/etc/encoding" beside the module.
  EncodingFolder();
  // Another folder, with its trailing separator.
  explicit EncodingFolder(std::u16string folder) : folder_(std::move(folder)) {}

  // The file of that name; one that ends in V adds to the file that ends in H instead. Null when neither can be read.
  // What it points to lives as long as the folder; the table may be shared beyond.
  const Encoding *Find(std::string_view name);

 private:
  bool Read(std::string_view name, CMap &cmap, bool append) const;

  std::u16string folder_;
  std::map<std::string, std::unique_ptr<const Encoding>, std::less<>> found_;  // null for what cannot be read
};

}  // namespace kapdf
