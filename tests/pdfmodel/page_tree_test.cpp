#include "pdfmodel/page_tree.h"

#include <gtest/gtest.h>

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
    const char *what;
    std::vector<std::string> objects;  // from 2
    Pages pages;
  } cases[] = {
      {"order of the tree",
       {"<</Type /Pages /Kids [5 0 R 3 0 R]>>", "<</Type /Pages /Kids [4 0 R]>>", page, page},
       {5, 4}},
      {"kids by reference", {"<</Type /Pages /Kids 3 0 R>>", "[4 0 R 5 0 R]", page, page}, {4, 5}},
      {"one kid by reference to no list", {"<</Type /Pages /Kids 3 0 R>>", "<<>>"}, {}},
      {"what is no reference is passed over", {"<</Type /Pages /Kids [<</Type /Page>> 7 3 0 R]>>", page}, {3}},
      {"a leaf may come twice", {"<</Type /Pages /Kids [3 0 R 3 0 R]>>", page}, {3, 3}},
      {"a missing kid ends the walk", {"<</Type /Pages /Kids [3 0 R 9 0 R 4 0 R]>>", page, page}, {3}},
      {"a kid without type ends the walk", {"<</Type /Pages /Kids [3 0 R 4 0 R 3 0 R]>>", page, "<<>>"}, {3}},
      {"it ends for the parents as well",
       {"<</Type /Pages /Kids [3 0 R 5 0 R]>>", "<</Type /Pages /Kids [5 0 R 4 0 R]>>", "<</Type /Other>>", page},
       {5}},
      {"a node inside itself", {"<</Type /Pages /Kids [3 0 R 2 0 R 3 0 R]>>", page}, {3}},
      {"a node twice", {"<</Type /Pages /Kids [3 0 R 3 0 R]>>", "<</Type /Pages /Kids [4 0 R]>>", page}, {4}},
      {"a page instead of a tree", {page}, {2}},
      {"no kids", {"<</Type /Pages>>"}, {}},
      {"the type by reference", {"<</Type 3 0 R /Kids [4 0 R]>>", "/Pages", page}, {}},
  };
  for (const auto &c : cases) {
    test::OpenedPdf pdf(Tree(c.objects).Build());
    EXPECT_EQ(pdf.result, 0u) << c.what;
    EXPECT_EQ(pdf.file.pageObjects(), c.pages) << c.what;
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
    EXPECT_EQ(pdf.result, 0u);
    EXPECT_EQ(pdf.file.pageObjects().size(), depth < 256 ? 1u : 0u);
  }
}

TEST(PageTree, TheLastBoxAndAngleMetCount) {
  const struct {
    const char *what;
    std::vector<std::string> objects;
    PageBox box;
    double degrees;
  } cases[] = {
      {"the last page's media box over the root's crop box",
       {"<</Type /Pages /CropBox [1 2 3 4] /Rotate 90 /Kids [3 0 R 4 0 R]>>", "<</Type /Page /MediaBox [5 6 7 8]>>",
        "<</Type /Page /MediaBox [0 0 9 10] /Rotate 180>>"},
       {0, 9, 0, 10},
       90},
      {"crop box over media box in one node",
       {"<</Type /Pages /CropBox [1 2 3 4] /MediaBox [5 6 7 8] /Kids [3 0 R]>>", "<</Type /Page>>"},
       {1, 3, 2, 4},
       0},
      {"the outermost angle comes last",
       {"<</Type /Pages /Rotate -90 /Kids [3 0 R]>>", "<</Type /Pages /Rotate 180 /Kids [4 0 R]>>", "<</Type /Page>>"},
       {},
       -90},
      {"an angle counts although the walk has ended",
       {"<</Type /Pages /Rotate 90 /Kids [3 0 R 9 0 R]>>", "<</Type /Page>>"},
       {},
       90},
      {"boxes of fewer than four, or behind a reference, are passed over; what is no number is 0",
       {"<</Type /Pages /MediaBox [1 2 3] /CropBox 3 0 R /Kids [4 0 R]>>", "[1 2 3 4]",
        "<</Type /Page /MediaBox [1 /x 3.5 4 5]>>"},
       {1, 3.5, 0, 4},
       0},
  };
  for (const auto &c : cases) {
    test::OpenedPdf pdf(Tree(c.objects).Build());
    PagePosition page;
    ASSERT_TRUE(pdf.file.GetPage(0, page)) << c.what;
    EXPECT_EQ(page.box.left, c.box.left) << c.what;
    EXPECT_EQ(page.box.right, c.box.right) << c.what;
    EXPECT_EQ(page.box.bottom, c.box.bottom) << c.what;
    EXPECT_EQ(page.box.top, c.box.top) << c.what;
    EXPECT_DOUBLE_EQ(page.rotate, c.degrees / 180 * std::numbers::pi) << c.what;
  }
}

}  // namespace
}  // namespace kapdf
