#include "writer/xref_stream.h"

#include <algorithm>
#include <string>
#include <vector>

#include "base/bytes.h"

namespace kapdf {
namespace {

// Bytes for a number: 1, 2 or 4, never 3.
unsigned WidthOf(uint32_t value) { return value >= 65536 ? 4 : value >= 256 ? 2 : 1; }

struct Widths {
  unsigned first = 1;   // offset, or number of the object stream
  unsigned second = 0;  // index in the object stream; generations alone do not ask for the field
};

Widths WidthsOf(const PDFXRef &table) {
  Widths widths;
  for (const PDFXRefBlock &block : table.blocks()) {
    for (const PDFXRefEntry &entry : block.entries) {
      widths.first = std::max(widths.first, WidthOf(entry.offset));
      if (entry.type == '2') widths.second = std::max(widths.second, WidthOf(entry.generation));
    }
  }
  return widths;
}

std::string EntryBytes(const PDFXRef &table, Widths widths) {
  const size_t entryBytes = 1 + widths.first + widths.second;
  size_t count = 0;
  for (const PDFXRefBlock &block : table.blocks()) count += block.entries.size();
  std::string bytes(count * entryBytes, '\0');
  auto *at = reinterpret_cast<uint8_t *>(bytes.data());
  for (const PDFXRefBlock &block : table.blocks()) {
    for (const PDFXRefEntry &entry : block.entries) {
      *at = entry.type == 'f' ? 0 : entry.type == '2' ? 2 : 1;
      StoreBigEndian(at + 1, entry.offset, widths.first);
      StoreBigEndian(at + 1 + widths.first, entry.generation, widths.second);
      at += entryBytes;
    }
  }
  return bytes;
}

}  // namespace

int64_t WriteXRefStream(TextOut &out, PDFXRef &table, int32_t infoObject) {
  const int64_t position = out.Position();
  const int32_t number = table.Append(static_cast<uint32_t>(position), -1, 'n');
  const Widths widths = WidthsOf(table);
  const std::string bytes = EntryBytes(table, widths);

  out.BeginObject(number).Text("<</Type /XRef\r/Index[");
  const char *separator = "";
  for (const PDFXRefBlock &block : table.blocks()) {
    out.Text(separator).Integer(block.firstObject).Byte(' ').Integer(block.count);
    separator = " ";
  }
  out.Text("]\r/W[1 ").Integer(widths.first).Byte(' ').Integer(widths.second).Text("]\r/Size ").Integer(number + 1);
  out.Text("\r/Length ").Integer(static_cast<int64_t>(bytes.size()));
  out.Text("\r/Info ").Reference(infoObject).Text("\r/Root ").Reference(infoObject + 1).Text("\r>>stream\r\n");
  out.Text(bytes).Text("endstream\rendobj\r");  // no line end ahead of the keyword
  return position;
}

}  // namespace kapdf
