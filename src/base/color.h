// Colours: the host's colour codes, its palette, and CMYK to RGB.
//
// A packed colour has red in bits 0 to 7, green in 8 to 15, blue in 16 to 23. A colour code is what a record carries:
// bit 31 set means a packed colour; 0 to 255 is a palette index, where 7 means black; 256 the layer's colour;
// 257 the colour in force; 258 white; anything above, black.
#pragma once

#include <array>
#include <cstdint>

namespace kapdf {

extern const std::array<uint32_t, 256> kPalette;  // 0xRRGGBB, not packed

inline constexpr uint32_t kDirectColor = 0x80000000u;
inline constexpr uint32_t kBlackCode = 7;
inline constexpr uint32_t kByLayerCode = 256;
inline constexpr uint32_t kCurrentCode = 257;
inline constexpr uint32_t kWhiteCode = 258;
inline constexpr uint32_t kPackedWhite = 0xFFFFFF;

constexpr uint32_t PackColor(uint32_t red, uint32_t green, uint32_t blue) { return red | green << 8 | blue << 16; }
constexpr uint32_t RedOf(uint32_t packed) { return packed & 0xFF; }
constexpr uint32_t GreenOf(uint32_t packed) { return packed >> 8 & 0xFF; }
constexpr uint32_t BlueOf(uint32_t packed) { return packed >> 16 & 0xFF; }

// 0xRRGGBB of the palette as a packed colour.
constexpr uint32_t PackFromHex(uint32_t rgb) { return PackColor(rgb >> 16 & 0xFF, rgb >> 8 & 0xFF, rgb & 0xFF); }

// Packed colour of an element's code; `layer` and `current` are packed.
inline uint32_t ResolveColor(uint32_t code, uint32_t layer, uint32_t current) {
  if (code & kDirectColor) return code & 0xFFFFFF;
  if (code == kByLayerCode) return layer;
  if (code == kCurrentCode) return current;
  if (code == kWhiteCode) return kPackedWhite;
  if (code > kWhiteCode || code == kBlackCode) return 0;
  return PackFromHex(kPalette[code]);
}

// Packed colour of a layer definition's code: it has no layer to refer to, so 256 and 257 are black.
inline uint32_t ResolveLayerColor(uint32_t code) { return ResolveColor(code, 0, 0); }

// The code of a packed colour, with black and white as the host's own codes.
constexpr uint32_t CodeFromPacked(uint32_t packed, uint32_t white = kWhiteCode) {
  return packed == 0 ? kBlackCode : packed == kPackedWhite ? white : packed | kDirectColor;
}

// A component of 0.0 to 1.0 as 0 to 255: times 255, truncated, then clamped; what is not a number is 0.
inline uint32_t ComponentByte(float value) {
  const float scaled = value * 255.0f;
  if (!(scaled > 0.0f)) return 0;
  return scaled >= 255.0f ? 255u : static_cast<uint32_t>(scaled);
}

// CMYK of 0 to 255 each, in single precision: each channel 255 - ((c * (255 - k) + 127) / 255) - k, truncated and
// clamped.
inline uint32_t PackFromCmyk(float cyan, float magenta, float yellow, float black) {
  const auto channel = [black](float ink) {
    const float value = black == 0.0f ? 255.0f - ink : 255.0f - ((ink * (255.0f - black) + 127.0f) / 255.0f) - black;
    return !(value > 0.0f) ? 0u : value >= 255.0f ? 255u : static_cast<uint32_t>(value);
  };
  return PackColor(channel(cyan), channel(magenta), channel(yellow));
}

// The same of bytes and in whole numbers, for palettes and images.
inline uint32_t PackFromCmykBytes(int cyan, int magenta, int yellow, int black) {
  const auto channel = [black](int ink) {
    const int value = black == 0 ? 255 - ink : 255 - (ink * (255 - black) + 127) / 255 - black;
    return static_cast<uint32_t>(value < 0 ? 0 : value);
  };
  return PackColor(channel(cyan), channel(magenta), channel(yellow));
}

}  // namespace kapdf
