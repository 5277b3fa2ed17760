// The folder that takes the pictures of an import.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "pictures/raster_picture.h"
#include "system/outcome.h"
#include "system/output.h"

namespace kapdf::tool {

// Makes the folder with the first picture. What was written goes away again unless it is kept.
class PictureFolder {
 public:
  // `folder`: absolute. `base`: absolute, what the output names the pictures from.
  PictureFolder(const std::string &folder, const std::string &base);
  PictureFolder(const PictureFolder &) = delete;
  PictureFolder &operator=(const PictureFolder &) = delete;
  ~PictureFolder();

  // Starts a picture, named after the page and the raster, as RasterPicture does. When the header is none of a picture
  // nothing is written and `open` stays false.
  Outcome Begin(int page, const ElementRecord &header, std::optional<uint32_t> ink);
  bool open() const { return picture_ != nullptr; }
  // Of the picture that was begun last, from the base folder, with slashes; absolute when there is no such way.
  const std::string &path() const { return path_; }
  Outcome AddRow(const ElementRecord &record);
  Outcome End();

  void Keep() { written_.clear(); }
  // Pictures written.
  size_t count() const { return count_; }

 private:
  std::string UniqueName(int page, const char16_t *raster);
  Outcome Checked(bool done);

  std::filesystem::path folder_, base_;
  // How often a name was given; in lower case, since some file systems take both cases for one.
  std::map<std::string, int> names_;
  std::vector<std::filesystem::path> written_;
  size_t count_ = 0;
  std::string path_;
  std::unique_ptr<Output> output_;
  std::unique_ptr<RasterPicture> picture_;
};

}  // namespace kapdf::tool
