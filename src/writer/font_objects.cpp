#include "writer/font_objects.h"

#include <span>
#include <utility>
#include <vector>

#include "io/codec_flate.h"
#include "writer/to_unicode.h"

namespace kapdf {
namespace {

using Outlines = FontOut::Program::Outlines;

constexpr uint8_t kVariablePitch = 0x01, kFamily = 0xF0, kRoman = 0x10, kScript = 0x40;  // as Windows has them

std::span<const uint8_t> BytesOf(std::string_view text) {
  return {reinterpret_cast<const uint8_t *>(text.data()), text.size()};
}

// Flags of a font's descriptor.
int32_t FlagsOf(const platform::FontMetrics &metrics) {
  constexpr int32_t kFixedPitch = 1, kSerif = 2, kSymbolic = 4, kScriptLetters = 8, kNonsymbolic = 32;
  constexpr uint8_t kFirstOtherCharSet = 2;
  int32_t flags = metrics.pitchAndFamily & kVariablePitch ? 0 : kFixedPitch;
  if ((metrics.pitchAndFamily & kFamily) == kScript) flags += kScriptLetters;
  if ((metrics.pitchAndFamily & kFamily) == kRoman) flags += kSerif;
  return flags + (metrics.charSet < kFirstOtherCharSet ? kNonsymbolic : kSymbolic);
}

}  // namespace

void FontObjects::WriteResources() {
  const char *head = "/Font <<\r";
  for (FontOut &font : fonts_.all()) {
    if (!font.used()) continue;
    font.objectNumber = objects_.ReserveHere();
    out_.Text(std::exchange(head, "")).Name(font.name()).Byte(' ').Reference(font.objectNumber).Text("\r");
  }
  if (*head == '\0') out_.Text(">>\r");
}

// The program is made first, since a subset changes the font's name. Names go out as they are: one with blanks in it is
// cut by readers at the first.
void FontObjects::Write(bool embed) {
  for (FontOut &font : fonts_.all()) {
    if (!font.used()) continue;
    objects_.BeginReserved(font.objectNumber);
    FontOut::Program program;
    if (embed || font.IsTemporary()) program = font.MakeProgram();
    out_.Text("<<\r/Type /Font\r/Subtype /Type0\r/Encoding /Identity-H\r/BaseFont ").Name(font.baseFontName());
    out_.Text("/ToUnicode ").Reference(objects_.Reserve()).Text("\r/DescendantFonts [ ").Reference(objects_.Next());
    out_.Text(" ]\r>>\rendobj\r");
    WriteToUnicode(font);
    WriteDescendant(font, program);
    const int32_t file = WriteDescriptor(font, program);
    if (file == 0) continue;
    objects_.PlaceHere();
    out_.BeginObject(file).Text("<<\r/Filter /FlateDecode /Length ");
    out_.Integer(static_cast<int64_t>(program.deflated.size()));
    if (program.outlines == Outlines::kCompact)
      out_.Text("\r/Subtype /CIDFontType0C");
    else  // of the whole font, even where a part is all there is
      out_.Text("\r/Length1 ").Integer(static_cast<int64_t>(program.wholeSize));
    out_.Text("\r>>\rstream\r\n");
    out_.Bytes(program.deflated).Text("\r\nendstream\rendobj\n");
  }
}

// Its number was the last one given out.
void FontObjects::WriteToUnicode(const FontOut &font) {
  const std::vector<uint8_t> map = Deflated(BytesOf(ToUnicodeMap(font)));
  objects_.PlaceHere();
  out_.BeginObject(objects_.Next() - 1).Text("<</Filter /FlateDecode\r/Length ");
  out_.Integer(static_cast<int64_t>(map.size())).Text(">>\rstream\r\n").Bytes(map).Text("\r\nendstream\rendobj\n");
}

void FontObjects::WriteDescendant(const FontOut &font, const FontOut::Program &program) {
  const bool compact = program.outlines == Outlines::kCompact;
  out_.BeginObject(objects_.ReserveHere())
      .Text("<</Type /Font\r/Subtype /CIDFontType")
      .Text(compact ? "0" : "2")
      .Text("\r/DW ");
  out_.Integer(font.metrics().averageWidth).Text("\r/W [");
  const std::vector<int32_t> widths = font.Widths();
  auto width = widths.begin();
  for (uint32_t code = font.firstChar(); width != widths.end(); ++code) {
    if (!font.glyphUse()[code]) continue;
    out_.Integer(font.GlyphOf(static_cast<char16_t>(code))).Text(" [").Integer(*width++).Text("] ");
  }
  out_.Text(compact ? "]\r" : "]\r/CIDToGIDMap (Identity)\r");
  out_.Text("/CIDSystemInfo << /Registry (Adobe)/Ordering (Identity)/Supplement 0 >>");
  out_.Text("/BaseFont ").Name(font.baseFontName()).Text("\r/FontDescriptor ");
  out_.Reference(objects_.Reserve()).Text("\r>>\rendobj\r");
}

// Returns the number of the font's file, 0 for none.
int32_t FontObjects::WriteDescriptor(const FontOut &font, const FontOut::Program &program) {
  const platform::FontMetrics &metrics = font.metrics();
  objects_.PlaceHere();
  out_.BeginObject(objects_.Next() - 1).Text("<<\r/Type /FontDescriptor\r/FontName ").Name(font.baseFontName());
  out_.Text("\r/Flags ").Integer(FlagsOf(metrics)).Text("\r/FontBBox [").Integer(metrics.left).Byte(' ');
  out_.Integer(metrics.bottom).Byte(' ').Integer(metrics.right).Byte(' ').Integer(metrics.top);
  // The angle is in tenths of a degree, and the capitals are as high as the ascenders: nobody looks there.
  out_.Text("]\r/ItalicAngle ").Integer(metrics.italicAngle).Text("\r/Ascent ").Integer(metrics.ascent);
  out_.Text("\r/Descent ").Integer(-metrics.descent).Text("\r/Leading ");
  out_.Integer(metrics.internalLeading + metrics.externalLeading).Text("\r/MissingWidth ");
  out_.Integer(metrics.averageWidth).Text("\r/CapHeight ").Integer(metrics.ascent).Text("\r/StemV ");
  out_.Integer(font.stemV()).Text("\r");
  if (program.deflated.empty()) {
    out_.Text(">>\rendobj\n");
    return 0;
  }
  const int32_t file = objects_.Reserve();
  out_.Text(program.outlines == Outlines::kCompact ? "/FontFile3 " : "/FontFile2 ")
      .Reference(file)
      .Text("\r>>\rendobj\r");
  return file;
}

}  // namespace kapdf
