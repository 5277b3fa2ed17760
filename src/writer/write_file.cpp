#include "writer/write_file.h"

#include <algorithm>
#include <utility>

#include "writer/font_objects.h"

namespace kapdf {

CPDFWriteFile::CPDFWriteFile(std::FILE *stream, std::u16string_view registryPath, std::u16string_view path)
    : CZVFFile(stream, false, registryPath), stream_(stream), path_(path), options_(WriteOptions::Of(registryPath)) {}

uint32_t CPDFWriteFile::Start(FileInfo &info) {
  if (const int32_t page = std::max(info.pageIndex, kAddPage); page != kNewDocument) {
    if (auto existing = ReadExistingDocument(stream_, registryPath())) document_.Continue(std::move(*existing), page);
    Seek(0, SeekOrigin::kEnd);
  }
  state_ = State::kStarted;
  document_.Start(path_);
  page_.LayOut(info);
  const PageLayout &layout = page_.layout();
  info.xmin = layout.xmin;
  info.ymin = layout.ymin;
  info.xmax = layout.xmax;
  info.ymax = layout.ymax;
  document_.WritePages(page_.Reserve());
  page_.OpenDictionary(document_.pagesObject());
  return FilterOk;
}

// With content open nothing may come between: that page's dictionary stays as it is.
void CPDFWriteFile::EndSection(int32_t section) {
  if (section != KAPDF_SECTION_PAGE || !page_.dictionaryOpen() || CodecOpen()) return;
  page_.CloseDictionary();
  document_.WriteMetadataAgain();
}

void CPDFWriteFile::FinishPage() {
  if (page_.ended() || state_ == State::kNew) return;
  images_.CutShort();
  page_.End(images_.placements());
}

void CPDFWriteFile::Finish() {
  if (state_ != State::kStarted) return;
  FinishPage();
  images_.CutShort();
  state_ = State::kFinished;
  document_.WriteOptionalContent(layers_);
  FontObjects fonts(objects_, fonts_);
  page_.BeginResources().Text("<<\r/Procset [/PDF /Text /ImageB]\r");
  images_.WriteResources();
  document_.WriteLayerResources(layers_);
  fonts.WriteResources();
  page_.WriteStateResources();
  objects_.text().Text(">>\rendobj\r");
  fonts.Write(options_.embedFonts != 0);
  page_.WriteStates();
  objects_.WriteTrailer();
  objects_.text().Drain();
  Flush();
}

}  // namespace kapdf
