#include "writer/text_out.h"

#include <cstring>

#include "base/color.h"

namespace kapdf {

TextOut &TextOut::Text(std::string_view text) {
  if (text.size() > kCapacity - size_) Drain();
  if (text.size() > kCapacity) {
    HandOn(text.data(), text.size());
    return *this;
  }
  std::memcpy(text_.get() + size_, text.data(), text.size());
  size_ += text.size();
  return *this;
}

TextOut &TextOut::Color(uint32_t packed) {
  char *at = PutColorComponent(Room(), RedOf(packed));
  *at++ = ' ';
  at = PutColorComponent(at, GreenOf(packed));
  *at++ = ' ';
  return Put(PutColorComponent(at, BlueOf(packed)));
}

void TextOut::SetCodec(CCompressionClass *codec) {
  Drain();
  codec_ = codec;
}

void TextOut::Drain() {
  if (size_ > 0) HandOn(text_.get(), size_);
  size_ = 0;
}

// A full disk is not looked for: what was written by then is a damaged file either way.
void TextOut::HandOn(const char *text, size_t count) {
  if (codec_)
    codec_->Write(text, count);
  else
    file_.Write(text, count);
}

}  // namespace kapdf
