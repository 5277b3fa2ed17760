// Elements and what becomes of them in the content.
#include <cmath>
#include <complex>
#include <functional>
#include <numbers>
#include <tuple>
#include <vector>

#include "sheet.h"
#include "writer/arc_path.h"

namespace kapdf {
namespace {

using namespace std::string_literals;

constexpr double kPi = std::numbers::pi;
const double kNan = std::nan("");

double kZigzag[] = {0, 0, -1, 5, 5, -1, 9, 0, -1};
double kHoled[] = {0, 0, 8, 0, 8, 8, 2, 2, 4, 2, 4, 4};
uint32_t kHoledStarts[] = {0, 3, 6};
uint32_t kBadStarts[] = {0, 3, 7};
uint32_t kStandingStarts[] = {0, 0, 3};

PolylinePayload Polyline(int32_t count, uint32_t curved = 0) {
  return {0.5, 0, count, 1, kZigzag, 0, curved, {}, 0, {}};
}

FilledPolygonPayload Polygon(uint32_t *starts, double opacity = 100, uint32_t strokeToo = 0, int32_t count = 6) {
  return {0.5, 2, starts, count, kHoled, opacity, 0, 0, strokeToo, {}};
}

PointPayload Point(double size, uint32_t style) { return {size, 3, 0, {}, style}; }

const std::string kDisc =
    "q\n1 0 0 1 3.000 0.000 cm\n-2.000 0 m\n-2.000 1.105 -1.105 2.000 0.000 2.000 c\n"
    "1.105 2.000 2.000 1.105 2.000 0.000 c\n2.000 -1.105 1.105 -2.000 0.000 -2.000 c\n"
    "-1.105 -2.000 -2.000 -1.105 -2.000 0.000 c\n";

struct KindCase {
  const char *what;
  std::function<uint32_t(Sheet &)> draw;
  uint32_t result;
  std::string operators;  // behind the start of the content, ahead of EMC
};

std::vector<KindCase> Kinds() {
  const std::string fill = "0.00 0.00 0.00 rg\n";
  const std::string holed =
      "0.000 0.000 m\n8.000 0.000 l\n8.000 8.000 l\nh\n2.000 2.000 m\n4.000 2.000 l\n4.000 4.000 l\nh\n";
  const auto draw = [](uint32_t kind, auto payload) { return [=](Sheet &sheet) { return sheet.Draw(kind, payload); }; };
  return {
      {"line", draw(ElemLine, LinePayload{0.5, 1, 2, -3, 1e6}), 0, "0.500 w\n1.000 2.000 m\n-3.000 1000000.000 l\nS\n"},
      {"line of nowhere", draw(ElemLine, LinePayload{kNan, 1, INFINITY, 0, 0}), 0,
       "0.000 w\n1.000 0.000 m\n0.000 0.000 l\nS\n"},
      {"polyline", draw(ElemPolyline, Polyline(3)), 0, "0.500 w\n0.000 0.000 m\n5.000 5.000 l\n9.000 0.000 l\nS\n"},
      {"polyline of one vertex", draw(ElemPolyline, Polyline(1, 1)), 0, ""},
      {"curved polyline", draw(ElemPolyline, Polyline(3, 1)), FilterUnsupported, ""},
      {"circle", draw(ElemCircle, CirclePayload{0.5, 3, 0, 2}), 0, "0.500 w\n" + kDisc + "S\nQ\n"},
      {"point, filled", draw(ElemPoint, Point(-4, 0)), 0, fill + "0.000 w\n" + kDisc + "F\nQ\n"},
      {"point, outlined", draw(ElemPoint, Point(4, 2)), 0, "0.000 w\n" + kDisc + "S\nQ\n"},
      {"point, not drawn", draw(ElemPoint, Point(4, 1)), FilterUnsupported, ""},
      {"quarter arc", draw(ElemArc, ArcPayload{0.5, 0, 0, 2, kPi / 2, 0}), 0,
       "0.500 w\n2.000 0.000 m\n2.000 1.097 1.097 2.000 0.000 2.000 c\nS\n"},
      {"turned ellipse arc", draw(ElemEllipseArc, EllipseArcPayload{0.5, 1, 1, 4, 2, kPi, 0, kPi / 2}), 0,
       "0.500 w\n-3.000 1.000 m\n-3.000 -0.097 -1.194 -1.000 1.000 -1.000 c\nS\n"},
      {"solid", draw(ElemSolid, SolidPayload{0, 0, 1, 0, 0, 1, 1, 1}), 0,
       fill + "0.000 0.000 m\n1.000 0.000 l\n0.000 1.000 l\n1.000 1.000 l\nf*\n"},
      {"polygon with a hole", draw(ElemFilledPolygon, Polygon(kHoledStarts)), 0, fill + "0.500 w\n" + holed + "f*\n"},
      {"stroked and clear", draw(ElemFilledPolygon, Polygon(kHoledStarts, 12.349, 1)), 0,
       "/GS1 gs\n" + fill + "0.500 w\n" + holed + "B*\n"},
      {"contours beyond the vertices", draw(ElemFilledPolygon, Polygon(kBadStarts)), 0,
       fill + "0.500 w\n" + holed.substr(0, 44) + "f*\n"},
      {"contours that stand still", draw(ElemFilledPolygon, Polygon(kStandingStarts)), 0, ""},
      {"polygon of two vertices", draw(ElemFilledPolygon, Polygon(kHoledStarts, 100, 0, 2)), 0, ""},
      {"text without a font", draw(ElemText, TextPayload{}), 0, "(only the start)"},
      {"composite", draw(ElemComposite, 0), FilterUnsupported, "(only the start)"},
      {"kind 25", draw(25, 0), FilterUnsupported, ""},
      {"no payload",
       [](Sheet &sheet) {
         uint32_t worst = 0;
         for (uint32_t kind : {14u, 17u, 18u, 19u, 20u, 21u, 22u, 23u, 27u, 28u}) {
           ElementRecord record = RecordOf(kind, nullptr);
           worst |= sheet.Write(record);
         }
         return worst;
       },
       0, ""},
  };
}

TEST(Content, EachKind) {
  const Workspace workspace;
  for (const KindCase &c : Kinds()) {
    SCOPED_TRACE(c.what);
    Sheet sheet(workspace);
    sheet.Start().Layer(u"A");
    EXPECT_EQ(c.draw(sheet), c.result);
    const std::string content = ContentOf(sheet.Finish());
    const std::string start = "q\n1 j\n2.835 0 0 2.835 0 0 cm\n0.00 0.00 0.00 RG\n/OC /oc0 BDC\n";
    const std::string drawn = c.operators == "(only the start)" ? "" : c.operators;
    EXPECT_EQ(content, c.operators.empty() ? "" : start + drawn + "EMC\nQ");
  }
}

TEST(Content, ArcsInQuarters) {
  const struct {
    double start, end;
    size_t segments;
    double sweep;
  } cases[] = {{0, 2 * kPi, 4, 2 * kPi},
               {kPi / 4, kPi / 4 + 2 * kPi, 5, 2 * kPi},
               {kPi / 2, kPi / 2 + 2 * kPi, 4, 2 * kPi},
               {1, 1, 5, 2 * kPi},
               {-kPi / 2, kPi / 2, 2, kPi},
               {3, 1, 4, 2 * kPi - 2},
               {9 * kPi, 9 * kPi + 1, 1, 1},
               {0, 4 * kPi, 4, 2 * kPi},
               {0, 5 * kPi, 2, kPi},
               {2e9, 2e9, 5, 2 * kPi},
               {-1e-20, 1, 1, 1},
               {1, 1 + 1e-15, 1, 1e-15},
               {kNan, INFINITY, 4, 2 * kPi}};
  for (const auto &c : cases) {
    SCOPED_TRACE(testing::Message() << c.start << " to " << c.end);
    const double a = 30, b = 20, turn = 0.5;
    const ArcPath path = TraceArc({7, -5, a, b, turn, c.start, c.end});
    EXPECT_EQ(path.count, c.segments);
    // Along the curves, in the circle that the ellipse is a picture of: on it but for the 0.2 % by which a quarter
    // stays inside at its middle, and turning by the sweep altogether.
    using Point = std::complex<double>;
    const auto own = [&](Point p) {
      const Point turned = (p - Point(7, -5)) * std::polar(1.0, -turn);
      return Point(turned.real() / a, turned.imag() / b);
    };
    Point from(path.startX, path.startY), last = own(from);
    double swept = 0;
    for (size_t i = 0; i < path.count; ++i) {
      const ArcPath::Segment &s = path.segments[i];
      const Point p1(s.x1, s.y1), p2(s.x2, s.y2), p3(s.x3, s.y3);
      for (int step = 1; step <= 8; ++step) {
        const double t = step / 8.0, u = 1 - t;
        const Point at = own(u * u * u * from + 3 * u * u * t * p1 + 3 * u * t * t * p2 + t * t * t * p3);
        EXPECT_NEAR(std::abs(at), 1, 2e-3);
        swept += std::arg(at / last);
        last = at;
      }
      from = p3;
    }
    EXPECT_NEAR(swept, c.sweep, 1e-9);
  }
}

TEST(Content, SendsOnlyWhatChanges) {
  const Workspace workspace;
  Sheet sheet(workspace);
  sheet.Start().Layer(u"A", 1).Layer(u"B", 256, 0).Layer(u"B", 3, 9);
  sheet.DrawLine(0, 0, 1, 1, 0.25, u"nowhere");  // the first layer stands in
  sheet.DrawLine(0, 0, 1, 1, 0.25, u"A", 256);
  sheet.DrawLine(0, 0, 1, 1, 0.35, u"A", 5);
  sheet.DrawLine(0, 0, 1, 1, 0.35, u"nowhere", 257);
  sheet.DrawLine(0, 0, 1, 1, 0.35, u"B", 0x800000FF);  // its layer is 0 wide
  sheet.DrawLine(0, 0, 1, 1, 0.35, u"A", 0x800000FF);
  sheet.DrawLine(0, 0, 1, 1, kNan, u"A", 0x800000FF);
  sheet.DrawLine(0, 0, 1, 1, kNan, u"A", 0x800000FF);
  std::string content = ContentOf(sheet.Finish());
  content.erase(0, content.find("cm\n") + 3);
  const std::string line = "0.000 0.000 m\n1.000 1.000 l\nS\n";
  EXPECT_EQ(content, "1.00 0.00 0.00 RG\n/OC /oc0 BDC\n0.250 w\n" + line + line + "0.00 0.00 1.00 RG\n0.350 w\n" +
                         line + line + "EMC\n1.00 0.00 0.00 RG\n/OC /oc1 BDC\n0.000 w\n" + line +
                         "EMC\n1.00 0.00 0.00 RG\n/OC /oc0 BDC\n0.350 w\n" + line + "0.000 w\n" + line + "0.000 w\n" +
                         line + "EMC\nQ");
}

TEST(Content, OpacityStatesAreShared) {
  const Workspace workspace;
  Sheet sheet(workspace);
  sheet.Start().Layer(u"A");
  for (double opacity : {50.0, 50.004, 100.0, 25.0, 50.0, kNan})
    sheet.Draw(ElemFilledPolygon, Polygon(kHoledStarts, opacity));
  sheet.Draw(ElemSolid, SolidPayload{});
  const std::string file = sheet.Finish();
  std::string states;
  const std::string content = ContentOf(file);
  for (size_t at = 0; (at = content.find(" gs\n", at)) != std::string::npos; ++at) states += content[at - 1];
  EXPECT_EQ(states, "123142");
  for (const char *ca : {"/ca 0.500>>", "/ca 1.000>>", "/ca 0.250>>", "/ca 0.000>>"})
    EXPECT_NE(file.find(ca), std::string::npos);
}

TEST(Content, PenSettings) {
  const std::tuple<int, int, double, const char *> cases[] = {
      {2, 1, 4, "q\n2 j\n1 J\n"}, {0, 0, 4, "q\n4.000 M\n"}, {0, 0, 10, "q\n"}};
  const Workspace workspace;
  for (const auto &[join, cap, miter, start] : cases) {
    workspace.pdf().WriteInteger(u"JoinStyle", join);
    workspace.pdf().WriteInteger(u"LineCap", cap);
    workspace.pdf().WriteReal(u"Miter", miter);
    Sheet sheet(workspace);
    sheet.Start().Layer(u"A").DrawLine(0, 0, 1, 1);
    EXPECT_TRUE(ContentOf(sheet.Finish()).starts_with(start + "2.835 0 0 2.835 0 0 cm\n"s)) << start;
  }
}

TEST(Content, NothingWithoutLayersOrBehindThePage) {
  const Workspace workspace;
  Sheet sheet(workspace);
  sheet.Start();
  EXPECT_EQ(sheet.DrawLine(0, 0, 1, 1), FilterOk);
  EXPECT_EQ(sheet.EndPage(), FilterOk);
  EXPECT_EQ(sheet.Layer(u"A").DrawLine(0, 0, 1, 1), FilterOk);
  EXPECT_EQ(sheet.EndPage(), FilterOk);
  const std::string file = sheet.Finish(), empty = "stream\r\nq\nQ\nendstream";
  EXPECT_NE(file.find(empty), std::string::npos);
  EXPECT_EQ(file.find(empty), file.rfind(empty));
}

}  // namespace
}  // namespace kapdf
