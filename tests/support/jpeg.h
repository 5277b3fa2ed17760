// A JPEG image made by the encoder.
#pragma once

#include <string>

#include "io/codec_dct.h"
#include "io/memory_file.h"

namespace kapdf::test {

// `sample` gives the byte at each place.
template <class Sample>
std::string Jpeg(uint32_t width, uint32_t height, uint32_t components, int quality, Sample sample) {
  CZVMemoryFileFlat sink;
  CZVDCT encoder(sink, JpegShape{8 * components, width, quality});
  encoder.SetHeight(height);
  for (uint32_t i = 0; i < width * height * components; ++i) encoder.putByte(static_cast<uint8_t>(sample(i)));
  encoder.flush();
  return {sink.bytes().begin(), sink.bytes().end()};
}

}  // namespace kapdf::test
