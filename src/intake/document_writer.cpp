#include "intake/document_writer.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>

#include "base/limits.h"
#include "base/name_text.h"

namespace kapdf {
namespace {

constexpr size_t kFirstBytes = 65536;
constexpr int kLengthDigits = 10;

}  // namespace

DocumentWriter::DocumentWriter() : Pipeline("page", nullptr), offsets_(1) { Put("%PDF-1.7\n"); }

void DocumentWriter::Append(const void *bytes, size_t length) {
  full_ = full_ || length > limits::kIntakeDocument - used_;
  CheckMemory();
  if (used_ + length > out_.size()) out_.Resize(std::max({kFirstBytes, used_ + length, out_.size() + out_.size() / 2}));
  std::memcpy(out_.data() + used_, bytes, length);
  used_ += length;
}

void DocumentWriter::CheckMemory() const {
  if (full_) throw std::runtime_error("the page asks for too much memory");
}

void DocumentWriter::Put(std::string_view text) { Append(text.data(), text.size()); }

void DocumentWriter::write(const unsigned char *data, size_t length) {
  if (length > mostData_ - (used_ - dataStart_)) throw std::runtime_error("the stream is too long");
  Append(data, length);
}

int DocumentWriter::NewNumber() {
  offsets_.push_back(0);
  return static_cast<int>(offsets_.size() - 1);
}

void DocumentWriter::BeginObject(int number) {
  offsets_[static_cast<size_t>(number)] = used_;
  PutInteger(number);
  Put(" 0 obj\n");
}

void DocumentWriter::PutInteger(int64_t value) { Put(std::to_string(value)); }

void DocumentWriter::PutReference(int number) {
  PutInteger(number);
  Put(" 0 R");
}

void DocumentWriter::PutString(std::string_view bytes) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text(bytes.size() * 2 + 2, '<');
  for (size_t i = 0; i < bytes.size(); ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    text[2 * i + 1] = kDigits[byte >> 4];
    text[2 * i + 2] = kDigits[byte & 15];
  }
  text.back() = '>';
  Put(text);
}

void DocumentWriter::PutName(std::string_view decoded) { Put("/" + SpellName(decoded)); }

void DocumentWriter::BeginData(size_t most) {
  mostData_ = most;
  Put("/Length ");
  lengthAt_ = used_;
  Put(std::string(kLengthDigits, '0') + ">>\nstream\n");
  dataStart_ = used_;
}

void DocumentWriter::EndData() {
  char digits[kLengthDigits + 1];
  std::snprintf(digits, sizeof digits, "%0*zu", kLengthDigits, used_ - dataStart_);
  std::memcpy(out_.data() + lengthAt_, digits, kLengthDigits);
  Put("\nendstream");
}

ByteBuffer DocumentWriter::Finish() {
  const size_t start = used_;
  Put("xref\n0 " + std::to_string(offsets_.size()) + "\n0000000000 65535 f \n");
  for (size_t i = 1; i < offsets_.size(); ++i) {
    char row[21];
    std::snprintf(row, sizeof row, "%010zu 00000 n \n", offsets_[i]);
    Append(row, 20);
  }
  Put("trailer\n<</Root 1 0 R/Size " + std::to_string(offsets_.size()) + ">>\nstartxref\n" + std::to_string(start) +
      "\n%%EOF\n");
  out_.Resize(used_);
  return std::move(out_);
}

}  // namespace kapdf
