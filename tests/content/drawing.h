// Pages of given content, read to their end, as lines of text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "content/interpreter.h"
#include "kapdf/kapdf.h"

namespace kapdf::test {

inline constexpr std::string_view kLetter = "/MediaBox [0 0 612 792]";

// One record without those chained to it: its kind, its colour, its width and its points, in points rounded to 1/1000.
//   "line 7 w1 0,0 10,0"                 "poly #FF0000 w2 0,0 10,0 10,10"
//   "circle 7 w1 5,5 3" (centre, radius, to a tenth)   "arc 7 w1 5,5 3 @90 @0" (degrees: end, start)
//   "ellipse 7 w1 5,5 3 2 @45 @0 @180" (half axes; rotation, start, end)
//   "fill 7 w1 o100 0,0 10,0 0,0 | ..."  "linetype D1 3 -2 of 2"   "layer PDF"
//   "text 7 'AB' 10,20 h8.571 w1 a0" (start, height, width factor, angle in radians)   "font Text"
//   "Im #7 0,0 90 o100 2x1@72 k1 | ab" (of a raster: place, angle in degrees, opacity, size, resolution, kind, rows)
// A layer other than "PDF" follows behind "@". The line style follows in brackets when it is not "Continuous".
std::string Describe(const ElementRecord &record);

// A page whose content stands in these streams, in an array when there is more than one. `more`: further objects, from
// number 100 on.
std::string PageBytes(const std::vector<std::string> &streams, std::string_view pageEntries = kLetter,
                      const std::vector<std::string> &more = {});

// What a host could copy of records, less the pointers: how much it is, and a hash of it.
struct RecordDigest {
  uint64_t hash = 0;
  size_t bytes = 0;
  void Add(const void *from, size_t size);
  bool operator==(const RecordDigest &) const = default;
};

// Everything that the first page of a document gives, from behind the first record on. With a digest that takes it, and
// there are no lines.
std::vector<std::string> ReadPage(std::string_view document, const InterpreterSettings &settings = {},
                                  RecordDigest *digest = nullptr);

// The same for the content of a page, line by line.
std::string Drawn(std::string_view content, std::string_view pageEntries = kLetter,
                  const InterpreterSettings &settings = {});
std::string Joined(const std::vector<std::string> &lines);

}  // namespace kapdf::test
