// Texts as bytes, and bytes out of codecs and files.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <string_view>

namespace kapdf::test {

inline std::span<const uint8_t> Bytes(std::string_view text) {
  return {reinterpret_cast<const uint8_t *>(text.data()), text.size()};
}

// All that comes out of a codec in reads of `piece` bytes.
template <class Codec>
std::string Drain(Codec &codec, size_t piece) {
  std::string all, part(piece, '\0');
  while (const size_t got = codec.Read(part.data(), piece)) all.append(part, 0, got);
  return all;
}

inline std::string ReadFile(const std::filesystem::path &path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}
inline void WriteFile(const std::filesystem::path &path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace kapdf::test
