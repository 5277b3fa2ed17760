// What the dialogs of the options start with, keep and answer.
#include "filter/option_form.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "base/form_controls.h"
#include "platform/settings.h"

namespace kapdf {
namespace {

using Direction = OptionForm::Direction;
using platform::Settings;

constexpr char16_t kPath[] = u"Software\\kaPDF-tests\\forms";

platform::FormField &FieldOf(OptionForm &form, uint32_t control) {
  return *std::ranges::find(form.fields(), control, &platform::FormField::control);
}

TEST(OptionForm, GoesFromSettingsToSettingsAndString) {
  const Settings all(kPath, u"");
  all.RemoveKey();
  const Settings filter(kPath, u"\\Filter\\PDF"), pdf(kPath, u"\\PDF");
  EXPECT_EQ(OptionForm(Direction::kImport, kPath, u"").Options(),
            u"/mode 0 /dpi 200 /col 3 /text 0 /Convert 1 /Tolerance 0.002");
  EXPECT_EQ(OptionForm(Direction::kExport, kPath, u"").Options(),
            u"/col L /bw 4 /q 75 /pdfa 0 /origin 0 /frame 2.000000");
  filter.WriteInteger(u"ColorDepth", 1);  // none of the list
  filter.WriteInteger(u"AsImage", 2);     // the same as 1
  filter.WriteInteger(u"ExtractText", 5);
  filter.WriteReal(u"FitTolerance", 1234567);
  OptionForm import(Direction::kImport, kPath, u"");
  EXPECT_EQ(import.Options(), u"/mode 2 /dpi 200 /col 1 /text 1 /Convert 1 /Tolerance 1.23457e+06");
  EXPECT_EQ(std::pair(FieldOf(import, FORM_AS_IMAGE).number, FieldOf(import, FORM_COLOR_DEPTH).number),
            std::pair(1.0, -1.0));
  import.Save();
  EXPECT_EQ(std::pair(filter.ReadInteger(u"AsImage", -1), filter.ReadInteger(u"ColorDepth", -1)), std::pair(2, 1));
  FieldOf(import, FORM_AS_IMAGE).number = 0;
  FieldOf(import, FORM_COLOR_DEPTH).number = 2;
  EXPECT_EQ(import.Options(), u"/mode 0 /dpi 200 /col 4 /text 1 /Convert 1 /Tolerance 1.23457e+06");
  EXPECT_EQ(OptionForm(Direction::kImport, kPath, u"/col 2 /mode 1").Options(),
            u"/mode 1 /dpi 300 /col 2 /text 0 /Convert 1 /Tolerance 1.23457e+06");

  OptionForm form(Direction::kExport, kPath, u"/col U /bw 0 /frame 0.5");
  EXPECT_EQ(form.Options(), u"/col U /bw 0 /q 75 /pdfa 0 /origin 0 /frame 0.500000");
  FieldOf(form, FORM_COLOR_COMPRESSION).number = 1;
  FieldOf(form, FORM_LINE_CAP).number = 2;
  FieldOf(form, FORM_AUTHOR).text = u"Ada \u0416";
  form.Save();
  EXPECT_EQ(OptionForm(Direction::kExport, kPath, u"/col X").Options(),
            u"/col J /bw 0 /q 75 /pdfa 0 /origin 0 /frame 0.500000");
  for (const Settings &key : {filter, pdf}) {  // where each half of the library looks
    EXPECT_EQ(key.ReadInteger(u"ColorCompression", -1), 1);
    EXPECT_EQ(key.ReadReal(u"PaperFrame", -1), 0.5);
  }
  EXPECT_EQ(pdf.ReadInteger(u"LineCap", -1), 2);
  EXPECT_EQ(pdf.ReadString(u"Author", u""), u"Ada \u0416");
  all.RemoveKey();
}

}  // namespace
}  // namespace kapdf
