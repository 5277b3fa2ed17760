// PNG pictures, read row by row.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <vector>

#include "pictures/png_writer.h"

namespace kapdf::tool {

enum class PngForm {
  kGrey,     // 8 bits a pixel
  kIndices,  // 8 bits a pixel, as they stand in the file; grey where it has no palette
  kRgb       // 24 bits a pixel; what is transparent is white
};

// Each step answers false once something has failed.
class PngReader {
 public:
  PngReader() = default;
  PngReader(const PngReader &) = delete;
  PngReader &operator=(const PngReader &) = delete;
  ~PngReader();

  // Reads the file's head. Interlaced files fail: their rows do not come one after the other.
  bool Open(const std::filesystem::path &path);
  uint32_t width() const { return width_; }
  uint32_t height() const { return height_; }
  // Empty when there is none.
  const std::vector<PngColor> &palette() const { return palette_; }

  // Ahead of the rows. Fails for indices of a file that has neither a palette nor grey samples.
  bool Begin(PngForm form);
  // `row` has room for the width times the form's bytes.
  bool ReadRow(uint8_t *row);

 private:
  template <class Step>
  bool Try(Step step);

  std::ifstream file_;
  png_struct_def *png_ = nullptr;
  png_info_def *info_ = nullptr;
  bool failed_ = false;
  uint32_t width_ = 0, height_ = 0;
  std::vector<PngColor> palette_;
};

}  // namespace kapdf::tool
