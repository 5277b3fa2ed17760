// Seeds of coded facsimile rows: a byte for the codec, the width, then the rows bit by bit.
#include "seeds/seeds.h"

namespace kapdf::fuzz {

void AddFaxes(SeedFolder &folder) {
  // 8 pixels wide: rows that stand alone, rows with tags, rows that refer to the one above.
  folder.Add("plain", {"\x12\x07\x00\x7A\x0D\x45\x4E\x60", 8});
  folder.Add("lines", {"\x12\x07\x00\x00\x17\xA0\x00\x4D\x40\x01\x00\x10", 12});
  folder.Add("bytes", {"\x13\x07\x00\x7A\x00\x7A\x00\x98", 8});
  folder.Add("mixed", {"\x09\x07\x00\x00\x1B\xD0\x00\x0A\xD0\x01\xBD\x00\x01\x80\x0C", 15});
  folder.Add("above", {"\x08\x07\x00\x2F\xAE\xA2\x83\x0B\x00\x10\x01", 11});
}

}  // namespace kapdf::fuzz
