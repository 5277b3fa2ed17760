// Georeferences of pages in all forms, and damaged ones.
#include "pdfmodel/georeference.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "base/bytes.h"
#include "support/opened_pdf.h"
#include "support/pdf_builder.h"

namespace kapdf::test {
namespace {

// What differs from a block that tells a page's system is there and nothing of it: offset and value.
std::string Told(const CoordinateSystemBlock &block) {
  uint8_t plain[1720] = {};
  const std::pair<size_t, int32_t> start[] = {{0, 768},   {4, 1720}, {8, 3},       {240, -1},  {656, -1},
                                              {1064, -1}, {860, -1}, {1296, 9102}, {1692, -1}, {1712, 2}};
  for (const auto &[at, value] : start) StoreAs(plain + at, value);
  StoreAs(plain + 216, 1.0);
  std::memset(plain + 1696, 255, 16);
  uint8_t bytes[1720];
  static_assert(sizeof block == sizeof bytes);
  std::memcpy(bytes, &block, sizeof bytes);
  std::string text;
  for (size_t at = 0; at < sizeof bytes; at += 4) {
    const bool real = (at >= 1272 && at < 1296) || (at >= 1576 && at < 1656);
    char value[64];
    if (real)
      std::snprintf(value, sizeof value, " %zu=%.8g", at, LoadAs<double>(bytes + at));
    else
      std::snprintf(value, sizeof value, " %zu=%d", at, LoadAs<int32_t>(bytes + at));
    if (std::memcmp(bytes + at, plain + at, real ? 8 : 4) != 0) text += value;
    at += real ? 4 : 0;
  }
  return text.empty() ? text : text.substr(1);
}

std::string ReadFrom(const std::string &entries) {
  OpenedPdf pdf(PdfBuilder()
                    .Object(1, "<</Type /Catalog /Pages 2 0 R>>")
                    .Object(2, "<</Type /Pages /Kids [3 0 R]>>")
                    .Object(3, "<</Type /Page " + entries + ">>")
                    .Object(4, "<</Projection <</Type /Projection /Datum (NAS-C)>> >>")
                    .Object(5, "[<</Projection <</Type /Projection /Datum (EUR)>> >> <</CTM [1]>>]")
                    .Build());
  uint8_t firstChar;
  CPDFDictionary page(pdf.file);
  if (!OpenObject(pdf.file.objects(), 3, firstChar) || page.Parse(firstChar) != 0) return "no page";
  const auto georeference = ReadGeoreference(pdf.file.objects(), page);
  if (!georeference) return "none";
  std::string text = georeference->system ? Told(*georeference->system) : "no system";
  if (georeference->matrix) {
    text += " ctm";
    for (const double value : *georeference->matrix) text += " " + FormatNumber(value);
  }
  return text;
}

TEST(Georeference, IsReadInAllFormsAndWithDamage) {
  const std::string lambert = "656=9802 860=6326 1512=6 1516=8801 1520=8802 1524=8823 1528=8824 1532=8806 1536=8807";
  const struct {
    std::string page, told;
  } cases[] = {
      {"/Rotate 90", "none"},
      {"/LGIDict 7", "none"},
      {"/LGIDict []", "none"},
      {"/LGIDict [4 0 R]", "none"},
      {"/LGIDict 99 0 R", "none"},
      {"/LGIDict 4 0 R", "860=6267"},
      {"/LGIDict 5 0 R", "860=6230"},
      {"/LGIDict [<</CTM [(2) 0.5 0 (-3) 10 (x)]>> <</CTM [9]>>]", "no system ctm 2 0.5 0 -3 10 0"},
      {"/LGIDict <</CTM [7 (1e999) /A]>>", "no system ctm 7 0 0 0 0 0"},
      {"/LGIDict <</CTM 4>>", "no system"},
      {"/LGIDict <</Registration 5 /Projection [] /Display <</Type /Projection /Datum (WE)>> >>", "860=6326"},
      {"/LGIDict <</Projection <</Type /Datum>> /Display <</Type /Projection>> >>", "no system"},
      {"/LGIDict <</Projection <</Type (Projection)>> >>", "no system"},
  };
  for (const auto &c : cases) EXPECT_EQ(ReadFrom(c.page), c.told) << c.page;

  const struct {
    std::string system, told;
  } systems[] = {
      {"/ProjectionType (TC) /OriginLatitude (-45) /CentralMeridian 9 /ScaleFactor (0.9996) /FalseEasting 500000 "
       "/FalseNorthing (-1e3 m) /Zone 32",
       "656=9807 860=6326 1512=5 1516=8801 1520=8802 1524=8805 1528=8806 1532=8807 1576=-0.78539816 1584=0.15707963 "
       "1592=0.9996 1600=500000 1608=-1000"},
      {"/ProjectionType (LE)", lambert},
      {"/ProjectionType (LE) /StandardParallelOne /Name /StandardParallelTwo [45] /FalseEasting (1e999)", lambert},
      {"/ProjectionType (PG) /LongitudeDownFromPole 180 /LatitudeOfTrueScale (90)",
       "656=9829 860=6326 1512=4 1516=8806 1520=8807 1524=8832 1528=8833 1592=3.1415927 1600=1.5707963"},
      {"/ProjectionType (NT)", "656=9811 860=6326"},
      {"/ProjectionType (UT) /Zone 32 /Hemisphere (N)", "860=6326"},  // no method, so no parameters either
      {"/ProjectionType (SPCS) /Zone 1", "860=6326"},
      {"/ProjectionType (NONE)", "860=6326"},
      {"/ProjectionType (tc)", "860=6326"},
      {"/ProjectionType /TC", "860=6326"},
      {"/Datum (NAR-B)", "860=6269"},
      {"/Datum (ARF)", "860=6209"},
      {"/Datum (EU)", "860=6326"},
      {"/Datum 12", "860=6326"},
      {"/Datum <<>>", "860=6326"},
      {"/Datum <</Ellipsoid (WD)>>", "1064=7043"},
      {"/Datum <</Ellipsoid (BR)>>", "1064=7004"},
      {"/Datum <</Ellipsoid (WE1)>>", ""},
      {"/Datum <</Ellipsoid /WE>>", "860=6326"},
      {"/Datum <</Ellipsoid <</SemiMajorAxis (6378137.5) /InvFlattening 298.25 /SemiMinorAxis 6356752>> >>",
       "1272=6378137.5 1280=298.25 1288=6356752"},
  };
  for (const auto &c : systems) {
    EXPECT_EQ(ReadFrom("/LGIDict <</Projection <</Type /Projection " + c.system + ">> >>"), c.told) << c.system;
  }
}

TEST(Georeference, NumbersAndTexts) {
  const std::pair<double, std::string> numbers[] = {
      {0, "0"},
      {-0.0, "0"},
      {0.5, "0.5"},
      {72 / 25.4, "2.834645669291339"},
      {1 / 3., "0.333333333333333"},
      {-1e-7, "-0.0000001"},
      {1234567890123456, "1234567890123456"},
      {-123456789012345.5, "-123456789012345.5"},
      {1e22, "10000000000000000000000"},
      {std::numeric_limits<double>::infinity(), "0"},
  };
  for (const auto &[value, text] : numbers) EXPECT_EQ(FormatNumber(value), text);
  EXPECT_EQ(FormatNumber(std::numeric_limits<double>::denorm_min()).size(), 340u);
  EXPECT_EQ(FormatString(u"m\u00e9\u4e00", 1252), "<6de93f>");
  EXPECT_EQ(FormatString(u"a(b)<c>[d]\\", 0), "(a\\(b\\)\\<c\\>\\[d\\]\\)");
}

}  // namespace
}  // namespace kapdf::test
