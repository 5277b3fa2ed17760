// The one way by which the writer's text reaches the file: names, strings and numbers go through here.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "io/base_io.h"
#include "io/codec.h"
#include "writer/number_text.h"

namespace kapdf {

// Collects text and hands it on in large pieces, to the file or, while one is set, to a codec. What is sent between
// `SetCodec(&codec)` and `SetCodec(nullptr)` is the codec's and nothing else's.
class TextOut {
 public:
  // `file` is borrowed and must outlive the object.
  explicit TextOut(CZVBaseIO &file) : file_(file), text_(new char[kCapacity]) {}

  TextOut &Text(std::string_view text);
  TextOut &Bytes(std::span<const uint8_t> bytes) {
    return Text({reinterpret_cast<const char *>(bytes.data()), bytes.size()});
  }
  TextOut &Integer(int64_t value) { return Put(PutInteger(Room(), value)); }
  TextOut &Real(double value) { return Put(PutFixed3(Room(), value)); }
  // Sine or cosine, with six decimals.
  TextOut &Factor(double value) { return Put(PutFixed6(Room(), value)); }
  TextOut &Hex4(uint16_t value) { return Put(PutHex4(Room(), value)); }
  // "x y"
  TextOut &Point(double x, double y) { return Real(x).Byte(' ').Real(y); }
  // "r g b" with two decimals each, of a packed colour.
  TextOut &Color(uint32_t packed);
  TextOut &Name(std::string_view name) { return Byte('/').Text(name); }
  // A literal string. Nothing is escaped: a parenthesis goes out as it stands.
  TextOut &String(std::string_view text) { return Byte('(').Text(text).Byte(')'); }
  TextOut &Reference(int32_t number) { return Integer(number).Text(" 0 R"); }
  TextOut &BeginObject(int32_t number) { return Integer(number).Text(" 0 obj\r"); }
  TextOut &Byte(char byte) {
    *Room() = byte;
    ++size_;
    return *this;
  }

  // What was sent so far goes to where it belongs; later text goes to the codec, or to the file for null.
  void SetCodec(CCompressionClass *codec);
  // Place in the file of the next byte. Without a codec only.
  int64_t Position() const { return file_.Tell() + static_cast<int64_t>(size_); }
  // Hands on what is held.
  void Drain();

 private:
  static constexpr size_t kCapacity = 65536;

  char *Room() {  // for one number or less
    if (kCapacity - size_ < kNumberRoom) Drain();
    return text_.get() + size_;
  }
  TextOut &Put(const char *end) {
    size_ = static_cast<size_t>(end - text_.get());
    return *this;
  }
  void HandOn(const char *text, size_t count);

  CZVBaseIO &file_;
  CCompressionClass *codec_ = nullptr;
  std::unique_ptr<char[]> text_;
  size_t size_ = 0;
};

}  // namespace kapdf
