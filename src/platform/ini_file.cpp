#include "platform/ini_file.h"

#include <algorithm>

namespace kapdf::platform {
namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

bool SameText(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return Lower(x) == Lower(y); });
}

// True for the section itself and for what lies below it.
bool IsWithin(std::string_view section, std::string_view top) {
  return SameText(section.substr(0, top.size()), top) && (section.size() == top.size() || section[top.size()] == '\\');
}

std::string_view Trim(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

bool IsQuoted(std::string_view text) { return text.size() >= 2 && text.front() == '"' && text.back() == '"'; }

}  // namespace

IniFile::Line IniFile::Read(std::string_view text, std::string &section) {
  Line line{.text = std::string(text), .section = {}, .name = {}, .value = {}};
  const std::string_view content = Trim(text);
  if (content.size() >= 2 && content.front() == '[' && content.back() == ']') {
    section = Trim(content.substr(1, content.size() - 2));
  } else if (!content.starts_with(';') && !content.starts_with('#')) {
    const size_t equals = content.find('=');
    if (equals != std::string_view::npos) {
      line.name = Trim(content.substr(0, equals));
      const std::string_view value = Trim(content.substr(equals + 1));
      line.value = IsQuoted(value) ? value.substr(1, value.size() - 2) : value;
    }
  }
  line.section = section;
  return line;
}

IniFile IniFile::Parse(std::string_view text) {
  IniFile file;
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  std::string section;
  while (!text.empty()) {
    const size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    if (line.ends_with('\r')) {
      line.remove_suffix(1);
      file.lineEnd_ = "\r\n";
    }
    file.lines_.push_back(Read(line, section));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return file;
}

std::string IniFile::Text() const {
  std::string text;
  for (const Line &line : lines_) text.append(line.text).append(lineEnd_);
  return text;
}

std::optional<std::string_view> IniFile::Find(std::string_view section, std::string_view name) const {
  if (name.empty()) return std::nullopt;
  for (auto line = lines_.rbegin(); line != lines_.rend(); ++line) {
    if (SameText(line->name, name) && SameText(line->section, section)) return line->value;
  }
  return std::nullopt;
}

bool IniFile::Set(std::string_view section, std::string_view name, std::string_view value) {
  const auto fits = [](std::string_view text) {
    return text.find_first_of(std::string_view("\r\n\0", 3)) == text.npos;
  };
  if (Trim(name).empty() || name.find_first_of("=[;#") != name.npos || !fits(section) || !fits(name) || !fits(value)) {
    return false;
  }
  // Quotation marks keep blanks at the ends, and keep a value that has some of its own.
  const bool quote = Trim(value) != value || IsQuoted(value);
  std::string text = std::string(name) + '=' + (quote ? '"' + std::string(value) + '"' : std::string(value));

  size_t behind = 0;  // the last line of the section that says something
  for (size_t i = lines_.size(); i-- > 0;) {
    if (!SameText(lines_[i].section, section)) continue;
    if (SameText(lines_[i].name, name)) {
      lines_[i].text = std::move(text);
      lines_[i].value = value;
      return true;
    }
    if (behind == 0 && !Trim(lines_[i].text).empty()) behind = i + 1;
  }
  std::string current(section);
  if (behind == 0) {
    if (!lines_.empty()) lines_.push_back({});
    lines_.push_back(Read('[' + current + ']', current));
    behind = lines_.size();
  }
  lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(behind), Read(text, current));
  return true;
}

void IniFile::RemoveTree(std::string_view section) {
  std::erase_if(lines_, [&](const Line &line) { return IsWithin(line.section, section); });
}

}  // namespace kapdf::platform
