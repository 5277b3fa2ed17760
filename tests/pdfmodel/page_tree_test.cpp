#include "pdfmodel/page_tree.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>

#include "support/opened_pdf.h"
#include "support/pdf_builder.h"

namespace kapdf {
namespace {

using Pages = std::vector<uint32_t>;

test::PdfBuilder Tree(const std::vector<std::string> &objectsFrom2) {
  test::PdfBuilder builder;
  builder.Object(1, "<</Pages 2 0 R>>");
  int number = 2;
  for (const std::string &text : objectsFrom2) builder.Object(number++, text);
  return builder;
}

TEST(PageTree, Walks) {
  const std::string page = "<</Type /Page>>";
  const struct {
    std::vector<std::string> objects;  // from 2
    Pages pages;
  } cases[] = {
      {{"<</Type /Pages /Kids [5 0 R 3 0 R]>>", "<</Type /Pages /Kids [4 0 R]>>", page, page}, {5, 4}},
      {{"<</Type /Pages /Kids 3 0 R>>", "[4 0 R 5 0 R]", page, page}, {4, 5}},
      {{"<</Type /Pages /Kids 3 0 R>>", "<<>>"}, {}},
      {{"<</Type /Pages /Kids [<</Type /Page>> 7 3 0 R]>>", page}, {3}},
      {{page}, {2}},
      {{"<</Type /Pages>>"}, {}},
      {{"<</Type 3 0 R /Kids [4 0 R]>>", "/Pages", page}, {}},
      // A leaf may come twice, a node may not: neither beside itself nor inside itself.
      {{"<</Type /Pages /Kids [3 0 R 3 0 R]>>", page}, {3, 3}},
      {{"<</Type /Pages /Kids [3 0 R 3 0 R]>>", "<</Type /Pages /Kids [4 0 R]>>", page}, {4}},
      {{"<</Type /Pages /Kids [3 0 R 2 0 R 3 0 R]>>", page}, {3}},
      // A kid that is missing or has no known type ends the walk, for the parents as well.
      {{"<</Type /Pages /Kids [3 0 R 9 0 R 4 0 R]>>", page, page}, {3}},
      {{"<</Type /Pages /Kids [3 0 R 4 0 R 3 0 R]>>", page, "<<>>"}, {3}},
      {{"<</Type /Pages /Kids [3 0 R 5 0 R]>>", "<</Type /Pages /Kids [5 0 R 4 0 R]>>", "<</Type /Other>>", page}, {5}},
  };
  for (const auto &c : cases) {
    test::OpenedPdf pdf(Tree(c.objects).Build());
    EXPECT_EQ(pdf.result, 0u) << c.objects[0];
    EXPECT_EQ(pdf.file.pageObjects(), c.pages) << c.objects[0];
  }
}

TEST(PageTree, APageHasTheNumberThatStandsThere) {
  const std::string bytes = Tree({"<</Type /Pages /Kids [3 0 R]>>", "<</Type /Page>>"}).Build();
  test::OpenedPdf pdf(test::Replaced(bytes, "3 0 obj", "8 0 obj"));
  EXPECT_EQ(pdf.file.pageObjects(), (Pages{8}));
}

TEST(PageTree, DepthIsBounded) {
  for (const int depth : {250, 300, 20000}) {
    std::vector<std::string> nodes;
    nodes.reserve(static_cast<size_t>(depth) + 1);
    for (int i = 0; i < depth; ++i) nodes.push_back("<</Type /Pages /Kids [" + std::to_string(i + 3) + " 0 R]>>");
    nodes.emplace_back("<</Type /Page>>");
    test::OpenedPdf pdf(Tree(nodes).Build());
    EXPECT_EQ(pdf.file.pageObjects().size(), depth < 256 ? 1u : 0u);
  }
}

TEST(PageTree, TheLastBoxAndAngleMetCount) {
  using Numbers = std::vector<double>;
  const struct {
    std::vector<std::string> objects;
    Numbers page;  // left, right, bottom, top, degrees
  } cases[] = {
      // The last page's media box over the root's crop box; in one node it is the other way round.
      {{"<</Type /Pages /CropBox [1 2 3 4] /Rotate 90 /Kids [3 0 R 4 0 R]>>", "<</Type /Page /MediaBox [5 6 7 8]>>",
        "<</Type /Page /MediaBox [0 0 9 10] /Rotate 180>>"},
       {0, 9, 0, 10, 90}},
      {{"<</Type /Pages /CropBox [1 2 3 4] /MediaBox [5 6 7 8] /Kids [3 0 R]>>", "<</Type /Page>>"}, {1, 3, 2, 4, 0}},
      // The outermost angle comes last, and counts although the walk has ended.
      {{"<</Type /Pages /Rotate -90 /Kids [3 0 R 9 0 R]>>", "<</Type /Pages /Rotate 180 /Kids [4 0 R]>>",
        "<</Type /Page>>"},
       {0, 0, 0, 0, -90}},
      // Boxes of fewer than four, or behind a reference, are passed over; what is no number is 0.
      {{"<</Type /Pages /MediaBox [1 2 3] /CropBox 3 0 R /Kids [4 0 R]>>", "[1 2 3 4]",
        "<</Type /Page /MediaBox [1 /x 3.5 4 5]>>"},
       {1, 3.5, 0, 4, 0}},
  };
  for (const auto &c : cases) {
    test::OpenedPdf pdf(Tree(c.objects).Build());
    PagePosition page;
    ASSERT_TRUE(pdf.file.GetPage(0, page)) << c.objects[0];
    EXPECT_EQ((Numbers{page.box.left, page.box.right, page.box.bottom, page.box.top,
                       std::round(page.rotate / std::numbers::pi * 180e9) / 1e9}),
              c.page)
        << c.objects[0];
  }
}

}  // namespace
}  // namespace kapdf
