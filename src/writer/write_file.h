// The PDF file that is written: one page, straight to the stream.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "io/codec_flate.h"
#include "io/ffile.h"
#include "kapdf/kapdf.h"
#include "pdfmodel/xref_table.h"
#include "platform/environment.h"
#include "writer/page_content.h"
#include "writer/page_layout.h"
#include "writer/placements.h"
#include "writer/raster_out.h"
#include "writer/tables.h"
#include "writer/text_out.h"
#include "writer/write_options.h"

namespace kapdf {

// Values of the page index that are no page.
inline constexpr int32_t kNewDocument = -1, kAddPage = -2;

// There is no object tree: every object is written once, in a fixed order, as formatted text. `Start` writes everything
// up to the page's dictionary and leaves that open; the end of section 2 closes it; content follows as the elements
// arrive; `Finish` writes layers, resources and the cross-reference stream. Output is not checked for short writes.
// A document of several pages is made page by page, each behind what the file holds already.
//
// Object numbers are given out in file order. A number that is needed ahead of its object takes its place in the
// cross-reference table at once and its position later. In a new file: 1 Info, 2 Catalog, 3 optional content (metadata
// for PDF/A), 4 Pages, 5 Page, 6 Resources, 7 Contents.
class CPDFWriteFile : public CZVFFile {
 public:
  // `stream` is borrowed. The settings are read here, at the key `\PDF` below the registry path. `path` names the
  // document; it is not opened.
  CPDFWriteFile(std::FILE *stream, std::u16string_view registryPath, std::u16string_view path);

  // -1 a new document, -2 a page more, 0 and above in place of that page or, beyond the last one, a page more; anything
  // lower counts as -2.
  void SetPage(int32_t pageIndex, int32_t pageCount);
  // Before `Start` only. PDF/A comes last, so that it can still force the quality.
  void Override(const WriteSettings &settings);
  // Lays out the page; changes the extents of `info` to those of the sheet. Takes the page from `info`. Returns 0.
  //
  // What the stream holds stays as it is when the document gets a page more: everything new stands behind it, and ends
  // in a cross-reference stream that lists the old objects too. A document that cannot be read is written behind as if
  // the new page were all; readers then see only that.
  uint32_t Start(FileInfo &info);

  void BeginSection(int32_t section) { section_ = section; }
  void EndSection(int32_t section);

  // A record of the table section. Layers and line types go to their tables; `FilterConsumed` whatever the kind.
  uint32_t Define(const ElementRecord &record);
  // A record of a drawing section. `FilterOk` drawn or silently left out, `FilterUnsupported` the host should send
  // simpler elements, `FilterConsumed` or `FilterNotAvailable` for raster placements and refused properties.
  uint32_t WriteElement(ElementRecord &record);
  // Ends the content; elements that come later are dropped. A second call does nothing. Returns 0.
  uint32_t EndPage();

  // A raster's header, and its rows one by one, as many as the header says; the last one ends the image. In any
  // section, before the first element is drawn. One that lacks rows when something else is written is cut short there.
  // `FilterBadRaster` a form that cannot be written, or a row of a wrong size, which does not count;
  // `FilterNoRasterOpen` a row without a header, or one too many.
  uint32_t OpenRaster(const ElementRecord &record);
  uint32_t WriteRow(const ElementRecord &record);
  // Finished part of the raster's rows, 0.0 to 1.0, and 1.0 behind the last one.
  double Fraction() const { return fraction_; }

  // Ends the page if it is open, and the document. A writer that was never started writes nothing.
  void Finish();

 private:
  // The skeleton, in file order.
  void TakeExistingDocument();
  void WriteHeader();
  void WriteInfo(const platform::LocalMoment &moment);
  void WriteCatalog();
  void WriteMetadata(std::string_view end);
  void WritePages();
  void WriteKids();
  void OpenPageDictionary();
  void ClosePageDictionary();
  void WriteOptionalContent();
  void WriteResources();
  void WriteTransparencyStates();
  void WriteTrailer();

  // Elements.
  bool BeginElement(const ElementRecord &record);
  uint32_t DrawElement(const ElementRecord &record);
  template <class Payload, class... Rest>
  uint32_t DrawPayload(const ElementRecord &record, Rest... rest);
  uint32_t WriteText(const ElementRecord &record);
  uint32_t WriteProperty(const ElementRecord &record);
  uint32_t WriteCoordinateSystem(std::span<const uint8_t> block);

  // Fonts.
  void WriteFontResources();
  void WriteFonts();
  void WriteToUnicode(const FontOut &font);
  void WriteDescendant(const FontOut &font, const FontOut::Program &program);
  int32_t WriteDescriptor(const FontOut &font, const FontOut::Program &program);

  // Rasters.
  uint32_t PlaceRaster(const ElementRecord &record);
  void WritePalette(const std::vector<uint8_t> &colors);
  bool WriteImageForm(const RasterShape &shape, RasterCoding coding, int32_t paletteObject);
  void EndRaster();
  void CutRasterShort();
  void WriteImagesContent();
  void WriteXObjects();
  bool CodecOpen() const { return contentCompressor_ || raster_; }

  void OpenContent();
  void CloseContent();
  void WriteEmptyContent();

  // Object numbers.
  int32_t NextNumber() const { return firstObject_ + objectsAllocated_; }
  int32_t Reserve() { return firstObject_ + objectsAllocated_++; }
  uint32_t Offset() const { return static_cast<uint32_t>(out_.Position()); }
  void AppendHere() { xref_.Append(Offset(), 0, 'n'); }
  int32_t ReserveHere();
  TextOut &BeginReserved(int32_t number);
  void WriteLength(int32_t number, std::string_view text);

  std::FILE *document_;  // borrowed; read before anything is written
  WriteOptions options_;
  std::u16string path_;
  int32_t pageIndex_ = kNewDocument;
  int32_t pageCount_ = 0;

  TextOut out_{*this};
  PDFXRef xref_;
  std::vector<uint32_t> oldPages_;  // object numbers
  std::string title_;
  std::string metadata_;          // the packet; empty unless PDF/A
  int32_t firstObject_ = 0;       // 0 in a new file
  int32_t objectsAllocated_ = 1;  // the head entry counts
  int32_t optionalContentObject_ = 0;
  int32_t metadataObject_ = 0;  // 0: none
  int32_t pagesObject_ = 0;
  int32_t pageObject_ = 0;
  int32_t resourcesObject_ = 0;
  int32_t contentsObject_ = 0;
  int32_t contentLengthObject_ = 0;
  int32_t firstGroupObject_ = 0;  // of the layers' groups, which follow one another

  PageLayout page_;
  LayerTable layers_;
  LineTypeTable lineTypes_;
  FontTable fonts_;
  TransparencyTable states_;
  std::vector<int32_t> stateObjects_;
  PageContent content_{out_, options_, page_, layers_, states_};
  std::unique_ptr<CZVFlate> contentCompressor_;  // of open content, unless a raster took its place
  int64_t contentStart_ = 0;                     // position behind the line of the keyword; 0: no open content

  PlacementTable placements_;
  std::optional<RasterOut> raster_;  // that rows are awaited for
  int32_t imageCount_ = 0;           // finished ones
  int32_t imageLengthObject_ = 0;
  int64_t imageStart_ = 0;
  double fraction_ = 1;

  int32_t section_ = 0;
  bool started_ = false;
  bool pageDictionaryOpen_ = false;
  bool pageEnded_ = false;
  bool finished_ = false;
};

}  // namespace kapdf
