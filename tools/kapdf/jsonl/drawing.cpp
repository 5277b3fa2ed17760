#include "jsonl/drawing.h"

#include "jsonl/json_line.h"
#include "jsonl/record_reader.h"

namespace kapdf::tool {
namespace {

constexpr uint32_t kFormVersion = 1;

// What a header line tells besides the extents is for people and for other programs.
std::optional<std::string> ReadHeader(JsonLine &line, std::optional<Box> &extents) {
  uint32_t version = 0;
  if (!ReadU32(*line.Find("kapdf"), version) || version != kFormVersion) {
    return "this program reads version 1 of the form only";
  }
  for (const char *key : {"file", "page", "pages", "comment"}) line.Find(key);
  extents.reset();
  if (const JsonValue *value = line.Find("extents"); value != nullptr) {
    double box[4];
    if (!ReadBox(*value, box)) return "\"extents\" takes [xmin, ymin, xmax, ymax]";
    extents = Box{box[0], box[1], box[2], box[3]};
    if (extents->empty()) return "\"extents\" has its corners the wrong way round";
  }
  const JsonValue *unused = line.Unused();
  if (unused != nullptr) return "the header has no \"" + unused->key + "\"";
  return std::nullopt;
}

}  // namespace

Outcome ReadDrawing(std::istream &in, const std::string &name, std::optional<int> page, Drawing &drawing) {
  JsonLine line;
  std::string text, fault;
  int pages = 0;
  std::optional<Box> extents;
  for (size_t number = 1; std::getline(in, text); ++number) {
    std::string_view words = text;
    if (number == 1 && words.starts_with("\xEF\xBB\xBF")) words.remove_prefix(3);
    if (words.find_first_not_of(" \t\r") == std::string_view::npos) continue;
    const auto at = [&](const std::string &what) {
      std::string sentence = "line " + std::to_string(number);
      sentence.append(" of ").append(name).append(": ").append(what);
      return Fail(std::move(sentence));
    };
    if (!line.Parse(words, fault)) return at(fault);
    if (line.Find("kapdf") != nullptr) {
      ++pages;
      if (const auto wrong = ReadHeader(line, extents)) return at(*wrong);
      if (page.value_or(1) == pages) drawing.extents = extents;
      continue;
    }
    if (pages == 0) pages = 1;
    Record record;
    if (const auto wrong = ReadRecord(line, drawing.names, record)) return at(*wrong);
    if (page.value_or(1) == pages) drawing.records.push_back(std::move(record));
  }
  if (in.bad()) return Fail("cannot read " + name + " to its end");
  if (pages == 0) return Fail(name + " holds no drawing: it has no lines");
  if (page && (*page < 1 || *page > pages)) return NoSuchPage(name, *page, pages);
  if (!page && pages > 1) {
    return Fail(name + " has " + std::to_string(pages) + " pages; choose one with --page");
  }
  return {};
}

}  // namespace kapdf::tool
