// Deflate and inflate by zlib.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "io/row_predictor.h"

struct z_stream_s;

namespace kapdf {

// The direction is chosen by the first call: `Write` deflates at zlib's default level until `flush`, `Read` inflates.
class CZVFlate final : public RowPredictedCodec {
 public:
  // `inner`: a stage that the coded bytes pass first, or none. It stands on the same source.
  CZVFlate(CZVBaseIO &io, uint32_t length, std::unique_ptr<CCompressionClass> inner = nullptr);
  ~CZVFlate() override;

  bool flush() override;
  void reset() override;

 protected:
  size_t compress(const uint8_t *buffer, size_t count) override;
  size_t DecodePlain(uint8_t *buffer, size_t count) override;
  std::string_view name() const override { return "Flate"; }

 private:
  struct EndInflate {
    void operator()(z_stream_s *stream) const;
  };
  struct EndDeflate {
    void operator()(z_stream_s *stream) const;
  };
  bool FillInput();             // reads the next piece of coded bytes; false at the end of the source
  bool Deflate(int flushMode);  // runs until zlib has no more output; false when the sink did not take it

  std::unique_ptr<CCompressionClass> inner_;
  std::unique_ptr<z_stream_s, EndInflate> inflate_;
  std::unique_ptr<z_stream_s, EndDeflate> deflate_;
  std::vector<uint8_t> coded_;
  uint64_t codedRead_ = 0;
};

// The whole of it deflated.
std::vector<uint8_t> Deflated(std::span<const uint8_t> bytes);

}  // namespace kapdf
