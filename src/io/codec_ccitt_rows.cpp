#include "io/codec_ccitt_rows.h"

#include <algorithm>

#include "io/codec_ccitt_tables.h"

namespace kapdf::ccitt {
namespace {

// Gives -1 where no code starts. A longer run than `most` is not told from one pixel more than that.
inline int32_t ReadRun(BitReader &input, bool black, int32_t most) {
  const RunTable &table = kRunTables[black];
  int32_t run = 0;
  for (;;) {
    input.Need();
    const uint16_t entry = table[input.Peek(kRunPeek)];
    if (entry == 0) [[unlikely]]
      return -1;
    input.Skip(entry & 15);
    run += entry >> 4;
    if (entry < 64 << 4) return run;
    run = std::min(run, most + 1);
  }
}

// Behind `end`; a change where the last one was takes that back, since no pixel lies between.
inline int32_t *AddChange(int32_t *begin, int32_t *end, int32_t position) {
  if (end != begin && end[-1] == position) [[unlikely]]
    return end - 1;
  *end = position;
  return end + 1;
}

// Adds what the bits say about one row behind `begin`; `end` follows it.
bool Read1D(BitReader &input, int32_t columns, int32_t *begin, int32_t *&end) {
  int32_t here = 0;
  for (bool black = false; here < columns; black = !black) {
    const int32_t run = ReadRun(input, black, columns);
    if (run < 0) return false;
    here = std::min(here + run, columns + 1);
    end = AddChange(begin, end, here);
  }
  return here == columns;
}

bool Read2D(BitReader &input, const int32_t *above, int32_t columns, int32_t *begin, int32_t *&end) {
  int32_t here = 0;
  // `above` points at the first change of the other colour to the right of here.
  while (here < columns) {
    input.Need();
    const Mode mode = kModes[input.Peek(kModePeek)];
    if (mode.kind == ModeKind::kVertical) [[likely]] {
      input.Skip(mode.bits);
      const int32_t change = *above + mode.delta;
      if (change > here) [[likely]] {
        *end++ = change;
      } else {
        if (change < here) return false;
        end = AddChange(begin, end, change);
      }
      above += mode.step;
      here = change;
    } else if (mode.kind == ModeKind::kHorizontal) {
      input.Skip(mode.bits);
      const bool black = ((end - begin) & 1) != 0;
      const int32_t first = ReadRun(input, black, columns);
      const int32_t second = first < 0 ? -1 : ReadRun(input, !black, columns);
      if (second < 0) return false;
      here = std::min(here + first, columns);
      end = AddChange(begin, end, here);
      here = std::min(here + second, columns);
      end = AddChange(begin, end, here);
    } else if (mode.kind == ModeKind::kPass) {
      input.Skip(mode.bits);
      here = above[1];
      above += 2;
    } else {
      if (mode.kind == ModeKind::kExtension) input.Skip(kExtensionBits);
      return false;
    }
    while (*above <= here) above += 2;
  }
  return true;
}

}  // namespace

bool ReadRow1D(BitReader &input, ChangeRow &row) {
  BitReader local = input;  // a copy that lives in registers
  int32_t *end = row.at();
  const bool good = Read1D(local, row.columns(), row.at(), end);
  if (!good) end -= (end - row.at()) & 1;
  row.End(end);
  input = local;
  return good;
}

bool ReadRow2D(BitReader &input, const ChangeRow &above, ChangeRow &row) {
  BitReader local = input;
  int32_t *end = row.at();
  const bool good = Read2D(local, above.at(), row.columns(), row.at(), end);
  if (!good) end -= (end - row.at()) & 1;
  row.End(end);
  input = local;
  return good;
}

}  // namespace kapdf::ccitt
