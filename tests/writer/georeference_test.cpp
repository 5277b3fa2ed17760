// Coordinate systems in the page's dictionary: their exact bytes, and what an outside reader makes of them.
#include "pdfmodel/georeference.h"

#include <array>
#include <bit>
#include <cstdlib>
#include <limits>
#include <numbers>

#include "sheet.h"

namespace kapdf {
namespace {

using namespace std::string_literals;

uint32_t Put(Sheet &sheet, const CoordinateSystemBlock &block) {
  std::u16string name = u"CoordSys", value;
  for (const uint8_t byte : std::bit_cast<std::array<uint8_t, sizeof block>>(block)) {
    value += u"0123456789abcdef"[byte >> 4];
    value += u"0123456789ABCDEF"[byte & 15];
  }
  return sheet.Draw(ElemNamedProperty, NamedPropertyPayload{name.data(), 32, value.data()});
}

// What stands in the dictionary of a page behind its transparency group. The sheet is moved to the origin.
std::string PageWith(const Workspace &workspace, const CoordinateSystemBlock &block) {
  Sheet sheet(workspace, u"geo.pdf", 300210);
  sheet.info().xmin = 300000;
  sheet.writer().Start(sheet.info());
  EXPECT_EQ(Put(sheet, block), FilterOk);
  sheet.writer().EndSection(2);
  EXPECT_EQ(Put(sheet, block), FilterConsumed) << "the dictionary is closed";
  return Between(sheet.Layer(u"A").Finish(), "/S /Transparency >>\r", ">>\rendobj");
}

CoordinateSystemBlock MakeBlock(int32_t id, std::initializer_list<double> values) {
  CoordinateSystemBlock block = MakeCoordinateSystem(1, 1.0);
  block.projectionId = id;
  block.epsgCode = 32632;
  std::ranges::copy(values, block.paramValues);
  std::u16string_view(u"metre").copy(block.unitName, 101);
  block.semiMajorAxis = 6378137;
  block.invFlattening = 298.257223563;
  return block;
}

constexpr double kDegree = std::numbers::pi / 180;

TEST(Georeference, IsWrittenToTheByte) {
  const Workspace workspace;
  CoordinateSystemBlock none = MakeCoordinateSystem(1, 1.0), empty = none, scaled = none, method = none;
  empty.systemClass = 3;
  scaled.scale = std::numeric_limits<double>::quiet_NaN();
  method.methodCode = 9807;
  const CoordinateSystemBlock mercator = MakeBlock(1, {0, -20 * kDegree, 0.9996, 500000, 0});
  EXPECT_EQ(PageWith(workspace, mercator), "") << "nothing unless it is asked for";
  workspace.pdf().WriteInteger(u"GeoTiff", 1);

  const std::string head =
                        "/LGIDict <</Type /LGIDict\n/Version (2.1)\n"
                        "/CTM [(0.352777777777778) (0) (0) (0.352777777777778) (299998) (-2)]\n",
                    emptyForm = head +
                                "/Projection\n<</Type /Projection\n/ProjectionType (NONE)>>\n"
                                "/Display\n<</Type /Projection\n/ProjectionType (NONE)>>\n\0\0/>>\n"s,
                    datum =
                        "/Datum << /Ellipsoid << /SemiMajorAxis (6378137) /InvFlattening (298.257223563)\n/ToWGS84\n"
                        "<< /dx (0.0) /dy (0.0) /dz (0.0)>>\n>>\n>>\n\n>>\n";
  const auto full = [&](const std::string &type) {
    const std::string system = "<</Type /Projection\n" + type + "/Units (<6d65747265>)\n" + datum;
    return head + "/Projection\n" + system + "/Display\n" + system + ">>\n";
  };
  const struct {
    CoordinateSystemBlock block;
    std::string written;
  } cases[] = {
      {none, ""},
      {empty, emptyForm},
      {scaled, emptyForm},
      {method, emptyForm},
      {mercator, full("/ProjectionType (MC)\n/OriginLatitude (0)\n/CentralMeridian (-20)\n/ScaleFactor (0.9996)\n"
                      "/FalseEasting (500000)\n/FalseNorthing (0)\n")},
      {MakeBlock(-1, {}), full("/ProjectionType (GEODETIC)\n")},  // the first row without an id
      {MakeBlock(2, {}), full("")},
  };
  for (const auto &c : cases) EXPECT_EQ(PageWith(workspace, c.block), c.written) << c.block.projectionId;
}

// Transverse Mercator, Lambert and Mercator: the place on the earth that gdalinfo finds for the sheet's corner.
TEST(Georeference, IsUnderstoodByGdal) {
  const bool missing = std::system("gdalinfo --version > judge.txt 2>&1") != 0;
  if (missing || std::getenv("KAPDF_NO_JUDGES")) GTEST_SKIP() << "gdalinfo is not there";
  const Workspace workspace;
  workspace.pdf().WriteInteger(u"GeoTiff", 1);
  const struct {
    CoordinateSystemBlock block;
    const char *method, *parameter;
  } cases[] = {
      {MakeBlock(4, {0, 9 * kDegree, 0.9996, 500000, 0}), "METHOD[\"Transverse Mercator\"",
       "factor at natural origin\",0.9996,"},
      {MakeBlock(8, {46.5 * kDegree, 3 * kDegree, 49 * kDegree, 44 * kDegree, 700000, 6600000}),
       "METHOD[\"Lambert Conic Conformal (2SP)\"", "PARAMETER[\"Latitude of 2nd standard parallel\",44,"},
      {MakeBlock(1, {0, -20 * kDegree, 1, 0, 0}), "METHOD[\"Mercator (variant A)\"",
       "Longitude of natural origin\",-20,"},
  };
  for (const auto &c : cases) {
    PageWith(workspace, c.block);
    std::system("gdalinfo geo.pdf > judge.txt 2>&1");
    std::ifstream file("judge.txt", std::ios::binary);
    const std::string told(std::istreambuf_iterator<char>(file), {});
    // Pixels of 1/150 inch, and the upper left corner of a sheet of 54 mm.
    for (const std::string what :
         {c.method, c.parameter, "Origin = (299998.000", "Pixel Size = (0.169333333333333,-0.1693"})
      EXPECT_NE(told.find(what), std::string::npos) << what << "\n" << told;
  }
}

}  // namespace
}  // namespace kapdf
