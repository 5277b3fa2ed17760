#include <memory>

#include "commands.h"
#include "output.h"
#include "page_reader.h"
#include "record_writer.h"
#include "summary.h"
#include "svg_writer.h"
#include "utf.h"

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
  // To the standard output if `path` is empty.
  JsonLinesSink(std::ostream &standard, std::string path, std::string file)
      : path_(std::move(path)), file_(std::move(file)) {
    output_.UseStream(standard);
  }

  Outcome BeginPage(int page, int pages) override {
    if (!begun_ && !path_.empty()) {
      if (Outcome opened = output_.OpenFile(path_); !opened.ok()) return opened;
    }
    begun_ = true;
    std::string &out = output_.buffer();
    out += "{\"kapdf\":1,\"page\":" + std::to_string(page) + ",\"pages\":" + std::to_string(pages) + ",\"file\":";
    AppendJsonText(out, std::string_view(file_));
    out += "}\n";
    return {};
  }
  Outcome Take(const ElementRecord &record) override {
    ++count_;
    if (const auto fault = AppendRecord(output_.buffer(), record)) {
      return Fail("record " + std::to_string(count_) + " that came from the module cannot be written: it is " + *fault);
    }
    return output_.Spill();
  }
  Outcome EndPage() override { return {}; }
  Outcome Finish() { return output_.Finish(); }

 private:
  Output output_;
  std::string path_, file_;
  bool begun_ = false;
  uint64_t count_ = 0;
};

// A file for each page: OUT.svg, or OUT-1.svg, OUT-2.svg and so on.
class SvgSink : public RecordSink {
 public:
  SvgSink(std::string path, std::string file, bool numbered)
      : path_(std::move(path)), file_(std::move(file)), numbered_(numbered) {}

  Outcome BeginPage(int page, int) override {
    drawing_ = std::make_unique<SvgPage>();
    page_ = page;
    return {};
  }
  Outcome Take(const ElementRecord &record) override {
    drawing_->Add(record);
    return {};
  }
  Outcome EndPage() override {
    Output output;
    if (Outcome opened = output.OpenFile(PagePath()); !opened.ok()) return opened;
    drawing_->Finish(output.buffer(), Utf8Of(PathOf(file_).filename()) + ", page " + std::to_string(page_));
    return output.Finish();
  }

 private:
  std::string PagePath() const {
    if (!numbered_) return path_;
    const std::filesystem::path whole = PathOf(path_);
    const std::string name = Utf8Of(whole.stem()) + "-" + std::to_string(page_) + Utf8Of(whole.extension());
    return Utf8Of(whole.parent_path() / PathOf(name));
  }

  std::string path_, file_;
  bool numbered_;
  int page_ = 0;
  std::unique_ptr<SvgPage> drawing_;
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
  JsonLinesSink linesSink(session.streams.out, svg ? "" : request.output, request.file);
  SvgSink svgSink(request.output, request.file, request.all);
  CountingSink sink(svg ? static_cast<RecordSink &>(svgSink) : linesSink);

  Progress progress(session.streams.err, session.showProgress);
  Outcome outcome = ReadPages(reader, request, progress, sink);
  progress.Clear();
  if (outcome.ok() && !svg) outcome = linesSink.Finish();
  if (outcome.ok()) TellSummary(session, request, reader, sink.counts());
  return outcome;
}

}  // namespace kapdf::tool
