#include "support/font_builder.h"

#include <bit>
#include <initializer_list>

#include "support/pdf_builder.h"

namespace kapdf::test {
namespace {

std::string Words(std::initializer_list<size_t> words) {
  std::string bytes;
  for (const size_t word : words) bytes += BigEndian(word & 0xFFFF, 2);
  return bytes;
}

constexpr size_t Minus(int value) { return static_cast<size_t>(65536 - value); }

std::string CharacterMap(std::u16string_view characters) {
  const size_t count = characters.size() + 1, power = std::bit_floor(count) * 2;
  std::string ends, starts, deltas, offsets;
  for (size_t i = 0; i + 1 < count; ++i) {
    ends += Words({characters[i]});
    starts += Words({characters[i]});
    deltas += Words({65536 + i + 1 - characters[i]});
    offsets += Words({0});
  }
  const auto shift = static_cast<size_t>(std::bit_width(power) - 2);
  return Words({0, 1, 3, 1, 0, 12, 4, 16 + 8 * count, 0, 2 * count, power, shift, 2 * count - power}) + ends +
         Words({65535, 0}) + starts + Words({65535}) + deltas + Words({1}) + offsets + Words({0});
}

std::string Names(const std::string &family) {
  std::string records, strings;
  size_t count = 0;
  for (const auto &[id, text] :
       {std::pair<size_t, std::string>(1, family), {2, "Regular"}, {4, family}, {5, "Bold"}, {6, family}}) {
    records += Words({3, 1, 1033, id, 2 * text.size(), strings.size()});
    for (const char c : text) strings += Words({static_cast<size_t>(c)});
    ++count;
  }
  return Words({0, count, 6 + 12 * count}) + records + strings;
}

}  // namespace

std::string Sfnt(const std::vector<std::pair<std::string, std::string>> &tables, size_t base) {
  std::string directory = BigEndian(0x00010000, 4) + BigEndian(tables.size(), 2) + std::string(6, '\0'), data;
  for (const auto &[tag, bytes] : tables) {
    const size_t at = base + 12 + 16 * tables.size() + data.size();
    directory += tag + BigEndian(0, 4) + BigEndian(at, 4) + BigEndian(bytes.size(), 4);
    data += bytes + std::string((4 - bytes.size() % 4) % 4, '\0');
  }
  return directory + data;
}

std::string BuildFont(const std::string &family, std::u16string_view characters, size_t base, bool varies) {
  const std::string square =
      Words({1, 50, 0, 550, 700, 3, 0, 0x0101, 0x0101, 50, 0, 500, 0, 0, 700, Minus(500), 0}) + Words({0, 0});
  const size_t glyphs = characters.size() + 1;
  std::string glyf, loca = Words({0}), hmtx = Words({600, 50});
  for (size_t i = 1; i < glyphs; ++i) {
    loca += Words({glyf.size() / 2});
    glyf += square;
    hmtx += Words({600 + i, 50});
  }
  loca += Words({glyf.size() / 2});
  const std::string os2 =
      Words({4, 512, 400, 5}) + std::string(24, '\0') + std::string("\2\2", 2) + std::string(8, '\0') +
      Words({0, 1, 0, 0, 0, 0, 0, 0}) + "KAPD" +
      Words({64, characters.front(), characters.back(), 700, Minus(200), 50, 900, 200, 0, 1, 0, 0, 500, 700, 0, 32, 1});
  std::vector<std::pair<std::string, std::string>> tables = {
      {"OS/2", os2},
      {"cmap", CharacterMap(characters)},
      {"glyf", glyf},
      {"head",
       Words({1, 0, 1, 0, 0, 0, 0x5F0F, 0x3CF5, 3, 1000, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 550, 700, 0, 8, 2, 0, 0})},
      {"hhea", Words({1, 0, 900, Minus(200), 50, 600 + glyphs, 0, 0, 550, 1, 0, 0, 0, 0, 0, 0, 0, glyphs})},
      {"hmtx", hmtx},
      {"loca", loca},
      {"maxp", Words({1, 0, glyphs, 4, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0})},
      {"name", Names(family)},
      {"post", Words({3, 0, 0, 0, Minus(100), 50}) + std::string(20, '\0')}};
  if (varies) {
    tables[1].second = Words({0, 2, 3, 0, 0, 20, 3, 1, 0, 44, 4, 24, 0, 2, 2, 0, 0, 65535, 0, 65535, 1, 0}) +
                       CharacterMap(characters).substr(12);
    tables.emplace_back("fvar", Words({1, 0, 16, 2, 1, 20, 1, 8}) + "wght" + Words({400, 0, 400, 0, 700, 0, 0, 2}) +
                                    Words({5, 0, 700, 0}));
    tables.emplace_back("gvar", Words({1, 0, 1, 0, 0, 0, glyphs, 0, 0, 0}) + std::string(2 * glyphs + 2, '\0'));
  }
  return Sfnt(tables, base);
}

}  // namespace kapdf::test
