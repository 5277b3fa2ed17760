#include "pdfmodel/block_source.h"

#include <algorithm>
#include <cstring>

namespace kapdf {
namespace {

constexpr size_t kBlockBytes = 65536;

}  // namespace

CPDFBlockSource::CPDFBlockSource(std::u16string_view registryPath) : CZVMemoryFileRead(kBlockBytes, registryPath) {}

size_t CPDFBlockSource::Read(void *buffer, size_t count) {
  if (!blockActive_) return CZVMemoryFileRead::Read(buffer, count);
  const size_t got = std::min<size_t>(count, static_cast<size_t>(windowEnd_ - cursor_));
  if (got > 0) std::memcpy(buffer, cursor_, got);
  cursor_ += got;
  return got;
}

bool CPDFBlockSource::Seek(int64_t offset, SeekOrigin origin) {
  if (!blockActive_) return CZVMemoryFileRead::Seek(offset, origin);
  const int64_t base = origin == SeekOrigin::kStart ? 0 : origin == SeekOrigin::kCurrent ? Tell() : -1;
  const auto size = static_cast<int64_t>(block_.size());
  if (base < 0 || offset < -base || offset > size - base) return false;
  atEnd_ = false;
  cursor_ = BlockStart() + base + offset;
  return true;
}

int64_t CPDFBlockSource::Tell() const {
  return blockActive_ ? cursor_ - BlockStart() : CZVMemoryFileRead::Tell();
}

uint8_t CPDFBlockSource::Refill() {
  if (!blockActive_) return CZVMemoryFileRead::Refill();
  atEnd_ = true;
  return 255;
}

CPDFBlockSource::Mark CPDFBlockSource::GetMark() const { return {blockActive_, blockSerial_, Tell()}; }

bool CPDFBlockSource::Restore(const Mark &mark) {
  if (!mark.inBlock) {
    LeaveBlock();
  } else {
    if (mark.blockSerial != blockSerial_) return false;
    ReactivateBlock();
  }
  return Seek(mark.position, SeekOrigin::kStart);
}

void CPDFBlockSource::ActivateBlock(std::string bytes) {
  block_ = std::move(bytes);
  ++blockSerial_;
  ReactivateBlock();
}

void CPDFBlockSource::ReactivateBlock() {
  blockActive_ = true;
  atEnd_ = false;
  cursor_ = BlockStart();
  windowEnd_ = cursor_ + block_.size();
}

void CPDFBlockSource::LeaveBlock() {
  if (!blockActive_) return;
  blockActive_ = false;
  DropWindow();
}

}  // namespace kapdf
