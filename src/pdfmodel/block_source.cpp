#include "pdfmodel/block_source.h"

#include <algorithm>
#include <cstring>

#include "base/limits.h"

namespace kapdf {
namespace {

constexpr size_t kBlockBytes = 65536;

}  // namespace

CPDFBlockSource::CPDFBlockSource(std::u16string_view registryPath) : CZVMemoryFileRead(kBlockBytes, registryPath) {}

bool CPDFBlockSource::Charge(int64_t bytes) {
  work_ += bytes;
  return work_ <= limits::kObjectWork + limits::kObjectWorkPerByte * length();
}

size_t CPDFBlockSource::Read(void *buffer, size_t count) {
  ChargeTaken();
  size_t got = 0;
  if (blockActive_) {
    got = std::min<size_t>(count, static_cast<size_t>(windowEnd_ - cursor_));
    if (got > 0) std::memcpy(buffer, cursor_, got);
    cursor_ += got;
  } else {
    got = CZVMemoryFileRead::Read(buffer, count);
  }
  Recount();
  return got;
}

bool CPDFBlockSource::Seek(int64_t offset, SeekOrigin origin) {
  if (!ChargeTaken()) return false;
  const bool found = blockActive_ ? SeekInBlock(offset, origin) : CZVMemoryFileRead::Seek(offset, origin);
  Recount();
  return found;
}

bool CPDFBlockSource::SeekInBlock(int64_t offset, SeekOrigin origin) {
  const int64_t base = origin == SeekOrigin::kStart ? 0 : origin == SeekOrigin::kCurrent ? Tell() : -1;
  const auto size = static_cast<int64_t>(block_.size());
  if (base < 0 || offset < -base || offset > size - base) return false;
  atEnd_ = false;
  cursor_ = BlockStart() + base + offset;
  return true;
}

int64_t CPDFBlockSource::Tell() const { return blockActive_ ? cursor_ - BlockStart() : CZVMemoryFileRead::Tell(); }

uint8_t CPDFBlockSource::Refill() {
  if (ChargeTaken() && !blockActive_) {
    const uint8_t byte = CZVMemoryFileRead::Refill();
    Recount();
    return byte;
  }
  Recount();
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
  ChargeTaken();
  blockActive_ = false;  // the window may lie in the old block
  DropWindow();
  Recount();
  block_ = std::move(bytes);
  ++blockSerial_;
  ReactivateBlock();
}

void CPDFBlockSource::ReactivateBlock() {
  ChargeTaken();
  blockActive_ = true;
  atEnd_ = false;
  cursor_ = BlockStart();
  windowEnd_ = cursor_ + block_.size();
  Recount();
}

void CPDFBlockSource::LeaveBlock() {
  if (!blockActive_) return;
  ChargeTaken();
  blockActive_ = false;
  DropWindow();
  Recount();
}

}  // namespace kapdf
