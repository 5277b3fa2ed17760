#include "platform/posix/font_list.h"

#include <fontconfig/fontconfig.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <tuple>

#include "platform/text.h"

namespace kapdf::platform {
namespace {

struct Release {
  void operator()(FcConfig *config) const { FcConfigDestroy(config); }
  void operator()(FcPattern *pattern) const { FcPatternDestroy(pattern); }
  void operator()(FcObjectSet *set) const { FcObjectSetDestroy(set); }
  void operator()(FcFontSet *set) const { FcFontSetDestroy(set); }
};
template <class T>
using Owned = std::unique_ptr<T, Release>;

// A configuration of its own: the host may use fontconfig, too, and end its use at any time.
// Null where fontconfig is not set up. Loading in one step would complain of that on the standard error output.
Owned<FcConfig> MakeConfig() {
  Owned<FcConfig> own(FcConfigCreate());
  if (own && (!FcConfigParseAndLoad(own.get(), nullptr, FcFalse) || !FcConfigBuildFonts(own.get()))) own.reset();
  return own;
}

// 0 for what is not there. fontconfig itself would compare whole seconds, and miss what comes within one.
int64_t TimeOfChange(const std::string &path) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return 0;
  return int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec;
}

// Folders come with the folders in them.
void AddTimes(FcStrList *folders, FontList &fonts) {
  while (const FcChar8 *folder = folders ? FcStrListNext(folders) : nullptr) {
    const std::string name = reinterpret_cast<const char *>(folder);
    fonts.changed.emplace_back(name, TimeOfChange(name));
  }
  if (folders) FcStrListDone(folders);
}

bool IsCurrent(const FontList &fonts) {
  return fonts.config &&
         std::ranges::all_of(fonts.changed, [](const auto &path) { return TimeOfChange(path.first) == path.second; });
}

std::string Text(FcPattern *pattern, const char *object, int n = 0) {
  FcChar8 *text = nullptr;
  if (FcPatternGetString(pattern, object, n, &text) != FcResultMatch) return {};
  return reinterpret_cast<const char *>(text);
}

int Number(FcPattern *pattern, const char *object, int fallback) {
  int number = 0;
  return FcPatternGetInteger(pattern, object, 0, &number) == FcResultMatch ? number : fallback;
}

// Names of wider families come first, so that the last English one is the one that groups four styles at most.
std::string GroupingFamily(FcPattern *pattern) {
  std::string family = Text(pattern, FC_FAMILY);
  for (int n = 1;; ++n) {
    const std::string next = Text(pattern, FC_FAMILY, n);
    if (next.empty()) return family;
    if (Text(pattern, FC_FAMILYLANG, n) == "en") family = next;
  }
}

void AddFace(FcPattern *pattern, std::vector<FontFace> &faces) {
  FcBool variable = FcFalse;
  FcPatternGetBool(pattern, FC_VARIABLE, 0, &variable);
  const std::string format = Text(pattern, FC_FONTFORMAT);
  // OpenType with other outlines is found by its PostScript name only. Type 1 files have no tables.
  if (variable || (format != "TrueType" && format != "CFF")) return;
  FontFace face;
  face.family = FromUtf8(GroupingFamily(pattern));
  face.postScriptName = Text(pattern, FC_POSTSCRIPT_NAME);
  face.file = Text(pattern, FC_FILE);
  face.index = Number(pattern, FC_INDEX, 0);
  face.trueType = format == "TrueType";
  face.weight = Number(pattern, FC_WEIGHT, FC_WEIGHT_REGULAR);
  face.slant = Number(pattern, FC_SLANT, FC_SLANT_ROMAN);
  face.width = Number(pattern, FC_WIDTH, FC_WIDTH_NORMAL);
  if (!face.family.empty() && !face.file.empty()) faces.push_back(std::move(face));
}

char16_t Lower(char16_t c) { return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c | 0x20) : c; }

bool SameName(std::u16string_view a, std::u16string_view b) { return std::ranges::equal(a, b, {}, Lower, Lower); }

const FontFace *FindSubstitute(const FontList &fonts, std::u16string_view family, bool bold, bool italic) {
  const Owned<FcPattern> wanted(FcPatternCreate());
  const std::string name = ToUtf8(family);
  FcPatternAddString(wanted.get(), FC_FAMILY, reinterpret_cast<const FcChar8 *>(name.c_str()));
  FcPatternAddString(wanted.get(), FC_FONTFORMAT, reinterpret_cast<const FcChar8 *>("TrueType"));
  FcPatternAddInteger(wanted.get(), FC_WEIGHT, bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
  FcPatternAddInteger(wanted.get(), FC_SLANT, italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
  FcConfigSubstitute(fonts.config.get(), wanted.get(), FcMatchPattern);
  FcDefaultSubstitute(wanted.get());
  FcResult result;
  // The first one may be of a kind that is not in the list.
  const Owned<FcFontSet> nearest(FcFontSort(fonts.config.get(), wanted.get(), FcFalse, nullptr, &result));
  for (int i = 0; nearest && i < nearest->nfont; ++i) {
    const std::string file = Text(nearest->fonts[i], FC_FILE);
    const int index = Number(nearest->fonts[i], FC_INDEX, 0);
    for (const FontFace &face : fonts.faces)
      if (face.trueType && face.file == file && face.index == index) return &face;
  }
  return fonts.faces.empty() ? nullptr : &fonts.faces.front();
}

std::shared_ptr<const FontList> MakeList() {
  auto fonts = std::make_shared<FontList>();
  fonts->config = MakeConfig();
  FcConfig *const config = fonts->config.get();
  if (!config) return fonts;
  AddTimes(FcConfigGetFontDirs(config), *fonts);
  const Owned<FcPattern> all(FcPatternCreate());
  const Owned<FcObjectSet> objects(FcObjectSetBuild(FC_FAMILY, FC_FAMILYLANG, FC_POSTSCRIPT_NAME, FC_FILE, FC_INDEX,
                                                    FC_FONTFORMAT, FC_VARIABLE, FC_WEIGHT, FC_SLANT, FC_WIDTH,
                                                    nullptr));
  const Owned<FcFontSet> set(FcFontList(config, all.get(), objects.get()));
  for (int i = 0; set && i < set->nfont; ++i) AddFace(set->fonts[i], fonts->faces);
  std::ranges::sort(fonts->faces, {},
                    [](const FontFace &face) { return std::tie(face.family, face.file, face.index); });
  return fonts;
}

}  // namespace

int StyleDistance(const FontFace &face, bool bold, bool italic) {
  return std::abs(face.weight - (bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR)) +
         ((face.slant != FC_SLANT_ROMAN) != italic ? 1000 : 0) + std::abs(face.width - FC_WIDTH_NORMAL);
}

std::shared_ptr<const FontList> CurrentFonts() {
  static std::mutex mutex;
  static std::shared_ptr<const FontList> latest;
  const std::lock_guard lock(mutex);
  if (!latest || !IsCurrent(*latest)) latest = MakeList();
  return latest;
}

const FontFace *FindFace(const FontList &fonts, std::u16string_view family, bool bold, bool italic) {
  const FontFace *best = nullptr;
  for (const FontFace &face : fonts.faces) {
    if (!SameName(face.family, family)) continue;
    if (!best || StyleDistance(face, bold, italic) < StyleDistance(*best, bold, italic)) best = &face;
  }
  return best || !fonts.config ? best : FindSubstitute(fonts, family, bold, italic);
}

}  // namespace kapdf::platform
