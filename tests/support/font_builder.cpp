#include "support/font_builder.h"

#include <bit>
#include <initializer_list>
#include <vector>

namespace kapdf {
namespace {

void Put(std::string &bytes, std::initializer_list<size_t> words) {
  for (const size_t word : words) bytes += {static_cast<char>(word >> 8), static_cast<char>(word)};
}

std::string Words(std::initializer_list<size_t> words) {
  std::string bytes;
  Put(bytes, words);
  return bytes;
}

constexpr size_t Minus(int value) { return static_cast<size_t>(65536 - value); }

std::string CharacterMap(std::u16string_view characters) {
  const size_t count = characters.size() + 1, power = std::bit_floor(count) * 2;
  std::string ends, starts, deltas, offsets;
  for (size_t i = 0; i + 1 < count; ++i) {
    Put(ends, {characters[i]});
    Put(starts, {characters[i]});
    Put(deltas, {65536 + i + 1 - characters[i]});
    Put(offsets, {0});
  }
  const auto shift = static_cast<size_t>(std::bit_width(power) - 2);
  return Words({0, 1, 3, 1, 0, 12, 4, 16 + 8 * count, 0, 2 * count, power, shift, 2 * count - power}) + ends +
         Words({65535, 0}) + starts + Words({65535}) + deltas + Words({1}) + offsets + Words({0});
}

std::string Names(const std::string &family) {
  std::string records, strings;
  size_t count = 0;
  for (const auto &[id, text] : {std::pair<size_t, std::string>(1, family), {2, "Regular"}, {4, family}, {6, family}}) {
    Put(records, {3, 1, 1033, id, 2 * text.size(), strings.size()});
    for (const char c : text) Put(strings, {static_cast<size_t>(c)});
    ++count;
  }
  return Words({0, count, 6 + 12 * count}) + records + strings;
}

}  // namespace

std::string BuildFont(const std::string &family, std::u16string_view characters, size_t base) {
  const std::string square =
      Words({1, 50, 0, 550, 700, 3, 0, 0x0101, 0x0101, 50, 0, 500, 0, 0, 700, Minus(500), 0}) + Words({0, 0});
  const size_t glyphs = characters.size() + 1;
  std::string glyf, loca = Words({0}), hmtx = Words({600, 50});
  for (size_t i = 1; i < glyphs; ++i) {
    Put(loca, {glyf.size() / 2});
    glyf += square;
    Put(hmtx, {600 + i, 50});
  }
  Put(loca, {glyf.size() / 2});
  const std::string os2 =
      Words({4, 512, 400, 5}) + std::string(24, '\0') + std::string("\2\2", 2) + std::string(8, '\0') +
      Words({0, 1, 0, 0, 0, 0, 0, 0}) + "KAPD" +
      Words({64, characters.front(), characters.back(), 700, Minus(200), 50, 900, 200, 0, 1, 0, 0, 500, 700, 0, 32, 1});
  const std::pair<const char *, std::string> tables[] = {
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
      {"post", Words({3, 0, 0, 0, Minus(100), 50}) + std::string(20, '\0')},
  };
  const size_t head = 12 + 16 * std::size(tables);
  std::string directory = Words({1, 0, std::size(tables), 128, 3, 32}), data;
  for (const auto &[tag, bytes] : tables) {
    const size_t at = base + head + data.size();
    directory += tag + Words({0, 0, at >> 16, at, bytes.size() >> 16, bytes.size()});
    data += bytes + std::string((4 - bytes.size() % 4) % 4, '\0');
  }
  return directory + data;
}

}  // namespace kapdf
