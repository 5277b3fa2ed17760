// One document written in memory's stead: a file in the test's own folder, driven as the filter drives the writer.
#pragma once

#include <gtest/gtest.h>
#include <zlib.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <string>
#include <string_view>

#include "platform/file.h"
#include "platform/settings.h"
#include "support/bytes.h"
#include "writer/write_file.h"

namespace kapdf {

// A folder and settings of one test's own, so that tests may run side by side.
class Workspace {
 public:
  Workspace()
      : before_(std::filesystem::current_path()),
        path_(u"Software\\kaPDF writer test\\" + TestName()),
        pdf_(path_, u"\\PDF") {
    const std::filesystem::path folder(TestName());
    std::filesystem::create_directories(folder);
    std::filesystem::current_path(folder);
    platform::Settings(path_, u"").RemoveKey();
    pdf_.WriteString(u"Author", u"Ada");
  }
  ~Workspace() {
    platform::Settings(path_, u"").RemoveKey();
    std::filesystem::current_path(before_);
  }
  const platform::Settings &pdf() const { return pdf_; }
  const std::u16string &registryPath() const { return path_; }

 private:
  static std::u16string TestName() {
    const std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    return {name.begin(), name.end()};
  }

  std::filesystem::path before_;
  std::u16string path_;
  platform::Settings pdf_;
};

inline ElementRecord RecordOf(uint32_t kind, void *payload, std::u16string_view layer = u"A",
                              uint32_t color = KAPDF_COLOR_BY_LAYER) {
  ElementRecord record{};
  record.kind = kind;
  record.payload = payload;
  record.color = color;
  layer.copy(record.layerName, 255);
  return record;
}

class Sheet {
 public:
  // `page`: as for OpenWrite; a document that gets one more must be there.
  explicit Sheet(const Workspace &workspace, std::u16string_view name = u"sheet.pdf", double width = 100,
                 double height = 50, int32_t page = kNewDocument)
      : name_(name) {
    info_.xmax = width;
    info_.ymax = height;
    info_.pageIndex = page;
    stream_ = platform::OpenFile(name_, page == kNewDocument ? "w+b" : "r+b", platform::Share::kAll);
    const auto separator = static_cast<char16_t>(std::filesystem::path::preferred_separator);
    writer_.emplace(stream_.get(), workspace.registryPath(), std::u16string(u"folder") + separator + name_);
  }
  CPDFWriteFile &writer() { return *writer_; }
  FileInfo &info() { return info_; }

  // Starts the document and ends section 2, as a host does that draws in section 4.
  Sheet &Start() {
    EXPECT_EQ(writer_->Start(info_), FilterOk);
    writer_->EndSection(2);
    return *this;
  }
  Sheet &Layer(std::u16string name, uint32_t color = 7, double width = -1, bool off = false) {
    LayerDefPayload layer{};
    layer.name = name.data();
    layer.color = color;
    layer.width = width;
    layer.layerOff = off;
    return Define(RecordOf(ElemLayerDef, &layer));
  }
  Sheet &Define(ElementRecord record) {
    EXPECT_EQ(writer_->WriteElement(record, Sections(KAPDF_SECTION_TABLES)), FilterConsumed);
    return *this;
  }
  template <class Payload>
  uint32_t Draw(uint32_t kind, Payload payload, std::u16string_view layer = u"A", uint32_t color = 256) {
    ElementRecord record = RecordOf(kind, &payload, layer, color);
    return Write(record);
  }
  uint32_t EndPage() {
    ElementRecord record = RecordOf(ElemEndOfPage, nullptr);
    return Write(record);
  }
  // In a drawing section that knows no placements.
  uint32_t Write(ElementRecord &record) { return writer_->WriteElement(record, Sections(KAPDF_SECTION_OVERLAY)); }
  uint32_t DrawLine(double x1, double y1, double x2, double y2, double width = 0.25, std::u16string_view layer = u"A",
                    uint32_t color = 256) {
    return Draw(ElemLine, LinePayload{width, x1, y1, x2, y2}, layer, color);
  }
  uint32_t Raster(uint32_t width, uint32_t height, uint32_t pixelType, uint8_t *palette = nullptr, uint32_t dpi = 254) {
    RasterHeaderPayload header{width, height, 0, 0, dpi, 0, pixelType, palette};
    ElementRecord record = RecordOf(ElemRasterHeader, &header);
    return Write(record);
  }
  uint32_t Row(std::string bytes) {
    ElementRecord record = RecordOf(ElemRasterRows, bytes.data());
    record.payloadBytes = static_cast<uint32_t>(bytes.size());
    return Write(record);
  }
  // 0.1 mm a pixel, unless the raster has another resolution.
  uint32_t Place(int32_t section, uint64_t key, RasterPlacementPayload place, uint32_t color = 256) {
    ElementRecord record = RecordOf(ElemRasterPlacement, &place, u"A", color);
    record.imageKey = key;
    return writer_->WriteElement(record, Sections(section));
  }
  std::string Finish() {
    writer_->Finish();
    writer_.reset();
    stream_.reset();
    return test::ReadFile(name_);
  }

 private:
  std::u16string name_;
  FileInfo info_{};
  platform::FileHandle stream_;
  std::optional<CPDFWriteFile> writer_;
};

inline std::string Inflate(std::string_view coded) {
  std::string plain(coded.size() * 1100 + 1024, '\0');
  uLongf size = plain.size();
  EXPECT_EQ(uncompress(reinterpret_cast<Bytef *>(plain.data()), &size, reinterpret_cast<const Bytef *>(coded.data()),
                       coded.size()),
            Z_OK);
  plain.resize(size);
  return plain;
}

// Text between two marks, marks left out.
inline std::string Between(const std::string &text, std::string_view from, std::string_view to) {
  const size_t start = text.find(from);
  if (start == std::string::npos) return "no " + std::string(from);
  return text.substr(start + from.size(), text.find(to, start + from.size()) - start - from.size());
}

// Content of the only Flate stream.
inline std::string ContentOf(const std::string &file) {
  if (file.find("/FlateDecode") == std::string::npos) return {};
  return Inflate(Between(file, "/FlateDecode\r>>\rstream\r\n", "\nendstream\rendobj\r"));
}

// The date of the Info dictionary is the only thing that differs from run to run.
inline std::string WithoutDate(const std::string &file) {
  static const std::regex date(R"(\(D:\d{14}\))");
  return std::regex_replace(file, date, "(D:)", std::regex_constants::format_first_only);
}

}  // namespace kapdf
