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
  return ReadIndirectInteger(reference, file.objects(), value) == 0 ? std::to_string(value) : "?";
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

TEST(Open, Refusals) {
  const std::string good = test::OnePage("n"), stream = test::OnePage("n", "", XRefForm::kStream);
  const std::string noTail = good.substr(0, good.rfind("startxref"));
  const struct {
    const char *what;
    std::string bytes;
    uint32_t result;
  } cases[] = {
      {"empty", "", FilterNoRoot},
      {"three bytes", "%PD", FilterNoRoot},
      {"four bytes", "%PDF", FilterNotPdf},
      {"twenty bytes", "%PDF-1.4 startxref 0", FilterNotPdf},
      {"leading bytes", "\n" + good, FilterNotPdf},
      {"no startxref", noTail, FilterNotPdf},
      {"startxref far from the end", good + std::string(1100, ' '), FilterNotPdf},
      {"startxref near enough", good + std::string(900, ' '), 0},
      {"startxref without a number", noTail + "startxref\n%%EOF %%EOF", FilterNotPdf},
      {"startxref to nowhere", noTail + "startxref\n999999\n%%EOF", FilterNotPdf},
      {"startxref before the file", noTail + "startxref\n-5\n%%EOF", FilterNotPdf},
      {"the last of two counts", noTail + "startxref\n1\n" + good.substr(noTail.size()), 0},
      {"no root", Replaced(good, "/Root 1 0 R", "/Toor 1 0 R"), FilterNoRoot},
      {"direct root", Replaced(good, "/Root 1 0 R", "/Root <<>>  "), FilterNoRoot},
      {"no size", Replaced(good, "/Size", "/Zise"), FilterNotPdf},
      {"no trailer", Replaced(good, "trailer", "trialer"), FilterNotPdf},
      {"broken trailer ends the chain", Replaced(good, "trailer\n<<", "trailer\n< "), FilterNoRoot},
      {"trailer without white space", Replaced(good, "trailer\n<<", "trailer<< "), 0},
      {"encrypted", Replaced(good, "/Size", "/Encrypt 8 0 R /Size"), FilterEncrypted},
      {"encrypted, said directly", Replaced(good, "/Size", "/Encrypt <<>> /Size"), 0},
      {"encrypted before all else", Replaced(good, "/Size", "/Encrypt 8 0 R /Zise"), FilterEncrypted},
      {"stream: encrypted", Replaced(stream, "/Type /XRef", "/Encrypt <<>> /Type /XRef"), FilterEncrypted},
      {"stream: another type", Replaced(stream, "/Type /XRef", "/Type /XReF"), FilterNotPdf},
      {"stream: no root", Replaced(stream, "/Root", "/Toor"), FilterNoRoot},
      {"stream: no widths", Replaced(stream, "/W [1 4 2]", "/V [1 4 2]"), FilterNotPdf},
      {"stream: two widths", Replaced(stream, "/W [1 4 2]", "/W [1 4]"), FilterNotPdf},
      {"stream: a width of five", Replaced(stream, "/W [1 4 2]", "/W [1 5 2]"), FilterNotPdf},
      {"stream: a negative width", Replaced(stream, "/W [1 4 2]", "/W [1 -4 2]"), FilterNotPdf},
      {"stream: no length", Replaced(stream, "/Length 42", "/Htgnel 42"), FilterNotPdf},
      {"no catalog", Replaced(good, "1 0 obj", "1 0 jbo"), FilterNotPdf},
      {"no pages", Replaced(good, "/Pages 2 0 R", "/Segap 2 0 R"), FilterNotPdf},
      {"pages unknown", Replaced(good, "/Pages 2 0 R", "/Pages 9 0 R"), FilterNotPdf},
  };
  for (const auto &c : cases) {
    OpenedPdf pdf(c.bytes);
    EXPECT_EQ(pdf.result, c.result) << c.what;
    EXPECT_EQ(pdf.info.pageCount, c.result == 0 ? 1 : 0) << c.what;
  }
}

TEST(Open, SectionsThatLeadInACircleAreReadOnce) {
  const std::string old = test::OnePage("n");
  const std::string table = old.substr(old.rfind("startxref\n") + 10, 3);
  OpenedPdf itself(Replaced(old, "/Size", "/Prev " + table + " /Size"));
  EXPECT_EQ(itself.result, 0u);
  EXPECT_EQ(itself.file.xrefTable().blocks().size(), 1u);

  std::string newer =
      PdfBuilder().Object(9, "1").Build(XRefForm::kClassic, Replaced(old, "/Size", "/Prev 00000 /Size"));
  const std::string position = newer.substr(newer.rfind("startxref\n") + 10, 3);
  OpenedPdf two(Replaced(newer, "/Prev 00000", "/Prev 00" + position));
  EXPECT_EQ(two.result, 0u);
  EXPECT_EQ(two.info.pageCount, 1);
  EXPECT_EQ(two.file.xrefTable().blocks().size(), 2u);

  for (const char *nowhere : {"0", "-1", "99999"}) {
    EXPECT_EQ(OpenedPdf(Replaced(old, "/Size", std::string("/Prev ") + nowhere + " /Size")).result, 0u) << nowhere;
  }
}

TEST(Open, TablesAsTheyCome) {
  const std::string good = test::OnePage("n");
  const size_t table = good.rfind("xref\n0 5\n");
  const auto with = [&](std::string_view head) {
    return good.substr(0, table) + std::string(head) + good.substr(table + 9);
  };
  const struct {
    const char *what;
    std::string bytes;
    bool found;
  } cases[] = {
      {"carriage return and line feed", with("xref\r\n0 5\r\n"), true},
      {"white space around", with(" \n xref \n\n 0  5 \n"), true},
      {"empty section first", with("xref\n0 0\n0 5\n"), true},
      {"a line of no numbers", with("xref\n-\n0 5\n"), true},
      {"announces more than there is", with("xref\n0 2000000000\n"), false},
      {"hybrid: the stream beside the table is not read", Replaced(good, "/Size", "/XRefStm 99 /Size"), true},
  };
  for (const auto &c : cases) EXPECT_EQ(OpenedPdf(c.bytes).result == 0, c.found) << c.what;
}

// Rows of type, position and generation with widths and ranges of their own.
TEST(Open, CrossReferenceStreams) {
  const std::string body =
      "%PDF-1.5\n1 0 obj<</Pages 2 0 R>>endobj\n2 0 obj<</Type/Pages/Kids[3 0 R]>>endobj\n3 0 obj<</Type/Page>>\n";
  const auto at = [&](const char *object) { return test::BigEndian(body.find(object), 2); };
  const std::string one = "\1" + at("1 0 obj"), two = "\1" + at("2 0 obj"), three = "\1" + at("3 0 obj");
  const std::string skipped = std::string("\7") + std::string(2, '\0');
  const auto document = [&](const std::string &entries, const std::string &rows) {
    return body + "9 0 obj<</Type/XRef/Root 1 0 R " + entries + "/Length " + std::to_string(rows.size()) +
           ">>stream\n" + rows + "\nendstream startxref " + std::to_string(body.size()) + " %%EOF";
  };
  const struct {
    const char *what;
    std::string bytes;
    int pages;  // -1: refused
    size_t blocks;
  } cases[] = {
      {"plain", document("/W[1 2 0]/Index[1 3]/Size 4", one + two + three), 1, 1},
      {"two ranges", document("/W[1 2 0]/Index[3 1 1 2]/Size 4", three + one + two), 1, 2},
      {"without ranges from 0 to the size", document("/W[1 2 0]/Size 4", skipped + one + two + three), -1, 1},
      {"more announced than there is", document("/W[1 2 0]/Index[1 2000000000]/Size 4", one + two + three), 1, 1},
      {"an unknown type moves later entries down", document("/W[1 2 0]/Index[1 4]/Size 4", one + skipped + two + three),
       1, 1},
      {"no width for the type: all are free", document("/W[0 2 0]/Index[1 3]/Size 4", one + two + three), -1, 1},
      {"no width at all", document("/W[0 0 0]/Index[1 3]/Size 4", one + two + three), -1, 0},
      {"odd ranges", document("/W[1 2 0]/Index[1 3 7]/Size 4", one + two + three), 1, 1},
      {"a negative count", document("/W[1 2 0]/Index[7 -3 1 3]/Size 4", one + two + three), 1, 1},
  };
  for (const auto &c : cases) {
    OpenedPdf pdf(c.bytes);
    EXPECT_EQ(pdf.result == 0 ? pdf.info.pageCount : -1, c.pages) << c.what;
    EXPECT_EQ(pdf.file.xrefTable().blocks().size(), c.blocks) << c.what;
  }
}

}  // namespace
}  // namespace kapdf
