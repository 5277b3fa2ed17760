#include "base/color.h"

#include <gtest/gtest.h>

#include <cmath>

namespace kapdf {
namespace {

TEST(Color, CodesOfRecords) {
  const uint32_t layer = 0x112233, current = 0x445566;
  const struct {
    uint32_t code, packed;
  } cases[] = {
      {0x80000000, 0}, {0xFF0000FF, 0x0000FF},  // whatever stands beside bit 31 above the colour
      {0, 0},          {1, 0x0000FF},          {5, 0xFF0000},           {7, 0},
      {255, 0xFFFFFF}, {kByLayerCode, layer},  {kCurrentCode, current}, {kWhiteCode, 0xFFFFFF},
      {259, 0},        {0x7FFFFFFF, 0},
  };
  for (const auto &c : cases) EXPECT_EQ(ResolveColor(c.code, layer, current), c.packed) << c.code;
  EXPECT_EQ(ResolveLayerColor(kByLayerCode), 0u);
  EXPECT_EQ(CodeFromPacked(0), kBlackCode);
  EXPECT_EQ(CodeFromPacked(0xFFFFFF), kWhiteCode);
  EXPECT_EQ(CodeFromPacked(0xFFFFFF, 255), 255u);
  EXPECT_EQ(CodeFromPacked(0x0000FF), 0x800000FFu);
}

TEST(Color, ComponentsAreCutOffNotRounded) {
  const struct {
    float value;
    uint32_t byte;
  } cases[] = {{0.0f, 0}, {0.5f, 127}, {0.999f, 254}, {1.0f, 255}, {1.5f, 255}, {-0.1f, 0}, {1e30f, 255}, {NAN, 0}};
  for (const auto &c : cases) EXPECT_EQ(ComponentByte(c.value), c.byte) << c.value;
}

TEST(Color, Cmyk) {
  const struct {
    float c, m, y, k;
    uint32_t packed;
  } cases[] = {
      {0, 0, 0, 255, 0},
      {255, 0, 0, 0, PackColor(0, 255, 255)},
      {127.5f, 0, 255, 0, PackColor(127, 255, 0)},
      {128, 0, 0, 128, PackColor(62, 126, 126)},  // in single precision; whole numbers would give 63 and 127
      {255, 255, 255, 255, 0},
      {NAN, 0, 0, 0, PackColor(0, 255, 255)},
  };
  for (const auto &c : cases) EXPECT_EQ(PackFromCmyk(c.c, c.m, c.y, c.k), c.packed) << c.c << " " << c.k;
}

}  // namespace
}  // namespace kapdf
