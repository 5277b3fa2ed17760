// The input, cut at zeros: a font dictionary, a descendant's, a descriptor's, then a map to Unicode, a map to glyphs
// and, zeros included, a program. The font is object 10, the others follow.
#include <cmath>

#include "fonts/font_cache.h"
#include "support/host.h"
#include "support/opened_pdf.h"
#include "support/pdf_builder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  using namespace kapdf;
  std::string_view rest(reinterpret_cast<const char *>(data), size);
  test::PdfBuilder builder = test::PagesOf({""});
  const auto cut = [&] {
    const std::string_view part = rest.substr(0, rest.find('\0'));
    rest.remove_prefix(std::min(part.size() + 1, rest.size()));
    return part;
  };
  for (int number = 10; number < 13; ++number) builder.Object(number, cut());
  for (int number = 13; number < 15; ++number) builder.Stream(number, "", cut());
  test::OpenedPdf pdf(builder.Stream(15, "", rest).Build());
  FontSettings settings;
  settings.useEmbeddedFonts = size % 2 != 0;
  settings.useUnicodeMap = size % 3 != 0;
  FontCache cache(pdf.file.objects(), settings);
  const auto font = cache.Get(10);
  if (!font) return 0;
  uint32_t sum = 0;
  for (uint32_t code = 0; code < 0x10000; ++code) {
    fuzz::Require(std::isfinite(font->Width(code)), "widths are finite");
    sum += font->Character(code) + font->MappedCharacter(static_cast<uint8_t>(code));
  }
  fuzz::Require(font->look().heightRatio > 0 && std::isfinite(font->look().heightRatio), "the height ratio is one");
  const auto *bytes = static_cast<const uint8_t *>(font->definition());
  size_t length = font->definitionSize() & ~CPDFFontObject::kMappingMark;
  if (font->programSize() & CPDFFontObject::kMappingMark) length += CPDFFontObject::kMappingBytes;
  for (size_t i = 0; i < length; ++i) sum += bytes[i];
  volatile uint32_t read = sum;
  static_cast<void>(read);
  return 0;
}
