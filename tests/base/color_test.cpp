#include "base/color.h"

#include <gtest/gtest.h>

#include <cmath>

namespace kapdf {
namespace {

TEST(Color, CodesOfRecords) {
  const uint32_t layer = 0x112233, current = 0x445566;
  // Beside bit 31 nothing above the colour counts; what stands for nothing is black.
  const std::pair<uint32_t, uint32_t> cases[] = {
      {0x80000000, 0},       {0xFF0000FF, 0x0000FF},  {5, 0xFF0000},          {7, 0},   {255, 0xFFFFFF},
      {kByLayerCode, layer}, {kCurrentCode, current}, {kWhiteCode, 0xFFFFFF}, {259, 0}, {0x7FFFFFFF, 0}};
  for (const auto &[code, packed] : cases) EXPECT_EQ(ResolveColor(code, layer, current), packed) << code;
  EXPECT_EQ(ResolveLayerColor(kByLayerCode), 0u);
  EXPECT_EQ(CodeFromPacked(0), kBlackCode);
  EXPECT_EQ(CodeFromPacked(0xFFFFFF), kWhiteCode);
  EXPECT_EQ(CodeFromPacked(0xFFFFFF, 255), 255u);
  EXPECT_EQ(CodeFromPacked(0x0000FF), 0x800000FFu);
}

TEST(Color, ComponentsAreCutOffNotRounded) {
  const std::pair<float, uint32_t> cases[] = {{0.5f, 127}, {0.999f, 254}, {1.5f, 255},
                                              {-0.1f, 0},  {1e30f, 255},  {NAN, 0}};
  for (const auto &[value, byte] : cases) EXPECT_EQ(ComponentByte(value), byte) << value;
}

TEST(Color, CmykIsSinglePrecisionAndCutOff) {
  EXPECT_EQ(PackFromCmyk(127.5f, 0, 255, 0), PackColor(127, 255, 0));
  EXPECT_EQ(PackFromCmyk(128, 0, 0, 128), PackColor(62, 126, 126));  // whole numbers would give 63 and 127
  EXPECT_EQ(PackFromCmyk(255, 255, 255, 255), 0u);
  EXPECT_EQ(PackFromCmyk(NAN, 0, 0, 0), PackColor(0, 255, 255));
}

}  // namespace
}  // namespace kapdf
