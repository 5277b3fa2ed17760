#include "writer/truetype_subset.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <optional>
#include <utility>
#include <vector>

#include "base/bytes.h"
#include "base/limits.h"
#include "fonts/font_sfnt.h"

namespace kapdf {
namespace {

using Bytes = std::span<const uint8_t>;
using Built = std::vector<uint8_t>;

// The tables of a subset, in the order of its directory and its data.
enum Slot { kOs2, kCmap, kCvt, kFpgm, kGlyf, kHead, kHhea, kHmtx, kLoca, kMaxp, kName, kPost, kPrep, kSlots };
constexpr std::array<std::string_view, kSlots> kTags = {"OS/2", "cmap", "cvt ", "fpgm", "glyf", "head", "hhea",
                                                        "hmtx", "loca", "maxp", "name", "post", "prep"};
using Tables = std::array<std::optional<Bytes>, kSlots>;

constexpr size_t kDirectoryHeader = 12;
constexpr size_t kDirectoryEntry = 16;
constexpr size_t kHeadSize = 54;
constexpr size_t kHeadAdjustment = 8;
constexpr size_t kHeadLocaFormat = 50;
constexpr size_t kShortLocaReach = 131070;
constexpr size_t kByteTableSize = 262;

uint32_t Get16(Bytes bytes, size_t at) { return static_cast<uint32_t>(LoadBigEndian(&bytes[at], 2)); }
uint32_t Get32(Bytes bytes, size_t at) { return static_cast<uint32_t>(LoadBigEndian(&bytes[at], 4)); }
void Put16(Built &out, size_t value) {
  out.push_back(static_cast<uint8_t>(value >> 8));
  out.push_back(static_cast<uint8_t>(value));
}
void Put32(Built &out, size_t value) {
  Put16(out, value >> 16);
  Put16(out, value);
}
constexpr size_t Align4(size_t size) { return (size + 3) & ~size_t{3}; }

bool HasTrueTypeVersion(Bytes font) {
  constexpr uint32_t kVersion1 = 0x00010000;
  constexpr uint32_t kTrue = 0x74727565;  // "true", from the Macintosh
  if (font.size() < kDirectoryHeader || font.size() > limits::kFontProgram) return false;
  const uint32_t version = Get32(font, 0);
  return version == kVersion1 || version == kTrue;
}

// False when the directory or a table that is wanted does not lie in the file.
bool ReadDirectory(Bytes font, Tables &tables) {
  const size_t count = Get16(font, 4);
  if (kDirectoryHeader + count * kDirectoryEntry > font.size()) return false;
  for (size_t i = 0; i < count; ++i) {
    const Bytes entry = font.subspan(kDirectoryHeader + i * kDirectoryEntry, kDirectoryEntry);
    const auto tag = std::find_if(kTags.begin(), kTags.end(), [&](std::string_view known) {
      return std::equal(known.begin(), known.end(), entry.begin());
    });
    if (tag == kTags.end()) continue;
    const size_t offset = Get32(entry, 8);
    const size_t length = Get32(entry, 12);
    if (offset > font.size() || length > font.size() - offset) return false;
    std::optional<Bytes> &table = tables[static_cast<size_t>(tag - kTags.begin())];
    if (!table) table = font.subspan(offset, length);
  }
  return true;
}

// Where the outlines lie.
class Outlines {
 public:
  // Null when a table is missing or too short.
  static std::optional<Outlines> Of(const Tables &tables) {
    constexpr size_t kMaxpCount = 4;
    if (!tables[kGlyf] || !tables[kLoca] || !tables[kHead] || !tables[kMaxp]) return std::nullopt;
    if (tables[kHead]->size() < kHeadSize || tables[kMaxp]->size() < kMaxpCount + 2) return std::nullopt;
    Outlines outlines;
    outlines.glyf_ = *tables[kGlyf];
    outlines.loca_ = *tables[kLoca];
    outlines.long_ = Get16(*tables[kHead], kHeadLocaFormat) != 0;
    outlines.count_ = Get16(*tables[kMaxp], kMaxpCount);
    return outlines;
  }

  size_t count() const { return count_; }
  bool longLoca() const { return long_; }
  size_t size() const { return glyf_.size(); }

  // Empty for a glyph without an outline, or beyond the count; nothing for one that does not lie in the tables.
  std::optional<Bytes> Glyph(size_t glyph) const {
    if (glyph >= count_) return Bytes();
    const size_t width = long_ ? 4 : 2;
    if ((glyph + 2) * width > loca_.size()) return std::nullopt;
    const size_t start = long_ ? Get32(loca_, 4 * glyph) : size_t{2} * Get16(loca_, 2 * glyph);
    const size_t end = long_ ? Get32(loca_, 4 * glyph + 4) : size_t{2} * Get16(loca_, 2 * glyph + 2);
    if (start > end || end > glyf_.size()) return std::nullopt;
    return glyf_.subspan(start, end - start);
  }

 private:
  Bytes glyf_, loca_;
  bool long_ = false;
  size_t count_ = 0;
};

// Calls with the number of each component of a glyph, when it is made of such.
template <class Found>
void EachComponent(Bytes glyph, Found found) {
  constexpr size_t kGlyphHeader = 10;
  constexpr uint32_t kWords = 1, kScale = 8, kMore = 32, kTwoScales = 64, kMatrix = 128;
  if (glyph.size() < kGlyphHeader || (glyph[0] & 0x80) == 0) return;  // the sign of the count of contours
  uint32_t flags = kMore;
  for (size_t at = kGlyphHeader; (flags & kMore) && at + 4 <= glyph.size();) {
    flags = Get16(glyph, at);
    found(static_cast<uint16_t>(Get16(glyph, at + 2)));
    at += flags & kWords ? 8 : 6;
    at += flags & kScale ? 2 : flags & kTwoScales ? 4 : flags & kMatrix ? 8 : 0;
  }
}

// Glyph 0 and one number for each code, some of them twice.
std::vector<uint16_t> GlyphsOfCodes(const CodeTable &glyphs, const CodeSet &used) {
  std::vector<uint16_t> list = {0};
  for (size_t code = 1; code < 65535; ++code)
    if (used[code]) list.push_back(glyphs[code]);
  return list;
}

// What is not in the list and its glyphs are made of, each once. The components of glyph 0 only when a code uses it.
// Nothing when an outline does not lie in the tables, or so many lie over each other that it takes forever.
std::optional<std::vector<uint16_t>> ComponentsOf(const std::vector<uint16_t> &list, const Outlines &outlines) {
  CodeSet seen;
  std::vector<uint16_t> open;
  std::vector<uint16_t> components;
  size_t walked = 0;
  const auto add = [&](uint16_t glyph) {
    if (!seen[glyph]) open.push_back(glyph);
    seen.set(glyph);
  };
  std::for_each(list.begin() + 1, list.end(), add);
  const CodeSet listed = CodeSet(seen).set(0);
  while (!open.empty()) {
    const uint16_t next = open.back();
    open.pop_back();
    const std::optional<Bytes> glyph = outlines.Glyph(next);
    if (!glyph || (walked += glyph->size()) > 2 * outlines.size()) return std::nullopt;
    if (!listed[next]) components.push_back(next);
    EachComponent(*glyph, add);
  }
  return components;
}

// `glyf` and `loca` with the outlines of the list only. False when that does not work: the offsets do not fit a short
// loca, or the outlines overlap so that the result would be larger than the font's.
bool BuildOutlines(const std::vector<uint16_t> &list, const Outlines &outlines, Built &glyf, Built &loca) {
  std::vector<Bytes> kept(outlines.count());
  size_t size = 0;
  for (size_t i = 0; i < list.size(); ++i) {
    if (list[i] >= kept.size() || (i > 0 && list[i] == list[i - 1])) continue;
    kept[list[i]] = outlines.Glyph(list[i]).value_or(Bytes());
    size += Align4(kept[list[i]].size());
  }
  if (size > outlines.size() + 4 * list.size()) return false;
  if (!outlines.longLoca() && size > kShortLocaReach) return false;
  glyf.reserve(size);
  loca.reserve((kept.size() + 1) * 4);
  const auto locate = [&] { outlines.longLoca() ? Put32(loca, glyf.size()) : Put16(loca, glyf.size() / 2); };
  for (const Bytes &glyph : kept) {
    locate();
    glyf.insert(glyf.end(), glyph.begin(), glyph.end());
    glyf.resize(Align4(glyf.size()));
  }
  locate();
  return true;
}

// The Macintosh's byte table; empty when there is none.
Bytes ByteTable(Bytes cmap) {
  constexpr size_t kHeader = 4, kRecord = 8;
  const size_t count = cmap.size() < kHeader ? 0 : Get16(cmap, 2);
  for (size_t at = kHeader; at < kHeader + count * kRecord && at + kRecord <= cmap.size(); at += kRecord) {
    if (Get32(cmap, at) != 0x00010000) continue;  // platform 1, encoding 0
    const size_t offset = Get32(cmap, at + 4);
    if (offset > cmap.size() || cmap.size() - offset < kByteTableSize || Get16(cmap, offset) != 0) continue;
    return cmap.subspan(offset, kByteTableSize);
  }
  return {};
}

struct Segment {
  uint32_t first, last, delta;
};

// Pairs the codes from 32 on with the glyphs of the sorted list, both ascending: no reader needs it, as text names the
// glyphs themselves, but some want to see a table.
std::vector<Segment> PairCodes(const std::vector<uint16_t> &list, const CodeSet &used) {
  constexpr size_t kMostSegments = (65535 - 16) / 8;  // more do not fit the table's length
  std::vector<Segment> segments;
  size_t i = 1;
  for (uint32_t code = 32; code < 65535 && i < list.size(); ++code) {
    if (!used[code]) continue;
    if (!segments.empty() && segments.back().last + 1 == code && list[i] == list[i - 1] + 1) {
      segments.back().last = code;
    } else {
      if (segments.size() + 1 == kMostSegments) break;
      segments.push_back({code, code, list[i] - code});
    }
    ++i;
  }
  segments.push_back({65535, 65535, 1});
  return segments;
}

void PutSegments(Built &out, const std::vector<Segment> &segments) {
  const size_t doubled = 2 * segments.size();
  size_t power = 1;
  size_t exponent = 0;
  for (; power < doubled + 1; power *= 2) ++exponent;
  for (const size_t value :
       {size_t{4}, 16 + 4 * doubled, size_t{0}, doubled, power / 2, exponent - 2, doubled - power / 2})
    Put16(out, value);
  for (const Segment &segment : segments) Put16(out, segment.last);
  Put16(out, 0);
  for (const Segment &segment : segments) Put16(out, segment.first);
  for (const Segment &segment : segments) Put16(out, segment.delta);
  out.resize(out.size() + doubled);  // no range offsets
}

Built BuildCmap(Bytes cmap, const std::vector<uint16_t> &list, const CodeSet &used) {
  constexpr size_t kBytesAt = 20;
  Built out;
  for (const size_t value : {0, 2, 1, 0}) Put16(out, value);
  Put32(out, kBytesAt);
  for (const size_t value : {3, 1}) Put16(out, value);
  Put32(out, kBytesAt + kByteTableSize);
  for (const size_t value : {size_t{0}, kByteTableSize, size_t{0}}) Put16(out, value);
  const Bytes bytes = ByteTable(cmap);
  for (size_t code = 0; code < 256; ++code) out.push_back(!bytes.empty() && used[code] ? bytes[6 + code] : 0);
  PutSegments(out, PairCodes(list, used));
  return out;
}

Built BuildPost() {
  Built out;
  Put32(out, 0x00030000);  // no names of glyphs
  Put32(out, 0);
  Put16(out, 0xFFFF & -17);  // the underline: where, and how thick
  Put16(out, 13);
  out.resize(32);
  return out;
}

// Family, full and PostScript names get the prefix. Of the other names those for every language and in American English
// are kept. A name that does not lie in the table, or does not fit the new one with its 16-bit offsets, is dropped.
Built BuildName(Bytes name, std::string_view prefix) {
  constexpr size_t kHeader = 6, kRecord = 12, kReach = 65535;
  constexpr uint32_t kAmerican = 1033, kUserNames = 10;
  Built records;
  Built strings;
  const size_t count = name.size() < kHeader ? 0 : Get16(name, 2);
  for (size_t at = kHeader; at < kHeader + count * kRecord && at + kRecord <= name.size(); at += kRecord) {
    const uint32_t platform = Get16(name, at);
    const uint32_t id = Get16(name, at + 6);
    if (id >= kUserNames || (platform != 0 && Get16(name, at + 4) != kAmerican)) continue;
    const size_t length = Get16(name, at + 8);
    const size_t offset = size_t{Get16(name, 4)} + Get16(name, at + 10);
    const size_t start = strings.size();
    if (offset + length > name.size() || start + 2 * prefix.size() + length > kReach) continue;
    if (kHeader + records.size() + kRecord > kReach) break;
    if (id == 1 || id == 4 || id == 6) {
      for (const char byte : prefix) {
        if (platform != 1) strings.push_back(0);
        strings.push_back(static_cast<uint8_t>(byte));
      }
    }
    const Bytes text = name.subspan(offset, length);
    strings.insert(strings.end(), text.begin(), text.end());
    const Bytes kinds = name.subspan(at, 8);
    records.insert(records.end(), kinds.begin(), kinds.end());
    Put16(records, strings.size() - start);
    Put16(records, start);
  }
  Built out;
  for (const size_t value : {size_t{0}, records.size() / kRecord, kHeader + records.size()}) Put16(out, value);
  out.insert(out.end(), records.begin(), records.end());
  out.insert(out.end(), strings.begin(), strings.end());
  return out;
}

// Of big-endian words; the size is a multiple of 4.
uint32_t Sum(Bytes words) {
  uint32_t sum = 0;
  for (size_t at = 0; at < words.size(); at += 4) sum += Get32(words, at);
  return sum;
}

ByteBuffer Assemble(const Tables &tables) {
  constexpr uint32_t kMagicSum = 0xB1B0AFBA;
  size_t count = 0;
  size_t size = kDirectoryHeader;
  for (const auto &table : tables) {
    if (!table) continue;
    ++count;
    size += kDirectoryEntry + Align4(table->size());
  }
  size_t power = 1;
  size_t exponent = 0;
  for (; power < count; power *= 2) ++exponent;
  Built directory;
  Put32(directory, 0x00010000);
  // For exactly 8 tables half of what is usual; no reader searches with it.
  for (const size_t value : {count, power * 8, exponent - 1, count * 16 - power * 8}) Put16(directory, value);

  ByteBuffer file;
  file.Resize(size);
  size_t at = kDirectoryHeader + count * kDirectoryEntry;
  size_t adjustment = 0;
  uint32_t sum = 0;
  for (size_t slot = 0; slot < kSlots; ++slot) {
    if (!tables[slot]) continue;
    const Bytes table = *tables[slot];
    const size_t padded = Align4(table.size());
    std::fill_n(std::copy(table.begin(), table.end(), file.data() + at), padded - table.size(), uint8_t{0});
    if (slot == kHead) {
      adjustment = at + kHeadAdjustment;
      StoreBigEndian(file.data() + adjustment, 0, 4);
    }
    const uint32_t tableSum = Sum(file.span().subspan(at, padded));
    sum += tableSum;
    directory.insert(directory.end(), kTags[slot].begin(), kTags[slot].end());
    for (const size_t value : {size_t{tableSum}, at, table.size()}) Put32(directory, value);
    at += padded;
  }
  std::copy(directory.begin(), directory.end(), file.data());
  StoreBigEndian(file.data() + adjustment, kMagicSum - (sum + Sum(directory)), 4);
  return file;
}

FontSubset Whole(Bytes font) {
  FontSubset whole{FontSubset::Kind::kWhole, {}};
  whole.bytes.Resize(font.size());
  std::copy(font.begin(), font.end(), whole.bytes.data());
  return whole;
}

}  // namespace

std::unique_ptr<CodeTable> GlyphsOfCmap(std::span<const uint8_t> cmap) {
  if (auto glyphs = GlyphsByUnicode(cmap)) return glyphs;
  const Bytes bytes = ByteTable(cmap);
  if (bytes.empty()) return nullptr;
  auto glyphs = std::make_unique<CodeTable>();
  std::copy(bytes.begin() + 6, bytes.end(), glyphs->begin());
  return glyphs;
}

std::string SubsetPrefix(uint32_t number) {
  constexpr uint64_t kLetters = 26;
  std::string prefix = "ZVNEWA+";
  uint64_t carry = number;
  for (size_t i = prefix.size() - 1; i-- > 0; carry /= kLetters) {
    carry += static_cast<uint64_t>(prefix[i] - 'A');
    prefix[i] = static_cast<char>('A' + carry % kLetters);
  }
  return prefix;
}

std::string NextSubsetPrefix() {
  static std::atomic<uint32_t> count{0};
  return SubsetPrefix(count++);
}

FontSubset MakeTrueTypeSubset(std::span<const uint8_t> font, const CodeTable &glyphs, const CodeSet &used,
                              std::string_view prefix) {
  Tables tables;
  if (!HasTrueTypeVersion(font) || !ReadDirectory(font, tables) || !tables[kCmap]) return {};
  const std::optional<Outlines> outlines = Outlines::Of(tables);
  if (!outlines) return {};
  std::vector<uint16_t> list = GlyphsOfCodes(glyphs, used);
  const auto components = ComponentsOf(list, *outlines);
  if (!components) return {};
  // Codes that share a glyph count each.
  if (outlines->count() / list.size() < 2) return Whole(font);
  list.insert(list.end(), components->begin(), components->end());
  std::sort(list.begin(), list.end());

  Built glyf, loca;
  if (!BuildOutlines(list, *outlines, glyf, loca)) return Whole(font);
  const Built cmap = BuildCmap(*tables[kCmap], list, used);
  const Built post = BuildPost();
  const Built name = tables[kName] ? BuildName(*tables[kName], prefix) : Built();
  tables[kGlyf] = glyf;
  tables[kLoca] = loca;
  tables[kCmap] = cmap;
  tables[kPost] = post;
  if (tables[kName]) tables[kName] = name;
  return {FontSubset::Kind::kSubset, Assemble(tables)};
}

}  // namespace kapdf
