// Which settings reach the document: the writer's own key, unless an option string hands over those of the filter's.
#include "platform/settings.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <tuple>

#include "base/bytes.h"
#include "support/bytes.h"
#include "support/filter_pointer.h"
#include "support/pdf_builder.h"
#include "support/temp_file.h"

namespace kapdf {
namespace {

using test::FilterPointer;

class FilterSettings : public testing::Test {
 protected:
  void SetUp() override { platform::Settings(kPath, u"").RemoveKey(); }
  void TearDown() override { platform::Settings(kPath, u"").RemoveKey(); }

  static constexpr char16_t kPath[] = u"Software\\kaPDF-tests\\filter";
  platform::Settings filterKey{kPath, u"\\Filter\\PDF"};
  platform::Settings pdfKey{kPath, u"\\PDF"};
};

// Writes a sheet of 100 by 50 mm without elements: the version and the page of the document.
std::string Written(CPDFFilter &filter, const char16_t *options) {
  FileInfo info{};
  info.xmax = 100;
  info.ymax = 50;
  info.pageIndex = -1;
  EXPECT_EQ(filter.OpenWrite(u"settings.pdf", &info, nullptr, options), FilterOk);
  filter.Close();
  const std::string file = test::ReadFile("settings.pdf");
  const size_t at = file.find("/MediaBox [");
  return file.substr(5, 3) + file.substr(at + 11, file.find(']', at) - at - 11);
}

TEST_F(FilterSettings, AnOptionStringHandsOverTheFiltersOwn) {
  filterKey.WriteReal(u"PaperFrame", 10);
  filterKey.WriteInteger(u"PDFA", 1);
  pdfKey.WriteReal(u"PaperFrame", 20);
  const std::pair<const char16_t *, const char *> cases[] = {
      {nullptr, "1.5 -56.693 -56.693 340.157 198.425 "},
      {u"", "1.5 -56.693 -56.693 340.157 198.425 "},
      // All six go with any word, and what the string names wins.
      {u"/q 50", "1.4 -28.346 -28.346 311.811 170.079 "},
      {u"/frame 0 /pdfa 0", "1.5 0.000 0.000 283.465 141.732 "},
  };
  for (const auto &[options, expected] : cases) {
    const FilterPointer filter(new CPDFFilter(kPath));
    EXPECT_EQ(Written(*filter, options), expected);
  }
  // The string of a document stays with the object: its values are the settings of the next one.
  const FilterPointer filter(new CPDFFilter(kPath));
  for (const char16_t *options : {u"/frame 5 /pdfa 0", static_cast<const char16_t *>(nullptr), u"/q 10"})
    EXPECT_EQ(Written(*filter, options), "1.5 -14.173 -14.173 297.638 155.906 ");
}

TEST_F(FilterSettings, ClippingDropsWhatLiesBesideThePage) {
  test::TempFile file(test::OnePage("900 900 m 950 950 l S\n"));
  file.Close();  // shared for reading means that nobody writes
  for (const int clipping : {1, 0}) {
    pdfKey.WriteInteger(u"Clipping", clipping);
    const FilterPointer filter(new CPDFFilter(kPath));
    FileInfo info{};
    ASSERT_EQ(filter->OpenRead(file.path16().c_str(), &info, nullptr, nullptr, nullptr, nullptr), FilterOk);
    ElementRecord record{};
    EXPECT_EQ(filter->ReadElement(&record), FilterOk);  // the definitions
    record.kind = ElemNone;
    EXPECT_EQ(filter->ReadElement(&record), clipping ? FilterEndOfElements : FilterOk);
  }
}

// The page is not turned, and what is off the sheet is off it wherever the sheet comes to lie.
TEST_F(FilterSettings, AGeoreferencedPageGivesItsSystemFirst) {
  test::TempFile file(test::OnePage("0 0 m 10 20 l S 5 5 m 11 6 l 10 7 l S",
                                    "/MediaBox [0 0 10 20] /Rotate 90 /Annots [] /LGIDict <</CTM [2 (0) 0 2 (3e5) 50] "
                                    "/Projection <</Type /Projection>> >>"));
  file.Close();
  pdfKey.WriteInteger(u"EPSGCode", 32632);
  const FilterPointer filter(new CPDFFilter(kPath));
  FileInfo info{};
  ASSERT_EQ(filter->OpenRead(file.path16().c_str(), &info, nullptr, nullptr, nullptr, nullptr), FilterOk);
  const ProgressTable stops{nullptr, nullptr, [](ProgressObject *, double) { return 1u; }, nullptr, nullptr,
                            nullptr, nullptr};
  ProgressObject progress{&stops};
  ElementRecord record{};
  record.section = 77;
  record.progress = &progress;
  ASSERT_EQ(filter->ReadElement(&record), FilterOk) << "nobody asks the sink";
  EXPECT_EQ(std::tuple(record.kind, record.section, record.payloadBytes), std::tuple(14u, 77u, 20u));
  const auto property = LoadAs<NamedPropertyPayload>(record.payload);
  EXPECT_EQ(filter->ReadElement(&record), FilterCancelled);
  record.progress = nullptr;
  std::string drawn;
  while (filter->ReadElement(&record) == FilterOk) {
    const auto line = LoadAs<LinePayload>(record.payload);
    for (const double value : {line.x1, line.y1, line.x2, line.y2}) drawn += std::to_string(std::lround(value)) + " ";
  }
  EXPECT_EQ(drawn, "300000 50 300020 90 300010 60 300020 64 ");
  const std::u16string value = property.value;  // still as it was
  EXPECT_EQ(std::tuple(std::u16string(property.name), property.type, value.size()),
            std::tuple(u"COORDSYS", 32u, 3440u));
  EXPECT_EQ(value.substr(480, 8), u"787F0000");
}

}  // namespace
}  // namespace kapdf
