// Showing text: bytes of strings become runs of characters, cut where the layout shows a gap.
#include "content/text_show.h"

#include <cmath>
#include <cstring>
#include <utility>

#include "base/ascii.h"
#include "base/scan.h"
#include "base/units.h"

namespace kapdf {
namespace {

constexpr double kMissingWidth = 0.5;   // em of a character whose font tells none
constexpr double kMissingHeight = 1.4;  // font size by height, without a font
constexpr double kWideBlank = 1.0;      // word spacing and a blank's width beyond which words are runs of their own
constexpr double kWideSpacing = 2.0;    // letter spacing beyond which characters are
constexpr double kSmallKern = 0.5;      // of the font size: stays inside a run
constexpr size_t kKernText = 255;
constexpr int kHiddenText = 3;

// The bytes of one string of a statement, escapes resolved.
class StringBytes {
 public:
  StringBytes(const char *first, const char *end, bool hex) : at_(first), end_(end), hex_(hex) {}
  bool AtEnd() {
    if (hex_)
      while (at_ < end_ && HexValue(static_cast<unsigned char>(*at_)) < 0) ++at_;
    return at_ >= end_;
  }
  // 0 at the end.
  uint8_t Next() {
    if (AtEnd()) return 0;
    if (!hex_) return *at_ == '\\' ? Escaped() : static_cast<uint8_t>(*at_++);
    const int high = HexValue(static_cast<unsigned char>(*at_++));
    const int low = AtEnd() ? 0 : HexValue(static_cast<unsigned char>(*at_++));
    return static_cast<uint8_t>(high * 16 + low);
  }

 private:
  // Three octal digits make a byte when the first is 0 to 3; anything else that is not a control letter stands for
  // itself.
  uint8_t Escaped() {
    if (++at_ >= end_) return 0;
    const char c = *at_++;
    switch (c) {
      case 'n':
        return '\n';
      case 'r':
        return '\r';
      case 't':
        return '\t';
      case 'b':
        return '\b';
      case 'f':
        return '\f';
      default:
        break;
    }
    if (c < '0' || c > '3') return static_cast<uint8_t>(c);
    int value = c - '0';
    for (int i = 0; i < 2 && at_ < end_ && *at_ >= '0' && *at_ <= '7'; ++i) value = value * 8 + (*at_++ - '0');
    return static_cast<uint8_t>(value);
  }

  const char *at_;
  const char *end_;
  bool hex_;
};

bool StartsWithShow(const char *at) {
  if (*at == ' ' || *at == ']') ++at;
  return *at == '\'' || ((at[0] == 'T' || at[0] == 't') && (at[1] == 'J' || at[1] == 'j'));
}

// Behind the last character of a string: the first closing one that no backslash precedes, or the end of the text.
const char *StringEnd(const char *at, char close) {
  for (; *at && *at != close; ++at) {
    if (*at == '\\' && at[1]) ++at;
  }
  return at;
}

double Finite(double value, double otherwise) { return std::isfinite(value) ? value : otherwise; }

}  // namespace

Flow TextShow::ShowText(const Statement &statement) {
  Show(statement.text);
  return sink_.filled() ? Flow::kRecord : Flow::kNext;
}

Flow TextShow::NextLineShow(const Statement &statement) {
  MoveLine(0, -drawing_.state.leading);
  return ShowText(statement);
}

// Of the three operands the second has no effect, and the string ends at its first blank.
Flow TextShow::SpacedNextLineShow(const Statement &statement) {
  const char *at = statement.text;
  double spacing, unused;
  if (!ScanReal(at, spacing) || !ScanReal(at, unused)) return Flow::kNext;
  drawing_.state.wordSpacing = spacing;
  SkipSpaces(at);
  const std::string word(at, std::strcspn(at, " "));
  MoveLine(0, -drawing_.state.leading);
  return ShowText(Statement{word.c_str()});
}

// Strings of an array follow each other with numbers between them, thousandths of the font size that the pen goes back.
// String upon string goes on in the run, and what is left at the end of the array goes out: both so that no text is
// torn or lost.
void TextShow::Show(const char *at) {
  text_.width = 0;
  int depth = 0;
  while (*at && !StartsWithShow(at)) {
    for (; *at && *at != '(' && *at != '<'; ++at) depth += *at == '[' ? 1 : *at == ']' ? -1 : 0;
    if (!*at) break;
    const bool hex = *at++ == '<';
    const char *end = StringEnd(at, hex ? '>' : ')');
    ShowString(at, end, hex);
    at = *end ? end + 1 : end;
    double adjust = 0;
    if (depth > 0) {
      const size_t length = std::strcspn(at, "]<(");
      if (length > 0) {
        adjust = RealFrom(std::string(at, std::min(length, kKernText)).c_str()) / 1000.0 * drawing_.state.fontSize;
        if (kSmallKern * drawing_.state.fontSize * text_.current().widthFactor > std::fabs(adjust)) {
          text_.width -= adjust;
          continue;
        }
      } else if (*at == '(' || *at == '<') {
        continue;
      }
    }
    if (text_.current().text.empty()) {
      text_.pen -= adjust;
    } else if (EmitRun() && text_.font) {
      text_.pen = -adjust;
    }
    if (*at == ')' || *at == '>') ++at;
  }
  if (!text_.current().text.empty()) EmitRun();
}

void TextShow::ShowString(const char *first, const char *end, bool hex) {
  const CPDFFontObject *font = text_.object();
  const bool composite = font && font->composite();
  const bool hasWidths = font && font->hasWidths();
  const TextDecoding &decoding = text_.decoding;
  CodePageTable &page = text_.codePages.Of(decoding.codePage);
  StringBytes bytes(first, end, hex);
  while (!bytes.AtEnd()) {
    const uint8_t byte = bytes.Next();
    StringBytes behind = bytes;
    uint8_t second = 0;
    const auto next = [&] { return second = behind.Next(); };
    const int length = font && !font->codeSpaces().empty() ? CodeLength(font->codeSpaces(), byte, next) : 1;
    if (length == 2) bytes = behind;
    uint32_t code = byte;
    char16_t character = 0;
    if (composite) {
      code = length == 0 ? 1 : length == 1 ? byte : uint32_t{byte} << 8 | second;
      character = font->Character(code);
    } else {
      if (decoding.differences) character = decoding.differences->MappedCharacter(byte);
      if (character == 0) character = length == 2 ? page.Character(byte, second) : page.Character(byte);
    }
    const double em = hasWidths ? font->Width(code) : kMissingWidth;
    AppendCharacter(character,
                    (em * drawing_.state.fontSize + drawing_.state.charSpacing) * drawing_.state.horizontalScale,
                    hasWidths ? font->Width(' ') : kMissingWidth);
  }
}

// `width` in text space, `blank` in em. Blanks ahead of a run move the pen and are no text. One that ends a run is such
// a blank, too: it counts once, and not in the run's own width. Inside a run word spacing counts in the advance.
void TextShow::AppendCharacter(char16_t character, double width, double blank) {
  TextPiece *piece = &text_.current();
  if (character == ' ') {
    if (drawing_.state.wordSpacing + blank > kWideBlank && !piece->text.empty()) {
      EmitRun();
      text_.pen = 0;
      piece = &text_.current();
    }
    if (piece->text.empty()) {
      text_.width = 0;
      text_.pen += (blank * drawing_.state.fontSize + drawing_.state.wordSpacing + drawing_.state.charSpacing) *
                   drawing_.state.horizontalScale;
      return;
    }
    width += drawing_.state.wordSpacing * drawing_.state.horizontalScale;
  }
  text_.width += width;
  if (character == 0) return;
  piece->text += character;
  if (drawing_.state.charSpacing > kWideSpacing) {
    EmitRun();
    text_.pen = 0;
  }
}

// Ends the run and starts the next piece. False for a run whose origin lies outside the clip box: it is dropped and the
// pen stays.
bool TextShow::EmitRun() {
  TextPiece &piece = text_.current();
  const double runWidth = std::exchange(text_.width, 0.0);
  const Affine m = Affine{1, 0, 0, 1, text_.pen, 0} * text_.line * drawing_.state.ctm;
  TextPayload &text = piece.payload;
  text = {};
  text.angle = Finite(std::atan2(m.b, m.a), 0);
  const double c = std::cos(text.angle), s = std::sin(text.angle);
  double sx, sy;
  if (std::fabs(m.b) < 1e-9) {
    sx = m.a / c;
    sy = m.d;
  } else if (std::fabs(m.a) < 1e-9) {
    sx = m.b / s;
    sy = -m.c;
  } else {
    sx = m.a / c;
    sy = m.d * c - m.c * s;
  }
  const CPDFFontObject *font = text_.object();
  const double heightFactor = font ? font->look().heightRatio : kMissingHeight;
  const double factor = piece.widthFactor;
  text.height = Finite(std::fabs(drawing_.state.fontSize * std::fabs(sy) / heightFactor * kMillimetresPerPoint), 0);
  text.widthFactor = Finite(std::fabs(factor) * (sy == 0 ? 1.0 : Finite(std::fabs(sx / sy), 1)), 1);
  const PageBox &box = drawing_.content->clipBox;
  const bool outside = m.e < box.left || m.e > box.right || m.f < box.bottom || m.f > box.top;
  if ((drawing_.settings.clipping && outside) || !std::isfinite(m.e) || !std::isfinite(m.f)) {
    piece.text.clear();
    return false;
  }
  text.x = m.e * kMillimetresPerPoint;
  text.y = m.f * kMillimetresPerPoint;
  double advance = text_.pen + runWidth;
  if (!(runWidth > 0.001)) {
    advance = static_cast<double>(piece.text.size()) * drawing_.state.fontSize * text.widthFactor * heightFactor *
                  (1 + drawing_.state.charSpacing) +
              text_.pen;
  }
  StartTextRecord(piece);
  if (++text_.piece == text_.pieces.size()) text_.pieces.push_back(std::make_unique<TextPiece>());
  TextPiece &next = text_.current();
  next.text.clear();
  next.widthFactor = factor;
  next.face = piece.face;
  text_.line = Affine{1, 0, 0, 1, Finite(advance, 0), 0} * text_.line;
  text_.pen = 0;
  return true;
}

void TextShow::AnnounceHiddenLayer() {
  static char16_t name[] = u"PDF_HiddenText";
  text_.hiddenLayerSent = true;
  sink_.Chain(text_.hiddenLayer);
  FillLayerBlock(text_.hiddenLayerBlock, name, KAPDF_COLOR_BLACK);
  text_.hiddenLayerBlock.layerOff = 1;
  sink_.StartDefinition(ElemLayerDef, &text_.hiddenLayerBlock, sizeof text_.hiddenLayerBlock);
  sink_.record().color = KAPDF_COLOR_BLACK;
  CopyName(sink_.record().layerName, name);
}

void TextShow::StartTextRecord(TextPiece &piece) {
  const bool hidden = drawing_.state.renderMode == kHiddenText;
  if (hidden && !text_.hiddenLayerSent) AnnounceHiddenLayer();
  sink_.Chain(piece.record);
  TextPayload &text = piece.payload;
  text.text = piece.text.data();
  if (piece.face.empty()) piece.face = u"Text";
  text.fontName = piece.face.data();
  sink_.Start(ElemText, drawing_.state.fillColor, &text, sizeof text);
  if (hidden) CopyName(sink_.record().layerName, text_.hiddenLayerBlock.name);
  CopyName(sink_.record().styleName, piece.face);
}

}  // namespace kapdf
