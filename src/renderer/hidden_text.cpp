#include "renderer/hidden_text.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/bytes.h"
#include "base/catch_all.h"

namespace kapdf {
namespace {

constexpr int kTextPiece = 5;
constexpr size_t kStyleAt = 1200, kHeightAt = 272, kStyleValueAt = 280, kColorAt = 288;
constexpr size_t kDegreesAt = 16, kCharactersAt = 20, kCountAt = 4116;
constexpr int32_t kMaxCharacters = (kCountAt - kCharactersAt) / 4;

HiddenText collected;

double Finite(const uint8_t *at) {
  const auto value = LoadAs<double>(at);
  return std::isfinite(value) ? value : 0.0;
}

HiddenTextRun RunFrom(const uint8_t *block) {
  HiddenTextRun run{Finite(block), Finite(block + 8), LoadAs<int32_t>(block + kDegreesAt), {}};
  run.bytes.resize(static_cast<size_t>(std::clamp(LoadAs<int32_t>(block + kCountAt), 0, kMaxCharacters)));
  for (size_t i = 0; i < run.bytes.size(); ++i) run.bytes[i] = static_cast<char>(block[kCharactersAt + 4 * i]);
  return run;
}

}  // namespace

int HiddenTextCallback(int type, void *, const void *styleBlock, const void *runBlock) {
  if (type != kTextPiece || !styleBlock || !runBlock) return 0;
  const auto *style = static_cast<const uint8_t *>(styleBlock) + kStyleAt;
  auto &styles = collected.hiddenTextStyles;  // named one by one: not every compiler captures bindings
  auto &runs = collected.hiddenTextRuns;
  const bool kept = CatchAll(false, [&] {
    styles.push_back(
        {Finite(style + kHeightAt), LoadAs<uint64_t>(style + kStyleValueAt), LoadAs<uint32_t>(style + kColorAt)});
    runs.push_back(RunFrom(static_cast<const uint8_t *>(runBlock)));
    return true;
  });
  if (!kept) styles.resize(runs.size());  // the renderer must not see that: the piece is missing
  return 0;
}

HiddenText TakeHiddenText() { return std::exchange(collected, {}); }

}  // namespace kapdf
