// How a host asks for the header and the rows of rasters.
#include <gtest/gtest.h>

#include "base/bytes.h"
#include "platform/settings.h"
#include "support/filter_pointer.h"
#include "support/pdf_builder.h"
#include "support/temp_file.h"

namespace kapdf::test {
namespace {

double fraction;
uint32_t Report(ProgressObject *, double done) { return fraction = done, 0; }

TEST(Rasters, AreAskedForByNameAndRowByRow) {
  const std::string image = "/Subtype /Image /Width 8 /BitsPerComponent 1 /Height ";
  TempFile file(PagesOf({"/A Do BI /W 1 /H 1 /IM true ID x EI 1e9 0 0 1e9 0 0 cm BI /W 2 /H 100 /F /CCF ID x EI "
                         "BI /W 1 /H 1 ID x EI /A Do"},
                        "/MediaBox [0 0 9 9] /Resources <</XObject <</A 5 0 R /B 6 0 R>> >>")
                    .Stream(5, image + "200 /Name /Own", std::string(200, '\x0F'))
                    .Stream(6, image + "50", std::string(50, '\x55'))
                    .Build());
  file.Close();
  const FilterPointer filter(new CPDFFilter(u"Software\\kaPDF-tests\\filter"));
  ProgressTable table{nullptr, nullptr, Report, nullptr, nullptr, nullptr, nullptr};
  ProgressObject sink{&table};
  FileInfo info{};
  ASSERT_EQ(filter->OpenRead(file.path16().c_str(), &info, nullptr, nullptr, nullptr, nullptr), FilterOk);
  ElementRecord record{};
  record.progress = &sink;
  const auto ask = [&](uint32_t kind) { return record.kind = kind, fraction = -1, filter->ReadElement(&record); };
  const auto header = [&](std::u16string_view name) {
    record.styleName[name.copy(record.styleName, 255)] = 0;
    RasterHeaderPayload told{};
    told.height = ask(ElemRasterHeader);
    return told.height == FilterOk ? LoadAs<RasterHeaderPayload>(record.payload) : told;
  };
  EXPECT_EQ(ask(ElemRasterRows), FilterNotAvailable);
  EXPECT_EQ(header(u"B").height, 50u);  // before any was announced: counts as one more
  EXPECT_EQ(ask(ElemRasterRows), FilterOk);
  EXPECT_EQ(fraction, -1);  // asked only for heights of whole hundreds
  EXPECT_EQ(record.payloadBytes, 4u + 8 * 4);
  while (ask(ElemNone) == FilterOk && record.kind != ElemRasterPlacement) continue;
  EXPECT_EQ(header(u"Missing").height, 2u);
  EXPECT_EQ(ask(ElemRasterRows), FilterNotAvailable);
  const RasterHeaderPayload first = header(u"");
  EXPECT_EQ(std::u16string(record.styleName), u"Own");
  EXPECT_EQ(first.height, 200u);
  for (int i = 1; i <= 200; ++i) {
    ASSERT_EQ(ask(ElemRasterRows), FilterOk);
    ASSERT_DOUBLE_EQ(fraction, std::min(1.0, 2.0 * i / (2 * 200)));  // two rasters on the page, the second in turn
  }
  EXPECT_EQ(ask(ElemRasterRows), FilterNoMoreRows);
  EXPECT_EQ(ask(ElemRasterRows), FilterNotAvailable);
  ASSERT_EQ(ask(ElemNone), FilterOk);                  // the inline image
  EXPECT_EQ(ask(ElemRasterRows), FilterNotAvailable);  // not without its header
  for (int time = 0; time < 2; ++time) {               // whatever the name is, and from the first row each time
    EXPECT_EQ(header(u"A").width, 1u);
    EXPECT_EQ(ask(ElemRasterRows), FilterOk);
  }
  EXPECT_EQ(ask(ElemRasterRows), FilterNoMoreRows);
  EXPECT_EQ(header(u"").height, 200u);  // drawn last
  ASSERT_EQ(ask(ElemNone), FilterOk);
  EXPECT_EQ(header(u"").height, 2u);  // nothing reads its data
  ASSERT_EQ(ask(ElemNone), FilterOk);
  EXPECT_EQ(header(u"").dpi, 300u);  // it has none of its own
  const platform::Settings settings(u"Software\\kaPDF-tests\\filter", u"\\Filter");
  settings.WriteInteger(u"DefaultResolution", 150);
  EXPECT_EQ(header(u"").dpi, 150u);
  settings.RemoveKey();
}

// A stop does not end the call: what the section makes of the record takes its place.
TEST(Rasters, StoppedWhileTheyAreWritten) {
  TempFile file("");
  file.Close();
  const struct {
    int32_t section;
    uint32_t result;
  } cases[] = {{0, FilterCancelled},   {1, FilterCancelled},   {2, FilterUnsupported}, {3, FilterConsumed},
               {4, FilterUnsupported}, {6, FilterUnsupported}, {7, FilterCancelled},   {8, FilterUnsupported}};
  ProgressTable table{
      nullptr, nullptr, [](ProgressObject *, double done) -> uint32_t { return (fraction = done) == 0.5; },
      nullptr, nullptr, nullptr,
      nullptr};
  ProgressObject sink{&table};
  for (const auto &[section, result] : cases) {
    SCOPED_TRACE(section);
    const FilterPointer filter(new CPDFFilter(u"Software\\kaPDF-tests\\filter"));
    FileInfo info{};
    info.xmax = info.ymax = 10;
    info.pageIndex = -1;
    ASSERT_EQ(filter->OpenWrite(file.path16().c_str(), &info, nullptr, nullptr), FilterOk);
    filter->BeginSection(2, 0, 0);
    filter->EndSection(2, 0, 0);
    if (section != 0) filter->BeginSection(section, 0, 0);
    RasterHeaderPayload header{2, 2, 0, 0, 300, 0, 0, nullptr};
    uint8_t row[] = {1, 0};
    ElementRecord record{};
    record.kind = ElemRasterHeader;
    record.payload = &header;
    EXPECT_EQ(filter->WriteElement(&record), FilterOk);
    record.kind = ElemRasterRows;
    record.payload = row;
    record.payloadBytes = sizeof row;
    record.progress = &sink;
    EXPECT_EQ(filter->WriteElement(&record), result);
    EXPECT_EQ(filter->WriteElement(&record), FilterOk) << "goes on where it stood";
    EXPECT_EQ(fraction, 1.0);
    EXPECT_EQ(filter->WriteElement(&record), FilterNoRasterOpen);
    filter->Close();
  }
}

}  // namespace
}  // namespace kapdf::test
