// Seeds that are whole documents of the forms that files have.
#include "seeds/seeds.h"
#include "support/pdf_builder.h"

namespace kapdf::fuzz {
namespace {

using namespace kapdf::test;

constexpr std::string_view kBox = "/MediaBox [0 0 612 792]";

// The page's entries besides its content, and what they refer to.
std::string WithResources() {
  return PagesOf({std::string(SampleContent())},
                 "/MediaBox [0 0 612 792] /Resources <</ExtGState <</A 5 0 R>> /XObject <</F 6 0 R>> >>")
      .Object(5, "<</Type /ExtGState /ca .5 /LW 3>>")
      .Stream(6, "/Type /XObject /Subtype /Form /BBox [0 0 9 9]", "0 0 m 9 9 l S")
      .Build();
}

std::string ContentsAsArray(std::string_view contents) {
  return PagesOf({""})
      .Object(3, "<</Type /Page /MediaBox [0 0 612 792] /Contents " + std::string(contents) + ">>")
      .Stream(4, "", "0 0 m 10")
      .FlateStream(5, "", "0 100 l S\nq 1 0 ")
      .Stream(6, "/Filter /ASCIIHexDecode", "302031206c20530a>")
      .Object(8, "15")
      .Build();
}

std::string FilterChains() {
  return PdfBuilder()
      .Object(1, "<</Type /Catalog /Pages 2 0 R>>")
      .Object(2, "<</Type /Pages /Kids 9 0 R /Count 4>>")
      .Object(9, "[3 0 R 4 0 R 5 0 R 6 0 R]")
      .Object(3, "<</Type /Page /MediaBox [0 0 612 792] /Contents 10 0 R>>")
      .Object(4, "<</Type /Page /CropBox [0 0 61 79] /Rotate 90 /Contents 11 0 R>>")
      .Object(5, "<</Type /Page /MediaBox [612 792 0 0] /Rotate -45.5 /Contents 12 0 R>>")
      .Object(6, "<</Type /Page /MediaBox [0 0 1e9] /Contents 13 0 R>>")
      .Stream(10, "/Filter [/ASCII85Decode /FlateDecode]", "Gar8O8SDlP!!!!~>")
      .Stream(11, "/Filter [/FlateDecode /ASCII85Decode]", "0 0 m 5 5 l S")
      .Stream(12, "/Filter /ASCII85Decode", "0H_J\\+>P&k+=\\rT~>")
      .Stream(13, "/Filter /LZWDecode", std::string_view("\x80\x0B\x60\x50\x22\x0C\x0C\x85\x01", 9))
      .Build();
}

std::string Updated(XRefForm first, XRefForm second) {
  const std::string before = PagesOf({std::string(SampleContent()), "5 5 m 6 6 l S"}).Build(first);
  return PdfBuilder()
      .Stream(4, "", "1 1 m 2 2 l S")
      .Object(2, "<</Type /Pages /Kids [5 0 R 3 0 R]>>")
      .Build(second, before);
}

// Pages below pages, in two branches.
std::string DeepTree() {
  return PdfBuilder()
      .Object(1, "<</Type /Catalog /Pages 2 0 R>>")
      .Object(2, "<</Type /Pages /Kids [3 0 R 4 0 R] /MediaBox [0 0 100 100] /Rotate 180>>")
      .Object(3, "<</Type /Pages /Parent 2 0 R /Kids [5 0 R 6 0 R]>>")
      .Object(4, "<</Type /Pages /Parent 2 0 R /Kids [7 0 R (no page) null 99 0 R 5 0 R]>>")
      .Object(5, "<</Type /Page /Parent 3 0 R /Contents 8 0 R>>")
      .Object(6, "<</Type /Page /Parent 3 0 R>>")
      .Object(7, "<</Type /Page /Parent 4 0 R /Contents [] /MediaBox 2 0 R>>")
      .Stream(8, "", SampleContent())
      .Build(XRefForm::kPackedStream);
}

void AddDamaged(SeedFolder &folder) {
  const std::string whole = OnePage(SampleContent()), packed = OnePage(SampleContent(), kBox, XRefForm::kObjectStream);
  folder.Add("damaged_empty", "");
  folder.Add("damaged_table", Replaced(whole, " 00000 n \n", " 00000 n\n"));
  folder.Add("damaged_length", Replaced(whole, "/Length ", "/Length 9"));
  folder.Add("damaged_count", Replaced(packed, "/N ", "/N 9999999"));
  for (size_t part = 1; part < 8; ++part) {
    folder.Add("damaged_cut" + std::to_string(part),
               whole.substr(0, whole.size() * part / 8) + "\nstartxref\n9\n%%EOF");
  }
}

}  // namespace

void AddDocuments(SeedFolder &folder) {
  for (const XRefForm form : kAllForms) {
    const std::string number = std::to_string(static_cast<int>(form));
    folder.Add("form" + number, OnePage(SampleContent(), kBox, form));
    folder.Add("updated" + number, Updated(form, XRefForm::kClassic));
    folder.Add("updated_by_stream" + number, Updated(form, XRefForm::kObjectStream));
  }
  folder.Add("resources", WithResources());
  folder.Add("contents_array", ContentsAsArray("[4 0 R 5 0 R 6 0 R]"));
  folder.Add("contents_holes", ContentsAsArray("[4 0 R 99 0 R null 8 0 R 5 0 R]"));
  folder.Add("filter_chains", FilterChains());
  folder.Add(
      "georeference",
      OnePage(SampleContent(),
              "/MediaBox [0 0 9 9] /Annots [] /LGIDict [<</CTM [(2) 0 0 -2 5 (6)] /Projection <</Type /Projection "
              "/ProjectionType (TC) /CentralMeridian (9) /Datum <</Ellipsoid <</SemiMajorAxis 6e3>> >> >> >>]"));
  folder.Add("deep_tree", DeepTree());
  folder.Add("encrypted", PagesOf({""}).Trailer("/Root 1 0 R /Encrypt 5 0 R").Build());
  AddDamaged(folder);
}

}  // namespace kapdf::fuzz
