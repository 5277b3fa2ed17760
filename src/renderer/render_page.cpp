#include "renderer/render_page.h"

#include <algorithm>
#include <cmath>

#include "base/units.h"
#include "platform/narrow_path.h"
#include "renderer/renderer.h"

namespace kapdf {
namespace {

// The renderer's picture has three bytes a pixel and must stay below 2 GB: a third of 2147483646 pixels, with a factor
// 3 for each side. What is larger gets the resolution at which a square of its longer side is just allowed.
constexpr double kMaxPixels = 715827882, kLongSide = 1.926e6;

int32_t LimitedResolution(const PageToRender &page) {
  const RendererFunctions &renderer = Renderer();
  const int32_t dpi = std::max(page.dpi, 1);
  double width = 0, height = 0;
  if (!renderer.VgPdfGetPageSize || renderer.VgPdfGetPageSize(page.path.c_str(), page.page, &width, &height) != 0)
    return dpi;
  if (!(width > 0 && height > 0)) return dpi;  // nor with something that is no number
  const double across = std::trunc(width / kPointsPerInch * dpi * 3),
               up = std::trunc(height / kPointsPerInch * dpi * 3);
  if (!(across * up > kMaxPixels)) return dpi;
  return std::max(1, static_cast<int32_t>(kLongSide / (across > up ? width : height) / 3));
}

void Ignore(int images, int paths, int text) {
  CallIfThere(Renderer().VgIgnoreImages, images);
  CallIfThere(Renderer().VgIgnorePaths, paths);
  CallIfThere(Renderer().VgIgnoreText, text);
}

// The switches hold for all that follows, previews too.
struct IgnoreNothingAfterwards {
  ~IgnoreNothingAfterwards() { Ignore(0, 0, 0); }
};

void SetForm(const PageToRender &page) {
  const RendererFunctions &renderer = Renderer();
  CallIfThere(renderer.VgSetDPI, LimitedResolution(page));
  const std::string options = "dither(" + std::to_string(page.dither) + ") color_mode(1) chars2string(1)";
  CallIfThere(renderer.VgLoadOptionsFromString, options.c_str());
  CallIfThere(renderer.VgSetColorDepth, 1);
}

}  // namespace

bool CanRenderPages() { return Renderer().VgPdfConvertPages != nullptr; }

bool RenderPage(const PageToRender &page, std::string &tempPath, HiddenText &text) {
  const RendererFunctions &renderer = Renderer();
  CallIfThere(renderer.VgSetImageScale, 0);
  SetForm(page);
  const IgnoreNothingAfterwards restored;
  // Text that nobody can extract stays in the picture.
  const bool extracts = page.extractText && renderer.VgPdfConvertPage2Custom;
  if (extracts) {
    Ignore(1, 0, 0);
    TakeHiddenText();  // what a conversion that ended early may have left
    renderer.VgPdfConvertPage2Custom(page.path.c_str(), page.page, HiddenTextCallback);
    text = TakeHiddenText();
  }
  Ignore(0, 0, extracts ? 1 : 0);
  if (!renderer.VgPdfBitmapConvertPages) return false;
  const std::string target = platform::TemporaryFolder() + "pdf.tif";
  tempPath = RendererOutputName(target, page.page);
  return renderer.VgPdfBitmapConvertPages(page.path.c_str(), target.c_str(), kRendererTiff, page.page, page.page,
                                          RendererProgress) == 0;
}

}  // namespace kapdf
