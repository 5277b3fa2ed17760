// The document as a byte source: the file, or for a while the text of one object that came out of an object stream.
#pragma once

#include <memory>
#include <string>

#include "io/memory_file_read.h"

namespace kapdf {

// While the memory block is active, `Read`, `GetByte`, `Seek` and `Tell` work on it, so that whoever looks up an object
// goes on as if it had sought to a plain position.
class CPDFBlockSource : public CZVMemoryFileRead {
 public:
  explicit CPDFBlockSource(std::u16string_view registryPath);

  size_t Read(void *buffer, size_t count) override;
  // On the block: from the start or the current place, and up to the block's end.
  bool Seek(int64_t offset, SeekOrigin origin) override;
  int64_t Tell() const override;

  // Where reading stands, to come back to after another object was fetched.
  struct Mark {
    bool inBlock;
    uint32_t blockSerial;
    int64_t position;
  };
  Mark GetMark() const;
  // False when the block that was marked has been replaced since.
  bool Restore(const Mark &mark);

  // Replaces the block and reads from its start. The block is a head and, if there are any, the bytes of somebody else,
  // which it keeps alive.
  void ActivateBlock(std::string head, std::shared_ptr<const uint8_t> body = {}, size_t bodyBytes = 0);
  // Goes back to the last block, or to an empty one when there never was any.
  void ReactivateBlock();
  // Goes back to the file. The position there is not defined until the next `Seek`.
  void LeaveBlock();
  bool blockActive() const { return blockActive_; }

  // Counts work besides the bytes that `GetByte` gives, which are counted anyway. False once the document has asked for
  // too much of it; from then on no position can be sought.
  bool Charge(int64_t bytes);

 protected:
  uint8_t Refill() override;

 private:
  bool SeekInBlock(int64_t offset, SeekOrigin origin);
  // Makes the part of the block around a position up to its end the window.
  void SetBlockWindow(size_t position);
  size_t ReadBlock(uint8_t *out, size_t count);
  // Charges what GetByte took since the last time. Stands before, and `Recount` behind, all that moves the window.
  bool ChargeTaken() { return Charge(cursor_ - counted_); }
  void Recount() { counted_ = cursor_; }

  std::string head_;
  std::shared_ptr<const uint8_t> body_;
  size_t bodyBytes_ = 0;
  int64_t windowEndsAt_ = 0;  // in the block, while it is active
  bool blockActive_ = false;
  uint32_t blockSerial_ = 0;
  const uint8_t *counted_ = nullptr;
  int64_t work_ = 0;
};

}  // namespace kapdf
