// Georeferences of pages in all forms, and damaged ones.
#include "pdfmodel/georeference.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <sstream>

#include "base/bytes.h"
#include "support/opened_pdf.h"
#include "support/pdf_builder.h"

namespace kapdf::test {
namespace {

// What differs from a block that tells nothing of a page's system: offset and value.
std::string Told(const CoordinateSystemBlock &block) {
  uint8_t plain[1720] = {}, bytes[1720];
  const int32_t start[][2] = {{0, 768},  {4, 1720},  {8, 3},       {240, -1},  {656, -1},
                              {860, -1}, {1064, -1}, {1296, 9102}, {1692, -1}, {1712, 2}};
  for (const auto &[at, value] : start) StoreAs(plain + at, value);
  StoreAs(plain + 216, 1.0);
  std::memset(plain + 1696, 255, 16);
  std::memcpy(bytes, &block, sizeof bytes);
  std::ostringstream text;
  for (size_t at = 0, step; at < sizeof bytes; at += step) {
    step = (at >= 1272 && at < 1296) || (at >= 1576 && at < 1656) ? 8 : 4;  // reals, all else are words
    if (std::memcmp(bytes + at, plain + at, step) == 0) continue;
    text << at << '=';
    if (step == 4) text << LoadAs<int32_t>(bytes + at) << ' ';
    if (step == 8) text << FormatNumber(LoadAs<double>(bytes + at)) << ' ';
  }
  return text.str();
}

std::string ReadFrom(const std::string &entries) {
  OpenedPdf pdf(PagesOf({""}, entries)
                    .Object(5, "<</Projection <</Type /Projection /Datum (NAS-C)>> >>")
                    .Object(7, "<</Type /Projection /ProjectionType (MC) /FalseEasting 9 0 R>>")
                    .Object(8, "[1 0 0 (1) 9 0 R 4]")
                    .Object(9, "2.5")
                    .Object(6, "[<</Projection <</Type /Projection /Datum (EUR)>> >> <</CTM [1]>>]")
                    .Build());
  uint8_t firstChar;
  CPDFDictionary page(pdf.file);
  if (!OpenObject(pdf.file.objects(), 3, firstChar) || !page.Parse(firstChar)) return "no page";
  const auto georeference = ReadGeoreference(pdf.file.objects(), page);
  if (!georeference) return "none ";
  std::string text = georeference->system ? Told(*georeference->system) : "no system ";
  if (!georeference->matrix) return text;
  for (const double value : *georeference->matrix) text += FormatNumber(value) + " ";
  return text + "ctm ";
}

// What is read, and from which entries of a page or, behind a colon, of its coordinate system.
constexpr char kCases[] = R"(none <= /Rotate 90 | /LGIDict 7 | /LGIDict [] | /LGIDict [99 0 R] | /LGIDict 99 0 R
860=6267 <= /LGIDict 5 0 R | /LGIDict [5 0 R 6 0 R]
656=9804 860=6326 1512=5 1516=8801 1520=8802 1524=8805 1528=8806 1532=8807 1600=2.5 1 0 0 1 2.5 4 ctm <= /LGIDict <</Projection 7 0 R /CTM 8 0 R>> | /LGIDict <</Projection 99 0 R /Display 7 0 R /CTM 8 0 R>>
860=6230 <= /LGIDict 6 0 R
no system 2 0.5 0 -3 10 0 ctm <= /LGIDict [<</CTM [(2) 0.5 0 (-3) 10 (x)]>> <</CTM [9]>>]
no system 7 0 0 0 0 0 ctm <= /LGIDict <</CTM [7 (1e999) /A]>>
no system <= /LGIDict <</CTM 4>> | /LGIDict <</Projection <</Type /Datum>> /Display <</Type /Projection>> >>
860=6326 <= /LGIDict <</Registration 5 /Projection [] /Display <</Type /Projection /Datum (WE)>> >>
860=6326 <= :/ProjectionType (UT) /Zone 32 | :/ProjectionType (NONE) | :/ProjectionType /TC | :/Datum (EU) | :/Datum <<>>
860=6269 <= :/Datum (NAR-B)
1064=7043 <= :/Datum <</Ellipsoid (WD)>>
656=9811 <= :/Datum <</Ellipsoid (WE1)>> /ProjectionType (NT)
1272=6378137.5 1280=298.25 1288=6 <= :/Datum <</Ellipsoid <</SemiMajorAxis (6378137.5) /InvFlattening 298.25 /SemiMinorAxis 6>> >>
656=9807 860=6326 1512=5 1516=8801 1520=8802 1524=8805 1528=8806 1532=8807 1576=-0.785398163397448 1592=0.9996 1600=5 1608=-1000 <= :/ProjectionType (TC) /OriginLatitude (-45) /ScaleFactor (0.9996) /FalseEasting 5 /FalseNorthing (-1e3 m)
656=9802 860=6326 1512=6 1516=8801 1520=8802 1524=8823 1528=8824 1532=8806 1536=8807 <= :/ProjectionType (LE) /StandardParallelOne /A /FalseEasting (1e999)
656=9829 860=6326 1512=4 1516=8806 1520=8807 1524=8832 1528=8833 1592=3.141592653589793 <= :/ProjectionType (PG) /LongitudeDownFromPole 180
)";

TEST(Georeference, IsReadInAllFormsAndWithDamage) {
  std::istringstream cases(kCases);
  for (std::string line; std::getline(cases, line);) {
    const std::string told = line.substr(0, line.find("<= "));
    for (size_t at = told.size() + 3, end = 0; end != std::string::npos; at = end + 3) {
      end = line.find(" | ", at);
      std::string entries = line.substr(at, end - at);
      if (entries[0] == ':') entries = "/LGIDict <</Projection <</Type /Projection " + entries.substr(1) + ">> >>";
      EXPECT_EQ(ReadFrom(entries), told) << entries;
    }
  }
}

TEST(Georeference, NumbersAndTexts) {
  const double values[] = {-0.0, 0.5, 72 / 25.4, -1e-7, 1234567890123456, -123456789012345.5, 1e17, HUGE_VAL, 5e-324};
  std::string text;
  for (const double value : values) text += FormatNumber(value).substr(0, 20) + " ";
  EXPECT_EQ(text,
            "0 0.5 2.834645669291339 -0.0000001 1234567890123456 -123456789012345.5 100000000000000000 0 "
            "0.000000000000000000 ");
  EXPECT_EQ(FormatString(u"m\u00e9\u4e00", 1252), "<6de93f>");
  EXPECT_EQ(FormatString(u"a(b)<c>[d]\\", 0), "(a\\(b\\)\\<c\\>\\[d\\]\\)");
}

}  // namespace
}  // namespace kapdf::test
