#include "writer/write_options.h"

#include "platform/environment.h"
#include "platform/text.h"

namespace kapdf {
namespace {

// A text is cut at as many bytes as its row allows units.
constexpr auto kLongTextBytes = static_cast<size_t>(SettingNamed("Subject").highest);
constexpr auto kShortTextBytes = static_cast<size_t>(SettingNamed("Author").highest);

}  // namespace

std::string NarrowText(std::u16string_view text, size_t bytes) {
  std::string narrow = platform::ToNarrow(text, platform::kSystemCodePage);
  if (narrow.size() > bytes) narrow.resize(bytes);
  return narrow;
}

WriteOptions WriteOptions::Of(std::u16string_view registryPath) {
  const platform::SettingsAt<SettingKey::kPdf> settings(registryPath);
  WriteOptions options;
  options.Read(settings);
  options.geoTiff = settings.Integer("GeoTiff");
  options.embedFonts = settings.Integer("EmbedFonts");
  options.joinStyle = settings.Integer("JoinStyle");
  options.miter = settings.Real("Miter");
  options.lineCap = settings.Integer("LineCap");
  options.subject = NarrowText(settings.Text("Subject"), kLongTextBytes);
  options.keywords = NarrowText(settings.Text("Keywords"), kLongTextBytes);
  options.author = NarrowText(settings.Text("Author"), kShortTextBytes);
  options.copyright = NarrowText(settings.Text("Copyright"), kShortTextBytes);
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
