#include "intake/annotations.h"

#include <memory>
#include <qpdf/QPDFAcroFormDocumentHelper.hh>
#include <qpdf/QPDFAnnotationObjectHelper.hh>

#include "base/limits.h"

namespace kapdf {
namespace {

// The flags of ISO 32000-1, table 165, that keep an annotation off the screen. "Invisible" concerns only kinds that
// nobody knows, and those have appearances too.
constexpr int kKeptOffScreen = an_hidden | an_no_view;

class FieldAppearances {
 public:
  explicit FieldAppearances(QPDF &pdf) : pdf_(pdf) {}

  // A field whose text is stored without its looks.
  void MakeMissing(QPDFAnnotationObjectHelper &annotation) {
    if (annotation.getSubtype() != "/Widget") return;
    if (!form_) form_ = std::make_unique<QPDFAcroFormDocumentHelper>(pdf_);
    const bool has = annotation.getAppearanceStream("/N").isStream();
    if (has && !form_->getNeedAppearances()) return;
    QPDFFormFieldObjectHelper field = form_->getFieldForAnnotation(annotation);
    if (field.isText() || field.isChoice()) field.generateAppearance(annotation);
  }

 private:
  QPDF &pdf_;
  std::unique_ptr<QPDFAcroFormDocumentHelper> form_;
};

}  // namespace

std::vector<Appearance> ShownAnnotations(QPDF &pdf, QPDFObjectHandle page, int32_t rotate) {
  std::vector<Appearance> shown;
  QPDFObjectHandle list = page.getKey("/Annots");
  if (!list.isArray()) return shown;
  FieldAppearances fields(pdf);
  const int count = list.getArrayNItems();
  for (int i = 0; i < count && shown.size() < limits::kAnnotations; ++i) {
    QPDFObjectHandle object = list.getArrayItem(i);
    if (!object.isDictionary() || object.isStream()) continue;
    QPDFAnnotationObjectHelper annotation(object);
    if (annotation.getSubtype() == "/Popup" || (annotation.getFlags() & kKeptOffScreen) != 0) continue;
    try {
      fields.MakeMissing(annotation);
      const std::string name = "kaPDF.Annotation" + std::to_string(i);
      QPDFObjectHandle form = annotation.getAppearanceStream("/N");
      if (!form.isStream()) continue;
      std::string content = annotation.getPageContentForAppearance("/" + name, rotate, 0, kKeptOffScreen);
      if (!content.empty()) shown.push_back({name, form, std::move(content)});
    } catch (const std::bad_alloc &) {
      throw;
    } catch (const std::exception &) {
      // one that cannot be drawn takes nothing else with it
    }
  }
  return shown;
}

}  // namespace kapdf
