#include <memory>

#include "commands/commands.h"
#include "jsonl/base64.h"
#include "jsonl/record_writer.h"
#include "module/page_reader.h"
#include "pictures/picture_folder.h"
#include "records/summary.h"
#include "svg/svg_text.h"
#include "svg/svg_writer.h"
#include "system/output.h"
#include "system/utf.h"

namespace kapdf::tool {
namespace {

bool EndsWith(const std::string &path, std::string_view ending) {
  const std::string extension = Utf8Of(PathOf(path).extension());
  return EqualsIgnoringCase(extension, ending);
}

// Every page starts with a line of its own; the records follow. The output is opened with the first page, so that a
// page that does not exist costs nobody an older file.
class JsonLinesSink : public RecordSink {
 public:
  // To the standard output if `path` is empty. Without `pictures` the rows of rasters are lines like everything else.
  JsonLinesSink(std::ostream &standard, std::string path, std::string file, PictureFolder *pictures)
      : path_(std::move(path)), file_(std::move(file)), pictures_(pictures) {
    output_.UseStream(standard);
  }

  Outcome BeginPage(int page, int pages) override {
    if (!begun_ && !path_.empty()) {
      if (Outcome opened = output_.OpenFile(path_); !opened.ok()) return opened;
    }
    begun_ = true;
    page_ = page;
    std::string &out = output_.buffer();
    out += "{\"kapdf\":1,\"page\":" + std::to_string(page) + ",\"pages\":" + std::to_string(pages) + ",\"file\":";
    AppendJsonText(out, std::string_view(file_));
    out += "}\n";
    return {};
  }
  Outcome Take(const ElementRecord &record) override {
    ++count_;
    if (pictures_ != nullptr && pictures_->open()) return pictures_->AddRow(record);
    std::string_view picture;
    if (pictures_ != nullptr && record.kind == ElemRasterHeader) {
      if (Outcome begun = pictures_->Begin(page_, record, {}); !begun.ok()) return begun;
      if (pictures_->open()) picture = pictures_->path();
    }
    if (const auto fault = AppendRecord(output_.buffer(), record, picture)) {
      return Fail("record " + std::to_string(count_) + " that came from the module cannot be written: it is " + *fault);
    }
    return output_.Spill();
  }
  Outcome EndRaster() override { return pictures_ != nullptr && pictures_->open() ? pictures_->End() : Outcome{}; }
  Outcome EndPage() override { return {}; }
  Outcome Finish() { return output_.Finish(); }

 private:
  Output output_;
  std::string path_, file_;
  PictureFolder *pictures_;
  bool begun_ = false;
  int page_ = 0;
  uint64_t count_ = 0;
};

// A file for each page: OUT.svg, or OUT-1.svg, OUT-2.svg and so on. Without `pictures` the rasters stand in it.
class SvgSink : public RecordSink {
 public:
  SvgSink(std::string path, std::string file, bool numbered, PictureFolder *pictures)
      : path_(std::move(path)), file_(std::move(file)), numbered_(numbered), pictures_(pictures) {}

  Outcome BeginPage(int page, int) override {
    drawing_ = std::make_unique<SvgPage>();
    page_ = page;
    return {};
  }
  Outcome Take(const ElementRecord &record) override {
    if (record.kind == ElemRasterHeader) return pictures_ != nullptr ? Link(record) : Embed(record);
    if (record.kind == ElemRasterRows) return AddRow(record);
    drawing_->Add(record);
    return {};
  }
  Outcome EndRaster() override {
    if (pictures_ != nullptr) return pictures_->open() ? pictures_->End() : Outcome{};
    if (!picture_) return {};
    const bool ended = picture_->Finish();
    picture_.reset();
    base64_->End();
    drawing_->CloseRaster(*raster_);
    return ended ? Outcome{} : NoMemory();
  }
  Outcome EndPage() override {
    Output output;
    if (Outcome opened = output.OpenFile(PagePath()); !opened.ok()) return opened;
    drawing_->Finish(output.buffer(), Utf8Of(PathOf(file_).filename()) + ", page " + std::to_string(page_));
    return output.Finish();
  }

 private:
  static Outcome NoMemory() { return Fail("there is not enough memory for a raster"); }
  Outcome Link(const ElementRecord &header) {
    if (Outcome begun = pictures_->Begin(page_, header, drawing_->placementInk()); !begun.ok()) return begun;
    std::string *text = pictures_->open() ? drawing_->OpenRaster(header) : nullptr;
    if (text == nullptr) return {};
    AppendAddress(*text, pictures_->path());
    drawing_->CloseRaster(*text);
    return {};
  }
  Outcome Embed(const ElementRecord &header) {
    raster_ = RasterPicture::Suits(header) ? drawing_->OpenRaster(header) : nullptr;
    if (raster_ == nullptr) return {};
    *raster_ += "data:image/png;base64,";
    base64_ = std::make_unique<Base64Stream>(*raster_);
    picture_ = RasterPicture::Begin(header, drawing_->placementInk(),
                                    [to = base64_.get()](std::span<const uint8_t> bytes) { to->Put(bytes); });
    return picture_ ? Outcome{} : NoMemory();
  }
  Outcome AddRow(const ElementRecord &record) {
    if (pictures_ != nullptr) return pictures_->open() ? pictures_->AddRow(record) : Outcome{};
    return !picture_ || picture_->AddRow(record) ? Outcome{} : NoMemory();
  }
  std::string PagePath() const {
    if (!numbered_) return path_;
    const std::filesystem::path whole = PathOf(path_);
    const std::string name = Utf8Of(whole.stem()) + "-" + std::to_string(page_) + Utf8Of(whole.extension());
    return Utf8Of(whole.parent_path() / PathOf(name));
  }

  std::string path_, file_;
  bool numbered_;
  PictureFolder *pictures_;
  int page_ = 0;
  std::unique_ptr<SvgPage> drawing_;
  // A raster that goes into the drawing while its rows come.
  std::string *raster_ = nullptr;
  std::unique_ptr<Base64Stream> base64_;
  std::unique_ptr<RasterPicture> picture_;
};

// Counts what goes by.
class CountingSink : public RecordSink {
 public:
  explicit CountingSink(RecordSink &target) : target_(target) {}
  Outcome BeginPage(int page, int pages) override { return target_.BeginPage(page, pages); }
  Outcome Take(const ElementRecord &record) override {
    counts_.Count(record.kind);
    return target_.Take(record);
  }
  Outcome EndRaster() override { return target_.EndRaster(); }
  Outcome EndPage() override { return target_.EndPage(); }
  const KindCounts &counts() const { return counts_; }

 private:
  RecordSink &target_;
  KindCounts counts_;
};

Outcome ReadPages(PageReader &reader, const ImportRequest &request, Progress &progress, RecordSink &sink) {
  const int first = request.all ? 1 : request.page.value_or(1);
  const int last = request.all ? reader.pages() : first;
  if (first < 1 || first > reader.pages()) {
    return NoSuchPage(request.file, first, reader.pages());
  }
  for (int page = first; page <= last; ++page) {
    progress.SetPart(page - first, last - first + 1);
    if (Outcome read = reader.Read(page, request.options, progress, sink); !read.ok()) return read;
  }
  return {};
}

void TellSummary(const Session &session, const ImportRequest &request, const PageReader &reader,
                 const KindCounts &counts) {
  if (session.quiet) return;
  std::ostream &err = session.streams.err;
  if (!request.output.empty()) err << "kapdf: " << request.output << ": " << counts.Tell() << "\n";
  if (reader.missingRasters() > 0) {
    err << "kapdf: the module does not give " << reader.missingRasters() << " of the rasters yet\n";
  }
  if (reader.unknownRecords() > 0) {
    err << "kapdf: " << reader.unknownRecords() << " records of unknown kinds were left out\n";
  }
}

}  // namespace

Outcome RunImport(const Session &session, const ImportRequest &request) {
  const bool svg = EndsWith(request.output, ".svg");
  const bool lines =
      request.output.empty() || EndsWith(request.output, ".jsonl") || EndsWith(request.output, ".ndjson");
  if (!svg && !lines) return FailUsage("the output must be named .jsonl or .svg, not " + request.output);

  PageReader reader(session, request.file);
  if (Outcome opened = reader.Open(); !opened.ok()) return opened;
  // What the output calls the pictures is a way from where it stands.
  const std::string base = request.output.empty() ? request.folder : Utf8Of(PathOf(request.output).parent_path());
  PictureFolder folder(request.images, base);
  PictureFolder *pictures = request.images.empty() ? nullptr : &folder;
  JsonLinesSink linesSink(session.streams.out, svg ? "" : request.output, request.file, pictures);
  SvgSink svgSink(request.output, request.file, request.all, pictures);
  CountingSink sink(svg ? static_cast<RecordSink &>(svgSink) : linesSink);

  Progress progress(session.streams.err, session.showProgress);
  Outcome outcome = ReadPages(reader, request, progress, sink);
  progress.Clear();
  if (outcome.ok() && !svg) outcome = linesSink.Finish();
  if (!outcome.ok()) return outcome;
  folder.Keep();
  TellSummary(session, request, reader, sink.counts());
  if (pictures != nullptr && !session.quiet) {
    session.streams.err << "kapdf: " << request.images << ": " << folder.count() << " pictures\n";
  }
  return outcome;
}

}  // namespace kapdf::tool
