// Seeds that are texts: objects, contents, coded data, and the bytes from which the export target makes its records.
#include "io/codec_lzw.h"
#include "io/memory_file.h"
#include "seeds/seeds.h"
#include "support/pdf_builder.h"

namespace kapdf::fuzz {
namespace {

struct Seed {
  std::string_view name, text;
};

constexpr Seed kObjects[] = {
    {"numbers", "0 -1 +2 3.25 -.5 4. 1e5 0.000000000001 99999999999 2147483648 -2147483649 00012 --5 1.2.3"},
    {"names", "/Name /A#20B /-weird_!name /  /Very.Long.Name.Of.Some.Length/Next(text)/Other<</A/B>>"},
    {"strings",
     "(plain) (esc \\( \\) \\\\ \\n \\r \\t \\b \\f \\101 \\8) (a(b)c) (two\\\nlines) <48656C6C6F> <4> < 4 8 >"},
    {"references", "1 0 R 12 3 R 1 0 S 1 2 3 R 4 0 obj 5 0 R6 0 R"},
    {"arrays", "[] [1 2 3] [1 0 R 2 0 R] [[1][2 [3]]] [/A(b)<63>true null<</D 1>>] [1 2"},
    {"dictionaries", "<<>> <</A 1/B(2)/C<33>/D[4]/E<</F 5>>/G 6 0 R>> <</A>> <</A 1/A 2>> << /A 1"},
    {"object", "7 0 obj\n<</Type /Page /MediaBox [0 0 612 792] /Contents 8 0 R /Rotate 90>>\nendobj\n"},
    {"rubbish", "7 0 obj rubbish < rubbish <</A 1>> more"},
};

constexpr Seed kContents[] = {
    {"arrays",
     "[3 2] 0 d\n10 10 m 20 20 l S\n[] 0 d\n[ ] 0 d\n[1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18] 3 d\n0 0 m 9 9 l "
     "S\n"},
    {"colours",
     "1 0 0 RG 0 1 0 rg 0.5 G 0.25 g 0 1 1 0 K 1 0 0 0 k\n/DeviceRGB CS 1 1 1 SC /DeviceCMYK cs 0 0 0 1 sc\n"
     "/Cs1 cs 0.5 scn /P1 scn 1 2 3 4 5 scn\n0 0 10 10 re B\n"},
    {"text",
     "BT /F1 12 Tf 1 0 0 1 50 700 Tm (Hello \\(world\\)) Tj 0 -14 Td [(A) -120 (B) <4344>] TJ 14 TL T* (x) ' 1 2 (y) "
     "\" "
     "1 0 0 rg ET\n10 10 m 20 20 l S\n"},
    {"inline_image_ends", "BI /W 2 /H 2 /BPC 8 /CS /RGB /F /A85 ID GhVFE~> EI\nBI\nID EI EI\nEI\nBI /W 1"},
    {"numbers", "1e5 1.5e-3 m -.5 +.5 l 99999999999999999999 1 l 1.7976931348623157e308 2 l nan inf l 0x10 1 l S\n"},
    {"extremes",
     "1e300 0 0 1e300 0 0 cm 1e300 0 0 1e300 0 0 cm 5 5 m 6 6 l S\n0 0 0 0 0 0 cm 1 1 m 2 2 l S\n1e30 w 0 0 9 9 re "
     "S\n"},
    {"curves",
     "0 0 m 1e9 1e9 -1e9 1e9 5 5 c S\n0 0 m 10 20 30 40 v 50 60 70 80 y h B*\n0 0 m 0 0 0 0 0 0 c S\n1 2 l c S"},
    {"holes", "0 0 100 100 re 10 10 m 10 90 l 90 90 l 90 10 l h f\n0 0 9 9 re 20 20 9 9 re f*\n0 0 m 5 5 l 3 3 m f\n"},
};

}  // namespace

std::string_view SampleContent() {
  return "q 1 0 0 1 10 10 cm 2 w [6 3] 0 d 1 0 0 RG 0 0 m 100 0 l 100 100 l S Q\n"
         "0.5 g 50 50 200 100 re f\n1 0 1 rg 300 300 m 350 400 400 400 450 300 c b\n"
         "0 0 1 RG 10 700 m 600 700 l S\nBT /F1 12 Tf (text) Tj ET\n"
         "0 0 100 100 re 20 20 60 60 re f*\n";
}

// What is drawn, then place, half axes, step and two lengths as 64ths, the tolerance and the number of points.
void AddCurves(SeedFolder &folder) {
  const auto curve = [&](std::string_view name, uint8_t shape, std::initializer_list<int> values, uint8_t points) {
    std::string bytes(1, static_cast<char>(shape));
    for (const int value : values) bytes += {5, static_cast<char>(value * 64), static_cast<char>(value * 64 >> 8)};
    folder.Add(name, bytes + '\1' + static_cast<char>(points));
  };
  curve("circle", 0, {10, 20, 50, 50, 4, 0, 0}, 101);
  curve("ellipse", 0, {-90, 400, 50, 30, 4, 0, 0}, 90);
  curve("bezier", 1, {0, 0, 0, 30, 55, 0, 55}, 0);
}

void AddObjects(SeedFolder &folder) {
  for (const Seed &seed : kObjects) folder.Add(seed.name, seed.text);
  folder.Add("nested_arrays", std::string(300, '[') + "1" + std::string(300, ']'));
  std::string nested;
  for (int i = 0; i < 300; ++i) nested += "<</A ";
  folder.Add("nested_dictionaries", nested);
  folder.Add("long_tokens", std::string(127, '1') + " " + std::string(128, '1') + " /" + std::string(300, 'n'));
}

void AddContents(SeedFolder &folder) {
  for (const Seed &seed : kContents) {
    folder.Add(seed.name, std::string(1, '\0') + std::string(seed.text));
    folder.Add(std::string(seed.name) + "_cut", std::string(1, '\5') + std::string(seed.text));
  }
  for (char choice = 0; choice < 12; ++choice) {
    folder.Add("sample" + std::to_string(choice), std::string(1, choice) + std::string(SampleContent()));
  }
  folder.Add("long_line", "0" + std::string(9000, ' ') + "1 1 m 2 2 l S (" + std::string(9000, 'x') + ") Tj");
  std::string deep = "0", stretched = "0";
  for (int i = 0; i < 500; ++i) deep += "q 2 0 0 2 0 0 cm 0 0 m 1 1 l S\n";
  for (int i = 0; i < 2000; ++i)
    stretched += std::to_string(i) + " " + std::to_string(i * 7 % 500) + (i ? " l\n" : " m\n");
  folder.Add("deep_states", deep);
  folder.Add("long_path", stretched + "S\n");
}

void AddDrawings(SeedFolder &folder) {
  // A sheet, no options, and then runs of numbers that give records of every kind.
  for (unsigned seed = 1; seed <= 8; ++seed) {
    std::string bytes;
    for (const char *side : {"\1\0\0", "\1\0\0", "\2\0\40", "\2\0\40"}) bytes.append(side, 3);
    bytes.append("\0\1\1", 3);
    for (unsigned value = seed * 2654435761u, i = 0; i < 800 * seed; ++i) {
      value = value * 1664525u + 1013904223u;
      bytes += static_cast<char>(value >> 24);
    }
    folder.Add("records" + std::to_string(seed), bytes);
  }
}

void AddCodecs(SeedFolder &folder) {
  std::string rows;
  for (int i = 0; i < 600; ++i) rows += static_cast<char>(i % 13 ? i * i >> 6 : i / 13 % 6);
  CZVMemoryFileFlat sink;
  CZVLzw lzw(sink, 0, CodecMode::kEncode);
  lzw.Write(rows.data(), rows.size());
  lzw.flush();
  const std::string coded[] = {rows,
                               "87cURD_*#TDfTZ)z~>",
                               "48 65 6C 6C 6f>",
                               "\2abc\xFE"
                               "d\x7F" +
                                   rows,
                               std::string(sink.bytes().begin(), sink.bytes().end()),
                               test::Deflate(rows)};
  // Rows of 12 bytes: 12 of one byte, 4 of three, 32 of three bits, 2 of three 16-bit samples; then no image's.
  for (const char *shape : {"\1\13\0\3", "\2\13\0\3", "\17\3\2\3", "\2\37\2\0", "\17\1\2\4", "\12\377\37\4"}) {
    for (char codec = 0; codec < 6; ++codec)
      folder.Add("codec" + std::to_string(codec) + "_" + std::to_string(shape[0]) + std::to_string(shape[3]),
                 codec + std::string(shape, 4) + coded[static_cast<size_t>(codec)]);
  }
}

void AddCMaps(SeedFolder &folder) {
  folder.Add(
      "unicode",
      "1 begincodespacerange\n<0000> <FFFF>\nendcodespacerange\n2 beginbfchar\n<0003> <0020>\n<0041> <D835DC00>\n"
      "endbfchar\n2 beginbfrange\n<0004> <0010> <0021>\n<0011> <0012> [<0061> <0062>]\nendbfrange\n");
  folder.Add("cids",
             "2 begincodespacerange\r\n<00> <80>\r\n<8140> <FEFE>\r\n1 begincodespacerange <A0> <DF>\r\n"
             "2 begincidrange\r\n<20> <7e> 231\r\n<8140> <817e> 0x279\r\n1 begincidchar\r\n<8180> 696\r\n");
  // Would take a minute if each range were written out.
  std::string ranges = "2000000000 beginbfrange\n";
  for (int i = 0; i < 800'000; ++i) ranges += "<0><FFFF><0>\n";
  folder.Add("ranges", ranges);
}

}  // namespace kapdf::fuzz
