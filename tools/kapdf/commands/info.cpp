#include <cstdio>
#include <cstdlib>
#include <set>

#include "commands/commands.h"
#include "module/page_reader.h"
#include "records/coordinate_system.h"
#include "records/shapes.h"
#include "records/summary.h"
#include "system/output.h"
#include "system/utf.h"

namespace kapdf::tool {
namespace {

class Counter : public RecordSink {
 public:
  Outcome BeginPage(int, int) override { return {}; }
  Outcome Take(const ElementRecord &record) override {
    counts_.Count(record.kind);
    if (const auto block = CoordinateSystemOf(record)) system_ = Tell(*block);
    if (record.section != 3) box_.Merge(BoundsOf(record, 0));
    return {};
  }
  Outcome EndPage() override { return {}; }

  const KindCounts &counts() const { return counts_; }
  const Box &box() const { return box_; }
  const std::string &system() const { return system_; }

 private:
  KindCounts counts_;
  Box box_;
  std::string system_;
};

std::string TellBox(const Box &box) {
  if (box.empty()) return "none";
  char text[160];
  std::snprintf(text, sizeof text, "%.3f %.3f to %.3f %.3f mm", box.xmin, box.ymin, box.xmax, box.ymax);
  return text;
}

std::string Part(const std::string &source, const std::string &word) {
  const size_t at = source.find(word + " ");
  if (at == std::string::npos) return {};
  const size_t from = at + word.size() + 1;
  return source.substr(from, source.find(';', from) - from);
}

// The bits of ISO 32000-1, table 22.
std::string TellPermissions(const std::string &number) {
  static constexpr std::pair<int, const char *> kBits[] = {{1 << 2, "printing"},      {1 << 3, "changes"},
                                                           {1 << 4, "copying"},       {1 << 5, "comments"},
                                                           {1 << 8, "filling forms"}, {1 << 10, "taking pages"}};
  const int bits = std::atoi(number.c_str());
  std::string refused;
  for (const auto &[bit, name] : kBits) {
    if ((bits & bit) == 0) refused += (refused.empty() ? "no " : ", no ") + std::string(name);
  }
  return refused.empty() ? "everything" : refused;
}

// What is worth knowing of the file besides its pages; nothing of most files.
std::string TellSource(const std::string &source) {
  std::string text;
  if (const std::string part = Part(source, "encryption"); !part.empty())
    text += "encrypted  " + part + "; its maker allows: " + TellPermissions(Part(source, "permissions")) + "\n";
  if (const std::string part = Part(source, "warnings"); !part.empty())
    text += "warnings   " + part + "; the file is damaged or breaks rules, and was read all the same\n";
  return text;
}

Outcome WritePreview(PageReader &reader, const InfoRequest &request, Progress &progress) {
  Output file;
  std::string bytes;
  Outcome made = reader.Preview(request.page, progress, bytes);
  progress.Clear();
  if (!made.ok()) return made;
  if (Outcome opened = file.OpenFile(request.preview); !opened.ok()) return opened;
  file.buffer() = std::move(bytes);
  return file.Finish();
}

}  // namespace

Outcome RunInfo(const Session &session, const InfoRequest &request) {
  PageReader reader(session, request.file);
  if (Outcome opened = reader.Open(); !opened.ok()) return opened;
  std::ostream &out = session.streams.out;
  const FilterInfo &info = session.module.info();
  out << "file       " << request.file << "\n"
      << "form       " << ToUtf8(reader.FormatName()) << "\n"
      << "pages      " << reader.pages() << "\n"
      << "module     " << session.module.path() << "\n"
      << "version    " << session.module.Version() << ", which hosts show as "
      << (info.versionText != nullptr ? ToUtf8(info.versionText) : "nothing") << "\n"
      << "maker      " << (info.makerName != nullptr ? ToUtf8(info.makerName) : "") << "\n"
      << std::flush;
  if (reader.pages() < 1) return {};
  if (request.page < 1 || request.page > reader.pages()) {
    return NoSuchPage(request.file, request.page, reader.pages());
  }
  Counter counter;
  Progress progress(session.streams.err, session.showProgress);
  Outcome read = reader.Read(request.page, "", progress, counter);
  progress.Clear();
  if (!read.ok()) return read;
  out << TellSource(reader.source()) << "page " << request.page << "     " << counter.counts().Tell() << "\n"
      << "elements   " << TellBox(counter.box()) << "\n"
      << counter.system() << std::flush;
  if (!request.preview.empty()) {
    if (Outcome written = WritePreview(reader, request, progress); !written.ok()) return written;
    out << "preview    " << request.preview << "\n" << std::flush;
  }
  return out ? Outcome{} : Fail("cannot write all of the standard output; is the disk full?");
}

}  // namespace kapdf::tool
