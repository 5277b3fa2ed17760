// Documents that other readers open, and the page that is taken out of them.
#include "intake/intake.h"

#include <gtest/gtest.h>

#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFWriter.hh>

#include "kapdf/kapdf.h"
#include "support/pdf_builder.h"
#include "support/temp_file.h"

namespace kapdf::test {
namespace {

struct Taken {
  uint32_t result = 0;
  int32_t pages = 0;
  std::string page;  // the document of the page wanted, empty for none
  IntakeFacts facts;
};

Taken Take(std::string_view bytes, std::string_view password = {}, int32_t index = 0, bool annotations = true) {
  const TempFile file(bytes);
  Intake intake;
  Taken taken;
  taken.result = intake.Open(file.stream(), password);
  taken.pages = intake.pageCount();
  ByteBuffer page;
  if (taken.result == 0 && intake.TakePage(index, annotations, page))
    taken.page = {reinterpret_cast<const char *>(page.data()), page.size()};
  taken.facts = intake.facts();
  return taken;
}

bool Has(const Taken &taken, std::string_view text) { return taken.page.find(text) != std::string::npos; }

std::string Plain() { return PagesOf({"(one) Tj", "(two) Tj"}).Build(); }

TEST(Intake, OpensWhatOthersOpen) {
  const std::string plain = Plain();
  std::string shifted = Replaced(plain, "startxref\n", "startxref\n1");
  std::string noTable = plain.substr(0, plain.find("xref\n"));
  const std::string cases[] = {plain,
                               PagesOf({"(one) Tj", "(two) Tj"}).Build(XRefForm::kObjectStream),
                               "junk ahead of it\n" + plain,
                               plain + std::string(5000, ' '),
                               shifted,
                               noTable,
                               Replaced(plain, "trailer", "tr")};
  for (const std::string &bytes : cases) {
    const Taken taken = Take(bytes, {}, 1);
    EXPECT_EQ(taken.result, 0u) << bytes.substr(0, 40);
    EXPECT_EQ(taken.pages, 2) << bytes.substr(0, 40);
    EXPECT_TRUE(Has(taken, "(two) Tj") && !Has(taken, "(one) Tj")) << taken.page;
  }
  EXPECT_EQ(Take(plain).facts.warnings, 0u);
  EXPECT_GT(Take(noTable).facts.warnings, 0u);
  EXPECT_EQ(Take(plain, {}, 2).page, "");
  EXPECT_EQ(Take(plain, {}, -1).page, "");
  EXPECT_EQ(Take("no PDF at all").result, uint32_t{FilterNotPdf});
  EXPECT_EQ(Take("").result, uint32_t{FilterNotPdf});
}

// As the library underneath writes it.
std::string Encrypted(int revision, const char *user, const char *owner) {
  const std::string plain = Plain();
  QPDF pdf;
  pdf.processMemoryFile("plain", plain.data(), plain.size());
  QPDFWriter writer(pdf);
  writer.setOutputMemory();
  writer.setStreamDataMode(qpdf_s_uncompress);
  switch (revision) {
    case 2:
      writer.setR2EncryptionParametersInsecure(user, owner, false, true, true, true);
      break;
    case 3:
      writer.setR3EncryptionParametersInsecure(user, owner, true, true, true, true, true, true, qpdf_r3p_none);
      break;
    case 4:
      writer.setR4EncryptionParametersInsecure(user, owner, true, true, true, true, true, true, qpdf_r3p_none, true,
                                               true);
      break;
    case 5:
      writer.setR5EncryptionParameters(user, owner, true, true, true, true, true, true, qpdf_r3p_none, true);
      break;
    default:
      writer.setR6EncryptionParameters(user, owner, true, true, true, true, true, true, qpdf_r3p_none, true);
  }
  writer.write();
  const auto buffer = writer.getBufferSharedPointer();
  return {reinterpret_cast<const char *>(buffer->getBuffer()), buffer->getSize()};
}

TEST(Intake, DecryptsWithEitherPasswordOrNone) {
  const std::pair<int, const char *> kinds[] = {
      {2, "RC4 40"}, {3, "RC4 128"}, {4, "AES 128"}, {5, "AES 256"}, {6, "AES 256"}};
  for (const auto &[revision, name] : kinds) {
    const std::string locked = Encrypted(revision, "us\xC3\xBC", "owner"), open = Encrypted(revision, "", "owner");
    EXPECT_EQ(Take(locked).result, uint32_t{FilterEncrypted}) << revision;
    EXPECT_EQ(Take(locked, "wrong").result, uint32_t{FilterEncrypted}) << revision;
    for (const auto &[bytes, password] :
         {std::pair<std::string, const char *>{locked, "us\xC3\xBC"}, {locked, "owner"}, {open, ""}}) {
      const Taken taken = Take(bytes, password);
      EXPECT_TRUE(Has(taken, "(one) Tj")) << revision << password;
      EXPECT_EQ(taken.facts.encryption, name);
      EXPECT_EQ(taken.facts.permissions & 1 << 2, 0) << revision;  // printing
    }
  }
}

// A page with these entries below a node with those.
std::string Page(const std::string &entries, const std::string &inherited = "/MediaBox [0 0 100 200]",
                 const std::vector<std::string> &more = {}) {
  PdfBuilder pdf;
  pdf.Object(1, "<</Type /Catalog /Pages 2 0 R>>")
      .Object(2, "<</Type /Pages /Count 1 /Kids [3 0 R] " + inherited + ">>")
      .Object(3, "<</Type /Page /Parent 2 0 R /Contents 4 0 R " + entries + ">>")
      .Stream(4, "", "1 w");
  for (size_t i = 0; i < more.size(); ++i) pdf.Object(10 + static_cast<int>(i), more[i]);
  return pdf.Build();
}

TEST(Intake, BoxesAreWhatViewersShow) {
  const struct {
    std::string entries, inherited, found;
  } cases[] = {
      {"", "/MediaBox [0 0 100 200]", "/MediaBox[0 0 100 200 ]/C"},
      {"", "", "/MediaBox[0 0 612 792 ]"},
      {"/MediaBox [100 200 0 0]", "/Rotate 450", "/MediaBox[0 0 100 200 ]/Rotate 90"},
      {"/MediaBox 10 0 R /Rotate -90", "", "/MediaBox[1 2 30 40.5 ]/Rotate 270"},
      {"/CropBox [10 -5 50 300]", "/MediaBox [0 0 100 200]", "/MediaBox[10 0 50 200 ]"},
      {"/CropBox [500 500 600 600]", "/MediaBox [0 0 100 200]", "/MediaBox[0 0 100 200 ]"},
      {"/UserUnit 2.5", "/MediaBox [0 0 100 200]", "/MediaBox[0 0 250 500 ]"},
  };
  for (const auto &c : cases) {
    const Taken taken = Take(Page(c.entries, c.inherited, {"[11 0 R 2 30 40.5]", "1"}));
    EXPECT_TRUE(Has(taken, c.found)) << c.entries << "\n" << taken.page;
  }
  EXPECT_TRUE(Has(Take(Page("/UserUnit 2.5")), "2.5 0 0 2.5 0 0 cm\n"));
}

TEST(Intake, ResourcesAreInPlace) {
  const Taken taken =
      Take(Page("/Resources 10 0 R", "/MediaBox [0 0 9 9]",
                {"<</Font 11 0 R /ExtGState <</a#62 <</LW 2 /Parent 3 0 R>> >> /XObject <</" + std::string(140, 'x') +
                     " 12 0 R>> /ColorSpace <</C 13 0 R>> >>",
                 "<</F 14 0 R>>", "<</Subtype /Form /Length 3 /Resources 10 0 R>>\nstream\n2 w\nendstream",
                 "[/Indexed /DeviceRGB 1 (ab\\050def)]", "<</Type /Font /BaseFont /A#20B>>"}));
  EXPECT_TRUE(Has(taken, "/Resources<</ColorSpace<</C[/Indexed/DeviceRGB 1<616228646566>]")) << taken.page;
  EXPECT_TRUE(Has(taken, "/ExtGState<</ab ")) << taken.page;
  EXPECT_TRUE(Has(taken, "<</LW 2>>")) << taken.page;
  EXPECT_TRUE(Has(taken, "/BaseFont/A#20B")) << taken.page;
  EXPECT_FALSE(Has(taken, std::string(130, 'x')));  // longer names than readers take are cut
}

TEST(Intake, StreamsAreDecodedUpToTheCodecsOfImages) {
  const struct {
    std::string object, found;
  } cases[] = {
      {"<</Length 5 /Filter /AHx>>\nstream\n6f6b>\nendstream", "/Length 0000000002>>\nstream\nok\n"},
      {"<</Length 11 /Filter [/AHx /AHx]>>\nstream\n366636623e>\nendstream", "\nstream\nok\n"},
      {"<</Length 4 /Filter [/Crypt /RL] /DecodeParms [null null]>>\nstream\n\xFFo\x80 \nendstream", "\nstream\noo\n"},
      {"<</Subtype /Image /Length 5 /Filter [/AHx /DCT]>>\nstream\n6f6b>\nendstream",
       "/Filter/DCTDecode/Length 0000000002>>\nstream\nok\n"},
      {"<</Subtype /Image /Length 2 /Filter /CCF /DecodeParms 11 0 R>>\nstream\nok\nendstream",
       "/Filter/CCITTFaxDecode/DecodeParms<</K -1>>/Length 0000000002>>\nstream\nok\n"},
      {"<</Subtype /Image /Length 2 /Filter [/JBIG2Decode] /DecodeParms [<</JBIG2Globals 12 0 R>>]>>\nstream\nok\n"
       "endstream",
       "stream\nglobals\n"},
      {"<</Length 2 /Filter [/AHx /AHx /AHx /AHx /AHx /AHx /AHx /AHx /AHx]>>\nstream\nok\nendstream", "null"},
  };
  for (const auto &c : cases) {
    const std::string globals = "globals";
    const Taken taken = Take(
        Page("/Resources <</XObject <</X 10 0 R>> >>", "/MediaBox [0 0 9 9]",
             {c.object, "<</K 13 0 R>>", "<</Length 15 /Filter /AHx>>\nstream\n676c6f62616c73>\nendstream", "-1"}));
    EXPECT_TRUE(Has(taken, c.found)) << c.object << "\n" << taken.page;
  }
}

// What a chain of filters makes of next to nothing ends, and the page comes all the same.
TEST(Intake, BombsStayWithinTheirBounds) {
  const std::string zeros(size_t{8} << 20, '\0');
  const std::string twice = Deflate(Deflate(zeros + zeros) + zeros);
  const Taken taken = Take(Page(
      "/Resources <</XObject <</X 10 0 R>> >>", "/MediaBox [0 0 9 9]",
      {"<</Filter [/Fl /Fl /AHx] /Length " + std::to_string(twice.size()) + ">>\nstream\n" + twice + "\nendstream"}));
  EXPECT_TRUE(Has(taken, "1 w"));
  EXPECT_LT(taken.page.size(), size_t{40} << 20);
  std::string nested = "<</A ";
  for (int i = 0; i < 400; ++i) nested += "[";
  EXPECT_EQ(Take(Page("/Group " + nested)).result, 0u);
  EXPECT_TRUE(Has(Take(Page("/Resources <</ColorSpace <</C 10 0 R>> >>", "", {"[10 0 R 10 0 R]"})), "null"));
}

TEST(Intake, AnnotationsAreDrawnOnALayer) {
  const std::vector<std::string> objects = {
      "<</Subtype /Square /Rect [10 20 30 40] /AP <</N 11 0 R>> /F 4>>",
      "<</Subtype /Form /BBox [0 0 20 20] /Length 3>>\nstream\n3 w\nendstream",
      "<</Subtype /Square /Rect [10 20 30 40] /AP <</N 11 0 R>> /F 2>>",   // hidden
      "<</Subtype /Square /Rect [10 20 30 40] /AP <</N 11 0 R>> /F 32>>",  // not on a screen
      "<</Subtype /Popup /Rect [10 20 30 40] /AP <</N 11 0 R>> >>",
      "<</Subtype /Link /Rect [0 0 9 9]>>"};
  const std::string bytes =
      Page("/Annots [10 0 R 12 0 R 13 0 R 14 0 R 15 0 R null 77 0 R]", "/MediaBox [0 0 9 9]", objects);
  const Taken taken = Take(bytes);
  EXPECT_TRUE(Has(taken, "/OC /kaPDF.Annotations BDC\nq\n")) << taken.page;
  EXPECT_TRUE(Has(taken, "/kaPDF.Annotation0 Do")) << taken.page;
  EXPECT_FALSE(Has(taken, "/kaPDF.Annotation1")) << taken.page;
  EXPECT_TRUE(Has(taken, "/Name<5044465F416E6E6F746174696F6E73>")) << taken.page;  // PDF_Annotations
  EXPECT_FALSE(Has(Take(bytes, {}, 0, false), "Annotation"));
}

TEST(Intake, ATextFieldGetsItsLooks) {
  std::string bytes = Page("/Annots [10 0 R]", "/MediaBox [0 0 300 300]",
                           {"<</Subtype /Widget /FT /Tx /T (f) /V (Hello) /DA (/Helv 12 Tf 0 g) /Rect [0 0 200 20]>>",
                            "<</Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding>>"});
  bytes = Replaced(bytes, "<</Type /Catalog /Pages 2 0 R>>",
                   "<</Type /Catalog /Pages 2 0 R /AcroForm <</Fields [10 0 R] /DR <</Font <</Helv 11 0 R>> >> >> >>");
  EXPECT_TRUE(Has(Take(bytes), "(Hello) Tj")) << Take(bytes).page;
}

// A tree that leads nowhere gives way to the pages that are there.
TEST(Intake, PagesWithoutATree) {
  const std::string plain = Plain();
  const std::pair<const char *, const char *> breaks[] = {{"/Kids [", "/Kidz ["}, {"/Pages 2 0 R", "/Pages 9 0 R"}};
  for (const auto &[what, with] : breaks) {
    const Taken taken = Take(Replaced(plain, what, with), {}, 1);
    EXPECT_EQ(taken.pages, 2) << with;
    EXPECT_TRUE(Has(taken, "(two) Tj")) << with;
  }
}

}  // namespace
}  // namespace kapdf::test
