// Which settings reach the document: the writer's own key, unless an option string hands over those of the filter's.
#include "platform/settings.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "filter/filter.h"
#include "support/pdf_builder.h"
#include "support/temp_file.h"

namespace kapdf {
namespace {

struct Destroyer {
  void operator()(CPDFFilter *filter) const { filter->Destroy(1); }
};
using FilterPointer = std::unique_ptr<CPDFFilter, Destroyer>;

class FilterSettings : public testing::Test {
 protected:
  void SetUp() override { platform::Settings(kPath, u"").RemoveKey(); }
  void TearDown() override { platform::Settings(kPath, u"").RemoveKey(); }

  static constexpr char16_t kPath[] = u"Software\\kaPDF-tests\\filter";
  platform::Settings filterKey{kPath, u"\\Filter\\PDF"};
  platform::Settings pdfKey{kPath, u"\\PDF"};
};

// Writes a sheet of 100 by 50 mm without elements.
std::string Written(const char16_t *registryPath, const char16_t *options) {
  {
    const FilterPointer filter(new CPDFFilter(registryPath, true));
    FileInfo info{};
    info.xmax = 100;
    info.ymax = 50;
    info.pageIndex = -1;
    EXPECT_EQ(filter->OpenWrite(u"settings.pdf", &info, nullptr, options), FilterOk);
    filter->Close();
  }
  std::ifstream file("settings.pdf", std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string MediaBoxOf(const std::string &file) {
  const size_t at = file.find("/MediaBox [");
  return at == std::string::npos ? "" : file.substr(at, file.find(']', at) + 1 - at);
}

TEST_F(FilterSettings, AnOptionStringHandsOverTheFiltersOwn) {
  filterKey.WriteReal(u"PaperFrame", 10);
  filterKey.WriteInteger(u"PDFA", 1);
  pdfKey.WriteReal(u"PaperFrame", 20);
  const std::string boxes[] = {"/MediaBox [ -56.693 -56.693 340.157 198.425 ]",
                               "/MediaBox [ -28.346 -28.346 311.811 170.079 ]",
                               "/MediaBox [ 0.000 0.000 283.465 141.732 ]"};
  const std::string untold = Written(kPath, nullptr), empty = Written(kPath, u"");
  EXPECT_EQ(MediaBoxOf(untold), boxes[0]);
  EXPECT_EQ(MediaBoxOf(empty), boxes[0]);
  EXPECT_TRUE(untold.starts_with("%PDF-1.5"));

  // All six go with any word, and what the string names wins.
  const std::string quality = Written(kPath, u"/q 50"), frame = Written(kPath, u"/frame 0 /pdfa 0");
  EXPECT_EQ(MediaBoxOf(quality), boxes[1]);
  EXPECT_TRUE(quality.starts_with("%PDF-1.4"));
  EXPECT_EQ(MediaBoxOf(frame), boxes[2]);
  EXPECT_TRUE(frame.starts_with("%PDF-1.5"));
}

// The string of a document stays with the object: its values are the settings of the next one.
TEST_F(FilterSettings, StayWithTheObject) {
  const FilterPointer filter(new CPDFFilter(kPath, true));
  const char16_t *const options[] = {u"/frame 5", nullptr, u"/q 10"};
  for (const char16_t *text : options) {
    FileInfo info{};
    info.xmax = 100;
    info.ymax = 50;
    info.pageIndex = -1;
    ASSERT_EQ(filter->OpenWrite(u"settings.pdf", &info, nullptr, text), FilterOk);
    EXPECT_DOUBLE_EQ(info.xmin, -5);
    EXPECT_DOUBLE_EQ(info.xmax, 105);
  }
  filter->Close();
}

TEST_F(FilterSettings, ClippingDropsWhatLiesBesideThePage) {
  const test::TempFile file(test::OnePage("900 900 m 950 950 l S\n"));
  for (const int clipping : {1, 0}) {
    pdfKey.WriteInteger(u"Clipping", clipping);
    const FilterPointer filter(new CPDFFilter(kPath, false));
    FileInfo info{};
    ASSERT_EQ(filter->OpenRead(file.path16().c_str(), &info, nullptr, nullptr, nullptr, nullptr), FilterOk);
    ElementRecord record{};
    EXPECT_EQ(filter->ReadElement(&record), FilterOk);  // the definitions
    record.kind = ElemNone;
    EXPECT_EQ(filter->ReadElement(&record), clipping ? FilterEndOfElements : FilterOk);
  }
}

}  // namespace
}  // namespace kapdf
