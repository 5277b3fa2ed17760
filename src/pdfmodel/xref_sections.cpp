// Reading cross-reference sections: classic tables and chains of streams.
#include <algorithm>
#include <cstdio>

#include "base/ascii.h"
#include "base/bytes.h"
#include "base/scan.h"
#include "pdfmodel/xref_reader.h"
#include "platform/file.h"

namespace kapdf {
namespace {

constexpr size_t kLineBytes = 256;
constexpr size_t kClassicEntryBytes = 20;
constexpr int64_t kNoPosition = 0;

uint8_t FirstNonSpace(CZVBaseIO &source) {
  uint8_t c;
  do c = source.GetByte();
  while (IsSpace(c));
  return c;
}

// Widths of the three fields; false when an item is missing or out of 0..4.
bool ReadWidths(const CPDFArray &list, unsigned (&widths)[3]) {
  for (uint32_t i = 0; i < 3; ++i) {
    const auto *number = dynamic_cast<const CPDFNumeric *>(list.GetAt(i));
    if (!number || number->intValue < 0 || number->intValue > 4) return false;
    widths[i] = static_cast<unsigned>(number->intValue);
  }
  return true;
}

}  // namespace

XRefReader::XRefReader(CPDFBlockSource &source, bool diagnostics) : ObjectLocator(source), diagnostics_(diagnostics) {}

bool XRefReader::VisitSection(int64_t position) {
  return position > 0 && position < source().length() && visited_.insert(position).second;
}

SectionEnd XRefReader::ReadSection() {
  const int64_t start = source().Tell();
  const uint8_t first = FirstNonSpace(source());
  char word[4] = {};
  source().Read(word, sizeof word);
  if (first != 'x' || std::string_view(word, 3) != "ref") return ReadStreamChain(start);
  while (ReadClassicSubsection()) {
  }
  return SectionEnd::kTrailer;
}

// False at a byte above "9", which is how a table ends: it is the first letter of "trailer". Each pass takes at least a
// byte.
bool XRefReader::ReadClassicSubsection() {
  char line[kLineBytes];
  size_t length = 0;
  uint8_t c = FirstNonSpace(source());
  for (; c >= 14 && length + 1 < kLineBytes; c = source().GetByte()) {
    if (c > '9') return false;
    line[length++] = static_cast<char>(c);
  }
  line[length] = 0;
  const char *at = line;
  int32_t first = 0, count = 0;
  if (ScanInteger(at, first) && ScanInteger(at, count) && count >= 1) ReadClassicEntries(first, count);
  return true;
}

size_t XRefReader::RoomFor(size_t wanted) {
  const size_t taken = std::min(wanted, entriesLeft_);
  entriesLeft_ -= taken;
  return taken;
}

// Entries are taken to be 20 bytes wide whatever they look like.
void XRefReader::ReadClassicEntries(int32_t first, int32_t count) {
  const int64_t room = (source().length() - source().Tell()) / static_cast<int64_t>(kClassicEntryBytes);
  PDFXRefBlock block;
  block.firstObject = first;
  const auto present = static_cast<size_t>(std::clamp<int64_t>(count, 0, std::max<int64_t>(room, 0)));
  const size_t wanted = RoomFor(present);
  source().Charge(static_cast<int64_t>(wanted * kClassicEntryBytes));
  block.entries.reserve(wanted);
  char line[kClassicEntryBytes + 1] = {};
  while (block.entries.size() < wanted && source().Read(line, kClassicEntryBytes) == kClassicEntryBytes) {
    const char *at = line;
    double offset = 0;  // wider than 32 bits: a position above 2^31 must not wrap into the file
    int32_t generation = 0;
    PDFXRefEntry entry;
    if (ScanReal(at, offset)) entry.offset = static_cast<uint32_t>(std::clamp(offset, 0.0, 4294967295.0));
    if (ScanInteger(at, generation)) entry.generation = static_cast<uint32_t>(generation);
    SkipSpaces(at);
    entry.type = static_cast<uint8_t>(*at);
    block.entries.push_back(entry);
  }
  source().Seek(static_cast<int64_t>((present - wanted) * kClassicEntryBytes), SeekOrigin::kCurrent);
  block.count = static_cast<int32_t>(block.entries.size());
  if (block.count > 0) table_.AddBlock(std::move(block));
}

SectionEnd XRefReader::ReadStreamChain(int64_t position) {
  bool any = false;
  while (position != kNoPosition) {
    if (!source().Seek(position, SeekOrigin::kStart)) break;
    CPDFObjectIntro intro(source());
    if (!intro.Parse(255)) return SectionEnd::kUnreadable;
    CPDFStream stream(*this);
    if (!stream.Parse(intro.lastChar)) break;
    const CPDFDictionary &dictionary = *stream.dictionary();
    const auto *type = dictionary.GetAs<CPDFNameObject>("Type");
    if (!type || type->name != "XRef") return SectionEnd::kUnreadable;
    if (dictionary.Get("Encrypt")) return SectionEnd::kEncrypted;
    if (const auto *root = dictionary.GetAs<CPDFIndirectObject>("Root"); root && !streamRoot_)
      streamRoot_ = root->Copy();
    ByteBuffer bytes;
    if (!stream.ReadAll(bytes) || !source().Charge(static_cast<int64_t>(bytes.size()))) return SectionEnd::kUnreadable;
    if (stream.predictor() != 0) {
      bytes.Resize(UndoRows({bytes.data(), bytes.size()}, stream.predictor(), stream.columns()));
    }
    if (!AddStreamEntries(dictionary, bytes.span(), position)) return SectionEnd::kUnreadable;
    any = true;
    const auto *previous = dictionary.GetAs<CPDFNumeric>("Prev");
    position = previous && VisitSection(previous->intValue) ? previous->intValue : kNoPosition;
  }
  return any ? SectionEnd::kChainEnded : SectionEnd::kUnreadable;
}

// False for widths that cannot be; without `W` or `Size` there are no entries and the chain goes on.
bool XRefReader::AddStreamEntries(const CPDFDictionary &dictionary, std::span<const uint8_t> bytes, int64_t position) {
  const auto *widthList = dictionary.GetAs<CPDFArray>("W");
  const auto *size = dictionary.GetAs<CPDFNumeric>("Size");
  if (!widthList || !size) return true;
  unsigned w[3];
  if (!ReadWidths(*widthList, w)) return false;
  const size_t record = w[0] + w[1] + w[2];
  if (record == 0) return true;

  const auto *index = dictionary.GetAs<CPDFArray>("Index");
  const uint32_t pairs = index ? index->Count() / 2 : 1;
  const size_t firstBlock = table_.blocks().size();
  size_t left = bytes.size() / record;
  const uint8_t *at = bytes.data();
  for (uint32_t pair = 0; pair < pairs; ++pair) {
    int32_t first = 0, count = size->intValue;
    if (index) {
      const auto *firstNumber = dynamic_cast<const CPDFNumeric *>(index->GetAt(pair * 2));
      const auto *countNumber = dynamic_cast<const CPDFNumeric *>(index->GetAt(pair * 2 + 1));
      if (!firstNumber || !countNumber) continue;
      first = firstNumber->intValue;
      count = countNumber->intValue;
    }
    PDFXRefBlock block;
    block.firstObject = first;
    const size_t records = RoomFor(std::min(left, static_cast<size_t>(std::max(count, 0))));
    block.entries.reserve(records);
    for (size_t i = 0; i < records; ++i, at += record) {
      // A first field of no width reads as type 0: the entry is free.
      const auto type = LoadBigEndian(at, w[0]);
      const auto second = static_cast<uint32_t>(LoadBigEndian(at + w[0], w[1]));
      const auto third = static_cast<uint32_t>(LoadBigEndian(at + w[0] + w[1], w[2]));
      if (type == 0) block.entries.push_back({0, 0, 'f'});
      if (type == 1) block.entries.push_back({second, 0, 'n'});
      if (type == 2) block.entries.push_back({second, third, '2'});
      // Another type gives no entry, so that the later ones of the block stand one place lower.
    }
    left -= records;
    block.count = static_cast<int32_t>(records);
    if (records > 0) table_.AddBlock(std::move(block));
  }
  if (diagnostics_) DumpEntries(position, firstBlock);
  return true;
}

// Lines end in CR LF on every system: written as bytes, so that no second CR comes in.
void XRefReader::DumpEntries(int64_t position, size_t firstBlock) const {
  const auto path = platform::DiagnosticPath("XRefStm_" + std::to_string(position) + ".txt");
  const auto file = platform::CreateNewFile(path);
  if (!file) return;
  for (size_t i = firstBlock; i < table_.blocks().size(); ++i) {
    for (const PDFXRefEntry &entry : table_.blocks()[i].entries) {
      std::fprintf(file.get(), "%c %d %d\r\n", entry.type, static_cast<int>(entry.offset),
                   static_cast<int>(entry.generation));
    }
  }
}

}  // namespace kapdf
