// The input is a page of images: its content, and behind lines of "====" objects from number 10 on. One that begins
// with "<<" is a stream: its first line opens the dictionary, which is closed here. Others stand as they are.
// The first byte chooses whether the table of XObjects stands in the page, or behind a reference, where it holds
// stripes.
#include <string>

#include "support/host.h"
#include "support/pdf_builder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size == 0) return 0;
  const std::string_view kBreak = "\n====\n";
  std::string_view rest(reinterpret_cast<const char *>(data) + 1, size - 1);
  const auto next = [&rest, kBreak] {
    const size_t end = rest.find(kBreak);
    const std::string_view piece = rest.substr(0, end);
    rest.remove_prefix(end == rest.npos ? rest.size() : end + kBreak.size());
    return piece;
  };
  kapdf::test::PdfBuilder document = kapdf::test::PagesOf({std::string(next())});
  std::string table;
  for (int number = 10; !rest.empty() && number < 30; ++number) {
    const std::string_view piece = next();
    const size_t line = piece.find('\n');
    if (piece.substr(0, 2) == "<<" && line != piece.npos)
      document.Stream(number, piece.substr(2, line - 2), piece.substr(line + 1));
    else
      document.Object(number, piece);
    table += "/X" + std::to_string(number) + " " + std::to_string(number) + " 0 R";
  }
  document.Object(3, "<</Type /Page /MediaBox [0 0 612 792] /Contents 4 0 R /Resources <</ColorSpace <<" + table +
                         ">> /XObject " + (data[0] % 2 ? "9 0 R" : "<<" + table + ">>") + ">> >>");
  document.Object(9, "<<" + table + ">>");
  kapdf::fuzz::ImportBytes(document.Build());
  return 0;
}
