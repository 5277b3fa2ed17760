#include "support/pdf_builder.h"

#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>

namespace kapdf::test {
namespace {

struct Entry {
  int type = 0;  // as in cross-reference streams: 0 free, 1 at a position, 2 in an object stream
  size_t second = 0;
  unsigned third = 0;
};
using Entries = std::map<int, Entry>;

// The number behind the last occurrence of a word, 0 when there is none.
long LastNumber(std::string_view text, std::string_view word) {
  const size_t at = text.rfind(word);
  return at == std::string_view::npos ? 0 : std::atol(std::string(text.substr(at + word.size(), 20)).c_str());
}

// Runs of consecutive numbers as (first, count).
std::vector<std::pair<int, int>> RunsOf(const Entries &entries) {
  std::vector<std::pair<int, int>> runs;
  for (const auto &[number, entry] : entries) {
    if (runs.empty() || runs.back().first + runs.back().second != number) runs.emplace_back(number, 0);
    ++runs.back().second;
  }
  return runs;
}

std::string ClassicTable(const Entries &entries) {
  std::string text = "xref\n";
  for (const auto &[first, count] : RunsOf(entries)) {
    text += std::to_string(first) + " " + std::to_string(count) + "\n";
    for (int i = first; i < first + count; ++i) {
      const Entry &entry = entries.at(i);
      char line[32];
      std::snprintf(line, sizeof line, "%010u %05d %c \n", static_cast<unsigned>(entry.second), entry.type ? 0 : 65535,
                    entry.type ? 'n' : 'f');
      text += line;
    }
  }
  return text;
}

std::string XRefStream(int number, const Entries &entries, std::string_view trailer, bool packed) {
  std::string index, rows;
  for (const auto &[first, count] : RunsOf(entries)) index += std::to_string(first) + " " + std::to_string(count) + " ";
  for (const auto &[object, entry] : entries) {
    rows += BigEndian(static_cast<unsigned>(entry.type), 1) + BigEndian(entry.second, 4) + BigEndian(entry.third, 2);
  }
  if (packed) rows = Deflate(PngUpRows(rows, 7));
  return std::to_string(number) + " 0 obj\n<</Type /XRef /W [1 4 2] /Index [" + index + "] " + std::string(trailer) +
         (packed ? " /Filter /FlateDecode /DecodeParms <</Predictor 12 /Columns 7>>" : "") + " /Length " +
         std::to_string(rows.size()) + ">>\nstream\n" + rows + "\nendstream\nendobj\n";
}

}  // namespace

PdfBuilder &PdfBuilder::Object(int number, std::string_view text) {
  parts_.push_back({number, false, std::string(text)});
  return *this;
}

PdfBuilder &PdfBuilder::Stream(int number, std::string_view entries, std::string_view data) {
  parts_.push_back({number, true,
                    "<<" + std::string(entries) + " /Length " + std::to_string(data.size()) + ">>\nstream\n" +
                        std::string(data) + "\nendstream"});
  return *this;
}

PdfBuilder &PdfBuilder::FlateStream(int number, std::string_view entries, std::string_view plain) {
  return Stream(number, std::string(entries) + " /Filter /FlateDecode", Deflate(plain));
}

PdfBuilder &PdfBuilder::Trailer(std::string_view entries) {
  trailer_ = entries;
  return *this;
}

std::string PdfBuilder::Build(XRefForm form, std::string_view before) const {
  std::string out = before.empty() ? "%PDF-1.7\n%\xE2\xE3\xCF\xD3\n" : std::string(before);
  int next = static_cast<int>(std::max(LastNumber(before, "/Size "), 1L));
  for (const Part &part : parts_) next = std::max(next, part.number + 1);
  Entries entries;
  if (before.empty()) entries[0] = {};
  const auto put = [&](int number, std::string_view text) {
    entries[number] = {1, out.size(), 0};
    out += std::to_string(number) + " 0 obj\n" + std::string(text) + "\nendobj\n";
  };
  std::vector<std::pair<int, std::string>> packed;
  for (const Part &part : parts_) {
    if (form == XRefForm::kObjectStream && !part.isStream)
      packed.emplace_back(part.number, part.text);
    else
      put(part.number, part.text);
  }
  if (!packed.empty()) {
    const int container = next++;
    const auto [text, first] = PackObjects(packed);
    const std::string data = Deflate(text);
    put(container, "<</Type /ObjStm /N " + std::to_string(packed.size()) + " /First " + std::to_string(first) +
                       " /Filter /FlateDecode /Length " + std::to_string(data.size()) + ">>\nstream\n" + data +
                       "\nendstream");
    for (size_t i = 0; i < packed.size(); ++i) {
      entries[packed[i].first] = {2, static_cast<unsigned>(container), static_cast<unsigned>(i)};
    }
  }
  std::string trailer = trailer_;
  if (!before.empty()) trailer += " /Prev " + std::to_string(LastNumber(before, "startxref"));
  const size_t start = out.size();
  if (form == XRefForm::kClassic) {
    out += ClassicTable(entries) + "trailer\n<<" + trailer + " /Size " + std::to_string(next) + ">>\n";
  } else {
    const int number = next++;
    entries[number] = {1, start, 0};
    out += XRefStream(number, entries, trailer + " /Size " + std::to_string(next), form != XRefForm::kStream);
  }
  return out + "startxref\n" + std::to_string(start) + "\n%%EOF\n";
}

PdfBuilder PagesOf(const std::vector<std::string> &contents, std::string_view pageEntries) {
  PdfBuilder builder;
  std::string kids;
  for (size_t i = 0; i < contents.size(); ++i) kids += std::to_string(3 + 2 * i) + " 0 R ";
  builder.Object(1, "<</Type /Catalog /Pages 2 0 R>>");
  builder.Object(2, "<</Type /Pages /Count " + std::to_string(contents.size()) + " /Kids [" + kids + "]>>");
  for (size_t i = 0; i < contents.size(); ++i) {
    const int page = 3 + 2 * static_cast<int>(i);
    builder.Object(page, "<</Type /Page /Parent 2 0 R /Contents " + std::to_string(page + 1) + " 0 R " +
                             std::string(pageEntries) + ">>");
    builder.Stream(page + 1, "", contents[i]);
  }
  return builder;
}

std::string OnePage(std::string_view content, std::string_view pageEntries, XRefForm form) {
  return PagesOf({std::string(content)}, pageEntries).Build(form);
}

ObjectStreamText PackObjects(const std::vector<std::pair<int, std::string>> &objects) {
  std::string header, body;
  for (const auto &[number, text] : objects) {
    header += std::to_string(number) + " " + std::to_string(body.size()) + " ";
    body += text + "\n";
  }
  return {header + body, header.size()};
}

std::string Deflate(std::string_view plain) {
  uLongf size = compressBound(static_cast<uLong>(plain.size()));
  std::string coded(size, '\0');
  if (compress(reinterpret_cast<Bytef *>(coded.data()), &size, reinterpret_cast<const Bytef *>(plain.data()),
               static_cast<uLong>(plain.size())) != Z_OK) {
    std::abort();
  }
  coded.resize(size);
  return coded;
}

std::string PngUpRows(std::string_view plain, size_t columns) {
  std::string rows;
  for (size_t i = 0; i < plain.size(); ++i) {
    if (i % columns == 0) rows += '\2';
    rows += static_cast<char>(plain[i] - (i < columns ? 0 : plain[i - columns]));
  }
  return rows;
}

std::string BigEndian(unsigned long long value, int width) {
  std::string text;
  for (int i = width - 1; i >= 0; --i) text += static_cast<char>(value >> (8 * i));
  return text;
}

std::string Replaced(std::string text, std::string_view what, std::string_view with) {
  const size_t at = text.find(what);
  if (at == std::string::npos) std::abort();
  return text.replace(at, what.size(), with);
}

}  // namespace kapdf::test
