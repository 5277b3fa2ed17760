// Assembles PDF documents in memory from the texts of their objects, so that a test shows every byte that matters.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kapdf::test {

// How a document says where its objects are.
enum class XRefForm {
  kClassic,       // a table and a trailer
  kStream,        // a cross-reference stream as it stands
  kPackedStream,  // the same with Flate and PNG rows of tag 2
  kObjectStream   // all objects that are no streams in one object stream, with a packed cross-reference stream
};
inline constexpr XRefForm kAllForms[] = {XRefForm::kClassic, XRefForm::kStream, XRefForm::kPackedStream,
                                         XRefForm::kObjectStream};

class PdfBuilder {
 public:
  // What stands between "n 0 obj" and "endobj".
  PdfBuilder &Object(int number, std::string_view text);
  // A stream; `entries` stand in its dictionary, to which "/Length" with the size of the data is added.
  PdfBuilder &Stream(int number, std::string_view entries, std::string_view data);
  // The same with the data deflated here and "/Filter /FlateDecode" added.
  PdfBuilder &FlateStream(int number, std::string_view entries, std::string_view plain);
  // Entries of the trailer besides Size and Prev; "/Root 1 0 R" unless told.
  PdfBuilder &Trailer(std::string_view entries);

  // The whole document. `before`: bytes of a document that this one is appended to as an incremental update.
  std::string Build(XRefForm form = XRefForm::kClassic, std::string_view before = {}) const;

 private:
  struct Part {
    int number;
    bool isStream;
    std::string text;
  };
  std::vector<Part> parts_;
  std::string trailer_ = "/Root 1 0 R";
};

// A document of one page for each content: catalog 1, pages 2, then for page i (from 0) the page 3 + 2 * i and its
// content stream 4 + 2 * i. `pageEntries` go into every page.
PdfBuilder PagesOf(const std::vector<std::string> &contents, std::string_view pageEntries = "/MediaBox [0 0 612 792]");
// The bytes of a document of one page.
std::string OnePage(std::string_view content, std::string_view pageEntries = "/MediaBox [0 0 612 792]",
                    XRefForm form = XRefForm::kClassic);

// A body with a cross-reference stream behind it, which is object `number`, and the end of the file.
std::string WithXRefStream(const std::string &body, int number, const std::string &entries, std::string_view rows);

// A zlib stream.
std::string Deflate(std::string_view plain);
// Rows of `columns` bytes with the PNG tag 2 (each byte as the difference to the row above).
std::string PngUpRows(std::string_view plain, size_t columns);
// The low `width` bytes, most significant first.
std::string BigEndian(unsigned long long value, int width);
// Replaces the first occurrence; the text must be there.
std::string Replaced(std::string text, std::string_view what, std::string_view with);

}  // namespace kapdf::test
