// Settings as lines of text: [section], name=value, comments from ; or #. May be written by hand.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kapdf::platform {

// Sections and names are compared without regard to the case of ASCII letters, as the registry does. A section is a key
// path with backslashes; one that stands twice is read as one; of a name that stands twice the last counts.
class IniFile {
 public:
  // UTF-8, with or without a byte order mark, any line ends. Lines that make no sense are kept and never found.
  static IniFile Parse(std::string_view text);
  std::string Text() const;

  // The value without blanks around it, and without one pair of quotation marks. Valid until the next change.
  std::optional<std::string_view> Find(std::string_view section, std::string_view name) const;
  // Changes or adds one line and keeps all others. False when name or value cannot stand in a line.
  bool Set(std::string_view section, std::string_view name, std::string_view value);
  // Removes the section and those below it, with the comments inside.
  void RemoveTree(std::string_view section);

 private:
  struct Line {
    std::string text;  // as it stands, without its end
    std::string section;
    std::string name;  // empty: no value in this line
    std::string value;
  };

  static Line Read(std::string_view text, std::string &section);

  std::vector<Line> lines_;
  std::string lineEnd_ = "\n";
};

}  // namespace kapdf::platform
