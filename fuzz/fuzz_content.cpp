// The input is the content of a page: its first byte chooses how it is cut into streams and the page's rotation, the
// rest are statements.
#include <string>

#include "support/host.h"
#include "support/pdf_builder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size == 0) return 0;
  const unsigned choice = data[0];
  const std::string_view content(reinterpret_cast<const char *>(data) + 1, size - 1);
  const size_t streams = choice % 3 + 1;
  kapdf::test::PdfBuilder document = kapdf::test::PagesOf({""});
  std::string contents;
  for (size_t i = 0; i < streams; ++i) {
    const size_t from = content.size() * i / streams, to = content.size() * (i + 1) / streams;
    const int number = static_cast<int>(10 + i);
    document.Stream(number, "", content.substr(from, to - from));
    contents += std::to_string(number) + " 0 R ";
  }
  document.Object(3, "<</Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] /Rotate " +
                         std::to_string(choice / 3 % 4 * 90) +
                         " /Resources <</ExtGState <</A 6 0 R /B 5 0 R>>>> /Contents [" + contents + "]>>");
  document.Object(6, "<</Type /ExtGState /ca 0.5 /LW 2>>");
  document.Object(5, "<</Type /ExtGState /LW 1e30>>");
  kapdf::fuzz::Require(kapdf::fuzz::ImportBytes(document.Build()) == 0, "the document opens");
  return 0;
}
