// Rasters of the host as image objects.
#include <numbers>
#include <vector>

#include "sheet.h"
#include "support/opened_pdf.h"

namespace kapdf {
namespace {

using namespace std::string_literals;

// A red and a blue entry.
std::string TwoColors() {
  std::string palette = "\0\0\2\0\xFF\0\0\0\0\0\xFF\0"s;
  palette.resize(1028);
  return palette;
}

// What stands between the page's objects and the content of a page.
std::string Objects(const std::string &file) { return Between(file, "/Transparency >>\r>>\rendobj\r", "7 0 obj\r"); }

TEST(Rasters, EveryFormUnderEveryCompression) {
  const Workspace workspace;
  const std::string rgb = "/ColorSpace /DeviceRGB\r", eight = "/BitsPerComponent 8\r", dct = "/Filter /DCTDecode\r";
  const std::string lzw = "/Filter /LZWDecode\r", indexed = "/ColorSpace [ /Indexed /DeviceRGB 1 8 0 R ]\r" + eight;
  const std::string mask = "/ImageMask true\r", one = "/BitsPerComponent 1\r";
  const std::string fax = "/Filter [ /CCITTFaxDecode ]\r/DecodeParms [ << /K -1 /Columns 3 >> ]\r";
  const std::string bits = "\1\0\1"s, runs = "\1\0\0\0\1\0\0\0\2\0\0\0"s;
  const struct {
    uint32_t pixelType;
    bool palette;
    int color, bw;
    std::string row, form;
    std::string data;  // of one row, "?" for coded ones, "" for a form that cannot be written
  } cases[] = {
      {0, false, 0, 0, bits, mask + fax + one, "?"},
      {0, false, 1, 2, runs, mask + fax + one, "?"},
      {0, false, 0, 1, bits, mask + "/Decode [ 1 0 ]\r" + one, "\xA0"},
      {0x80020000, false, 0, 1, runs, mask + "/Decode [ 1 0 ]\r" + one, "\x60"},
      {1, true, 2, 0, "\0\1\0"s, indexed, "\0\1\0"s},
      {2, true, 2, 0, "\0\1\0 more than a row"s, indexed, "\0\1\0"s},
      {1, true, 0, 0, "\0\1\0"s, lzw + indexed, "?"},
      {1, true, 3, 0, "\0\1\0"s, lzw + indexed, "?"},
      {1, true, 1, 0, "\0\1\2"s, dct + rgb + eight, "?"},
      {1, false, 1, 0, "\0\1\2"s, dct + rgb + eight, "?"},
      {1, false, 0, 0, "", lzw, ""},
      {1, false, 2, 0, "", "", ""},
      {4, false, 2, 0, "abcdefghi", rgb + eight, "abcdefghi"},
      {4, false, 0, 0, "abcdefghi", lzw + rgb + eight, "?"},
      {4, false, 1, 0, "abcdefghi", dct + rgb + eight, "?"},
      {5, false, 1, 0, "abcdefghijkl", dct + rgb + eight, "?"},
      {5, false, 0, 0, "", lzw, ""},
      {5, false, 2, 0, "", "", ""},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE("type " + std::to_string(c.pixelType) + (c.palette ? " with palette" : "") + ", " +
                 std::to_string(c.color) + " " + std::to_string(c.bw));
    workspace.pdf().WriteInteger(u"ColorCompression", c.color);
    workspace.pdf().WriteInteger(u"BWCompression", c.bw);
    Sheet sheet(workspace);
    std::string palette = TwoColors();
    auto *block = reinterpret_cast<uint8_t *>(palette.data());
    const bool written = !c.data.empty();
    EXPECT_EQ(sheet.Start().Raster(3, 2, c.pixelType, c.palette ? block : nullptr), written ? 0u : FilterBadRaster);
    for (int row = 0; row < 2; ++row) EXPECT_EQ(sheet.Row(c.row), written ? 0u : FilterNoRasterOpen);
    EXPECT_EQ(sheet.Row(c.row), FilterNoRasterOpen) << "one too many";
    const std::string file = sheet.Finish(), objects = Objects(file);

    const bool hasPalette = c.palette && c.color != 1;
    const std::string number = hasPalette ? "9" : "8", lengthNumber = hasPalette ? "10" : "9";
    std::string expected;
    if (hasPalette) expected = "8 0 obj\r<<\r/Length 6\r>>\rstream\r\n\xFF\0\0\0\0\xFF\r\nendstream\rendobj\r"s;
    expected += number + " 0 obj\r<<\r/Type /XObject\r/Subtype /Image\r/Length " + lengthNumber +
                " 0 R\r/Name /Im0\r/Width 3\r/Height 2\r" + c.form;
    const std::string data =
        c.data == "?" ? Between(objects, c.form + ">>\rstream\r\n", "\r\nendstream") : c.data + c.data;
    if (written) {
      expected += ">>\rstream\r\n" + data + "\r\nendstream\rendobj\r" + lengthNumber + " 0 obj\r" +
                  std::to_string(data.size()) + "\rendobj\r";
    }
    EXPECT_EQ(objects, expected);
    if (!written) {  // nobody refers to it, but its numbers have places
      const test::OpenedPdf opened(file);
      const PDFXRefEntry *place = opened.file.xrefTable().Find(9);
      EXPECT_TRUE(place && place->offset == file.find("/Length 9 0 R\r"));
    }
    EXPECT_EQ(file.find("/XObject <<\r/Im0 " + number + " 0 R\r>>\r/Properties") != std::string::npos, written);
  }
}

TEST(Rasters, HostsThatSendTooMuchOrTooLittle) {
  const Workspace workspace;
  workspace.pdf().WriteInteger(u"BWCompression", 1);
  workspace.pdf().WriteInteger(u"ColorCompression", 2);
  Sheet sheet(workspace);
  sheet.Start().Layer(u"A");
  EXPECT_EQ(sheet.writer().Fraction(), 1.0);
  EXPECT_EQ(sheet.Row("\1"), FilterNoRasterOpen);
  ElementRecord empty = RecordOf(ElemRasterHeader, nullptr);
  EXPECT_EQ(sheet.Write(empty), FilterBadRaster);
  for (const uint32_t type : {3u, 6u}) EXPECT_EQ(sheet.Raster(1, 1, type), FilterBadRaster) << type;
  for (const uint32_t side : {0u, 1'000'001u}) EXPECT_EQ(sheet.Raster(1, side, 0), FilterBadRaster) << side;
  // The first never gets its second row; its name is the next one's.
  EXPECT_EQ(sheet.Raster(2, 2, 4), FilterOk);
  EXPECT_EQ(sheet.Row("abcdef"), FilterOk);
  EXPECT_EQ(sheet.Raster(10, 2, 0), FilterOk);
  EXPECT_EQ(sheet.writer().Fraction(), 0.0);
  for (const std::string &row : {"\1"s, "\1\0\0\0"s, "\2\0\0\0\1\0\0\0\2\0\0\0"s, ""s})
    EXPECT_EQ(sheet.Row(row), FilterBadRaster) << row.size();
  EXPECT_EQ(sheet.writer().Fraction(), 0.0) << "such rows do not count";
  EXPECT_EQ(sheet.Row("\1\0\0\0\7\0\0\0\xFF\xFF\xFF\xFF"s), FilterOk) << "a run is cut at the row's end";
  EXPECT_EQ(sheet.writer().Fraction(), 0.5);
  EXPECT_EQ(sheet.Row("\2\0\0\0\3\0\0\0\2\0\0\0\0\0\0\0\0\0\0\0"s), FilterOk) << "and one that runs back is none";
  EXPECT_EQ(sheet.writer().Fraction(), 1.0);
  // An element cuts the next one short, and its rows come too late.
  EXPECT_EQ(sheet.Raster(1, 3, 4), FilterOk);
  EXPECT_EQ(sheet.Row("abc"), FilterOk);
  sheet.DrawLine(0, 0, 1, 1);
  EXPECT_EQ(sheet.Row("abc"), FilterNoRasterOpen);
  // Behind content an image stays whole, but later content goes into the file as it is.
  EXPECT_EQ(sheet.Raster(1, 1, 4), FilterOk);
  EXPECT_EQ(sheet.Row("xyz"), FilterOk);
  sheet.DrawLine(5, 5, 6, 6);
  const std::string file = sheet.Finish();
  EXPECT_NE(file.find("stream\r\nabcdef\r\nendstream\rendobj\r9 0 obj\r6\rendobj\r"), std::string::npos);
  EXPECT_NE(file.find("stream\r\n\1\xC0\x80\0\r\nendstream\rendobj\r11 0 obj\r4\rendobj\r"s), std::string::npos);
  EXPECT_NE(file.find("stream\r\nabc\r\nendstream\rendobj\r13 0 obj\r3\rendobj\r"), std::string::npos);
  EXPECT_NE(file.find("stream\r\nxyz\r\nendstream\rendobj\r16 0 obj\r3\rendobj\r5.000 5.000 m\n6.000 6.000 l\nS\n"
                      "EMC\nQ\nendstream\rendobj\r14 0 obj\r"),
            std::string::npos);
  EXPECT_NE(file.find("/XObject <<\r/Im0 10 0 R\r/Im1 12 0 R\r/Im2 15 0 R\r>>\r"), std::string::npos);
}

TEST(Rasters, DrawnAtOnceOrWithTheEndOfThePage) {
  const Workspace workspace;
  const RasterPlacementPayload plain{10, 20, 0, 1, 2, 100, {}, 0};
  const RasterPlacementPayload turned{-1, 0, std::numbers::pi / 2, 1, 1, 50, {}, 0};
  const std::string first = "1 0 0 1 10.000 20.000 cm\n1.000000 0.000000 -0.000000 1.000000 0 0 cm\n";
  const std::string second = "1 0 0 1 -1.000 0.000 cm\n0.000000 1.000000 -1.000000 0.000000 0 0 cm\n";
  const std::string sizes[] = {"0.200 0 0 0.800 0 0 cm\n", "0.677 0 0 0.085 0 0 cm\n", "0.000 0 0 0.000 0 0 cm\n"};
  const auto start = [&](Sheet &sheet) {
    sheet.Start();
    sheet.Raster(2, 4, 0);
    for (int row = 0; row < 4; ++row) sheet.Row("\1\0"s);
    sheet.Raster(8, 1, 0, nullptr, 0);  // 300 dpi
    sheet.Row("\1\0\1\0\1\0\1\0"s);
  };

  Sheet drawn(workspace);
  start(drawn);
  EXPECT_EQ(drawn.Place(4, 70, plain), FilterConsumed) << "no layer, nothing is drawn";
  drawn.Layer(u"A", 1);
  for (const uint64_t key : {70, 5}) EXPECT_EQ(drawn.Place(4, key, key == 5 ? turned : plain), FilterConsumed);
  EXPECT_EQ(drawn.Place(4, 70, plain), FilterConsumed);
  EXPECT_EQ(drawn.Place(4, 6, plain), FilterConsumed) << "of an image that never comes";
  for (const int32_t section : {2, 8}) EXPECT_EQ(drawn.Place(section, 70, plain), FilterNotAvailable);
  Sections left(4);
  left.Begin(8);
  left.End();
  ElementRecord placement = RecordOf(ElemRasterPlacement, nullptr);
  EXPECT_EQ(drawn.writer().WriteElement(placement, left), FilterNotAvailable) << "every end clears the section";
  const std::string red = "1.00 0.00 0.00 rg\nq\n";
  EXPECT_EQ(ContentOf(drawn.Finish()), "q\n1 j\n2.835 0 0 2.835 0 0 cm\n1.00 0.00 0.00 RG\n/OC /oc0 BDC\n" + red +
                                           first + sizes[0] + "/Im0 Do\nQ\n/GS1 gs\n" + red + second + sizes[1] +
                                           "/Im1 Do\nQ\n/GS2 gs\n" + red + first + sizes[0] + "/Im0 Do\nQ\n" + red +
                                           first + sizes[2] + "/Im2 Do\nQ\nEMC\nQ");

  Sheet waiting(workspace);
  waiting.Layer(u"A", 1);
  start(waiting);
  EXPECT_EQ(waiting.Place(6, 1, turned, 0x8000FF00), FilterConsumed);
  EXPECT_EQ(waiting.Place(6, 2, turned, 0x8000FF00), FilterConsumed);
  EXPECT_EQ(waiting.Place(6, 3, plain), FilterConsumed);
  const std::string file = waiting.Finish(), matrix = "q\n2.835 0 0 2.835 0 0 cm\n";
  const std::string content = "q\n/GS1 gs\n/GS2 gs\n0.00 1.00 0.00 rg\n" + matrix + second +
                              "0.200 0 0 0.400 0 0 cm\n" + "/Im0 Do\nQ\n" + matrix + second + sizes[1] +
                              "/Im1 Do\nQ\n1.00 0.00 0.00 rg\n" + matrix + first + sizes[2] + "/Im2 Do\nQ\nQ";
  EXPECT_NE(file.find("7 0 obj\r<<\r/Length 12 0 R\r>>\rstream\r\n" + content + "\nendstream\rendobj\r12 0 obj\r" +
                      std::to_string(content.size()) + "\rendobj\r"),
            std::string::npos)
      << file;
}

}  // namespace
}  // namespace kapdf
