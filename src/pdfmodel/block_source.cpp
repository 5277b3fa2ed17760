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
  if (blockActive_)
    got = ReadBlock(static_cast<uint8_t *>(buffer), count);
  else
    got = CZVMemoryFileRead::Read(buffer, count);
  Recount();
  return got;
}

size_t CPDFBlockSource::ReadBlock(uint8_t *out, size_t count) {
  size_t done = 0;
  while (done < count) {
    if (cursor_ == windowEnd_) SetBlockWindow(static_cast<size_t>(Tell()));
    const size_t part = std::min<size_t>(count - done, static_cast<size_t>(windowEnd_ - cursor_));
    if (part == 0) break;
    std::memcpy(out + done, cursor_, part);
    cursor_ += part;
    done += part;
  }
  return done;
}

void CPDFBlockSource::SetBlockWindow(size_t position) {
  const bool inHead = position < head_.size();
  const uint8_t *start = inHead ? reinterpret_cast<const uint8_t *>(head_.data()) : body_.get();
  const size_t size = inHead ? head_.size() : bodyBytes_, before = inHead ? 0 : head_.size();
  cursor_ = start + (position - before);
  windowEnd_ = start + size;
  windowEndsAt_ = static_cast<int64_t>(before + size);
}

bool CPDFBlockSource::Seek(int64_t offset, SeekOrigin origin) {
  if (!ChargeTaken()) return false;
  const bool found = blockActive_ ? SeekInBlock(offset, origin) : CZVMemoryFileRead::Seek(offset, origin);
  Recount();
  return found;
}

bool CPDFBlockSource::SeekInBlock(int64_t offset, SeekOrigin origin) {
  const int64_t base = origin == SeekOrigin::kStart ? 0 : origin == SeekOrigin::kCurrent ? Tell() : -1;
  const auto size = static_cast<int64_t>(head_.size() + bodyBytes_);
  if (base < 0 || offset < -base || offset > size - base) return false;
  atEnd_ = false;
  SetBlockWindow(static_cast<size_t>(base + offset));
  return true;
}

int64_t CPDFBlockSource::Tell() const {
  return blockActive_ ? windowEndsAt_ - (windowEnd_ - cursor_) : CZVMemoryFileRead::Tell();
}

uint8_t CPDFBlockSource::Refill() {
  uint8_t byte = 255;
  if (!ChargeTaken()) {
    atEnd_ = true;
  } else if (!blockActive_) {
    byte = CZVMemoryFileRead::Refill();
  } else {
    SetBlockWindow(static_cast<size_t>(Tell()));
    atEnd_ = cursor_ == windowEnd_;
    if (!atEnd_) byte = *cursor_++;
  }
  Recount();
  return byte;
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

void CPDFBlockSource::ActivateBlock(std::string head, std::shared_ptr<const uint8_t> body, size_t bodyBytes) {
  ChargeTaken();
  blockActive_ = false;  // the window may lie in the old block
  DropWindow();
  Recount();
  head_ = std::move(head);
  body_ = std::move(body);
  bodyBytes_ = bodyBytes;
  ++blockSerial_;
  ReactivateBlock();
}

void CPDFBlockSource::ReactivateBlock() {
  ChargeTaken();
  blockActive_ = true;
  atEnd_ = false;
  SetBlockWindow(0);
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
