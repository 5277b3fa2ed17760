#include "platform/system_fonts.h"

#include <windows.h>

#include <algorithm>
#include <functional>
#include <map>
#include <mutex>

#include "base/bytes.h"
#include "base/limits.h"
#include "platform/font_file.h"
#include "platform/font_name_table.h"
#include "platform/win32/wide.h"

namespace kapdf::platform {
namespace {

// A device context of no device with one font in it.
class Canvas {
 public:
  Canvas() : context_(CreateCompatibleDC(nullptr)) {}
  ~Canvas() {
    if (old_) SelectObject(context_, old_);
    if (font_) DeleteObject(font_);
    if (context_) DeleteDC(context_);
  }
  Canvas(const Canvas &) = delete;
  Canvas &operator=(const Canvas &) = delete;

  bool Select(HFONT font) {
    if (!font) return false;
    HGDIOBJ before = context_ ? SelectObject(context_, font) : nullptr;
    if (!before) {
      DeleteObject(font);
      return false;
    }
    if (!old_) old_ = before;
    if (font_) DeleteObject(font_);
    font_ = font;
    return true;
  }
  HDC context() const { return context_; }

 private:
  HDC context_;
  HFONT font_ = nullptr;
  HGDIOBJ old_ = nullptr;
};

struct Family {
  LOGFONTW font;
  bool trueType;
};

// "@" families are others over again, for vertical writing. A family may come once for each of its character sets.
int CALLBACK CollectFamily(const LOGFONTW *font, const TEXTMETRICW *, DWORD type, LPARAM context) {
  auto &list = *reinterpret_cast<std::vector<Family> *>(context);
  if (font->lfFaceName[0] == L'@') return 1;
  if (!list.empty() && std::wstring_view(list.back().font.lfFaceName) == font->lfFaceName) return 1;
  list.push_back({*font, (type & TRUETYPE_FONTTYPE) != 0});
  return 1;
}

std::vector<Family> ListFamilies() {
  std::vector<Family> list;
  const Canvas canvas;
  EnumFontFamiliesW(canvas.context(), nullptr, CollectFamily, reinterpret_cast<LPARAM>(&list));
  return list;
}

// GDI takes the bytes of a tag in memory order.
DWORD TagNumber(std::string_view tag) {
  DWORD number = 0;
  for (size_t i = 0; i < 4 && i < tag.size(); ++i) number |= static_cast<DWORD>(static_cast<uint8_t>(tag[i])) << 8 * i;
  return number;
}

ByteBuffer FontData(HDC context, DWORD tag) {
  ByteBuffer data;
  const DWORD size = GetFontData(context, tag, 0, nullptr, 0);
  if (size == GDI_ERROR || size == 0 || size > limits::kFontProgram) return data;
  data.Resize(size);
  if (GetFontData(context, tag, 0, data.data(), size) != size) data.Clear();
  return data;
}

// GDI hands out the font's part of the file, whose offsets count from the start of the collection.
ByteBuffer FileOfCollectedFont(HDC context) {
  constexpr size_t kHeader = 12, kEntry = 16;
  uint8_t header[kHeader];
  if (GetFontData(context, 0, 0, header, kHeader) != kHeader) return {};
  const auto count = static_cast<size_t>(LoadBigEndian(header + 4, 2));
  if (TagNumber("ttcf") == LoadAs<DWORD>(header) || count > kMostFontTables) return {};
  std::vector<FontTableData> tables;
  for (size_t i = 0; i < count; ++i) {
    uint8_t tag[4];
    if (GetFontData(context, 0, static_cast<DWORD>(kHeader + kEntry * i), tag, sizeof tag) != sizeof tag) return {};
    tables.push_back({static_cast<uint32_t>(LoadBigEndian(tag, 4)), FontData(context, LoadAs<DWORD>(tag))});
  }
  return MakeFontFile(tables);
}

class GdiFont final : public SystemFont {
 public:
  bool Select(const Request &request) {
    return canvas_.Select(CreateFontW(-request.emPixels, 0, 0, 0, request.bold ? FW_BOLD : FW_NORMAL, request.italic, 0,
                                      0, DEFAULT_CHARSET, 0, 0, 0, 0,
                                      Wide(request.family.substr(0, LF_FACESIZE - 1)).c_str()));
  }

  std::u16string FaceName() override {
    wchar_t name[LF_FACESIZE] = {};
    GetTextFaceW(canvas_.context(), LF_FACESIZE, name);
    return FromWide(name);
  }

  FontMetrics Metrics() override {
    FontMetrics metrics;
    TEXTMETRICW text;
    if (GetTextMetricsW(canvas_.context(), &text)) {
      metrics.height = text.tmHeight;
      metrics.ascent = text.tmAscent;
      metrics.descent = text.tmDescent;
      metrics.internalLeading = text.tmInternalLeading;
      metrics.externalLeading = text.tmExternalLeading;
      metrics.averageWidth = text.tmAveCharWidth;
      metrics.pitchAndFamily = text.tmPitchAndFamily;
      metrics.charSet = text.tmCharSet;
    }
    const UINT size = GetOutlineTextMetricsW(canvas_.context(), 0, nullptr);
    std::vector<uint64_t> block(size / 8 + 1);  // aligned; the structure has strings behind it
    auto *outline = reinterpret_cast<OUTLINETEXTMETRICW *>(block.data());
    if (size >= sizeof(*outline) && GetOutlineTextMetricsW(canvas_.context(), size, outline)) {
      metrics.italicAngle = outline->otmItalicAngle;
      metrics.left = outline->otmrcFontBox.left;
      metrics.bottom = outline->otmrcFontBox.bottom;
      metrics.right = outline->otmrcFontBox.right;
      metrics.top = outline->otmrcFontBox.top;
    }
    return metrics;
  }

  bool Box(char16_t character, GlyphBox &box) override {
    const MAT2 identity = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};
    GLYPHMETRICS glyph;
    if (GetGlyphOutlineW(canvas_.context(), character, GGO_METRICS, &glyph, 0, nullptr, &identity) == GDI_ERROR)
      return false;
    box = {glyph.gmptGlyphOrigin.x, glyph.gmptGlyphOrigin.y, static_cast<int32_t>(glyph.gmBlackBoxX),
           static_cast<int32_t>(glyph.gmBlackBoxY)};
    return true;
  }

  std::vector<int32_t> Advances(char16_t first, char16_t last) override {
    if (last < first) return {};
    std::vector<ABC> parts(static_cast<size_t>(last - first) + 1);
    std::vector<int32_t> advances(parts.size());
    if (!GetCharABCWidthsW(canvas_.context(), first, last, parts.data())) {  // a font of bitmaps
      if (!GetCharWidth32W(canvas_.context(), first, last, advances.data())) advances.assign(advances.size(), 0);
      return advances;
    }
    for (size_t i = 0; i < parts.size(); ++i)
      advances[i] = parts[i].abcA + static_cast<int32_t>(parts[i].abcB) + parts[i].abcC;
    return advances;
  }

  ByteBuffer Table(std::string_view tag) override {
    if (tag.empty() && IsOtherInstance()) return {};
    const bool collected = GetFontData(canvas_.context(), TagNumber("ttcf"), 0, nullptr, 0) != GDI_ERROR;
    if (tag.empty() && collected) return FileOfCollectedFont(canvas_.context());
    return FontData(canvas_.context(), TagNumber(tag));
  }

 private:
  // Of a variable font, told by a weight that is not the one whose outlines stand in the file.
  bool IsOtherInstance() const {
    constexpr size_t kWeightAt = 4;
    if (FontData(canvas_.context(), TagNumber("fvar")).empty()) return false;
    const ByteBuffer os2 = FontData(canvas_.context(), TagNumber("OS/2"));
    TEXTMETRICW text;
    return os2.size() < kWeightAt + 2 || !GetTextMetricsW(canvas_.context(), &text) ||
           text.tmWeight != static_cast<LONG>(LoadBigEndian(os2.data() + kWeightAt, 2));
  }

  Canvas canvas_;
};

// To list the families is cheap, to open each of them for its PostScript name is not: that waits until it is asked for.
class ListedFamilies final : public FontFamilies {
 public:
  explicit ListedFamilies(std::vector<Family> families);

  bool IsSame(const std::vector<Family> &families) const {
    return std::ranges::equal(families_, families, [](const Family &a, const Family &b) {
      return a.trueType == b.trueType && std::wstring_view(a.font.lfFaceName) == b.font.lfFaceName;
    });
  }
  const std::vector<std::u16string> &TrueType() const override { return trueType_; }
  std::u16string OfPostScriptName(std::u16string_view name) const override {
    std::call_once(namesRead_, [this] { ReadPostScriptNames(); });
    const auto found = byPostScriptName_.find(name);
    return found == byPostScriptName_.end() ? std::u16string() : found->second;
  }

 private:
  void ReadPostScriptNames() const;

  std::vector<Family> families_;
  std::vector<std::u16string> trueType_;
  mutable std::once_flag namesRead_;
  mutable std::map<std::u16string, std::u16string, std::less<>> byPostScriptName_;
};

ListedFamilies::ListedFamilies(std::vector<Family> families) : families_(std::move(families)) {
  for (const Family &family : families_)
    if (family.trueType) trueType_.push_back(FromWide(family.font.lfFaceName));
  std::ranges::sort(trueType_);
  trueType_.erase(std::unique(trueType_.begin(), trueType_.end()), trueType_.end());
  std::ranges::stable_sort(trueType_, std::greater(), &std::u16string::size);
}

void ListedFamilies::ReadPostScriptNames() const {
  Canvas canvas;
  for (const Family &family : families_) {
    if (!canvas.Select(CreateFontIndirectW(&family.font))) continue;
    const ByteBuffer table = FontData(canvas.context(), TagNumber("name"));
    for (std::u16string &name : PostScriptNames(table.span()))
      byPostScriptName_.try_emplace(std::move(name), FromWide(family.font.lfFaceName));
  }
}

}  // namespace

std::shared_ptr<const FontFamilies> FontFamilies::Now() {
  static std::mutex mutex;
  static std::shared_ptr<const ListedFamilies> latest;
  auto families = ListFamilies();
  const std::lock_guard lock(mutex);
  if (!latest || !latest->IsSame(families)) latest = std::make_shared<ListedFamilies>(std::move(families));
  return latest;
}

std::unique_ptr<SystemFont> SystemFont::Open(const Request &request) {
  auto font = std::make_unique<GdiFont>();
  if (!font->Select(request)) return nullptr;
  return font;
}

}  // namespace kapdf::platform
