#include "base/scan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

namespace kapdf {
namespace {

std::string RandomText(std::mt19937 &random, std::string_view alphabet, size_t longest) {
  std::string text(random() % longest, ' ');
  for (char &c : text) c = alphabet[random() % alphabet.size()];
  return text;
}

TEST(Scan, RealsAgreeWithTheCLibrary) {
  std::mt19937 random(1);
  for (int i = 0; i < 300000; ++i) {
    const std::string text = RandomText(random, "0123456789012345678901234567890123456789...+-eE ", 30);
    char *end;
    const double expected = std::strtod(text.c_str(), &end);
    const char *at = text.c_str();
    double value = 0;
    const bool found = ScanReal(at, value);
    ASSERT_EQ(found, end != text.c_str() && std::isfinite(expected)) << text;
    if (!found) continue;
    ASSERT_EQ(at, end) << text;
    ASSERT_EQ(value, expected) << text;
    ASSERT_EQ(std::signbit(value), std::signbit(expected)) << text;
  }
}

TEST(Scan, IntegersAgreeWithTheCLibraryAndStayWithin32Bits) {
  std::mt19937 random(2);
  for (int i = 0; i < 300000; ++i) {
    const std::string text = RandomText(random, "00123456789+- \t\naf", 16);
    for (const int base : {10, 0}) {
      char *end;
      const long long expected = std::strtoll(text.c_str(), &end, base);
      const char *at = text.c_str();
      int32_t value = -7;
      const bool found = base == 10 ? ScanInteger(at, value) : ScanAnyInteger(at, value);
      ASSERT_EQ(found, end != text.c_str()) << text;
      if (!found) continue;
      ASSERT_EQ(at, end) << text;
      ASSERT_EQ(value, std::clamp<long long>(expected, INT32_MIN, INT32_MAX)) << text;
    }
  }
}

TEST(Scan, HexadecimalAndOctal) {
  const struct {
    const char *text, *rest;
    int32_t value;
  } cases[] = {{"0x1Fg", "g", 31}, {"-0X10", "", -16}, {"0x", "x", 0},
               {"0x-1", "x-1", 0}, {"017", "", 15},    {"08", "8", 0}};
  for (const auto &c : cases) {
    const char *at = c.text;
    int32_t value = -7;
    EXPECT_TRUE(ScanAnyInteger(at, value)) << c.text;
    EXPECT_STREQ(at, c.rest);
    EXPECT_EQ(value, c.value) << c.text;
  }
}

TEST(Scan, RealsBeyondTheRangeAreRefusedOrZero) {
  const std::string zeros(400, '0');
  const struct {
    std::string text;
    bool found;
    double value;
  } cases[] = {
      {"1e400", false, 0},
      {"-1e400", false, 0},
      {"1" + zeros, false, 0},
      {"1" + zeros + "e-5", false, 0},
      {"1" + zeros + "e-395", true, 1e5},
      {"1e-400", true, 0},
      {"0." + zeros + "1", true, 0},
      {"0." + zeros + "1e5", true, 0},
      {"0." + zeros + "1e395", true, 1e-6},
      {"0e999", true, 0},
      {"1e99999999999", false, 0},
      {"1e-99999999999", true, 0},
      {"inf", false, 0},
      {"nan", false, 0},
      {"0x1p4", true, 0},
      {"--5", false, 0},
      {".", false, 0},
      {"3.9.1", true, 3.9},
  };
  for (const auto &c : cases) {
    const char *at = c.text.c_str();
    double value = 0;
    EXPECT_EQ(ScanReal(at, value), c.found) << c.text;
    EXPECT_EQ(value, c.value) << c.text;
  }
}

// Numbers of more digits than fit the fast way, one behind the other, must not each look at all that follows.
TEST(Scan, LongRunsTakeTimeInProportion) {
  std::string text;
  for (int i = 0; i < 100000; ++i) text += "-1234567890123456";
  const auto start = std::chrono::steady_clock::now();
  const char *at = text.c_str();
  double value;
  int count = 0;
  while (ScanReal(at, value)) ++count;
  EXPECT_EQ(count, 100000);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST(Scan, TruncationIsLimited) {
  EXPECT_EQ(TruncateToInteger(-1.9), -1);
  EXPECT_EQ(TruncateToInteger(1e300), INT32_MAX);
  EXPECT_EQ(TruncateToInteger(-2147483648.5), INT32_MIN);
  EXPECT_EQ(TruncateToInteger(std::nan("")), 0);
}

}  // namespace
}  // namespace kapdf
