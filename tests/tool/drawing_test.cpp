// Dashes and SVG, straight from records.
#include "jsonl/drawing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <sstream>
#include <tuple>

#include "records/dash_breaker.h"
#include "svg/svg_writer.h"

namespace kapdf::tool {
namespace {

// The drawing's records as a module would hand them out.
template <class Use>
void ForEach(const std::string &lines, Use use) {
  std::istringstream in(lines);
  Drawing drawing;
  const Outcome read = ReadDrawing(in, "test", {}, drawing);
  ASSERT_TRUE(read.ok()) << read.sentence;
  ElementRecord element{};
  for (const Record &record : drawing.records) {
    FillElement(record, drawing.names, element);
    use(element);
  }
}

// "x1,y1-x2,y2 ..." of lines and polylines; of arcs their angles as "start..end" in thousandths of a radian.
std::string Pieces(const std::string &line, const DashPattern &pattern) {
  std::ostringstream out;
  ForEach(line, [&](const ElementRecord &element) {
    BreakIntoDashes(element, pattern, [&](ElementRecord &piece) {
      EXPECT_EQ(piece.styleName[0], 0);
      if (piece.kind == ElemLine) {
        LinePayload l;
        std::memcpy(&l, piece.payload, sizeof l);
        out << l.x1 << "," << l.y1 << "-" << l.x2 << "," << l.y2 << " ";
      } else if (piece.kind == ElemPolyline) {
        for (const Point p : VerticesOf(piece)) out << p.x << "," << p.y << "-";
        out << " ";
      } else if (const auto arc = ArcOf(piece)) {
        out << std::lround(arc->start * 1000) << ".." << std::lround((arc->start + arc->sweep) * 1000) << " ";
      } else {
        out << "kind" << piece.kind << " ";
      }
      return true;
    });
  });
  return out.str();
}

TEST(Dashes, CutEveryKindAlongItsLength) {
  const std::tuple<const char *, DashPattern, const char *> cases[] = {
      {R"({"kind":"line","points":[[0,0],[10,0]]})", {3, -2}, "0,0-3,0 5,0-8,0 "},
      {R"({"kind":"line","points":[[0,0],[4,0]]})", {3, -2}, "0,0-3,0 "},
      // A pattern may begin with a gap, and a dot is drawn as long as the line is wide.
      {R"({"kind":"line","width":0.5,"points":[[0,0],[0,6]]})", {-2, 1, -1, 0}, "0,2-0,3 0,4-0,4.5 "},
      // One of no length at all leaves the line whole.
      {R"({"kind":"line","points":[[0,0],[4,0]]})", {}, "0,0-4,0 "},
      // The pattern goes on round the corner, and the corner is in the piece.
      {R"({"kind":"polyline","points":[[0,0],[4,0],[4,4]]})", {3, -1.5}, "0,0-3,0 4,0.5-4,3.5 "},
      {R"({"kind":"polyline","points":[[0,0],[4,0],[4,4]]})", {5, -1}, "0,0-4,0-4,1- 4,2-4,4 "},
      {R"({"kind":"circle","center":[0,0],"radius":1})", {2, -2}, "0..2000 4000..6000 "},
      {R"({"kind":"arc","center":[0,0],"radius":2,"startAngle":6,"endAngle":1})", {1, -1}, "6000..6500 7000..7283 "},
      {R"({"kind":"ellipseArc","center":[0,0],"majorRadius":2,"minorRadius":2,"startAngle":0,"endAngle":1})",
       {1, -0.5},
       "0..500 750..1000 "},
      {R"({"kind":"polygon","strokeToo":true,"contours":[[[0,0],[2,0],[2,2]]]})",
       {2, -2},
       "kind28 0,0-2,0 2,2-0.585786,0.585786 "},
      {R"({"kind":"polygon","contours":[[[0,0],[2,0],[2,2]]]})", {2, -2}, "kind28 "},
      // Too fine a pattern: the element goes out whole.
      {R"({"kind":"line","points":[[0,0],[1000,0]]})", {0.001, -0.001}, "0,0-1000,0 "},
  };
  for (const auto &[line, pattern, pieces] : cases) EXPECT_EQ(Pieces(line, pattern), pieces) << line;
}

TEST(Dashes, EllipseIsCutByLengthNotByAngle) {
  // A slim ellipse: a quarter turn by the parameter at its side is much longer than one at its end.
  std::vector<double> lengths;
  const auto measure = [&](ElementRecord &piece) {
    const auto arc = ArcOf(piece);
    double length = 0;
    for (int i = 0; i < 1000; ++i) {
      const Point a = arc->At(arc->start + arc->sweep * i / 1000);
      const Point b = arc->At(arc->start + arc->sweep * (i + 1) / 1000);
      length += std::hypot(b.x - a.x, b.y - a.y);
    }
    lengths.push_back(length);
    return true;
  };
  ForEach(R"({"kind":"ellipseArc","center":[5,5],"majorRadius":100,"minorRadius":1,"rotation":0.3})",
          [&](const ElementRecord &element) {
            BreakIntoDashes(element, {10, -10}, measure);
          });
  ASSERT_EQ(lengths.size(), 21u);
  lengths.pop_back();
  for (const double length : lengths) EXPECT_NEAR(length, 10, 0.05);
}

std::string Svg(const std::string &lines) {
  SvgPage page;
  ForEach(lines, [&](const ElementRecord &element) { page.Add(element); });
  std::string out;
  page.Finish(out, "a & b");
  return out;
}

TEST(Svg, DrawsEachKindWithItsInk) {
  const std::string svg = Svg(
      "{\"kind\":\"layer\",\"name\":\"W<1>\",\"color\":1,\"width\":0.5}\n"
      "{\"kind\":\"layer\",\"name\":\"off\",\"layerOff\":true}\n"
      "{\"kind\":\"lineType\",\"name\":\"Dash\",\"segments\":[3,-1,0,-1]}\n"
      "{\"kind\":\"font\",\"name\":\"T\",\"face\":\"ABCDEF+DejaVu Sans\"}\n"
      "{\"kind\":\"font\",\"name\":\"C\",\"face\":\"Carried\",\"program\":\"AAEC\"}\n"
      "{\"kind\":\"text\",\"textStyle\":\"C\",\"text\":\"c\",\"at\":[1,2],\"height\":3.58}\n"
      "{\"kind\":\"line\",\"layer\":\"W<1>\",\"width\":9,\"lineType\":\"Dash\",\"points\":[[0,10],[10,20]]}\n"
      "{\"kind\":\"circle\",\"layer\":\"off\",\"color\":\"#0080ff\",\"center\":[5,5],\"radius\":2}\n"
      "{\"kind\":\"polygon\",\"opacity\":40,\"color\":7,\"contours\":[[[0,0],[9,0],[9,9]],[[1,1],[2,1],[2,2]]]}\n"
      "{\"kind\":\"arc\",\"width\":1,\"center\":[0,0],\"radius\":10,\"startAngle\":0,\"endAngle\":1.5707963267948966}\n"
      "{\"kind\":\"line\",\"width\":0.7,\"lineType\":\"Dash\",\"points\":[[4,5],[4,5.00001]]}\n"
      "{\"kind\":\"point\",\"at\":[3,4],\"size\":2}\n"
      "{\"kind\":\"point\",\"at\":[6,4],\"size\":-3,\"pointStyle\":2}\n"
      "{\"kind\":\"polyline\",\"width\":0,\"points\":[[4,5],[4,5],[4,5]]}\n"
      "{\"kind\":\"text\",\"textStyle\":\"T\",\"text\":\"a<b\",\"at\":[1,2],\"height\":3.58,\"widthFactor\":0.8}\n");
  const char *wanted[] = {
      "<title>a &amp; b</title>",
      "inkscape:groupmode=\"layer\" inkscape:label=\"W&lt;1&gt;\">",
      "inkscape:label=\"off\" style=\"display:none\"",
      // The layer's width wins, y points down, the dot is as long as the line is wide.
      "<line x1=\"0\" y1=\"-10\" x2=\"10\" y2=\"-20\" stroke=\"#ff0000\" stroke-width=\"0.5\" stroke-dasharray=\"3 1 "
      "0.5 1\"/>",
      "<circle cx=\"5\" cy=\"-5\" r=\"2\" stroke=\"#0080ff\" class=\"hair\"/>",
      "M0,0 9,0 9,-9ZM1,-1 2,-1 2,-2Z\" fill-rule=\"evenodd\" fill=\"#000000\" fill-opacity=\"0.4\"/>",
      "<path d=\"M10 0A10 10 0 0 0 7.0711 -7.0711A10 10 0 0 0 0 -10\"",
      // A dot, however it is dashed.
      "<line x1=\"4\" y1=\"-5\" x2=\"4\" y2=\"-5\" stroke=\"#000000\" stroke-width=\"0.7\" stroke-linecap=\"round\"/>",
      "<circle cx=\"3\" cy=\"-4\" r=\"1\" fill=\"#000000\"/>",
      "<circle cx=\"6\" cy=\"-4\" r=\"1.5\" stroke=\"#000000\" class=\"hair\"/>",
      "<polyline points=\"4,-5 4,-5 4,-5\" stroke=\"#000000\" class=\"hair\" stroke-linecap=\"round\"/>",
      // The height is that of the capitals, and the part of the face that a file carried is known to nobody else.
      "translate(1 -2) scale(0.8 1)\" font-size=\"5\" font-family=\"DejaVu Sans\" fill=\"#000000\" "
      "xml:space=\"preserve\">a&lt;b<",
      "font-size=\"3.58\" style=\"font-size-adjust:none\" font-family=\"Carried\"",
      "fill=\"#ffffff\"/>\n<g fill=\"none\"",
  };
  for (const char *text : wanted) EXPECT_NE(svg.find(text), std::string::npos) << text << "\n" << svg;
}

// The layers of the groups in their order.
std::string Groups(const std::string &lines) {
  const std::string svg = Svg(lines), mark = "inkscape:label=\"";
  std::string labels;
  for (size_t at = 0; (at = svg.find(mark, at)) != std::string::npos;) labels += svg[at += mark.size()];
  return labels;
}

TEST(Svg, ALayerStaysOneGroupUntilAFillWouldChangePlaces) {
  const auto line = [](const std::string &layer, const std::string &y) {
    return "{\"kind\":\"line\",\"layer\":\"" + layer + "\",\"points\":[[0," + y + "],[9," + y + "]]}\n";
  };
  const std::string fill = "{\"kind\":\"polygon\",\"layer\":\"F\",\"contours\":[[[0,0],[9,0],[9,9]]]}\n";
  EXPECT_EQ(Groups(line("A", "1") + line("B", "1") + line("A", "2")), "AB");
  EXPECT_EQ(Groups(line("A", "1") + fill + line("A", "2")), "AFA");
  EXPECT_EQ(Groups(line("A", "1") + fill + line("A", "50")), "AF");
  EXPECT_EQ(Groups(fill + line("A", "1") + fill), "FAF");
  const std::string white = Svg("{\"kind\":\"line\",\"color\":258,\"points\":[[0,0],[9,9]]}\n");
  EXPECT_NE(white.find("fill=\"#c8c8c8\""), std::string::npos) << "white lines get a darker paper";
}

}  // namespace
}  // namespace kapdf::tool
