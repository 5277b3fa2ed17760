// The bridge to the outside renderer, played by two libraries that tell here what is asked of them.
#include "renderer/renderer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
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

constexpr char16_t kSettings[] = u"Software\\kaPDF-tests\\renderer";
// A bitmap file of one pixel: its length, then the 40 bytes, then a row.
const std::string kBitmap = std::string("BM\x3A\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\1\0\0\0\1\0\0\0\1\0\x18\0", 30) +
                            std::string(24, '\0') + "bgr.";

std::string calls, host;  // what the renderer was asked, and the sub-filter
std::map<std::string, int, std::less<>> answers;
std::function<void()> meanwhile;  // during the conversion
std::mutex callsMutex;

int OnCall(const char *call) {
  const std::string text(call), name = text.substr(0, text.find(' '));
  if (name == "VgPdfBitmapConvertPages" && meanwhile) std::exchange(meanwhile, nullptr)();
  const std::lock_guard lock(callsMutex);
  calls += text + ";";
  return answers[name];
}

struct Destroyer {
  void operator()(CPDFFilter *object) const { object->Destroy(1); }
};
std::unique_ptr<CPDFFilter, Destroyer> NewFilter() {
  return std::unique_ptr<CPDFFilter, Destroyer>(new CPDFFilter(kSettings, false));
}

// The sub-filter has nothing in the slots that nobody may call.
RasterHeaderPayload header{2, 1, 0, 0, 300, 1, 4, nullptr};
uint32_t SubOpen(FilterObject *, const char16_t *path, FileInfo *info, ProgressObject *, const char16_t *options,
                 FilterContext *, FilterCreateFunction) {
  host += "open " + platform::ToNarrowPath(path) + (platform::FileExists(path) ? " there " : " gone ") +
          std::to_string(info->pageIndex) + platform::ToNarrowPath(options ? options : u"") + ";";
  return static_cast<uint32_t>(answers["SubOpen"]);
}
uint32_t SubRead(FilterObject *, ElementRecord *record) {
  host += "read " + std::to_string(record->kind) + ";";
  if (record->kind == ElemRasterHeader) return record->payload = &header, FilterOk;
  return record->kind == ElemRasterRows ? FilterNoMoreRows : FilterEndOfElements;
}
uint32_t SubBegin(FilterObject *, int32_t section, uintptr_t a, uintptr_t b) {
  return host += "begin;", section + a + b;
}
uint32_t SubEnd(FilterObject *, int32_t section, uintptr_t a, uintptr_t b) { return host += "end;", section + a + b; }
uint32_t SubClose(FilterObject *) { return host += "close;", 0; }
const FilterTable kSubTable{nullptr,  nullptr, nullptr, SubOpen, SubRead,  nullptr, nullptr,
                            SubBegin, SubEnd,  nullptr, nullptr, SubClose, nullptr, nullptr};
FilterObject sub{&kSubTable};
FilterObject *Factory(uint32_t zero, const char16_t *, const char16_t *registryPath, FilterDestroyFunction *destroy) {
  host += zero == 0 && std::u16string(registryPath) == kSettings ? "make;" : "?;";
  *destroy = [](FilterObject *) { host += "destroy;"; };
  return answers["Factory"] == 0 ? &sub : nullptr;
}

class RendererBridge : public testing::Test {
 protected:
  void SetUp() override {
    const auto module = platform::ModuleFolder();
    for (const char16_t *name : {u"vgpsflow", u"vgflow"}) {
      void *library = platform::OpenLibrary(module + platform::LibraryFileName(name));  // stays
      ASSERT_NE(library, nullptr);
      reinterpret_cast<void (*)(int (*)(const char *))>(platform::FindSymbol(library, "SetFakeHook"))(OnCall);
      if (void *output = platform::FindSymbol(library, "SetFakeOutput")) SetOutput = reinterpret_cast<Output>(output);
    }
    answers = {{"VgPdfNoPages", 3}};
    Put(kBitmap);
    calls.clear();
    LoadRenderer();
    loaded = std::exchange(calls, "");
    host.clear();
  }
  void TearDown() override {
    meanwhile = nullptr;
    ReleaseRenderer();
    platform::Settings(kSettings, u"").RemoveKey();
    for (const char *name : {"pdf.tif", "pdf-2.tif", "pdf.bmp", "pdf-2.bmp"})
      EXPECT_FALSE(platform::FileExists(platform::FromNarrowPath(folder + name))) << name;
  }
  using Output = void (*)(const char *, size_t);
  void Put(const std::string &bytes) { SetOutput(bytes.data(), bytes.size()); }

  Output SetOutput = nullptr;
  std::string loaded;
  const std::string folder = platform::TemporaryFolder();
};

uint32_t Open(CPDFFilter &filter, int page, const char16_t *options, ProgressObject *progress = nullptr) {
  FileInfo info{};
  info.pageIndex = page;
  const uint32_t result = filter.OpenRead(u"in.pdf", &info, progress, options, nullptr, Factory);
  return result == FilterOk && info.pageCount != answers["VgPdfNoPages"] ? 99 : result;
}

TEST_F(RendererBridge, APageBecomesARasterAndItsText) {
  EXPECT_EQ(loaded, "VgPsSetLicense;VgPsLoadOptions 6 pdf2xxx.ini;VgSetFontPath " +
                        platform::ToNarrowPath(platform::ModuleFolder()) + "Fonts;");
  platform::Settings(kSettings, u"\\Filter\\PDF").WriteInteger(u"Dither", 5);
  platform::Settings(kSettings, u"\\Filter\\PDF").WriteInteger(u"Log", 1);
  auto filter = NewFilter();
  ASSERT_EQ(Open(*filter, 1, u"/mode 1 /dpi 600 /col 4 /text 1"), FilterOk);
  EXPECT_EQ(calls, "VgPsSetMessageFile " + platform::ToNarrowPath(platform::DiagnosticPath("sdklog.txt")) +
                       ";VgSetImageScale 0;VgPdfGetPageSize in.pdf 2;VgSetDPI 321;VgLoadOptionsFromString dither(5) "
                       "color_mode(1) chars2string(1);VgSetColorDepth 1;VgIgnoreImages 1;VgIgnorePaths 0;VgIgnoreText "
                       "0;VgPdfConvertPage2Custom in.pdf 2;VgIgnoreImages 0;VgIgnorePaths 0;VgIgnoreText 1;"
                       "VgPdfBitmapConvertPages in.pdf " +
                       folder +
                       "pdf.tif 13 2 2;VgIgnoreImages 0;VgIgnorePaths 0;"
                       "VgIgnoreText 0;VgPdfNoPages in.pdf;");
  EXPECT_EQ(filter->BeginSection(4, 10, 100), 114u);
  EXPECT_EQ(filter->EndSection(4, 10, 200), 214u);
  ElementRecord record{};
  const auto ask = [&](uint32_t kind) { return record.kind = kind, filter->ReadElement(&record); };
  ASSERT_EQ(ask(ElemRasterHeader), FilterOk);
  EXPECT_EQ(std::u16string(record.styleName), u"in.pdf");
  EXPECT_EQ(std::tuple(header.depthHint, header.pixelType), std::tuple(0u, 0x80000004u));
  EXPECT_EQ(ask(ElemRasterRows), FilterNoMoreRows);
  for (const size_t length : {size_t{3}, size_t{1024}}) {
    ASSERT_EQ(ask(ElemNone), FilterOk);
    const auto text = LoadAs<TextPayload>(record.payload);
    EXPECT_EQ(std::tuple(record.kind, record.color, std::u16string(record.layerName), std::u16string(text.fontName)),
              std::tuple(ElemText, 0x800000FFu, u"PDF-Text", u"Text"));
    EXPECT_EQ(std::tuple(text.x, text.y, text.height, text.widthFactor, text.style),
              std::tuple(10.5, 20.25, length == 3 ? 3.5 : 4.5, 1.0, 9u));
    EXPECT_NEAR(text.angle, 1.5707963267948966, 1e-15);
    EXPECT_EQ(std::u16string(text.text).substr(0, 3), length == 3 ? u"B\u00E4B" : u"C\u00E4C");
    EXPECT_EQ(std::u16string(text.text).size(), length);
  }
  EXPECT_EQ(ask(ElemNone), FilterEndOfElements);
  EXPECT_EQ(ask(ElemNone), FilterNotOpen);
  ASSERT_EQ(Open(*filter, 0, u"/mode 1"), FilterOk);
  EXPECT_EQ(ask(ElemNone), FilterEndOfElements) << "no text was asked for";
  filter.reset();
  EXPECT_EQ(host, "make;open " + folder +
                      "pdf-2.tif there 0/mode 1 /dpi 600 /col 4 /text 1;begin;end;read 12;read 5;"
                      "read 0;close;destroy;make;open " +
                      folder + "pdf.tif there 0/mode 1;read 0;close;destroy;");
}

TEST_F(RendererBridge, PreviewsComeFromAFileOrFromMemory) {
  const auto filter = NewFilter();
  const auto block = [&](const char16_t *path, size_t size) {
    calls.clear();
    const void *made = filter->GetPreview(path, nullptr);
    return made ? std::string(static_cast<const char *>(made), size) : "";
  };
  EXPECT_EQ(block(u"in.pdf <2>", 44), kBitmap.substr(14));
  EXPECT_EQ(calls,
            "VgSetImageScale 1;VgSetImagePixWorH 100 0;VgSetDPI 96;VgLoadOptionsFromString dither(1) color_mode(1);"
            "VgPdfBitmapConvertPages in.pdf " +
                folder + "pdf.bmp 28 2 2;");
  EXPECT_EQ(block(u"a <b.pdf <-7>", 44), kBitmap.substr(14));
  EXPECT_NE(calls.find(" a <b.pdf " + folder + "pdf.bmp 28 1 1;"), std::string::npos) << calls;
  for (const std::string &bad :
       {kBitmap.substr(0, 57), std::string("BM\r\0\0\0", 6) + kBitmap.substr(6), std::string("BM")}) {
    Put(bad);
    EXPECT_EQ(block(u"in.pdf", 1), "");
  }
  Renderer().VgPdfBitmapConvertPages = nullptr;
  const std::string dib = block(u"in.pdf", 52);
  EXPECT_EQ(dib.substr(0, 16) + dib.substr(40), std::string("\x28\0\0\0\2\0\0\0\1\0\0\0\1\0\x18\0\0\0\0\0"
                                                            "12345678",
                                                            28));
  EXPECT_EQ(calls,
            "VgSetImageScale 1;VgSetImagePixWorH 100 0;VgPdfGetLayerInfoOnPage in.pdf 1;"
            "VgPdfConvertPage2DIB in.pdf 1 7;VgPdfDeleteImageDIB;");
  answers["VgPdfConvertPage2DIB"] = 1;
  EXPECT_EQ(block(u"in.pdf", 1), "");
}

TEST_F(RendererBridge, RefusalsLeaveNothingBehind) {
  for (const auto &[name, answer, result] : {std::tuple("VgPdfBitmapConvertPages", 1, FilterNotPdf),
                                             std::tuple("Factory", 1, FilterNotPdf), std::tuple("SubOpen", 4, 4u)}) {
    answers[name] = answer;
    const auto filter = NewFilter();
    EXPECT_EQ(Open(*filter, 1, u"/mode 1 /text 1"), result) << name;
    EXPECT_FALSE(platform::FileExists(platform::FromNarrowPath(folder + "pdf-2.tif")));
    ElementRecord record{};
    EXPECT_EQ(filter->ReadElement(&record), FilterNotOpen) << name;
    answers[name] = 0;
  }
  const auto filter = NewFilter();
  FileInfo info{};
  EXPECT_EQ(filter->Identify(u"in.pdf", &info), FilterOk);
  EXPECT_EQ(std::tuple(info.pageCount, std::u16string(info.formatName)), std::tuple(3, u"Adobe PDF "));
  answers["VgPdfNoPages"] = 0;
  EXPECT_EQ(filter->Identify(u"in.pdf", &info), FilterNotPdf);
  EXPECT_EQ(filter->Identify(u"in?.pdf", &info), FilterCannotRead) << "which the renderer is not asked about";
}

// A sink that stops when it is told to, or never.
struct Sink {
  static Sink &Of(ProgressObject *object) { return *reinterpret_cast<Sink *>(object); }
  ProgressObject object{&kTable};
  bool stops = true;
  std::atomic<bool> stopped{false};
  double fraction = -1;
  static constexpr ProgressTable kTable{
      nullptr,
      nullptr,
      [](ProgressObject *self, double done) -> uint32_t { return Of(self).fraction = done, Of(self).stopped; },
      nullptr,
      nullptr,
      nullptr,
      [](ProgressObject *self) { Of(self).stopped = Of(self).stops; }};
};

TEST_F(RendererBridge, OneConversionStopsTheOther) {
  const auto first = NewFilter(), second = NewFilter();
  Sink firstSink, secondSink;
  std::atomic<bool> runs{false};
  meanwhile = [&] {
    for (runs = true; !firstSink.stopped;) std::this_thread::yield();
  };
  uint32_t stopped = 0;
  std::thread thread([&] { stopped = Open(*first, 0, u"/mode 1", &firstSink.object); });
  while (!runs) std::this_thread::yield();
  EXPECT_EQ(Open(*second, 1, u"/mode 1", &secondSink.object), FilterOk);
  thread.join();
  EXPECT_EQ(stopped, FilterNotPdf);
  EXPECT_EQ(secondSink.fraction, 0.5);

  Sink stubborn;
  stubborn.stops = false;
  meanwhile = [&] {
    EXPECT_EQ(second->GetPreview(u"in.pdf", nullptr), nullptr);
    EXPECT_EQ(Open(*second, 1, u"/mode 1"), FilterDamaged) << "after ten seconds";
  };
  EXPECT_EQ(Open(*first, 0, u"/mode 1", &stubborn.object), FilterOk);
}

// Any function may be missing, and all of them.
TEST_F(RendererBridge, WhatIsMissingIsDoneWithout) {
  TempFile file(OnePage("0 0 m 9 9 l S"));
  file.Close();
  const RendererFunctions whole = Renderer();
  constexpr size_t kFunctions = sizeof whole / sizeof(void *);
  for (size_t i = 0; i <= kFunctions; ++i) {
    SCOPED_TRACE(i);
    RendererFunctions &some = Renderer() = whole;
    if (i == kFunctions)
      some = {};
    else
      std::memset(reinterpret_cast<char *>(&some) + i * sizeof(void *), 0, sizeof(void *));
    const auto filter = NewFilter();
    FileInfo info{};
    EXPECT_EQ(filter->Identify(file.path16().c_str(), &info), FilterOk);
    EXPECT_EQ(info.pageCount, some.VgPdfNoPages ? 3 : 1);
    EXPECT_EQ(filter->GetPreview(u"in.pdf", nullptr) != nullptr, i < kFunctions);
    const uint32_t opened =
        filter->OpenRead(file.path16().c_str(), &info, nullptr, u"/mode 1 /text 1", nullptr, Factory);
    EXPECT_EQ(opened, some.VgPdfConvertPages && !some.VgPdfBitmapConvertPages ? FilterNotPdf : FilterOk);
    ElementRecord record{};
    const uint32_t read = filter->ReadElement(&record);
    EXPECT_EQ(read, opened != FilterOk                                        ? FilterNotOpen
                    : some.VgPdfConvertPages && !some.VgPdfConvertPage2Custom ? FilterEndOfElements
                                                                              : FilterOk);
    if (opened == FilterOk && read == FilterOk) {
      EXPECT_EQ(record.kind, some.VgPdfConvertPages ? ElemText : ElemLineTypeDef);
    }
  }
}

// The module loads the libraries itself.
TEST_F(RendererBridge, TheModuleHasThePreviewInSlotTwo) {
  void *module = platform::OpenLibrary(platform::ModuleFolder() + platform::LibraryFileName(u"kaPDF"));
  ASSERT_NE(module, nullptr);
  EXPECT_EQ(calls, loaded);
  FilterInfo info{};
  reinterpret_cast<ZVGetFilterInfoFunction>(platform::FindSymbol(module, "ZVGetFilterInfo"))(&info);
  FilterObject *filter = info.filters[0].create(kSettings);
  const void *block = filter->table->GetPreview(filter, u"in.pdf", nullptr);
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(std::memcmp(block, kBitmap.data() + 14, 44), 0);
  info.filters[0].destroy(filter);
  platform::CloseLibrary(module);
}

}  // namespace
}  // namespace kapdf::test
