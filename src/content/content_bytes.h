// The decoded bytes of a page or a form. Those of a page come stream by stream, each decoded whole.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "base/byte_buffer.h"
#include "pdfmodel/locator.h"
#include "pdfmodel/objects.h"

namespace kapdf {

class ContentBytes {
 public:
  // Of a page. `page`: its dictionary, which outlives this; `diagnostics`: each decoded stream goes to a file of its
  // own.
  ContentBytes(ObjectLocator &objects, const CPDFDictionary *page, bool diagnostics)
      : objects_(objects), page_(page), diagnostics_(diagnostics) {}
  // Of a form: the one stream that there is.
  ContentBytes(ObjectLocator &objects, ByteBuffer form);

  enum class Filled { kEnd, kSame, kNewStream };
  // Sees to bytes at the position; empty streams are passed over. kEnd after the last stream, and after one that
  // cannot be read, whatever comes next.
  Filled Fill();

  // The stream at hand. A zero follows its last byte.
  const uint8_t *data() const { return buffer_.data(); }
  uint8_t *data() { return buffer_.data(); }
  size_t length() const { return length_; }
  std::span<const uint8_t> content() const { return {buffer_.data(), length_}; }

  bool AtEnd() const { return position >= length_; }
  int NextByte() { return position < length_ ? data()[position++] : -1; }
  int PeekByte(size_t ahead) const { return position + ahead < length_ ? data()[position + ahead] : -1; }
  void MoveBack(size_t count) { position -= count < position ? count : position; }
  void Seek(size_t to);

  // Finished part of the content, 0 to 1.
  double Fraction() const;
  ObjectLocator &objects() const { return objects_; }

  size_t position = 0;
  // No "EI" ends data of an inline image that start there or further on: as they stand, and with backslashes.
  size_t noImageEnd[2] = {SIZE_MAX, SIZE_MAX};

 private:
  bool LoadNextStream();
  bool LoadArrayInPlace(int32_t objectNumber);
  // `index`: for the name of the diagnostic file.
  bool ReadStream(int32_t objectNumber, uint32_t index);
  void EndWithZero();

  ObjectLocator &objects_;
  const CPDFDictionary *page_ = nullptr;
  const CPDFArray *contents_ = nullptr;
  std::unique_ptr<CPDFArray> ownContents_;  // the list of streams when it came through a reference
  ByteBuffer buffer_;                       // the decoded stream and one zero
  size_t length_ = 0;
  size_t decoded_ = 0;       // bytes on this page so far
  uint32_t nextStream_ = 0;  // counts from 1 for the stream just loaded
  uint32_t streamCount_ = 0;
  bool loneStreamDone_ = false;
  bool ended_ = false;
  bool diagnostics_ = false;
};

}  // namespace kapdf
