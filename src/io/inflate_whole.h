// Inflating a stream that is in memory, in one go.
#pragma once

#include <span>

#include "base/byte_buffer.h"

namespace kapdf {

// More than twice as fast as in pieces. `coded`: a zlib stream, and whatever follows it. False, with `plain` of no use,
// when the stream is not in good order up to its checksum, or makes more than `most` bytes or very much more than it
// has: it is then for a reader in pieces to find out how far it goes. Throws std::bad_alloc.
bool InflateWhole(std::span<const uint8_t> coded, size_t most, ByteBuffer &plain);

}  // namespace kapdf
