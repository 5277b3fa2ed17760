// The PDF file that is written: one page, straight to the stream.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>

#include "io/ffile.h"
#include "kapdf/kapdf.h"
#include "writer/document_out.h"
#include "writer/images_out.h"
#include "writer/objects_out.h"
#include "writer/page_out.h"
#include "writer/sections.h"
#include "writer/tables.h"
#include "writer/write_options.h"

namespace kapdf {

// There is no object tree: every object is written once, in a fixed order, as formatted text. `Start` writes everything
// up to the page's dictionary and leaves that open; the end of section 2 closes it; content follows as the elements
// arrive; `Finish` writes layers, resources and the cross-reference stream. Output is not checked for short writes.
// A document of several pages is made page by page, each behind what the file holds already.
//
// Object numbers in a new file: 1 Info, 2 Catalog, 3 optional content (metadata for PDF/A), 4 Pages, 5 Page,
// 6 Resources, 7 Contents.
class CPDFWriteFile : public CZVFFile {
 public:
  // `stream` is borrowed. The settings are read here, at the key `\PDF` below the registry path. `path` names the
  // document; it is not opened.
  CPDFWriteFile(std::FILE *stream, std::u16string_view registryPath, std::u16string_view path);

  // Before `Start` only. PDF/A comes last, so that it can still force the quality.
  void Override(const WriteSettings &settings) { options_.Override(settings); }
  // Lays out the page; changes the extents of `info` to those of the sheet. Returns 0. `info.pageIndex`: -1 a new
  // document, -2 a page more, 0 and above in place of that page or, beyond the last one, a page more; anything lower
  // counts as -2.
  //
  // What the stream holds stays as it is when the document gets a page more: everything new stands behind it, and ends
  // in a cross-reference stream that lists the old objects too. A document that cannot be read is written behind as if
  // the new page were all; readers then see only that.
  uint32_t Start(FileInfo &info);

  // The end of section 2 closes the page's dictionary.
  void EndSection(int32_t section);

  // One record, in the section that the host is in.
  //
  // In any section: the end of the page, after which elements are dropped; a raster's header, and its rows one by one,
  // as many as the header says; the last one ends the image. That is before the first element is drawn. An image that
  // lacks rows when something else is written is cut short there. `FilterBadRaster` a form that cannot be written, or
  // a row of a wrong size, which does not count; `FilterNoRasterOpen` a row without a header, or one too many.
  // The record's sink is asked after each row; a stop does not end the call there: what the section makes of the record
  // takes the place of its result, or `FilterCancelled`.
  //
  // In the section of tables: layers, line types and fonts go to theirs; `FilterConsumed` whatever the kind.
  // In a drawing section: `FilterOk` drawn or silently left out, `FilterUnsupported` the host should send simpler
  // elements, `FilterConsumed` or `FilterNotAvailable` for raster placements and refused properties.
  // Elsewhere `FilterOk`, and nothing happens.
  uint32_t WriteElement(ElementRecord &record, const Sections &sections);

  // Finished part of the raster's rows, 0.0 to 1.0, and 1.0 behind the last one.
  double Fraction() const { return images_.fraction(); }

  // Ends the page if it is open, and the document. A writer that was never started writes nothing.
  void Finish();

 private:
  enum class Where : uint8_t { kAnywhere, kTables, kDrawing, kPlainLines };
  struct ElementKind;
  static const ElementKind kElementKinds[];

  uint32_t WriteInSection(const ElementKind *kind, ElementRecord &record, const Sections &sections);
  bool BeginElement(const ElementRecord &record);
  template <class Payload, class... Rest>
  uint32_t Draw(const ElementRecord &record, Rest... rest);

  // One for each kind of record.
  uint32_t EndPage(ElementRecord &record, const Sections &sections);
  uint32_t OpenRaster(ElementRecord &record, const Sections &sections);
  uint32_t WriteRow(ElementRecord &record, const Sections &sections);
  uint32_t DefineLayer(ElementRecord &record, const Sections &sections);
  uint32_t DefineLineType(ElementRecord &record, const Sections &sections);
  uint32_t DefineFont(ElementRecord &record, const Sections &sections);
  uint32_t WriteProperty(ElementRecord &record, const Sections &sections);
  uint32_t PlaceRaster(ElementRecord &record, const Sections &sections);
  uint32_t WriteComposite(ElementRecord &record, const Sections &sections);
  uint32_t WritePoint(ElementRecord &record, const Sections &sections);
  uint32_t WritePolyline(ElementRecord &record, const Sections &sections);
  template <class Payload>
  uint32_t WritePlain(ElementRecord &record, const Sections &sections);
  uint32_t WriteCircle(ElementRecord &record, const Sections &sections);
  uint32_t WriteText(ElementRecord &record, const Sections &sections);
  uint32_t WriteFilledPolygon(ElementRecord &record, const Sections &sections);

  uint32_t WriteCoordinateSystem(std::span<const uint8_t> block);
  bool CodecOpen() const { return page_.compressing() || images_.open(); }
  void FinishPage();

  enum class State : uint8_t { kNew, kStarted, kFinished };

  std::FILE *stream_;  // borrowed; read before anything is written
  std::u16string path_;
  WriteOptions options_;
  LayerTable layers_;
  LineTypeTable lineTypes_;
  FontTable fonts_;
  ObjectsOut objects_{*this};
  DocumentOut document_{objects_, options_};
  PageOut page_{*this, objects_, options_, layers_};
  ImagesOut images_{*this, objects_, options_};
  State state_ = State::kNew;
};

}  // namespace kapdf
