// JBIG2 by jbig2dec, decoding only.
#pragma once

#include <memory>

#include "io/codec.h"

namespace kapdf {

// Delivers the rows of the first page, packed, 1 for black. The page is decoded as a whole by the first `Read` or
// `Open` and kept: `reset` goes back to its first row and leaves the source alone.
class CZVJBig2 final : public CCompressionClass {
 public:
  // `length`: coded bytes, 0 for all that the source has.
  CZVJBig2(CZVBaseIO &io, uint32_t length);
  ~CZVJBig2() override;

  // Segments that the page shares with others: where they stand in the source. To be told before the page is decoded.
  void SetGlobals(int64_t position, uint32_t length);
  // Bytes that decoding may allocate beside what the coded bytes earn it, which also bounds its time.
  void SetAllowance(size_t bytes) { allowance_ = bytes; }
  // Decodes; false when there is no page.
  bool Open();
  // Pixels, 0 before the page was decoded.
  uint32_t width() const;
  uint32_t height() const;
  void reset() override;

 protected:
  size_t compress(const uint8_t *, size_t) override { return 0; }
  size_t decompress(uint8_t *buffer, size_t count) override;
  std::string_view name() const override { return "JBig2"; }

 private:
  struct Page;

  int64_t globalsPosition_ = 0;
  uint32_t globalsLength_ = 0;
  size_t allowance_ = size_t{384} << 20;  // a blank sheet of 30,000 by 40,000 pixels, in some bytes, and its region
  std::unique_ptr<Page> page_;
  size_t used_ = 0;  // bytes of the page that were delivered
};

}  // namespace kapdf
