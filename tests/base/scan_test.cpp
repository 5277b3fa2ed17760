#include "base/scan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <random>
#include <string>
#include <tuple>

namespace kapdf {
namespace {

// 300,000 random texts: what the scanner finds in them is what the C library finds.
template <class Value, class Judge>
void ExpectAgreement(std::string_view alphabet, size_t longest, bool (*scan)(const char *&, Value &), Judge judge) {
  std::mt19937 random(1);
  for (int i = 0; i < 300000; ++i) {
    std::string text(random() % longest, ' ');
    for (char &c : text) c = alphabet[random() % alphabet.size()];
    char *end;
    const Value expected = judge(text.c_str(), &end);
    const char *at = text.c_str();
    Value value = -7;
    const bool found = scan(at, value);
    ASSERT_EQ(found, end != text.c_str() && std::isfinite(static_cast<double>(expected))) << text;
    if (!found) continue;
    ASSERT_EQ(at, end) << text;
    ASSERT_EQ(value, expected) << text;
    ASSERT_EQ(std::signbit(static_cast<double>(value)), std::signbit(static_cast<double>(expected))) << text;
  }
}

template <int Base>
int32_t LimitedInteger(const char *text, char **end) {
  return static_cast<int32_t>(std::clamp<long long>(std::strtoll(text, end, Base), INT32_MIN, INT32_MAX));
}

TEST(Scan, AgreesWithTheCLibrary) {
  ExpectAgreement<double>("0123456789012345678901234567890123456789...+-eE ", 30, ScanReal,
                          [](const char *text, char **end) { return std::strtod(text, end); });
  const std::string_view alphabet = "00123456789+- \t\naf";
  ExpectAgreement<int32_t>(alphabet, 16, ScanInteger, LimitedInteger<10>);
  ExpectAgreement<int32_t>(alphabet, 16, ScanAnyInteger, LimitedInteger<0>);
}

TEST(Scan, Hexadecimal) {
  const std::tuple<const char *, const char *, int32_t> cases[] = {
      {"0x1Fg", "g", 31}, {"-0X10", "", -16}, {"0x", "x", 0}, {"0x-1", "x-1", 0}};
  for (const auto &[text, rest, expected] : cases) {
    const char *at = text;
    int32_t value = -7;
    EXPECT_TRUE(ScanAnyInteger(at, value)) << text;
    EXPECT_STREQ(at, rest);
    EXPECT_EQ(value, expected) << text;
  }
}

TEST(Scan, RealsOfManyDigitsAndWordsThatAreNone) {
  const std::string zeros(400, '0');
  const std::pair<std::string, std::optional<double>> cases[] = {{"1" + zeros + "e-5", {}},
                                                                 {"1" + zeros + "e-395", 1e5},
                                                                 {"0." + zeros + "1e5", 0},
                                                                 {"0." + zeros + "1e395", 1e-6},
                                                                 {"1e99999999999", {}},
                                                                 {"1e-99999999999", 0},
                                                                 {"inf", {}},
                                                                 {"nan", {}},
                                                                 {"0x1p4", 0}};
  for (const auto &[text, expected] : cases) {
    const char *at = text.c_str();
    double value = 0;
    EXPECT_EQ(ScanReal(at, value), expected.has_value()) << text;
    EXPECT_EQ(value, expected.value_or(0)) << text;
  }
}

// Numbers of more digits than fit the fast way, one behind the other, must not each look at all that follows.
TEST(Scan, LongRunsTakeTimeInProportion) {
  std::string text;
  for (int i = 0; i < 100000; ++i) text += "-1234567890123456";
  const auto start = std::chrono::steady_clock::now();
  double value;
  for (const char *at = text.c_str(); *at != 0;) ASSERT_TRUE(ScanReal(at, value));
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
