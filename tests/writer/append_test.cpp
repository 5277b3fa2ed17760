// Pages behind what a file holds already.
#include <cstring>
#include <sstream>

#include "sheet.h"
#include "support/opened_pdf.h"
#include "support/pdf_builder.h"

namespace kapdf {
namespace {

using test::XRefForm;

// The file behind the old bytes, which must have stayed as they were.
std::string Added(const Workspace &workspace, const std::string &old, int32_t page) {
  test::WriteFile("old.pdf", old);
  const std::string file = Sheet(workspace, u"old.pdf", 100, 50, page).Start().Finish();
  EXPECT_TRUE(file.starts_with(old));
  return file.substr(old.size());
}

// Three pages 3, 5 and 7; an update that replaces the second by 12; one that adds an object, and one far beyond the
// end.
std::string OldDocument(XRefForm form, bool updated) {
  const std::string first = test::PagesOf({"q", "Q", "n"}).Build(form);
  if (!updated) return first;
  test::PdfBuilder kids, more;
  kids.Object(2, "<</Type /Pages /Count 3 /Kids [3 0 R 12 0 R 7 0 R]>>").Object(12, "<</Type /Page /Parent 2 0 R>>");
  more.Object(20, "(more)");
  std::string file = more.Build(form, kids.Build(form, first));
  if (form != XRefForm::kClassic) return file;
  const size_t table = file.rfind("xref\n", file.rfind("trailer"));
  return file.replace(table, 5, "xref\n30 1\n4000000000 00000 n \n");
}

TEST(Append, ToDocumentsOfEveryForm) {
  const Workspace workspace;
  const struct {
    int32_t page;
    const char *kids;  // N is the new page
  } cases[] = {{-2, "3 5 7 N "}, {-9, "3 5 7 N "}, {0, "N 5 7 "},      {1, "3 N 7 "},
               {2, "3 5 N "},    {3, "3 5 7 N "},  {99999, "3 5 7 N "}};
  for (const XRefForm form : test::kAllForms) {
    for (const bool updated : {false, true}) {
      const std::string old = OldDocument(form, updated);
      test::OpenedPdf before(old);
      ASSERT_EQ(before.result, FilterOk);
      const int32_t info = before.file.xrefTable().HighestObject() + 1;
      for (const auto &c : cases) {
        SCOPED_TRACE(std::to_string(static_cast<int>(form)) + (updated ? " updated " : " ") + std::to_string(c.page));
        const std::string added = Added(workspace, old, c.page);
        std::istringstream words(updated ? std::regex_replace(c.kids, std::regex("5"), "12") : c.kids);
        std::string kids;
        for (std::string word; words >> word;) kids += (word == "N" ? std::to_string(info + 4) : word) + " 0 R ";
        const std::string count = std::strlen(c.kids) > 6 ? "4" : "3";
        EXPECT_TRUE(added.starts_with("%PDF-1.5\r%\xFF\xFF\xFF\xFF\r" + std::to_string(info) + " 0 obj\r"));
        EXPECT_EQ(Between(added, "/Count ", "]"), count + "\r/Kids [" + kids);
        EXPECT_EQ(Between(added, "/Info ", "\r>>stream"),
                  std::to_string(info) + " 0 R\r/Root " + std::to_string(info + 1) + " 0 R");

        test::OpenedPdf after(old + added);
        ASSERT_EQ(after.result, FilterOk);
        EXPECT_EQ(std::to_string(after.info.pageCount), count);
        for (int32_t number = 0; number < info; ++number) {
          const PDFXRefEntry *was = before.file.xrefTable().Find(number), *is = after.file.xrefTable().Find(number);
          ASSERT_EQ(was != nullptr, is != nullptr) << number;
          if (!was) continue;
          EXPECT_EQ(std::pair(was->type, was->offset), std::pair(is->type, is->offset)) << number;
          EXPECT_EQ(was->type == '2' ? was->generation : 0, is->type == '2' ? is->generation : 0) << number;
        }
        const uint32_t page = after.file.objects().Resolve(info + 4);
        EXPECT_TRUE((old + added).substr(page).starts_with(std::to_string(info + 4) + " 0 obj\r<<\r/Type /Page\r"));
      }
    }
  }
}

// Readers see the new page only, or nothing where the old bytes are no PDF file; but the bytes stay.
TEST(Append, BehindWhatCannotBeRead) {
  const Workspace workspace;
  const std::string page = test::OnePage("");
  const auto numbered = [&](const std::string &subsection) {
    return test::Replaced(page, "trailer", subsection + "\n0000000015 00000 n \ntrailer");
  };
  for (const std::string &old : {std::string("hello"), std::string(), page.substr(0, page.size() - 40),
                                 test::PagesOf({""}).Trailer("/Root 1 0 R /Encrypt 9 0 R").Build(),
                                 numbered("2146435072 1"), numbered("2147483647 1"), numbered("-5 1")}) {
    SCOPED_TRACE(old);
    for (const int32_t index : {-2, 0}) {
      const std::string added = Added(workspace, old, index);
      EXPECT_TRUE(added.starts_with("%PDF-1.5\r"));
      EXPECT_EQ(Between(added, "/Count ", "\r>>"), "1\r/Kids [5 0 R]");
      EXPECT_EQ(Between(added, "/Index[", "]"), "0 10");
      EXPECT_EQ(test::OpenedPdf(old + added).info.pageCount, old.starts_with("%PDF") || old.empty() ? 1 : 0);
    }
  }
  const std::string full = numbered("2146435071 1");  // one less leaves room
  EXPECT_EQ(test::OpenedPdf(full + Added(workspace, full, -2)).info.pageCount, 2);
}

TEST(Append, ManyTimesInBothModes) {
  const Workspace workspace;
  std::string file = Sheet(workspace).Start().Finish();
  constexpr int kPages = 200;
  for (int i = 1; i < kPages; ++i) {
    workspace.pdf().WriteInteger(u"PDFA", i % 2);
    const std::string longer = Sheet(workspace, u"sheet.pdf", 100 + i, 50, -2).Start().Finish();
    ASSERT_TRUE(longer.starts_with(file));
    file = longer;
  }
  EXPECT_GT(Between(file.substr(file.rfind("/Index[")), "[", "]").size(), 1024u);
  test::OpenedPdf opened(file);
  ASSERT_EQ(opened.info.pageCount, kPages);
  for (int i = 0; i < kPages; ++i) {
    PagePosition place;
    ASSERT_TRUE(opened.file.GetPage(i, place));
    const std::string page = file.substr(opened.file.objects().Resolve(place.objectNumber), 200);
    char box[40];
    std::snprintf(box, sizeof box, " %.3f ", (102 + i) * kPointsPerMillimetre);
    ASSERT_NE(page.find(box), std::string::npos) << i << page;
  }
}

}  // namespace
}  // namespace kapdf
