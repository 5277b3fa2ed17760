#include "platform/text.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace kapdf::platform {
namespace {

constexpr uint32_t kUtf8Page = 65001;
constexpr uint32_t kWestern = 1252;
constexpr char16_t kUndefined = 0xFFFD;
const char *const kUtf16 = "UTF-16LE";

// What Windows-1252 has at 0x80 to 0x9F. The bytes that it leaves open pass as they are.
constexpr std::array<char16_t, 32> kWesternUpper = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// iconv's name for a page of Windows.
std::string ConverterName(uint32_t codePage) {
  switch (codePage) {
    case 936:
      return "GBK";
    case 1361:
      return "JOHAB";
    case 10000:
      return "MACINTOSH";
    case 10007:
      return "MAC-CYRILLIC";
    case 20127:
      return "US-ASCII";
    case 20866:
      return "KOI8-R";
    case 21866:
      return "KOI8-U";
    case 51932:
      return "EUC-JP";
    case 51936:
      return "EUC-CN";
    case 51949:
      return "EUC-KR";
    case 54936:
      return "GB18030";
    default:
      break;
  }
  if (codePage > 28590 && codePage <= 28605) return "ISO-8859-" + std::to_string(codePage - 28590);
  return "CP" + std::to_string(codePage);
}

enum class Outcome {
  kDone,
  kInvalid,    // what stands at the front of the input is no character
  kIncomplete  // the input ends inside a character
};

class Converter {
 public:
  Converter(const std::string &to, const std::string &from) : handle_(iconv_open(to.c_str(), from.c_str())) {}
  ~Converter() {
    if (*this) iconv_close(handle_);
  }
  Converter(const Converter &) = delete;
  Converter &operator=(const Converter &) = delete;
  explicit operator bool() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  // Converts as much as it can, appending; `in` is moved behind what was taken.
  Outcome Run(std::string_view &in, std::string &out) {
    std::array<char, 1024> piece;
    for (;;) {
      char *from = const_cast<char *>(in.data());
      size_t left = in.size();
      char *to = piece.data();
      size_t room = piece.size();
      const bool done = iconv(handle_, &from, &left, &to, &room) != kFailed;
      const int reason = errno;
      if (done) iconv(handle_, nullptr, nullptr, &to, &room);  // some pages hold back a letter that may get an accent
      out.append(piece.data(), to);
      in.remove_prefix(in.size() - left);
      if (done) return Outcome::kDone;
      if (reason == EINVAL) return Outcome::kIncomplete;
      if (reason != E2BIG) return Outcome::kInvalid;
    }
  }

 private:
  static constexpr size_t kFailed = static_cast<size_t>(-1);

  iconv_t handle_;
};

// One code page: a table when it has one byte a character, else a pair of converters' names.
class CodePage {
 public:
  // Null when the system has no such page.
  static std::unique_ptr<CodePage> Make(uint32_t number) {
    auto page = std::make_unique<CodePage>();
    page->name_ = ConverterName(number);
    if (number == kWestern) {
      page->FillWestern();
    } else {
      Converter converter(kUtf16, page->name_);
      if (!converter) return nullptr;
      page->Fill(converter, number == 874 || (number >= 1250 && number <= 1258));
    }
    page->Invert();
    return page;
  }

  std::u16string ToWide(std::string_view text) const {
    if (multibyte_) return ToWideByConverter(text);
    std::u16string out(text.size(), u'\0');
    std::transform(text.begin(), text.end(), out.begin(), [&](char c) { return wide_[static_cast<unsigned char>(c)]; });
    return out;
  }

  std::string ToNarrow(std::u16string_view text) const {
    if (multibyte_) return ToNarrowByConverter(text);
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
      const char16_t c = text[i];
      if (c < 0x80 && wide_[c] == c) {
        out += static_cast<char>(c);
        continue;
      }
      const auto found = std::lower_bound(narrow_.begin(), narrow_.end(), std::pair(c, uint8_t{0}));
      out += found != narrow_.end() && found->first == c ? static_cast<char>(found->second) : '?';
    }
    return out;
  }

 private:
  void FillWestern() {
    for (unsigned byte = 0; byte < 256; ++byte) {
      wide_[byte] = byte >= 0x80 && byte < 0xA0 ? kWesternUpper[byte - 0x80] : static_cast<char16_t>(byte);
    }
  }

  // `passes`: bytes 0x80 to 0x9F that the page leaves open stand for themselves.
  void Fill(Converter &converter, bool passes) {
    for (unsigned byte = 0; byte < 256; ++byte) {
      const char in = static_cast<char>(byte);
      std::string_view left(&in, 1);
      std::string out;
      const Outcome outcome = converter.Run(left, out);
      multibyte_ = multibyte_ || outcome == Outcome::kIncomplete;
      const bool open = outcome != Outcome::kDone || out.size() != 2;
      wide_[byte] = !open                                   ? Unit(out, 0)
                    : passes && byte >= 0x80 && byte < 0xA0 ? static_cast<char16_t>(byte)
                                                            : kUndefined;
    }
  }

  void Invert() {
    for (unsigned byte = 0; byte < 256; ++byte) {
      if (wide_[byte] != kUndefined) narrow_.emplace_back(wide_[byte], static_cast<uint8_t>(byte));
    }
    std::sort(narrow_.begin(), narrow_.end());
  }

  static char16_t Unit(const std::string &bytes, size_t index) {
    return static_cast<char16_t>(static_cast<unsigned char>(bytes[2 * index]) |
                                 static_cast<unsigned char>(bytes[2 * index + 1]) << 8);
  }

  std::u16string ToWideByConverter(std::string_view text) const {
    Converter converter(kUtf16, name_);
    std::string bytes;
    while (converter.Run(text, bytes) != Outcome::kDone && !text.empty()) {
      bytes += "\xFD\xFF";  // U+FFFD for the byte that does not fit
      text.remove_prefix(1);
    }
    std::u16string out(bytes.size() / 2, u'\0');
    for (size_t i = 0; i < out.size(); ++i) out[i] = Unit(bytes, i);
    return out;
  }

  std::string ToNarrowByConverter(std::u16string_view text) const {
    Converter converter(name_, kUtf16);
    std::string_view left(reinterpret_cast<const char *>(text.data()), text.size() * 2);
    std::string out;
    while (converter.Run(left, out) != Outcome::kDone && left.size() >= 2) {
      out += '?';
      left.remove_prefix(2);
    }
    return out;
  }

  std::string name_;
  bool multibyte_ = false;
  std::array<char16_t, 256> wide_{};
  std::vector<std::pair<char16_t, uint8_t>> narrow_;  // sorted
};

// Made once each and kept.
const CodePage &FindPage(uint32_t number) {
  static std::mutex mutex;
  static std::map<uint32_t, std::unique_ptr<CodePage>> pages;
  const std::lock_guard lock(mutex);
  auto known = [&](uint32_t wanted) -> const CodePage * {
    auto [entry, added] = pages.try_emplace(wanted);
    if (added) entry->second = CodePage::Make(wanted);
    return entry->second.get();
  };
  const CodePage *page = known(number == kSystemCodePage ? kWestern : number);
  return page ? *page : *known(kWestern);
}

}  // namespace

std::string ToNarrow(std::u16string_view text, uint32_t codePage) {
  if (codePage == kUtf8Page) return ToUtf8(text);
  return FindPage(codePage).ToNarrow(text);
}

std::u16string ToWide(std::string_view text, uint32_t codePage) {
  if (codePage == kUtf8Page) return FromUtf8(text);
  return FindPage(codePage).ToWide(text);
}

}  // namespace kapdf::platform
