// Opening documents: every way to say where objects are, updates on top of each other, and refusals.
#include <gtest/gtest.h>

#include <string>

#include "support/opened_pdf.h"
#include "support/pdf_builder.h"

namespace kapdf {
namespace {

using test::OpenedPdf;
using test::PdfBuilder;
using test::Replaced;
using test::XRefForm;

// The text of the number that object `number` holds, "?" when there is none.
std::string NumberAt(CPDFFile &file, int32_t number) {
  int32_t value;
  CPDFIndirectObject reference(file);
  reference.objectNumber = number;
  return ReadIndirectInteger(reference, file.objects(), value) ? std::to_string(value) : "?";
}

TEST(Open, AllFormsGiveTheSameDocument) {
  for (const XRefForm form : test::kAllForms) {
    OpenedPdf pdf(test::PagesOf({"a", "b", "c"}).Object(20, "77").Build(form));
    ASSERT_EQ(pdf.result, 0u);
    EXPECT_EQ(pdf.info.pageCount, 3);
    EXPECT_EQ(std::u16string(pdf.info.formatName), u"Adobe PDF ");
    EXPECT_EQ(pdf.file.pageObjects(), (std::vector<uint32_t>{3, 5, 7}));
    EXPECT_EQ(NumberAt(pdf.file, 20), "77");
    EXPECT_EQ(NumberAt(pdf.file, 19), "?");
    PagePosition page;
    ASSERT_TRUE(pdf.file.GetPage(2, page));
    EXPECT_EQ(page.objectNumber, 7);
    EXPECT_EQ(page.box.right, 612);
    EXPECT_FALSE(pdf.file.GetPage(3, page));
    EXPECT_FALSE(pdf.file.GetPage(-1, page));
  }
}

TEST(Open, UpdatesOnTopOfEachOther) {
  for (const XRefForm base : test::kAllForms) {
    for (const XRefForm update : test::kAllForms) {
      const std::string old = test::PagesOf({"a", "b"}).Object(9, "1").Object(10, "2").Build(base);
      const std::string middle = PdfBuilder().Object(10, "3").Object(30, "4").Build(update, old);
      // The newest root counts, and hides the pages of the old one.
      OpenedPdf pdf(PdfBuilder()
                        .Object(40, "<</Pages 41 0 R>>")
                        .Object(41, "<</Type /Pages /Kids [5 0 R]>>")
                        .Trailer("/Root 40 0 R")
                        .Build(update, middle));
      if (base == XRefForm::kClassic && update != XRefForm::kClassic) {
        EXPECT_EQ(pdf.result, FilterNotPdf);  // a cross-reference stream does not lead to a table
        continue;
      }
      ASSERT_EQ(pdf.result, 0u);
      EXPECT_EQ(pdf.file.pageObjects(), (std::vector<uint32_t>{5}));
      EXPECT_EQ(NumberAt(pdf.file, 9) + NumberAt(pdf.file, 10) + NumberAt(pdf.file, 30), "134");
    }
  }
}

TEST(Open, Results) {
  const std::string good = test::OnePage("n"), stream = test::OnePage("n", "", XRefForm::kStream);
  const std::string noTail = good.substr(0, good.rfind("startxref"));
  const auto headed = [&](const char *head) { return Replaced(good, "xref\n0 5\n", head); };
  const std::pair<std::string, uint32_t> cases[] = {
      {"", FilterNoRoot},
      {"%PD", FilterNoRoot},
      {"%PDF", FilterNotPdf},
      {"\n" + good, FilterNotPdf},
      // The last "startxref" counts, near the end only.
      {noTail, FilterNotPdf},
      {good + std::string(1100, ' '), FilterNotPdf},
      {good + std::string(900, ' '), 0},
      {noTail + "startxref\n%%EOF %%EOF", FilterNotPdf},
      {noTail + "startxref\n999999\n%%EOF", FilterNotPdf},
      {noTail + "startxref\n-5\n%%EOF", FilterNotPdf},
      {noTail + "startxref\n1\n" + good.substr(noTail.size()), 0},
      // Trailers: a broken one ends the chain, encryption is told before all else.
      {Replaced(good, "/Root 1 0 R", "/Toor 1 0 R"), FilterNoRoot},
      {Replaced(good, "/Root 1 0 R", "/Root <<>>  "), FilterNoRoot},
      {Replaced(good, "/Size", "/Zise"), FilterNotPdf},
      {Replaced(good, "trailer", "trialer"), FilterNotPdf},
      {Replaced(good, "trailer\n<<", "trailer\n< "), FilterNoRoot},
      {Replaced(good, "trailer\n<<", "trailer<< "), 0},
      {Replaced(good, "/Size", "/Encrypt <<>> /Size"), 0},
      {Replaced(good, "/Size", "/Encrypt 8 0 R /Zise"), FilterEncrypted},
      {Replaced(good, "/Size", "/XRefStm 99 /Size"), 0},  // the stream beside the table is not read
      {Replaced(good, "/Size", "/Prev 0 /Size"), 0},
      {Replaced(good, "/Size", "/Prev -1 /Size"), 0},
      {Replaced(good, "/Size", "/Prev 99999 /Size"), 0},
      // Tables.
      {headed("xref\r\n0 5\r\n"), 0},
      {headed(" \n xref \n\n 0  5 \n"), 0},
      {headed("xref\n0 0\n0 5\n"), 0},
      {headed("xref\n-\n0 5\n"), 0},
      {headed("xref\n0 2000000000\n"), FilterNotPdf},
      // Cross-reference streams.
      {Replaced(stream, "/Type /XRef", "/Encrypt <<>> /Type /XRef"), FilterEncrypted},
      {Replaced(stream, "/Type /XRef", "/Type /XReF"), FilterNotPdf},
      {Replaced(stream, "/Root", "/Toor"), FilterNoRoot},
      {Replaced(stream, "/W [1 4 2]", "/V [1 4 2]"), FilterNotPdf},
      {Replaced(stream, "/W [1 4 2]", "/W [1 4]"), FilterNotPdf},
      {Replaced(stream, "/W [1 4 2]", "/W [1 5 2]"), FilterNotPdf},
      {Replaced(stream, "/W [1 4 2]", "/W [1 -4 2]"), FilterNotPdf},
      {Replaced(stream, "/Length 42", "/Htgnel 42"), FilterNotPdf},
      // The way to the pages.
      {Replaced(good, "1 0 obj", "1 0 jbo"), FilterNotPdf},
      {Replaced(good, "/Pages 2 0 R", "/Segap 2 0 R"), FilterNotPdf},
      {Replaced(good, "/Pages 2 0 R", "/Pages 9 0 R"), FilterNotPdf},
  };
  for (const auto &[bytes, result] : cases) {
    OpenedPdf pdf(bytes);
    EXPECT_EQ(pdf.result, result) << bytes;
    EXPECT_EQ(pdf.info.pageCount, result == 0 ? 1 : 0) << bytes;
  }
}

TEST(Open, SectionsThatLeadInACircleAreReadOnce) {
  const std::string old = Replaced(test::OnePage("n"), "/Size", "/Prev 00000 /Size");
  const auto circle = [](const std::string &bytes) {
    OpenedPdf pdf(Replaced(bytes, "/Prev 00000", "/Prev 00" + bytes.substr(bytes.rfind("startxref\n") + 10, 3)));
    EXPECT_EQ(pdf.result, 0u);
    EXPECT_EQ(pdf.info.pageCount, 1);
    return pdf.file.xrefTable().blocks().size();
  };
  EXPECT_EQ(circle(old), 1u);
  EXPECT_EQ(circle(PdfBuilder().Object(9, "1").Build(XRefForm::kClassic, old)), 2u);
}

// Rows of type and position with widths and ranges of their own.
TEST(Open, CrossReferenceStreams) {
  const std::string body =
      "%PDF-1.5\n1 0 obj<</Pages 2 0 R>>endobj\n2 0 obj<</Type/Pages/Kids[3 0 R]>>endobj\n3 0 obj<</Type/Page>>\n";
  const auto at = [&](const char *object) { return "\1" + test::BigEndian(body.find(object), 2); };
  const std::string one = at("1 0 obj"), two = at("2 0 obj"), three = at("3 0 obj"), all = one + two + three;
  const std::string unknown = "\7" + test::BigEndian(0, 2);
  const struct {
    const char *entries;
    std::string rows;
    int pages;  // -1: refused
    size_t blocks;
  } cases[] = {
      {"/W[1 2 0]/Index[1 3]", all, 1, 1},
      {"/W[1 2 0]/Index[3 1 1 2]", three + one + two, 1, 2},
      {"/W[1 2 0]", unknown + all, -1, 1},  // from 0 on; an unknown type moves later entries down
      {"/W[1 2 0]/Index[1 4]", one + unknown + two + three, 1, 1},
      {"/W[1 2 0]/Index[1 2000000000]", all, 1, 1},
      {"/W[0 2 0]/Index[1 3]", all, -1, 1},  // no width for the type: all are free
      {"/W[0 0 0]/Index[1 3]", all, -1, 0},
      {"/W[1 2 0]/Index[1 3 7]", all, 1, 1},
      {"/W[1 2 0]/Index[7 -3 1 3]", all, 1, 1},
  };
  for (const auto &c : cases) {
    OpenedPdf pdf(test::WithXRefStream(body, 9, std::string("/Root 1 0 R/Size 4") + c.entries, c.rows));
    EXPECT_EQ(pdf.result == 0 ? pdf.info.pageCount : -1, c.pages) << c.entries;
    EXPECT_EQ(pdf.file.xrefTable().blocks().size(), c.blocks) << c.entries;
  }
}

}  // namespace
}  // namespace kapdf
