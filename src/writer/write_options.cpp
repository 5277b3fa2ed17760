#include "writer/write_options.h"

#include "platform/environment.h"
#include "platform/settings.h"
#include "platform/text.h"

namespace kapdf {
namespace {

constexpr size_t kLongTextBytes = 1023;  // Subject, Keywords
constexpr size_t kShortTextBytes = 255;  // Author, Copyright

}  // namespace

std::string NarrowText(std::u16string_view text, size_t bytes) {
  std::string narrow = platform::ToNarrow(text, platform::kSystemCodePage);
  if (narrow.size() > bytes) narrow.resize(bytes);
  return narrow;
}

WriteOptions WriteOptions::Read(std::u16string_view registryPath) {
  const platform::Settings settings(registryPath, u"\\PDF");
  const auto text = [&](std::u16string_view name, size_t bytes) {
    return NarrowText(settings.ReadString(name, u""), bytes);
  };
  WriteOptions options;
  options.colorCompression = settings.ReadInteger(u"ColorCompression", options.colorCompression);
  options.bwCompression = settings.ReadInteger(u"BWCompression", options.bwCompression);
  options.quality = settings.ReadInteger(u"Quality", options.quality);
  options.geoTiff = settings.ReadInteger(u"GeoTiff", options.geoTiff);
  options.paperFrame = settings.ReadReal(u"PaperFrame", options.paperFrame);
  options.atOrigin = settings.ReadInteger(u"AtOrigin", options.atOrigin);
  options.embedFonts = settings.ReadInteger(u"EmbedFonts", options.embedFonts);
  options.pdfa = settings.ReadInteger(u"PDFA", options.pdfa);
  options.joinStyle = settings.ReadInteger(u"JoinStyle", options.joinStyle);
  options.miter = settings.ReadReal(u"Miter", options.miter);
  options.lineCap = settings.ReadInteger(u"LineCap", options.lineCap);
  options.subject = text(u"Subject", kLongTextBytes);
  options.keywords = text(u"Keywords", kLongTextBytes);
  options.author = text(u"Author", kShortTextBytes);
  options.copyright = text(u"Copyright", kShortTextBytes);
  if (options.author.empty()) options.author = platform::UserName().substr(0, kShortTextBytes);
  if (options.pdfa != 0) {
    options.useTransparency = false;
    options.ApplyPdfA();
  }
  return options;
}

void WriteOptions::Override(const WriteSettings &settings) {
  static_cast<WriteSettings &>(*this) = settings;
  if (pdfa != 0) ApplyPdfA();
}

void WriteOptions::ApplyPdfA() {
  embedFonts = 1;
  if (colorCompression == 0) {
    colorCompression = 1;
    quality = 100;
  }
}

}  // namespace kapdf
