// PNG pictures, row by row.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

struct png_struct_def;
struct png_info_def;

namespace kapdf::tool {

struct PngColor {
  uint8_t red = 0, green = 0, blue = 0, opacity = 255;
};

struct PngShape {
  uint32_t width = 0, height = 0;
  int bits = 8;      // of a sample; 1 has one sample only
  int channels = 1;  // 1 grey or palette, 3 RGB, 4 RGB and opacity
  std::vector<PngColor> palette;
  uint32_t dpi = 0;  // 0 for unknown
};

// Each step answers false once something has failed, which the sink may tell better.
class PngWriter {
 public:
  using Sink = std::function<void(std::span<const uint8_t>)>;

  explicit PngWriter(Sink sink) : sink_(std::move(sink)) {}
  PngWriter(const PngWriter &) = delete;
  PngWriter &operator=(const PngWriter &) = delete;
  ~PngWriter();

  bool Begin(const PngShape &shape);
  // The row has all its samples, those of one bit packed with the first one on top.
  bool AddRow(const uint8_t *row);
  // All rows have been added.
  bool Finish();

 private:
  template <class Step>
  bool Try(Step step);

  Sink sink_;
  png_struct_def *png_ = nullptr;
  png_info_def *info_ = nullptr;
  bool failed_ = false;
};

}  // namespace kapdf::tool
