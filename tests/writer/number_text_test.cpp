#include "writer/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

namespace kapdf {
namespace {

std::string Fixed3(double value) {
  char text[kNumberRoom];
  return {text, PutFixed3(text, value)};
}

// The C library is the judge where its rounding is exact; the old Windows runtime keeps 17 digits only.
std::string Judge(double value) {
  char text[kNumberRoom];
  if (std::filesystem::path::preferred_separator == '/') {
    return {text, static_cast<size_t>(std::snprintf(text, sizeof text, "%.3f", value))};
  }
  return {text, std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 3).ptr};
}

void Agree(double value) { ASSERT_EQ(Fixed3(value), Judge(value)) << std::hexfloat << value; }

TEST(NumberText, RoundsAsTheCLibraryDoes) {
  for (double value : {0.0, 0.0005, 0.0625, 0.1875, 1.0005, 999.9995, 2.8346456692913384, -0.0004, 5e-324, 0x1p-11,
                       0x1.0624dd2f1a9fcp-11, 9007199254740991.0, 9007199254740992.0, 4503599627370495.5, 1e22,
                       1.7976931348623157e308}) {
    Agree(value);
    Agree(-value);
    Agree(std::nextafter(value, 1e308));
    Agree(std::nextafter(value, -1e308));
  }
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> drawing(-6000, 6000);
  for (int i = 0; i < 200'000; ++i) {
    Agree(drawing(random));
    const auto anywhere = std::bit_cast<double>(random());
    if (std::isfinite(anywhere) && std::fabs(anywhere) < 1e30) Agree(anywhere);
    // Ties and what lies next to them: odd multiples of 1/16 of every size.
    const double tie = static_cast<double>(static_cast<int64_t>(random()) >> (random() % 40 + 10)) / 16;
    Agree(tie);
    Agree(std::nextafter(tie, 0));
  }
}

TEST(NumberText, WritesNothingThatIsNotANumber) {
  for (const double value :
       {static_cast<double>(INFINITY), -static_cast<double>(INFINITY), std::nan(""), -std::nan("")})
    EXPECT_EQ(Fixed3(value), "0.000");
}

TEST(NumberText, ColorComponentsAreHundredths) {
  for (uint32_t component = 0; component < 256; ++component) {
    char text[8], expected[8];
    std::snprintf(expected, sizeof expected, "%4.2f", component / 255.0);
    EXPECT_EQ(std::string(text, PutColorComponent(text, component)), expected);
  }
}

}  // namespace
}  // namespace kapdf
