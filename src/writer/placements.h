// The document's images and where the host wants them.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "kapdf/kapdf.h"

namespace kapdf {

// An image of the file; its place in the list numbers its name, "Im0" the first.
struct ImageEntry {
  int32_t object = 0;
  uint32_t width = 0, height = 0;  // pixels
  uint32_t dpi = 1;
};

// Images and placements find each other by order of arrival: the host's first identity is the first image. An image
// that has not come yet has no size.
class PlacementTable {
 public:
  // A placement that waits for the end of the page.
  struct Waiting {
    RasterPlacementPayload place;
    uint32_t color;  // packed
    size_t image;
  };

  // Number of the image with the host's identity `key`; the next one for a new identity.
  size_t Find(uint64_t key) { return numbers_.try_emplace(key, listed_).second ? listed_++ : numbers_[key]; }
  // Takes a number of its own, whatever the identity.
  void Add(uint64_t key, const RasterPlacementPayload &place, uint32_t color) {
    numbers_.try_emplace(key, listed_);
    waiting_.push_back({place, color, listed_++});
  }
  const std::vector<Waiting> &waiting() const { return waiting_; }

  void AddImage(const ImageEntry &image) { images_.push_back(image); }
  void RemoveLastImage() { images_.pop_back(); }
  const std::vector<ImageEntry> &images() const { return images_; }
  ImageEntry Image(size_t number) const { return number < images_.size() ? images_[number] : ImageEntry(); }

 private:
  std::unordered_map<uint64_t, size_t> numbers_;
  size_t listed_ = 0;
  std::vector<Waiting> waiting_;
  std::vector<ImageEntry> images_;
};

}  // namespace kapdf
