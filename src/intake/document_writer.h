// A small PDF document in memory, written object by object.
#pragma once

#include <qpdf/Pipeline.hh>
#include <string_view>
#include <vector>

#include "base/byte_buffer.h"

namespace kapdf {

// Throws std::runtime_error once the document asks for more memory than it may have.
class DocumentWriter final : public Pipeline {
 public:
  DocumentWriter();

  int NewNumber();
  // Everything put until the next one belongs to that object.
  void BeginObject(int number);
  void EndObject() { Put("\nendobj\n"); }

  void Put(std::string_view text);
  void PutInteger(int64_t value);
  void PutReference(int number);
  // A byte string in hexadecimal.
  void PutString(std::string_view bytes);
  // With its slash, in the one spelling of names.
  void PutName(std::string_view decoded);

  // A stream's length goes in front of its data, and is known behind them. The dictionary is open.
  // More data than `most` bytes are cut off, by an exception to whoever pipes them.
  void BeginData(size_t most);
  void EndData();
  // Data of the open stream, as they come.
  void write(const unsigned char *data, size_t length) override;
  void finish() override {}
  // Throws when memory was refused: whoever piped data may have kept that to himself.
  void CheckMemory() const;

  // Ends the document, whose first object is the catalogue.
  ByteBuffer Finish();

 private:
  void Append(const void *bytes, size_t length);

  ByteBuffer out_;
  size_t used_ = 0;
  std::vector<size_t> offsets_;  // by number
  size_t lengthAt_ = 0, dataStart_ = 0, mostData_ = 0;
  bool full_ = false;
};

}  // namespace kapdf
