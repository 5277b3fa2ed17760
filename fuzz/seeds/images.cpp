// Small coded images.
#include "seeds/seeds.h"
#include "support/jpeg.h"

namespace kapdf::fuzz {

void AddImages(SeedFolder &folder) {
  using namespace std::string_literals;
  const auto add = [&folder](const char *name, char codec, const std::string &coded) {
    for (char piece : {1, 6}) folder.Add(name + std::to_string(piece), codec + (piece + std::string(4, '\0')) + coded);
  };
  for (uint32_t components : {1u, 3u}) {
    add(components == 1 ? "grey" : "rgb", 0, test::Jpeg(21, 30, components, 75, [](uint32_t i) { return i * i >> 5; }));
  }
  // A page of 8 by 8 pixels, two patterns and a grid of them; bars.
  add("jbig2", 1,
      "\0\0\0\1\x30\0\1\0\0\0\x13\0\0\0\x8\0\0\0\x8\0\0\0\0\0\0\0\0\0\0\0"
      "\0\0\0\0\x10\0\1\0\0\0\x9\1\4\4\0\0\0\1\x36\xFF"
      "\0\0\0\2\x16\x20\0\1\0\0\0\x29\0\0\0\x8\0\0\0\x8\0\0\0\0\0\0\0\0\0\1\0\0\0\2\0\0\0\2\0\0\0\0\0\0\0\0\4\0\0\0\x26"
      "\xAA\xE0"
      "\0\0\0\3\x26\0\1\0\0\0\x15\0\0\0\x8\0\0\0\4\0\0\0\0\0\0\0\0\0\1\x2F\x7F\xE0"s);
  // Grey, 3 by 2 pixels.
  add("jp2", 2,
      "\xFF\x4F\xFF\x51\0\x29\0\0\0\0\0\3\0\0\0\2\0\0\0\0\0\0\0\0\0\0\0\3\0\0\0\2\0\0\0\0\0\0\0\0\0\1\7\1\1"
      "\xFF\x52\0\xC\0\0\0\1\0\0\4\4\0\1\xFF\x5C\0\4\x40\x40\xFF\x90\0\xA\0\0\0\0\0\x16\0\1"
      "\xFF\x93\xCF\xB4\x14\x08\x89\xE7\xD9\x33\xFF\xD9"s);
}

}  // namespace kapdf::fuzz
