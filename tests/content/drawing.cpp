#include "drawing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <numbers>

#include "base/bytes.h"
#include "content/page_setup.h"
#include "content/record_sink.h"
#include "support/opened_pdf.h"
#include "support/pdf_builder.h"
#include "support/row_text.h"

namespace kapdf::test {
namespace {

std::string Number(double millimetres) {
  char text[40];
  std::snprintf(text, sizeof text, "%.10g", std::round(millimetres / 25.4 * 72 * 1000) / 1000 + 0.0);
  return text;
}

std::string Narrow(const char16_t *text) {
  std::string narrow;
  while (*text) narrow += static_cast<char>(*text++);
  return narrow;
}

std::string Color(uint32_t code) {
  if (!(code & 0x80000000u)) return std::to_string(code);
  char text[16];
  std::snprintf(text, sizeof text, "#%02X%02X%02X", code & 0xFF, code >> 8 & 0xFF, code >> 16 & 0xFF);
  return text;
}

std::string Points(const void *from, size_t first, size_t end) {
  std::string text;
  for (size_t i = first; i < end; ++i) {
    const auto *at = static_cast<const uint8_t *>(from) + i * 16;
    text += " " + Number(LoadAs<double>(at)) + "," + Number(LoadAs<double>(at + 8));
  }
  return text;
}

// Width, centre and lengths to a tenth, then so many angles in whole degrees of the first turn: curves are fitted.
std::string DescribeNumbers(const char *name, const ElementRecord &record, size_t count, size_t angles) {
  EXPECT_EQ(record.payloadBytes, 8 * count);
  const auto value = [&](size_t i) { return LoadAs<double>(static_cast<const uint8_t *>(record.payload) + 8 * i); };
  std::string text = name + (" " + Color(record.color)) + " w" + Number(value(0));
  for (size_t i = 1; i < count - angles; ++i)
    text += (i == 2 ? "," : " ") + Number(std::round(value(i) * 720 / 25.4) * 25.4 / 720);
  for (size_t i = count - angles; i < count; ++i) {
    text += " @" + std::to_string((std::lround(value(i) * 180 / std::numbers::pi) + 360) % 360);
  }
  return text;
}

// What the payload points to has to lie in its own block, one thing behind the other.
std::string DescribeFill(const ElementRecord &record) {
  const auto fill = LoadAs<FilledPolygonPayload>(record.payload);
  const auto *block = static_cast<const uint8_t *>(record.payload);
  const auto vertices = static_cast<size_t>(fill.vertexCount), contours = static_cast<size_t>(fill.contourCount);
  EXPECT_EQ(record.payloadBytes, 68 + 16 * vertices + 4 * (contours + 1));
  EXPECT_EQ(reinterpret_cast<const uint8_t *>(fill.vertices), block + 68);
  EXPECT_EQ(reinterpret_cast<const uint8_t *>(fill.contourStarts), block + 68 + 16 * vertices);
  EXPECT_EQ(fill.strokeToo, 0u);
  std::string text = " w" + Number(fill.width) + " o" + Number(fill.opacity / 72 * 25.4);
  const auto start = [&](size_t i) { return LoadAs<uint32_t>(block + 68 + 16 * vertices + 4 * i); };
  EXPECT_EQ(start(contours), vertices);
  for (size_t i = 0; i < contours; ++i) text += (i ? " |" : "") + Points(block + 68, start(i), start(i + 1));
  return text;
}

// Its name, colour, place and angle; then what the header tells, and the rows.
std::string DescribeRaster(Interpreter &interpreter, const ElementRecord &record) {
  const auto placed = LoadAs<RasterPlacementPayload>(record.payload);
  char text[200];
  std::snprintf(text, sizeof text, "%s #%X %g,%g %g o%g", Narrow(record.styleName).c_str(), record.color,
                std::round(placed.x / 25.4 * 72), std::round(placed.y / 25.4 * 72),
                std::round(placed.angle * 180 / 3.14159265), placed.opacity);
  std::string line = text, asked;
  ImageDescription told;
  if (!interpreter.PrepareRaster(asked, told)) return line + " nothing";
  uint8_t *row;
  size_t bytes;
  interpreter.ReadRasterRow(row, bytes);  // the host breaks off, and starts anew
  asked.clear();
  EXPECT_TRUE(interpreter.PrepareRaster(asked, told));
  std::snprintf(text, sizeof text, " %ux%u@%u k%d%s", told.width, told.height, told.dpi, static_cast<int>(told.kind),
                told.invert ? " inverted" : "");
  line += text;
  while (interpreter.ReadRasterRow(row, bytes) == 0) line += RowText(told.kind, told.width, row);
  return line;
}

void AddRecord(const ElementRecord &record, RecordDigest &digest) {
  const auto *block = static_cast<const char *>(record.payload);
  digest.Add(&record.kind, 4);
  digest.Add(&record.color, 4);
  digest.Add(record.styleName, 8);
  digest.Add(record.layerName, 8);
  digest.Add(&record.payloadBytes, 4);
  size_t from = 0;
  if (record.kind == ElemPolyline) from = 28, digest.Add(block, 20);
  if (record.kind == ElemFilledPolygon) from = 32, digest.Add(block, 12);
  if (record.kind == ElemLineTypeDef) from = 980;
  digest.Add(block + from, record.payloadBytes - from);
}

}  // namespace

void RecordDigest::Add(const void *from, size_t size) {
  const auto *at = static_cast<const uint8_t *>(from);
  bytes += size;
  for (size_t left = size; left > 0;) {
    const size_t step = std::min<size_t>(left, 8);
    uint64_t word = step;
    std::memcpy(&word, at, step);
    hash = (hash ^ word) * 0x9E3779B97F4A7C15u;
    hash ^= hash >> 32;
    at += step;
    left -= step;
  }
}

std::string Describe(const ElementRecord &record) {
  const auto *block = static_cast<const uint8_t *>(record.payload);
  std::string text = "kind " + std::to_string(record.kind);
  const bool definition = record.kind == ElemLayerDef || record.kind == ElemLineTypeDef || record.kind == ElemFontDef;
  EXPECT_EQ(record.section, definition ? 3u : 4u);
  if (record.kind == ElemLine) {
    EXPECT_EQ(record.payloadBytes, 40u);
    text = "line " + Color(record.color) + " w" + Number(LoadAs<double>(block)) + Points(block + 8, 0, 2);
  } else if (record.kind == ElemPolyline) {
    const auto poly = LoadAs<PolylinePayload>(block);
    const auto vertices = static_cast<size_t>(poly.vertexCount);
    EXPECT_EQ(record.payloadBytes, 68 + 16 * vertices);
    EXPECT_EQ(reinterpret_cast<const uint8_t *>(poly.vertices), block + 68);
    text = "poly " + Color(record.color) + " w" + Number(poly.width) + Points(block + 68, 0, vertices);
  } else if (record.kind == ElemCircle) {
    text = DescribeNumbers("circle", record, 4, 0);
  } else if (record.kind == ElemArc) {
    text = DescribeNumbers("arc", record, 6, 2);
  } else if (record.kind == ElemEllipseArc) {
    text = DescribeNumbers("ellipse", record, 8, 3);
  } else if (record.kind == ElemFilledPolygon) {
    text = "fill " + Color(record.color) + DescribeFill(record);
  } else if (record.kind == ElemLineTypeDef) {
    const auto type = LoadAs<LineTypeDefPayload>(block);
    EXPECT_EQ(record.payloadBytes, 980u);
    EXPECT_EQ(Narrow(type.name), Narrow(record.styleName));
    text = "linetype " + Narrow(type.name);
    for (uint32_t i = 0; i < type.segmentCount && i < 16; ++i) text += " " + Number(type.segments[i].length);
    text += " of " + std::to_string(type.segmentCount);
  } else if (record.kind == ElemLayerDef) {
    EXPECT_EQ(record.payloadBytes, 44u);
    text = "layer " + Narrow(LoadAs<LayerDefPayload>(block).name);
  } else if (record.kind == ElemText) {
    const auto run = LoadAs<TextPayload>(block);
    EXPECT_EQ(record.payloadBytes, 84u);
    EXPECT_EQ(Narrow(run.fontName), Narrow(record.styleName));
    text = "text " + Color(record.color) + " '" + Narrow(run.text) + "'" + Points(block, 0, 1) + " h" +
           Number(run.height) + " w" + Number(run.widthFactor / 72 * 25.4) + " a" + Number(run.angle / 72 * 25.4);
  } else if (record.kind == ElemFontDef) {
    text = "font " + Narrow(record.styleName);
  }
  if (!definition) {
    if (const std::string layer = Narrow(record.layerName); layer != "PDF") text += " @" + layer;
    const std::string style = Narrow(record.styleName);
    if (style != "Continuous" && record.kind != ElemText) text += " [" + style + "]";
  }
  return text;
}

std::string PageBytes(const std::vector<std::string> &streams, std::string_view pageEntries,
                      const std::vector<std::string> &more) {
  PdfBuilder pdf;
  std::string contents;
  for (size_t i = 0; i < streams.size(); ++i) {
    const int number = 4 + static_cast<int>(i);
    pdf.Stream(number, "", streams[i]);
    contents += std::to_string(number) + " 0 R ";
  }
  if (streams.size() != 1) contents = "[" + contents + "]";
  for (size_t i = 0; i < more.size(); ++i) pdf.Object(100 + static_cast<int>(i), more[i]);
  return pdf.Object(1, "<</Type /Catalog /Pages 2 0 R>>")
      .Object(2, "<</Type /Pages /Count 1 /Kids [3 0 R]>>")
      .Object(3, "<</Type /Page /Contents " + contents + " " + std::string(pageEntries) + ">>")
      .Build();
}

std::vector<std::string> ReadPage(std::string_view document, const InterpreterSettings &settings,
                                  RecordDigest *digest) {
  OpenedPdf pdf(document);
  PagePosition position;
  EXPECT_EQ(pdf.result, 0u);
  if (!pdf.file.GetPage(0, position)) return {"no page"};
  auto page = SetupPage(pdf.file, position);
  if (!page) return {"no page set up"};
  Interpreter interpreter(std::move(*page), settings);
  std::vector<std::string> lines;
  ElementRecord record;
  InitializeRecord(record);
  EXPECT_EQ(interpreter.InterpretNext(record), 0u);
  EXPECT_EQ(Describe(record), "linetype Continuous of 0");
  while (interpreter.InterpretNext(record) == 0) {
    for (const ElementRecord *at = &record; at; at = at->next) {
      if (digest)
        AddRecord(*at, *digest);
      else
        lines.push_back(at->kind == ElemRasterPlacement ? DescribeRaster(interpreter, *at) : Describe(*at));
    }
  }
  for (int i = 0; i < 3; ++i) EXPECT_EQ(interpreter.InterpretNext(record), 0xFFFF0004u);
  EXPECT_EQ(interpreter.Fraction() >= 0 && interpreter.Fraction() <= 1, true);
  return lines;
}

std::string Joined(const std::vector<std::string> &lines) {
  std::string text;
  for (const std::string &line : lines) text += (text.empty() ? "" : "\n") + line;
  return text;
}

std::string Drawn(std::string_view content, std::string_view pageEntries, const InterpreterSettings &settings) {
  return Joined(ReadPage(PageBytes({std::string(content)}, pageEntries), settings));
}

}  // namespace kapdf::test
