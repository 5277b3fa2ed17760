// Reading coded bytes of the document beside everyone else.
#pragma once

#include <memory>

#include "pdfmodel/block_source.h"

namespace kapdf {

// A source with a position of its own over the document's, which it leaves as it found it: rows of an image can be read
// while objects are fetched in between. Positions are the document's.
class StreamData final : public CZVBaseIO {
 public:
  // The source must outlive the object.
  StreamData(CPDFBlockSource &source, int64_t position) : source_(source), position_(position) {}

  size_t Read(void *buffer, size_t count) override;
  size_t Write(const void *, size_t) override { return 0; }
  bool Flush() override { return true; }
  bool Seek(int64_t offset, SeekOrigin origin) override;
  int64_t Tell() const override { return position_ - (windowEnd_ - cursor_); }

 protected:
  uint8_t Refill() override;

 private:
  static constexpr size_t kWindowBytes = 4096;
  size_t ReadDirectly(uint8_t *buffer, size_t count);

  CPDFBlockSource &source_;
  int64_t position_;  // behind the window
  std::unique_ptr<uint8_t[]> window_;
};

}  // namespace kapdf
