// What a JPEG 2000 code stream asks for, known before it is decoded.
#pragma once

#include <cstdint>
#include <span>

namespace kapdf {

// Whether the image has sides and samples within bounds, and tiles, packets and code blocks in proportion to the bytes
// that are there. `bytes`: a JP2 file or a bare code stream. True as well when there is no code stream in it.
bool Jp2WithinBounds(std::span<const uint8_t> bytes, uint64_t mostSamples);

}  // namespace kapdf
