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

std::string RowsOf(const Entries &entries) {
  std::string rows;
  for (const auto &[object, entry] : entries) {
    rows += BigEndian(static_cast<unsigned>(entry.type), 1) + BigEndian(entry.second, 4) + BigEndian(entry.third, 2);
  }
  return rows;
}

std::string StreamText(std::string_view entries, std::string_view data) {
  return "<<" + std::string(entries) + " /Length " + std::to_string(data.size()) + ">>\nstream\n" + std::string(data) +
         "\nendstream";
}

}  // namespace

PdfBuilder &PdfBuilder::Object(int number, std::string_view text) {
  parts_.push_back({number, false, std::string(text)});
  return *this;
}

PdfBuilder &PdfBuilder::Stream(int number, std::string_view entries, std::string_view data) {
  parts_.push_back({number, true, StreamText(entries, data)});
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
  const int container = next;
  std::string header, packed;
  unsigned count = 0;
  for (const Part &part : parts_) {
    if (form != XRefForm::kObjectStream || part.isStream) {
      put(part.number, part.text);
      continue;
    }
    header += std::to_string(part.number) + " " + std::to_string(packed.size()) + " ";
    packed += part.text + "\n";
    entries[part.number] = {2, static_cast<unsigned>(container), count++};
  }
  if (count > 0) {
    put(next++, StreamText("/Type /ObjStm /N " + std::to_string(count) + " /First " + std::to_string(header.size()) +
                               " /Filter /FlateDecode",
                           Deflate(header + packed)));
  }
  std::string trailer = trailer_;
  if (!before.empty()) trailer += " /Prev " + std::to_string(LastNumber(before, "startxref"));
  if (form == XRefForm::kClassic) {
    return out + ClassicTable(entries) + "trailer\n<<" + trailer + " /Size " + std::to_string(next) +
           ">>\nstartxref\n" + std::to_string(out.size()) + "\n%%EOF\n";
  }
  entries[next] = {1, out.size(), 0};
  std::string index, rows = RowsOf(entries);
  for (const auto &[first, runLength] : RunsOf(entries))
    index += std::to_string(first) + " " + std::to_string(runLength) + " ";
  trailer = "/W [1 4 2] /Index [" + index + "] " + trailer + " /Size " + std::to_string(next + 1);
  if (form == XRefForm::kStream) return WithXRefStream(out, next, trailer, rows);
  return WithXRefStream(out, next, trailer + " /Filter /FlateDecode /DecodeParms <</Predictor 12 /Columns 7>>",
                        Deflate(PngUpRows(rows, 7)));
}

std::string WithXRefStream(const std::string &body, int number, const std::string &entries, std::string_view rows) {
  return body + std::to_string(number) + " 0 obj\n" + StreamText("/Type /XRef " + entries, rows) +
         "\nendobj\nstartxref\n" + std::to_string(body.size()) + "\n%%EOF\n";
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
