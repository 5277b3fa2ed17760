// Text that was exported comes back by import.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "base/bytes.h"
#include "support/filter_pointer.h"
#include "support/font_builder.h"
#include "support/temp_file.h"

namespace kapdf::test {
namespace {

class MadeFont : public testing::Environment {
 public:
  void SetUp() override { InstallFont("made.ttf", BuildFont("KapdfMade", u" ABC\u03B2\u0416\u1EBF\u6F22")); }
};
const auto *const kMadeFont = testing::AddGlobalTestEnvironment(new MadeFont);

constexpr struct {
  double x, y, angle, height, widthFactor;
  const char16_t *text;
} kTexts[] = {{20, 30, 0, 7, 1, u"A B\u03B2"},
              {100.25, 40.5, std::numbers::pi / 6, 3.5, 0.75, u"\u0416\u1EBF\u6F22"},
              {80, 90, -2.5, 12, 1.5, u"CAB"}};

TEST(Texts, ComeBackAsTheyWereSent) {
  TempFile file("");
  file.Close();
  FilterPointer filter(new CPDFFilter(u"Software\\kaPDF-tests\\filter"));
  FileInfo info{};
  info.xmax = info.ymax = 150;
  info.pageIndex = -1;
  ASSERT_EQ(filter->OpenWrite(file.path16().c_str(), &info, nullptr, nullptr), FilterOk);
  filter->BeginSection(2, 0, 0);
  filter->EndSection(2, 0, 0);
  std::u16string name = u"notes", face = u"KapdfMade";
  ElementRecord record{};
  record.color = 256;
  const auto write = [&](int32_t section, uint32_t kind, auto payload) {
    record.kind = kind;
    record.payload = &payload;
    filter->BeginSection(section, 0, 0);
    filter->WriteElement(&record);
    filter->EndSection(section, 0, 0);
  };
  LayerDefPayload layer{};
  layer.name = name.data();
  write(3, ElemLayerDef, layer);
  FontDefPayload font{};
  font.styleName = name.data();
  font.faceName = face.data();
  write(3, ElemFontDef, font);
  name.copy(record.styleName, 255);
  for (const auto &[x, y, angle, height, widthFactor, text] : kTexts) {
    std::u16string characters = text;
    TextPayload payload{};
    payload.x = x;
    payload.y = y;
    payload.angle = angle;
    payload.height = height;
    payload.widthFactor = widthFactor;
    payload.text = characters.data();
    write(4, ElemText, payload);
  }
  filter->Close();

  filter.reset(new CPDFFilter(u"Software\\kaPDF-tests\\filter"));
  info = {};
  ASSERT_EQ(filter->OpenRead(file.path16().c_str(), &info, nullptr, nullptr, nullptr, nullptr), FilterOk);
  constexpr double kPrinted = 2.835 * 25.4 / 72;  // three decimals of the page's factor
  for (const auto &[x, y, angle, height, widthFactor, text] : kTexts) {
    do ASSERT_EQ(filter->ReadElement(&(record = {})), FilterOk);
    while (record.kind != ElemText);
    const auto back = LoadAs<TextPayload>(record.payload);
    EXPECT_EQ(std::u16string(back.text), text);
    EXPECT_NEAR(back.x / kPrinted, x, 0.01);
    EXPECT_NEAR(back.y / kPrinted, y, 0.01);
    EXPECT_NEAR(std::remainder(back.angle - angle, 2 * std::numbers::pi), 0, 0.001);
    EXPECT_NEAR(back.height / kPrinted, height, 0.01);
    EXPECT_NEAR(back.widthFactor, widthFactor, 0.01);
    EXPECT_EQ(std::u16string(record.styleName), face);
  }
  filter->Close();
}

}  // namespace
}  // namespace kapdf::test
