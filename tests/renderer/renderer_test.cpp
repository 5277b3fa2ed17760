// The bridge to the outside renderer, played by two libraries that tell here what is asked of them.
#include "renderer/renderer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <functional>
#include <map>
#include <thread>

#include "base/bytes.h"
#include "filter/filter.h"
#include "platform/file.h"
#include "platform/module.h"
#include "platform/narrow_path.h"
#include "platform/settings.h"
#include "support/pdf_builder.h"
#include "support/temp_file.h"

namespace kapdf::test {
namespace {

using namespace std::string_literals;

constexpr char16_t kSettings[] = u"Software\\kaPDF-tests\\renderer";
// A bitmap file of one pixel.
const std::string kBitmap =
    "BM\x3A\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\1\0\0\0\1\0\0\0\1\0\x18\0"s + std::string(24, '\0') + "bgr.";

std::string calls, host;  // what the renderer was asked, and what the sub-filter
std::map<std::string, int> answers;
std::function<void()> meanwhile;  // once, during a conversion
std::atomic<bool> stopped{false};
double fraction;

std::string Temporary(const std::string &name) { return platform::TemporaryFolder() + name; }
bool Exists(const std::string &path) { return platform::FileExists(platform::FromNarrowPath(path)); }

int OnCall(const char *call) {
  const std::string text(call), name = text.substr(0, text.find(' '));
  calls += text + ";";
  if (name == "VgPdfBitmapConvertPages" && meanwhile) std::exchange(meanwhile, nullptr)();
  return answers[name];
}

uint32_t Report(ProgressObject *, double done) { return fraction = done, stopped.exchange(false); }
void Stop(ProgressObject *) { stopped = true; }
const ProgressTable kSinkTable{nullptr, nullptr, Report, nullptr, nullptr, nullptr, Stop};
ProgressObject sink{&kSinkTable};

// The sub-filter has nothing in the slots that nobody may call.
RasterHeaderPayload header;
uint32_t SubOpen(FilterObject *, const char16_t *path, FileInfo *info, ProgressObject *, const char16_t *options,
                 FilterContext *, FilterCreateFunction) {
  host += platform::ToNarrowPath(path) + (platform::FileExists(path) ? " there " : " gone ") +
          std::to_string(info->pageIndex) + platform::ToNarrowPath(options) + ";";
  return static_cast<uint32_t>(answers["OpenRead"]);
}
uint32_t SubRead(FilterObject *, ElementRecord *record) {
  host += "read " + std::to_string(record->kind) + ";";
  record->payload = &header;
  return record->kind == ElemRasterHeader ? FilterOk : record->kind ? FilterNoMoreRows : FilterEndOfElements;
}
uint32_t SubBegin(FilterObject *, int32_t section, uintptr_t a, uintptr_t b) { return section + a + b; }
uint32_t SubEnd(FilterObject *, int32_t section, uintptr_t a, uintptr_t b) { return section + a - b; }
uint32_t SubClose(FilterObject *) { return host += "close;", 0; }
const FilterTable kSubTable{nullptr,  nullptr, nullptr, SubOpen, SubRead,  nullptr, nullptr,
                            SubBegin, SubEnd,  nullptr, nullptr, SubClose, nullptr, nullptr};
FilterObject sub{&kSubTable};
FilterObject *Factory(uint32_t zero, const char16_t *, const char16_t *path, FilterDestroyFunction *destroy) {
  host += zero != 0 ? "?;" : !path ? "make for no path;" : std::u16string(path) == kSettings ? "make;" : "?;";
  *destroy = [](FilterObject *) { host += "destroy;"; };
  return answers["Factory"] == 0 ? &sub : nullptr;
}

struct Reader {
  explicit Reader(const char16_t *settings = kSettings) : filter(*new CPDFFilter(settings)) {}

  CPDFFilter &filter;
  ElementRecord record{};
  FileInfo info{};

  ~Reader() { filter.Destroy(1); }
  uint32_t Open(int page, const char16_t *options, const std::u16string &path = u"in.pdf") {
    info.pageIndex = page;
    return filter.OpenRead(path.c_str(), &info, &sink, options, nullptr, Factory);
  }
  uint32_t Ask(uint32_t kind) { return record.kind = kind, filter.ReadElement(&record); }
  std::string Preview(const char16_t *path, size_t size) {
    calls.clear();
    const void *made = filter.GetPreview(path, nullptr);
    return made ? std::string(static_cast<const char *>(made), size) : "";
  }
};

class RendererBridge : public testing::Test {
 protected:
  void SetUp() override {
    for (const char16_t *name : {u"vgflow", u"vgpsflow"}) {
      void *library = platform::OpenLibrary(platform::ModuleFolder() + platform::LibraryFileName(name));  // stays
      reinterpret_cast<void (*)(int (*)(const char *))>(platform::FindSymbol(library, "SetHook"))(OnCall);
      setOutput = reinterpret_cast<void (*)(const char *, size_t)>(platform::FindSymbol(library, "SetOutput"));
    }
    answers = {{"VgPdfNoPages", 3}};
    setOutput(kBitmap.data(), kBitmap.size());
    calls.clear();
    LoadRenderer();
    loaded = std::exchange(calls, "");
  }
  void TearDown() override {
    ReleaseRenderer();
    platform::Settings(kSettings, u"").RemoveKey();
    for (const char *name : {"pdf.tif", "pdf-2.tif", "pdf.bmp", "pdf-2.bmp"}) EXPECT_FALSE(Exists(Temporary(name)));
  }
  void (*setOutput)(const char *, size_t) = nullptr;
  std::string loaded;
};

TEST_F(RendererBridge, APageBecomesARasterAndItsText) {
  EXPECT_EQ(loaded, "VgPsSetLicense ;VgPsLoadOptions 6 pdf2xxx.ini;VgSetFontPath " +
                        platform::ToNarrowPath(platform::ModuleFolder()) + "Fonts;");
  const platform::Settings settings(kSettings, u"\\Filter\\PDF");
  for (const char16_t *name : {u"Dither", u"Log"}) settings.WriteInteger(name, 5);
  auto in = std::make_unique<Reader>();
  ASSERT_EQ(in->Open(1, u"/mode 1 /dpi 600 /col 4 /text 1"), FilterOk);
  EXPECT_EQ(calls, "VgPsSetMessageFile " + platform::ToNarrowPath(platform::DiagnosticPath("sdklog.txt")) +
                       ";VgSetImageScale 0;VgPdfGetPageSize in.pdf 2;VgSetDPI 321;VgLoadOptionsFromString dither(5) "
                       "color_mode(1) chars2string(1);VgSetColorDepth 1;VgIgnoreImages 1;VgIgnorePaths 0;VgIgnoreText "
                       "0;VgPdfConvertPage2Custom in.pdf 2;VgIgnoreImages 0;VgIgnorePaths 0;VgIgnoreText 1;"
                       "VgPdfBitmapConvertPages in.pdf " +
                       Temporary("pdf.tif 13 2 2;VgIgnoreImages 0;VgIgnorePaths 0;"
                                 "VgIgnoreText 0;VgPdfNoPages in.pdf;"));
  EXPECT_EQ(std::tuple(in->filter.BeginSection(4, 10, 100), in->filter.EndSection(4, 30, 10)), std::tuple(114, 24));
  header = {2, 1, 0, 0, 300, 1, 4, nullptr};
  EXPECT_EQ(in->Ask(ElemRasterHeader), FilterOk);
  EXPECT_EQ(std::tuple(in->record.styleName, header.depthHint, header.pixelType),
            std::tuple(u"in.pdf"s, 0, 0x80000004));
  EXPECT_EQ(in->Ask(ElemRasterRows), FilterNoMoreRows);
  for (const size_t length : {3, 1024}) {
    ASSERT_EQ(in->Ask(ElemNone), FilterOk);
    const auto text = LoadAs<TextPayload>(in->record.payload);
    EXPECT_EQ(std::tuple(in->record.kind, in->record.color, in->record.layerName, std::u16string(text.fontName),
                         +text.x, +text.y, +text.angle, +text.height, +text.widthFactor, +text.style),
              std::tuple(ElemText, 0x800000FF, u"PDF-Text"s, u"Text", 10.5, 20.25, std::acos(0.0), 2.5, 1, 9));
    EXPECT_EQ(std::u16string(text.text), u"A\u00E4" + std::u16string(length - 2, u'A'));
  }
  EXPECT_EQ(in->Ask(ElemNone), FilterEndOfElements);
  EXPECT_EQ(in->Ask(ElemNone), FilterNotOpen);
  ASSERT_EQ(in->Open(0, u"/mode 1"), FilterOk);
  EXPECT_EQ(in->Ask(ElemNone), FilterEndOfElements) << "no text was asked for";
  EXPECT_EQ(in->info.pageCount, 3);
  EXPECT_EQ(in->filter.OpenWrite(u"", &in->info, nullptr, nullptr), FilterCannotWrite);
  EXPECT_EQ(in->filter.BeginSection(4, 10, 100), FilterOk) << "nor is the sub-filter there any more";
  in.reset();
  EXPECT_EQ(host, "make;" + Temporary("pdf-2.tif there 0/mode 1 /dpi 600 /col 4 /text 1;read 12;read 5;read 0;close;") +
                      "destroy;make;" + Temporary("pdf.tif there 0/mode 1;read 0;close;destroy;"));
  host.clear();
  EXPECT_EQ(Reader(nullptr).Open(0, u"/mode 1"), FilterOk);
  EXPECT_EQ(host.substr(0, host.find(';')), "make for no path") << "what the host gave goes back to it";
}

TEST_F(RendererBridge, PreviewsComeFromAFileOrFromMemory) {
  Reader in;
  EXPECT_EQ(in.Preview(u"a <b.pdf <0>", 44), kBitmap.substr(14));
  EXPECT_NE(calls.find(" a <b.pdf " + Temporary("pdf.bmp 28 1 1;")), std::string::npos) << calls;
  EXPECT_EQ(in.Preview(u"in.pdf <2>", 44), kBitmap.substr(14));
  const std::string size = "VgSetImageScale 1;VgSetImagePixWorH 100 0;";
  EXPECT_EQ(calls, size +
                       "VgSetDPI 96;VgLoadOptionsFromString dither(1) color_mode(1);VgPdfBitmapConvertPages in.pdf " +
                       Temporary("pdf.bmp 28 2 2;"));
  for (const std::string &bad : {kBitmap.substr(0, 57), "BM\r\0\0\0"s + kBitmap.substr(6), "BM"s}) {
    setOutput(bad.data(), bad.size());
    EXPECT_EQ(in.Preview(u"in.pdf", 1), "");
  }
  Renderer().VgPdfBitmapConvertPages = nullptr;
  EXPECT_EQ(in.Preview(u"in.pdf", 52), "\x28\0\0\0\2\0\0\0\1\0\0\0\1\0\x18\0"s + std::string(28, '\0') + "12345678");
  EXPECT_EQ(calls,
            size + "VgPdfGetLayerInfoOnPage in.pdf 1;VgPdfConvertPage2DIB in.pdf 1 7;VgPdfDeleteImageDIB 12345678;");
}

TEST_F(RendererBridge, RefusalsLeaveNothingBehind) {
  Reader in;
  for (const auto &[name, answer] : {std::pair("VgPdfBitmapConvertPages", 1), {"Factory", 1}, {"OpenRead", 4}}) {
    answers[name] = answer;
    EXPECT_EQ(in.Open(1, u"/mode 1 /text 1"), answer == 4 ? 4 : FilterNotPdf) << name;
    EXPECT_FALSE(Exists(Temporary("pdf-2.tif")));
    EXPECT_EQ(in.Ask(ElemNone), FilterNotOpen) << name;
    answers[name] = 0;
  }
  answers["VgPdfNoPages"] = 0;
  EXPECT_EQ(in.filter.Identify(u"in.pdf", &in.info), FilterNotPdf);
  EXPECT_EQ(in.filter.Identify(u"in?.pdf", &in.info), FilterCannotRead) << "which the renderer is not asked about";
}

TEST_F(RendererBridge, OneConversionStopsTheOther) {
  Reader first, second;
  std::atomic<bool> runs{false};
  meanwhile = [&] {
    for (runs = true; !stopped;) std::this_thread::yield();
  };
  uint32_t result = 0;
  std::thread thread([&] { result = first.Open(0, u"/mode 1"); });
  while (!runs) std::this_thread::yield();
  EXPECT_EQ(second.Open(1, u"/mode 1"), FilterOk);
  thread.join();
  EXPECT_EQ(std::tuple(result, fraction), std::tuple(FilterNotPdf, 0.5));
  meanwhile = [&] {
    EXPECT_EQ(second.Preview(u"in.pdf", 1), "");
    EXPECT_EQ(second.Open(1, u"/mode 1"), FilterDamaged) << "after ten seconds";
    stopped = false;
  };
  EXPECT_EQ(first.Open(0, u"/mode 1"), FilterOk);
}

TEST_F(RendererBridge, WhatIsMissingIsDoneWithout) {
  TempFile file(OnePage("0 0 m 9 9 l S"));
  file.Close();
  const RendererFunctions whole = Renderer();
  constexpr size_t kFunctions = sizeof whole / sizeof(void *);
  for (size_t i = 0; i <= kFunctions; ++i) {  // each function, and in the end all of them
    SCOPED_TRACE(i);
    RendererFunctions &some = Renderer() = i < kFunctions ? whole : RendererFunctions{};
    if (i < kFunctions) std::memset(reinterpret_cast<char *>(&some) + i * sizeof(void *), 0, sizeof(void *));
    Reader in;
    EXPECT_EQ(in.filter.Identify(file.path16().c_str(), &in.info), FilterOk);
    EXPECT_EQ(in.info.pageCount, some.VgPdfNoPages ? 3 : 1);
    EXPECT_EQ(in.Preview(u"in.pdf", 1).empty(), i == kFunctions);
    const bool asImage = some.VgPdfConvertPages, refused = asImage && !some.VgPdfBitmapConvertPages;
    EXPECT_EQ(in.Open(0, u"/mode 1 /text 1", file.path16()), refused ? FilterNotPdf : FilterOk);
    const uint32_t read = asImage && !some.VgPdfConvertPage2Custom ? FilterEndOfElements : FilterOk;
    EXPECT_EQ(in.Ask(ElemNone), refused ? FilterNotOpen : read);
    EXPECT_TRUE(refused || read != FilterOk || in.record.kind == (asImage ? ElemText : ElemLineTypeDef));
  }
}

TEST_F(RendererBridge, TheModuleLoadsTheLibrariesItself) {
  void *module = platform::OpenLibrary(platform::ModuleFolder() + platform::LibraryFileName(u"kaPDF"));
  ASSERT_NE(module, nullptr);
  EXPECT_EQ(calls, loaded);
  FilterInfo info{};
  reinterpret_cast<ZVGetFilterInfoFunction>(platform::FindSymbol(module, "ZVGetFilterInfo"))(&info);
  FilterObject *filter = info.filters[0].create(kSettings);
  const void *block = filter->table->GetPreview(filter, u"in.pdf", nullptr);
  EXPECT_TRUE(block && std::memcmp(block, kBitmap.data() + 14, 44) == 0);
  info.filters[0].destroy(filter);
  platform::CloseLibrary(module);
}

}  // namespace
}  // namespace kapdf::test
