// Coordinate systems in the page's dictionary: their exact bytes, and what an outside reader makes of them.
#include "pdfmodel/georeference.h"

#include <cstdlib>
#include <numbers>

#include "sheet.h"

namespace kapdf {
namespace {

using namespace std::string_literals;

constexpr double kDegree = std::numbers::pi / 180;

CoordinateSystemBlock MakeBlock(int32_t id, std::initializer_list<double> values) {
  CoordinateSystemBlock block = MakeCoordinateSystem(1, 1.0);
  block.projectionId = id;
  block.epsgCode = -2;
  std::ranges::copy(values, block.paramValues);
  std::u16string_view(u"metre").copy(block.unitName, 101);
  block.semiMajorAxis = 6378137;
  block.invFlattening = 298.257223563;
  return block;
}

// What stands in the dictionary of a page behind its transparency group. The sheet is moved to the origin.
std::string PageWith(const Workspace &workspace, const CoordinateSystemBlock &block) {
  std::u16string name = u"CoordSys", value;
  for (size_t i = 0; i < sizeof block; ++i) {
    const uint8_t byte = reinterpret_cast<const uint8_t *>(&block)[i];
    (value += u"0123456789abcdef"[byte >> 4]) += u"0123456789ABCDEF"[byte & 15];
  }
  Sheet sheet(workspace, u"geo.pdf", 300210);
  sheet.info().xmin = 300000;
  sheet.writer().Start(sheet.info());
  const auto put = [&](uint32_t type, std::u16string text) {
    return sheet.Draw(ElemNamedProperty, NamedPropertyPayload{name.data(), type, text.data()});
  };
  EXPECT_EQ(put(4, value), FilterConsumed);
  EXPECT_EQ(put(32, value.substr(1)), FilterConsumed);
  EXPECT_EQ(put(32, value.substr(1) + u"g"), FilterConsumed);
  EXPECT_EQ(put(32, value), FilterOk);
  sheet.writer().EndSection(2);
  EXPECT_EQ(put(32, value), FilterConsumed) << "the dictionary is closed";
  return Between(sheet.Layer(u"A").Finish(), "/S /Transparency >>\r", ">>\rendobj");
}

TEST(Georeference, IsWrittenToTheByte) {
  const Workspace workspace;
  CoordinateSystemBlock none = MakeCoordinateSystem(1, 1.0), empty = none, scaled = none, method = none;
  empty.systemClass = 3;
  scaled.scale = std::numeric_limits<double>::quiet_NaN();
  method.methodCode = 9807;
  const CoordinateSystemBlock mercator = MakeBlock(1, {0, -20 * kDegree, 0.9996, 500000, 0});
  EXPECT_EQ(PageWith(workspace, mercator), "") << "nothing unless it is asked for";
  workspace.pdf().WriteInteger(u"GeoTiff", 1);
  const std::string start = "<</Type /Projection\n", noType = "/ProjectionType (NONE)>>\n",
                    head =
                        "/LGIDict <</Type /LGIDict\n/Version (2.1)\n/CTM [(0.352777777777778) (0) (0) "
                        "(0.352777777777778) (299998) (-2)]\n/Projection\n" +
                        start;
  const auto full = [&](const std::string &type) {
    const std::string system =
        type +
        "/Units (<6d65747265>)\n/Datum << /Ellipsoid << /SemiMajorAxis (6378137) "
        "/InvFlattening (298.257223563)\n/ToWGS84\n<< /dx (0.0) /dy (0.0) /dz (0.0)>>\n>>\n>>\n\n>>\n";
    return head + system + "/Display\n" + start + system + ">>\n";
  };
  EXPECT_EQ(PageWith(workspace, none), "");
  for (const auto &block : {empty, scaled, method})
    EXPECT_EQ(PageWith(workspace, block), head + noType + "/Display\n" + start + noType + "\0\0/>>\n"s);
  EXPECT_EQ(PageWith(workspace, mercator),
            full("/ProjectionType (MC)\n/OriginLatitude (0)\n/CentralMeridian (-20)\n/ScaleFactor (0.9996)\n"
                 "/FalseEasting (500000)\n/FalseNorthing (0)\n"));
  EXPECT_EQ(PageWith(workspace, MakeBlock(-1, {})), full("/ProjectionType (GEODETIC)\n"));  // the first without an id
  EXPECT_EQ(PageWith(workspace, MakeBlock(2, {})), full(""));
}

TEST(Georeference, IsUnderstoodByGdal) {
  const bool missing = std::system("gdalinfo --version > judge.txt 2>&1") != 0;
  if (missing || std::getenv("KAPDF_NO_JUDGES")) GTEST_SKIP() << "gdalinfo is not there";
  const Workspace workspace;
  workspace.pdf().WriteInteger(u"GeoTiff", 1);
  const std::tuple<CoordinateSystemBlock, const char *, const char *> cases[] = {
      {MakeBlock(4, {0, 9 * kDegree, 0.9996, 500000, 0}), "\"Transverse Mercator\"", "natural origin\",0.9996,"},
      {MakeBlock(8, {46.5 * kDegree, 0, 49 * kDegree, 44 * kDegree}), "Lambert Conic Conformal (2SP)",
       "parallel\",44,"},
      {MakeBlock(1, {0, -20 * kDegree, 1, 0, 0}), "Mercator (variant A)", "Longitude of natural origin\",-20,"}};
  for (const auto &[block, method, parameter] : cases) {
    PageWith(workspace, block);
    EXPECT_EQ(std::system("gdalinfo geo.pdf > judge.txt 2>&1"), 0);
    const std::string told = test::ReadFile("judge.txt");
    // The corner of the sheet, and pixels of 1/150 inch.
    for (const std::string what : {method, parameter, "Origin = (299998.000", "Size = (0.169333333333333,-0.1693333"})
      EXPECT_NE(told.find(what), std::string::npos) << what << "\n" << told;
  }
}

}  // namespace
}  // namespace kapdf
