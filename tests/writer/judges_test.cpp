// Written files before programs that others made.
#include <array>
#include <cstdlib>
#include <fstream>
#include <vector>

#include "sheet.h"

namespace kapdf {
namespace {

constexpr bool kLinux = std::filesystem::path::preferred_separator == '/';

// Every kind, three layers of which one is off, and a clear polygon.
std::string WriteDrawing(const Workspace &workspace, const char *name, double size = 200) {
  std::string narrow = name;
  Sheet sheet(workspace, std::u16string(narrow.begin(), narrow.end()), size, size / 2);
  sheet.Start().Layer(u"Walls", 1, 1).Layer(u"Hidden", 3, 0.5, true).Layer(u"Areas", 170);
  const double s = size / 200;
  sheet.DrawLine(5 * s, 5 * s, 60 * s, 40 * s, 0, u"Walls");
  sheet.DrawLine(0, 0, 200 * s, 100 * s, 0, u"Hidden");
  double zigzag[] = {10, 60, 20, 90, 30, 60, 40, 90, 50, 60};
  for (double &value : zigzag) value *= s;
  sheet.Draw(ElemPolyline, PolylinePayload{2, 0, 5, 0, zigzag, 0, 0, {}, 0, {}}, u"Areas", 4);
  sheet.Draw(ElemCircle, CirclePayload{1, 90 * s, 75 * s, 15 * s}, u"Areas", 0x8000A0FF);
  sheet.Draw(ElemArc, ArcPayload{3, 90 * s, 30 * s, 15 * s, 4.0, -0.5}, u"Areas", 5);
  sheet.Draw(ElemEllipseArc, EllipseArcPayload{1, 140 * s, 70 * s, 25 * s, 10 * s, 0.6, 0, 0}, u"Areas", 6);
  sheet.Draw(ElemSolid, SolidPayload{110 * s, 10 * s, 130 * s, 10 * s, 125 * s, 30 * s, 115 * s, 30 * s}, u"Walls");
  for (uint32_t style : {0u, 2u})
    sheet.Draw(ElemPoint, PointPayload{6 * s, (110 + 10 * style) * s, 42 * s, {}, style}, u"Areas", 7);
  double holed[] = {140, 5, 195, 5, 195, 50, 140, 50, 155, 15, 180, 15, 180, 40, 155, 40};
  for (double &value : holed) value *= s;
  uint32_t starts[] = {0, 4, 8};
  const FilledPolygonPayload polygon{1, 2, starts, 8, holed, 40, 0, 0, 1, {}};
  sheet.Draw(ElemFilledPolygon, polygon, u"Areas", 0x80208020);
  sheet.Finish();
  return narrow;
}

// Standard output and error of a command, ahead of its exit status. What mutool says about its own build is left out.
std::string Output(const std::string &command) {
  const int status = std::system((command + " > judge.txt 2>&1").c_str());
  static const std::regex ownBuild("warning: ICC support is not available\n");
  return std::regex_replace(test::ReadFile("judge.txt"), ownBuild, "") + "[" + std::to_string(status) + "]";
}

void ExpectAccepted(const std::string &file) {
  const std::string checked = Output("qpdf --check " + file);
  EXPECT_NE(checked.find("No syntax or stream encoding errors found"), std::string::npos) << checked;
  EXPECT_TRUE(checked.ends_with("[0]")) << checked;
  EXPECT_EQ(checked.find("WARNING"), std::string::npos) << checked;
  EXPECT_EQ(Output("mutool draw -q -r 20 -o judge.pnm " + file), "[0]");
  EXPECT_EQ(Output("pdftoppm -r 20 " + file + " judge"), "[0]");
  EXPECT_EQ(Output("gs -q -dBATCH -dNOPAUSE -dPDFSTOPONERROR -sDEVICE=nullpage " + file), "[0]");
}

TEST(Judges, AcceptWhatIsWritten) {
  if (!kLinux || std::getenv("KAPDF_NO_JUDGES")) GTEST_SKIP() << "the judges run on Linux";
  const Workspace workspace;
  std::vector<std::string> files = {WriteDrawing(workspace, "drawing.pdf"), WriteDrawing(workspace, "large.pdf", 9000)};
  Sheet(workspace, u"empty.pdf").Start().Finish();
  files.emplace_back("empty.pdf");
  workspace.pdf().WriteInteger(u"PDFA", 1);
  files.push_back(WriteDrawing(workspace, "archive.pdf"));
  for (const std::string &file : files) {
    SCOPED_TRACE(file);
    ExpectAccepted(file);
  }
}

// Every form under every compression that can carry it, placed turned; `pdfimages` gives the pixels back.
TEST(Judges, GetImagesBack) {
  if (!kLinux || std::getenv("KAPDF_NO_JUDGES")) GTEST_SKIP() << "the judges run on Linux";
  constexpr uint32_t kWidth = 40, kHeight = 230;  // more noise than an LZW table holds
  const Workspace workspace;
  std::string palette(1028, '\0');  // greys, the lightest first
  palette[3] = 1;
  for (size_t i = 0; i < 1024; ++i) palette[4 + i] = static_cast<char>(255 - i / 4);
  const struct {
    uint32_t pixelType;
    int color, bw;
  } cases[] = {{0, 0, 0}, {0, 0, 1}, {2, 0, 0}, {2, 2, 0}, {2, 1, 0}, {4, 0, 0}, {4, 2, 0}, {4, 1, 0}, {5, 1, 0}};
  for (const auto &[pixelType, color, bw] : cases) {
    SCOPED_TRACE(std::to_string(pixelType) + " " + std::to_string(color) + " " + std::to_string(bw));
    workspace.pdf().WriteInteger(u"ColorCompression", color);
    workspace.pdf().WriteInteger(u"BWCompression", bw);
    Sheet sheet(workspace, u"image.pdf");
    sheet.Start().Layer(u"A", 5).Raster(kWidth, kHeight, pixelType, reinterpret_cast<uint8_t *>(palette.data()));
    std::string samples;  // as they are to come back
    for (uint32_t y = 0; y < kHeight; ++y) {
      std::string row;
      for (uint32_t x = 0, bits = 0; x < kWidth; ++x) {
        const bool set = (x / 3 + y / 5) % 2;
        const auto grey = static_cast<char>(color == 1 ? x * 3 + y / 2 : (x * x + y * y * 7 + x * y) / 3);
        row += pixelType == 0 ? std::string(1, set) : std::string(pixelType == 4 ? 3 : 1, grey);
        if (pixelType == 5) row += std::string(2, grey) + '\0';
        bits = bits << 1 | (set == (bw == 1));  // facsimile coding has what paints as 0
        if (pixelType != 0) samples += std::string(3, pixelType == 4 ? grey : static_cast<char>(~grey));
        if (pixelType == 0 && x % 8 == 7) samples += static_cast<char>(bits);
      }
      ASSERT_EQ(sheet.Row(row), FilterOk);
    }
    ASSERT_EQ(sheet.Place(4, 1, {20, 10, 0.5, 4, 4, 80, {}, 0}), FilterConsumed);
    sheet.Finish();
    ExpectAccepted("image.pdf");
    ASSERT_EQ(Output("pdfimages image.pdf back"), "[0]");
    const std::string all = test::ReadFile(pixelType == 0 ? "back-000.pbm" : "back-000.ppm");
    ASSERT_GT(all.size(), samples.size());
    int worst = 0;
    for (size_t i = 0, at = all.size() - samples.size(); i < samples.size(); ++i) {
      worst = std::max(worst, std::abs(static_cast<uint8_t>(all[at + i]) - static_cast<uint8_t>(samples[i])));
    }
    EXPECT_LE(worst, color == 1 ? 20 : 0);
  }
}

// What a reader paints in four places.
TEST(Judges, SeeLayersHolesAndOpacity) {
  if (!kLinux || std::getenv("KAPDF_NO_JUDGES")) GTEST_SKIP() << "the judges run on Linux";
  const Workspace workspace;
  ASSERT_EQ(Output("mutool draw -q -r 72 -c rgb -A 0 -o seen.pnm " + WriteDrawing(workspace, "seen.pdf")), "[0]");
  std::ifstream image("seen.pnm", std::ios::binary);
  std::string magic;
  size_t width = 0, height = 0, most = 0;
  image >> magic >> width >> height >> most;
  ASSERT_EQ(magic, "P6");
  image.get();
  const std::vector<uint8_t> pixels(std::istreambuf_iterator<char>(image), {});
  ASSERT_EQ(pixels.size(), width * height * 3);
  using Color = std::array<int, 3>;
  const auto at = [&](double x, double y) {  // millimetres of the drawing, whose frame is 2 mm wide
    const auto column = static_cast<size_t>((x + 2) * 72 / 25.4);
    const auto row = height - static_cast<size_t>((y + 2) * 72 / 25.4) - 1;
    const uint8_t *rgb = pixels.data() + (row * width + column) * 3;
    return Color{rgb[0], rgb[1], rgb[2]};
  };
  EXPECT_EQ(at(100, 50), (Color{255, 255, 255})) << "a layer that is off";
  EXPECT_EQ(at(167, 27), (Color{255, 255, 255})) << "a hole";
  EXPECT_EQ(at(120, 20), (Color{255, 0, 0})) << "a solid in its layer's colour";
  const Color clear = at(147, 27);
  EXPECT_NEAR(clear[0], 255 - 0.4 * (255 - 0x20), 3);
  EXPECT_NEAR(clear[1], 255 - 0.4 * (255 - 0x80), 3);
}

}  // namespace
}  // namespace kapdf
