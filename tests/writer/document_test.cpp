// The document around the content, byte for byte.
#include <cmath>
#include <cstring>
#include <tuple>

#include "sheet.h"
#include "writer/xref_stream.h"

namespace kapdf {
namespace {

using namespace std::string_literals;

const std::string kHead5 = "%PDF-1.5\r%\xFF\xFF\xFF\xFF\r"s;
const std::string kInfo =
    "1 0 obj\r<<\r/Creator(kaPDF.dll Version 2.2)/CreationDate (D:)\r/Producer (ZV Software V12)\r/Author (Ada)\r"
    "/Title (sheet.pdf)\r>>\rendobj\r";

// The cross-reference stream that belongs to a body: positions of "N 0 obj" for N = 1.., two bytes each.
std::string XRefFor(const std::string &body, size_t objects, size_t dateBytes = 14) {
  std::string data = "\0\0\0"s;
  for (size_t n = 1; n <= objects; ++n) {
    size_t at = body.find("\r" + std::to_string(n) + " 0 obj") + 1;
    if (n > 1) at += dateBytes;  // the date was taken out of the body
    data += {1, static_cast<char>(at >> 8), static_cast<char>(at)};
  }
  const size_t own = body.size() + dateBytes;
  data += {1, static_cast<char>(own >> 8), static_cast<char>(own)};
  const std::string size = std::to_string(objects + 2);
  return std::to_string(objects + 1) + " 0 obj\r<</Type /XRef\r/Index[0 " + size + "]\r/W[1 2 0]\r/Size " + size +
         "\r/Length " + std::to_string(data.size()) + "\r/Info 1 0 R\r/Root 2 0 R\r>>stream\r\n" + data +
         "endstream\rendobj\rstartxref\r" + std::to_string(own) + "\r%%EOF\r";
}

// All up to the content, whose object 7 has these entries and this data.
std::string WithContent(const std::string &entries, const std::string &data, const std::string &length) {
  return kHead5 + kInfo +
         "2 0 obj\r<<\r/Type /Catalog\r/Pages 4 0 R\r/OCProperties 3 0 R\r/PageMode /UseOC>>\rendobj\r"
         "4 0 obj\r<<\r/Type /Pages\r/Count 1\r/Kids [5 0 R]\r>>\rendobj\r"
         "5 0 obj\r<<\r/Type /Page\r/Parent 4 0 R\r/Resources 6 0 R\r/Contents [ 7 0 R ]\r"
         "/MediaBox [ -5.669 -5.669 289.134 147.402 ]\r"
         "/Group << /Type /Group /CS /DeviceRGB /S /Transparency >>\r>>\rendobj\r"
         "7 0 obj\r<<\r/Length 8 0 R" +
         entries + "\r>>\rstream\r\n" + data + "\nendstream\rendobj\r8 0 obj\r" + length + "endobj\r";
}

TEST(Document, EmptyOne) {
  const Workspace workspace;
  const std::string body = WithContent("", "q\nQ", "3 ") +
                           "3 0 obj <</D <</OFF []\r/Order []\r>>\r/OCGs []\r>> endobj\r"
                           "6 0 obj\r<<\r/Procset [/PDF /Text /ImageB]\r/Properties <<\r>>\r>>\rendobj\r";
  EXPECT_EQ(WithoutDate(Sheet(workspace).Start().Finish()), body + XRefFor(body, 8));
}

TEST(Document, LayersAndOpacity) {
  const Workspace workspace;
  Sheet sheet(workspace);
  sheet.Start().Layer(u"Walls (old", 1).Layer(u"B", 7, -1, true);
  sheet.DrawLine(1, 2, 3, 4, 0.25, u"B");
  double square[] = {0, 0, 9, 0, 9, 9, 0, 9};
  uint32_t starts[] = {0, 4};
  sheet.Draw(ElemFilledPolygon, FilledPolygonPayload{0, 1, starts, 4, square, 33.339, 0, 0, 0, {}}, u"B");
  EXPECT_EQ(sheet.EndPage(), FilterOk);
  const std::string file = WithoutDate(sheet.Finish());
  const std::string data = Between(file, "stream\r\n", "\nendstream");
  const std::string body =
      WithContent("/Filter /FlateDecode", data, std::to_string(data.size()) + "\r") +
      "3 0 obj <</D <</OFF [10 0 R ]\r/Order [9 0 R 10 0 R ]\r>>\r/OCGs [9 0 R 10 0 R ]\r>> endobj\r"
      "9 0 obj <</Name (Walls (old) /Type /OCG >>\rendobj\r10 0 obj <</Name (B) /Type /OCG >>\rendobj\r"
      "6 0 obj\r<<\r/Procset [/PDF /Text /ImageB]\r/Properties <<\r/oc0 9 0 R /oc1 10 0 R >>\r"
      "/ExtGState <<\r/GS1 11 0 R\r>>\r>>\rendobj\r11 0 obj\r<</Type /ExtGState /ca 0.333>>\rendobj\r";
  EXPECT_EQ(file, body + XRefFor(body, 11));
  EXPECT_EQ(
      ContentOf(file),
      "q\n1 j\n2.835 0 0 2.835 0 0 cm\n0.00 0.00 0.00 RG\n/OC /oc1 BDC\n0.250 w\n1.000 2.000 m\n3.000 4.000 l\nS\n"
      "/GS1 gs\n0.00 0.00 0.00 rg\n0.000 w\n0.000 0.000 m\n9.000 0.000 l\n9.000 9.000 l\n0.000 9.000 l\nh\nf*\n"
      "EMC\nQ");
}

TEST(Document, PdfA) {
  const Workspace workspace;
  workspace.pdf().WriteInteger(u"PDFA", 1);
  Sheet sheet(workspace);
  sheet.Start().Layer(u"A").Draw(ElemSolid, SolidPayload{});
  EXPECT_TRUE(ContentOf(sheet.Finish()).ends_with("f*\nQ")) << "no layer to end";

  // The option string's PDF/A leaves transparency as the settings have it, and the other way round.
  for (const int pdfa : {0, 1}) {
    workspace.pdf().WriteInteger(u"PDFA", 1 - pdfa);
    Sheet other(workspace);
    other.writer().Override({.pdfa = pdfa});
    const std::string text = other.Start().Finish();
    EXPECT_TRUE(text.starts_with(pdfa ? "%PDF-1.4" : "%PDF-1.5"));
    EXPECT_EQ(text.find("/Group") != std::string::npos, pdfa == 1);
  }
  WriteOptions options;
  options.Override({.colorCompression = 0, .quality = 40, .pdfa = 1});
  EXPECT_EQ(std::tuple(options.colorCompression, options.quality, options.embedFonts), std::tuple(1, 100, 1));
  options.Override({.colorCompression = 2, .quality = 40, .pdfa = 1});
  EXPECT_EQ(std::pair(options.colorCompression, options.quality), std::pair(2, 40));
}

TEST(Document, InfoTakesItsTextsUnescapedAndCut) {
  const Workspace workspace;
  workspace.pdf().WriteString(u"Subject", u"a) b");
  workspace.pdf().WriteString(u"Keywords", std::u16string(1200, u'k'));
  workspace.pdf().WriteString(u"Author", std::u16string(300, u'\u00E4'));
  const std::string info = Between(Sheet(workspace, u"t(1.pdf").Start().Finish(), "V12)\r", ">>\r");
  EXPECT_EQ(info, "/Author (" + std::string(255, '\xE4') + ")\r/Title (t(1.pdf)\r/Subject (a) b)\r/Keywords (" +
                      std::string(1023, 'k') + ")\r");
}

TEST(Document, PageOnItsSheet) {
  const struct {
    const char *what;
    double xmin, ymin, xmax, ymax, frame;
    int atOrigin;
    const char *mediaBox, *line;  // from (1, 1) to (2, 3)
    const char *scale = "2.835";
  } cases[] = {
      {"near the origin starts at 0", 5, 5, 100, 50, 2, 0, "0.000 0.000 289.134 147.402", "1.000 1.000 m\n2.000 3.000"},
      {"frame reaches below 0", 0, 5, 100, 50, 2, 0, "-5.669 0.000 289.134 147.402", "1.000 1.000"},
      {"far from the origin keeps its place", 100, 100, 110, 110, 0, 0, "283.465 283.465 311.811 311.811",
       "1.000 1.000"},
      {"moved by wish", 10, 20, 100, 50, 2, 1, "0.000 0.000 266.457 96.378", "-7.000 -17.000 m\n-6.000 -15.000"},
      {"beyond reach is moved", 6000, 0, 6100, 50, 0, 0, "0.000 0.000 283.465 141.732", "-5999.000 1.000"},
      {"longest sheet at full scale", 0, 0, 5000, 10, 0, 0, "0.000 0.000 14173.228 28.346", "1.000 1.000"},
      {"ten metres", 0, 0, 10000, 10, 0, 0, "0.000 0.000 14173.228 14.173", "1.000 1.000", "1.417"},
      {"no area", 5, 5, 5, 5, 0, 0, "14.173 14.173 14.173 14.173", "1.000 1.000"},
      {"not a number", NAN, 0, INFINITY, 10, NAN, 0, "0.000 0.000 0.000 28.346", "1.000 1.000"},
  };
  const Workspace workspace;
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    Sheet sheet(workspace);
    std::memcpy(&sheet.info().xmin, &c.xmin, 4 * sizeof(double));
    sheet.writer().Override({.atOrigin = c.atOrigin, .paperFrame = c.frame});
    sheet.Start().Layer(u"A").DrawLine(1, 1, 2, 3);
    const std::string file = sheet.Finish();
    EXPECT_EQ(Between(file, "/MediaBox [ ", " ]"), c.mediaBox);
    EXPECT_EQ(Between(ContentOf(file), " w\n", " l\n").substr(0, std::strlen(c.line)), c.line);
    EXPECT_EQ(Between(ContentOf(file), "1 j\n", " 0"), c.scale);
  }
  FileInfo info{};
  for (const double width : {5000.0, 5000.001}) {
    info.xmax = width;
    EXPECT_EQ(LayOutPage(info, 0, false).scale == kPointsPerMillimetre, width == 5000);
  }
}

TEST(XRefStream, FieldWidths) {
  const struct {
    uint32_t offset;
    int32_t generation;
    uint8_t type;
    const char *fields;
    size_t bytes;
  } cases[] = {{255, 0, 'n', "[1 1 0]", 2},     {256, 9, 'n', "[1 2 0]", 3},      {65535, 0, 'n', "[1 2 0]", 3},
               {65536, 0, 'n', "[1 4 0]", 5},   {255, 255, '2', "[1 1 1]", 3},    {255, 256, '2', "[1 1 2]", 4},
               {255, 65535, '2', "[1 1 2]", 4}, {70000, 65536, '2', "[1 4 4]", 9}};
  const Workspace workspace;
  for (const auto &c : cases) {
    const auto stream = platform::OpenFile(u"xref.bin", "w+b", platform::Share::kAll);
    CZVFFile file(stream.get(), false, u"");
    TextOut out(file);
    PDFXRef table;
    table.BeginSection(0);
    table.Append(c.offset, c.generation, c.type);
    table.BeginSection(9);
    EXPECT_EQ(WriteXRefStream(out, table, 4), 0);
    out.Drain();
    file.Seek(0, SeekOrigin::kStart);
    std::string text(512, '\0');
    text.resize(file.Read(text.data(), text.size()));
    EXPECT_TRUE(text.starts_with("9 0 obj\r<</Type /XRef\r/Index[0 2 9 1]\r/W" + std::string(c.fields) +
                                 "\r/Size 10\r/Length " + std::to_string(3 * c.bytes) +
                                 "\r/Info 4 0 R\r/Root 5 0 R\r>>stream\r\n"))
        << text;
    const std::string data = Between(text, "stream\r\n", "endstream");
    EXPECT_EQ(data[c.bytes], c.type == '2' ? 2 : 1);
    EXPECT_EQ(data[c.bytes - 1], c.fields[5] == '0' ? '\0' : '\xFF') << "the head entry's 65535";
  }
}

// A host that never ends section 2 leaves the page's dictionary open; one that never ends the page is helped.
TEST(Document, WhatTheHostLeavesOpen) {
  const Workspace workspace;
  Sheet sheet(workspace);
  sheet.writer().Start(sheet.info());
  const std::string file = sheet.Finish();
  EXPECT_NE(file.find("/Transparency >>\r7 0 obj\r"), std::string::npos);
  EXPECT_NE(file.find("q\nQ\nendstream"), std::string::npos);
  EXPECT_EQ(Sheet(workspace).Finish(), "") << "never started";
}

}  // namespace
}  // namespace kapdf
