// A georeferenced page as the host gets it: its coordinate system ahead of everything, and the drawing in its place.
#include <gtest/gtest.h>

#include "base/bytes.h"
#include "filter/filter.h"
#include "platform/settings.h"
#include "support/pdf_builder.h"
#include "support/temp_file.h"

namespace kapdf::test {
namespace {

int asked = 0;
uint32_t CountCall(ProgressObject *, double) { return ++asked, 0; }

// The lines of a page, in millimetres, behind what the first call with a property has to be.
std::string LinesOf(const std::string &pageEntries, int32_t epsg, bool system) {
  static constexpr char16_t kPath[] = u"Software\\kaPDF-tests\\georeference";
  const platform::Settings settings(kPath, u"\\PDF");
  if (epsg != 0) settings.WriteInteger(u"EPSGCode", epsg);
  TempFile file(OnePage("0 0 m 10 20 l S 5 5 m 10.5 6 l 7 7 l S", pageEntries));
  file.Close();
  CPDFFilter &filter = *new CPDFFilter(kPath, false);
  FileInfo info{};
  EXPECT_EQ(filter.OpenRead(file.path16().c_str(), &info, nullptr, nullptr, nullptr, nullptr), FilterOk);
  platform::Settings(kPath, u"").RemoveKey();
  const ProgressTable table{nullptr, nullptr, CountCall, nullptr, nullptr, nullptr, nullptr};
  ProgressObject progress{&table};
  ElementRecord record{};
  record.progress = &progress;
  std::u16string_view block;
  asked = 0;
  if (system) {
    record.section = 77;
    EXPECT_EQ(filter.ReadElement(&record), FilterOk);
    EXPECT_EQ(record.kind, 14u);
    EXPECT_EQ(record.payloadBytes, 20u);
    EXPECT_EQ(record.section, 77u);
    const auto property = LoadAs<NamedPropertyPayload>(record.payload);
    EXPECT_EQ(std::u16string(property.name), u"COORDSYS");
    EXPECT_EQ(property.type, 32u);
    block = property.value;
    EXPECT_EQ(asked, 0);
  }
  EXPECT_EQ(filter.ReadElement(&record), FilterOk);
  EXPECT_EQ(record.kind, 7u);
  EXPECT_EQ(asked, 1);
  std::string lines;
  while (filter.ReadElement(&record) == FilterOk) {
    if (record.kind != ElemLine) continue;
    const auto line = LoadAs<LinePayload>(record.payload);
    char text[120];
    std::snprintf(text, sizeof text, "%.3f,%.3f %.3f,%.3f;", line.x1, line.y1, line.x2, line.y2);
    lines += text;
  }
  if (system) {  // still as it was
    EXPECT_EQ(block.size(), 3440u);
    EXPECT_EQ(block.substr(0, 24), u"00030000B806000003000000");
    EXPECT_EQ(block.substr(480, 8), epsg == 0 ? u"FEFFFFFF" : u"787F0000");
  }
  filter.Destroy(1);
  return lines;
}

TEST(Georeference, ComesFirstAndPlacesThePage) {
  const std::string box = "/MediaBox [0 0 10 20] /Rotate 90 /LGIDict <<", system = "/Projection <</Type /Projection>> ";
  const std::string unmoved = "0.000,0.000 3.528,7.056;1.764,1.764 2.469,2.469;";
  EXPECT_EQ(LinesOf(box + system + ">>", 0, true), unmoved);
  EXPECT_EQ(LinesOf(box + system + ">>", 32632, true), unmoved);
  EXPECT_EQ(LinesOf(box + ">>", 0, false), unmoved);
  // Two millimetres for one point. What is off the sheet is off it wherever the sheet comes to lie.
  EXPECT_EQ(LinesOf(box + system + "/CTM [(2) 0 0 (2) (300000) 50]>>", 0, true),
            "300000.000,50.000 300020.000,90.000;300010.000,60.000 300014.000,64.000;");
  EXPECT_EQ(LinesOf(box + "/CTM [0 2 -2 0 0 0]>> /Annots []", 0, false),
            "0.000,0.000 -40.000,20.000;-10.000,10.000 -14.000,14.000;");
}

}  // namespace
}  // namespace kapdf::test
