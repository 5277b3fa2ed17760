#include "content/page_setup.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <numbers>

#include "base/units.h"
#include "pdfmodel/georeference.h"
#include "platform/message.h"
#include "platform/settings.h"

namespace kapdf {
namespace {

constexpr double kStraight = 1e-6;  // radians; less than that is not turned

using PdfSettings = platform::SettingsAt<SettingKey::kPdf>;

// Without the last bit's noise at quarter turns, which would put points on the sheet's edge outside it.
double Exact(double value) {
  const double nearest = std::round(value);
  return std::fabs(value - nearest) < 1e-12 ? nearest : value;
}

// From a matrix in millimetres for one point, as a drawing gives it.
Affine BaseMatrix(const std::array<double, 6> &m) {
  const auto points = [](double value) {
    value = value * kPointsPerInch / kMillimetresPerInch;
    return std::isfinite(value) ? value : 0;
  };
  return {points(m[0]), points(m[1]), points(m[2]), points(m[3]), points(m[4]), points(m[5])};
}

// The box around the four corners as the matrix maps them.
PageBox Transformed(const PageBox &box, const Affine &matrix) {
  PageBox around;
  bool first = true;
  for (double x : {box.left, box.right}) {
    for (double y : {box.bottom, box.top}) {
      double px = x, py = y;
      matrix.Apply(px, py);
      if (!std::isfinite(px) || !std::isfinite(py)) px = py = 0;
      if (first) around = {px, px, py, py};
      first = false;
      around.left = std::min(around.left, px);
      around.right = std::max(around.right, px);
      around.bottom = std::min(around.bottom, py);
      around.top = std::max(around.top, py);
    }
  }
  return around;
}

// The matrix that the content starts with, and the box that clips it. A page with a georeference is not turned.
Affine PlaceSheet(CPDFFile &document, const PdfSettings &settings, const CPDFDictionary &page, double rotate,
                  PageBox &box) {
  ReadBox(page.Get("MediaBox"), box);
  auto georeference = ReadGeoreference(document.objects(), page);
  if (!georeference) return RotatePage(rotate, box);
  if (georeference->system) {
    georeference->system->epsgCode = settings.Integer("EPSGCode");
    const auto bytes = std::bit_cast<std::array<uint8_t, sizeof(CoordinateSystemBlock)>>(*georeference->system);
    document.properties().Add(u"COORDSYS", bytes);
  }
  if (!georeference->matrix) return {};
  const Affine base = BaseMatrix(*georeference->matrix);
  box = Transformed(box, base);
  return base;
}

}  // namespace

// The absolute values are part of the rule: a box that does not start at the origin keeps its distance from it.
Affine RotatePage(double rotate, PageBox &box) {
  if (!(std::fabs(rotate) > kStraight) || (box.left == box.right && box.bottom == box.top)) return {};
  const double c = Exact(std::cos(rotate)), s = Exact(std::sin(rotate));
  const PageBox old = box;
  box.left = std::fabs(old.left * c + old.bottom * s);
  box.bottom = std::fabs(old.bottom * c - old.left * s);
  box.right = std::fabs(old.right * c + old.top * s);
  box.top = std::fabs(old.top * c - old.right * s);
  const double x = old.right * c + old.top * s, y = -old.right * s + old.top * c;
  return {c, -s, s, c, x >= 0 ? 0 : -x, y >= 0 ? 0 : -y};
}

std::optional<PageToRead> SetupPage(CPDFFile &document, const PagePosition &position) {
  uint8_t firstChar;
  if (!OpenObject(document.objects(), position.objectNumber, firstChar)) return std::nullopt;
  auto dictionary = std::make_unique<CPDFDictionary>(document);
  if (!dictionary->Parse(firstChar)) return std::nullopt;
  double rotate = position.rotate;
  PageBox box = position.box;
  if (const auto *angle = dictionary->GetAs<CPDFNumeric>("Rotate"); angle && std::isfinite(angle->realValue)) {
    rotate = angle->realValue / 360.0 * 2.0 * std::numbers::pi;
  }
  PageToRead page;
  const PdfSettings settings(document.registryPath());
  page.baseMatrix = PlaceSheet(document, settings, *dictionary, rotate, box);
  if (dictionary->Get("Annots")) platform::ShowWarning(document.parentWindow(), platform::MessageText::kAnnotations);
  const bool diagnostics = settings.Switch("WriteToTxt");
  FontSettings fonts;
  fonts.useEmbeddedFonts = settings.Switch("UseEmbeddedFonts");
  fonts.useUnicodeMap = settings.Switch("UseUnicodeMap");
  fonts.codePage = settings.Integer("CodePage");
  page.fonts = std::make_unique<FontCache>(document.objects(), fonts);
  ResourceSettings resources;
  resources.fonts = page.fonts.get();
  resources.combineStripes = settings.Switch("CombineStripes");
  resources.raster.jbig2 = settings.Switch("JSupport");
  page.stream = std::make_unique<CPDFContentStream>(document.objects(), std::move(dictionary), resources, diagnostics);
  if (box.left > box.right) std::swap(box.left, box.right);  // any two opposite corners may be given
  if (box.bottom > box.top) std::swap(box.bottom, box.top);
  page.stream->clipBox = box;
  return page;
}

}  // namespace kapdf
