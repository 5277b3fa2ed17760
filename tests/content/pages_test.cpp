// Pages as a whole: set-up, the streams of their content, the records around the drawing.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

#include "base/bytes.h"
#include "content/page_setup.h"
#include "content/record_sink.h"
#include "drawing.h"
#include "platform/file.h"
#include "platform/settings.h"
#include "support/opened_pdf.h"
#include "support/pdf_builder.h"

namespace kapdf::test {
namespace {

TEST(Pages, AreTurnedToTheOriginAndClipped) {
  const std::string content = "10 20 m 30 20 l S -1 0 m 0 0 l 612 792 l S";
  const struct {
    std::string entries, drawn;
  } cases[] = {
      {"/MediaBox [0 0 612 792]", "line 256 w1 10,20 30,20\nline 256 w1 0,0 612,792"},
      {"/MediaBox [612 792 0 0]", "line 256 w1 10,20 30,20\nline 256 w1 0,0 612,792"},
      {"/MediaBox [0 0 612 792] /Rotate 90", "line 256 w1 20,602 20,582\nline 256 w1 0,612 792,0"},
      {"/MediaBox [0 0 612 792] /Rotate 180", "line 256 w1 602,772 582,772\nline 256 w1 612,792 0,0"},
      {"/MediaBox [0 0 612 792] /Rotate 270", "line 256 w1 772,10 772,30\nline 256 w1 792,0 0,612"},
      {"/MediaBox [0 0 25 25]", ""},
      {"/MediaBox [0 0 40 25] /CropBox [0 0 9 9]", "line 256 w1 10,20 30,20"},
      {"/MediaBox [0 0 40]", "line 256 w1 10,20 30,20\nline 256 w1 0,0 612,792"},  // no box: that of the tree counts
      {"", "line 256 w1 10,20 30,20\nline 256 w1 0,0 612,792"},
      {"/Rotate 90", "line 256 w1 20,602 20,582\nline 256 w1 0,612 792,0"},
      // A box away from the origin keeps its distance on the turned sheet.
      {"/MediaBox [10 20 100 200] /Rotate 90", "line 256 w1 20,90 20,70"},
  };
  for (const auto &c : cases) {
    const std::string page = "<</Contents 4 0 R /Type /Page " + c.entries + ">>";
    const std::string bytes = PdfBuilder()
                                  .Object(1, "<</Type /Catalog /Pages 2 0 R>>")
                                  .Object(2, "<</Type /Pages /MediaBox [0 0 612 792] /Kids [3 0 R]>>")
                                  .Object(3, page)
                                  .Stream(4, "", content)
                                  .Build();
    EXPECT_EQ(Joined(ReadPage(bytes)), c.drawn) << c.entries;
  }
}

TEST(Pages, ContentsInAllForms) {
  const std::string first = "line 256 w1 1,1 2,2", both = first + "\nline 256 w1 3,3 4,4";
  const struct {
    const char *contents;
    std::string drawn;
  } cases[] = {
      {"/Contents 4 0 R", first},
      {"/Contents [4 0 R 5 0 R]", both},
      {"/Contents 10 0 R", both},          // a reference to an array
      {"/Contents [10 0 R 4 0 R]", both},  // to one among the streams: it takes the place of the list,
      {"/Contents [4 0 R 10 0 R 5 0 R]", first + "\n" + first},  // is counted on in
      {"/Contents [12 0 R]", first},                             // and holds none that counts
      {"/Contents 11 0 R", ""},
      {"/Contents [4 0 R 99 0 R 5 0 R]", first},  // so does what is not there,
      {"/Contents [4 0 R 1 0 R 5 0 R]", first},   // what is no stream,
      {"/Contents [4 0 R 7 0 R 5 0 R]", first},   // a stream of no length,
      {"/Contents [4 0 R 8 0 R 5 0 R]", first},   // one with a filter nobody knows
      {"/Contents [4 0 R null 5 0 R]", first},    // and what is no reference
      {"/Contents [4 0 R 6 0 R 5 0 R]", both},
      {"/Contents [4 0 R 9 0 R 5 0 R]", both},  // decodes to nothing
      {"/Contents []", ""},
      {"/Contents 99 0 R", ""},
      {"", ""},
  };
  for (const auto &c : cases) {
    const std::string bytes = PdfBuilder()
                                  .Object(1, "<</Type /Catalog /Pages 2 0 R>>")
                                  .Object(2, "<</Type /Pages /Kids [3 0 R]>>")
                                  .Object(3, "<</Type /Page /MediaBox [0 0 99 99] " + std::string(c.contents) + ">>")
                                  .Stream(4, "", "1 1 m 2 2 l S\n")
                                  .FlateStream(5, "", "3 3 m 4 4 l S")
                                  .Stream(6, "", " ")
                                  .Stream(7, "", "")
                                  .Stream(8, "/Filter /NoSuchDecode", "9 9 m 0 0 l S")
                                  .FlateStream(9, "", "")
                                  .Object(10, "[4 0 R 5 0 R]")
                                  .Object(11, "[10 0 R]")
                                  .Object(12, "[4 0 R 10 0 R]")
                                  .Build();
    EXPECT_EQ(Joined(ReadPage(bytes)), c.drawn) << c.contents;
  }
}

// The first call gives the default line type and the default layer, chained; what was given out stays as it is until
// the next record of its kind.
TEST(Pages, FirstRecordsAreChained) {
  OpenedPdf pdf(PageBytes({"1 0 0 RG 0 0 m 1 1 l 2 0 l B n 0 0 m 1 1 l S"}));
  PagePosition position;
  ASSERT_TRUE(pdf.file.GetPage(0, position));
  Interpreter interpreter(std::move(*SetupPage(pdf.file, position)), {});
  ElementRecord record;
  std::memset(&record, 0xEE, sizeof record);  // a host's record that was used before
  ASSERT_EQ(interpreter.InterpretNext(record), 0u);
  EXPECT_EQ(Describe(record), "linetype Continuous of 0");
  EXPECT_EQ(record.layerName[0], u'\0');
  ASSERT_NE(record.next, nullptr);
  const ElementRecord &second = *record.next;
  EXPECT_EQ(Describe(second), "layer PDF");
  EXPECT_EQ(second.color, 7u);
  EXPECT_EQ(second.next, nullptr);
  EXPECT_EQ(std::u16string(second.layerName), u"PDF");
  const auto layer = LoadAs<LayerDefPayload>(second.payload);
  EXPECT_EQ(layer.color, 7u);
  const double width = layer.width;
  EXPECT_EQ(width, -2.0);
  EXPECT_EQ(std::u16string(layer.lineType), u"Continuous");
  ASSERT_EQ(interpreter.InterpretNext(record), 0u);
  EXPECT_EQ(Describe(record), "fill 256 w1 o100 0,0 1,1 2,0 0,0");
  EXPECT_EQ(record.flags, 0u);
  EXPECT_EQ(record.reserved2, 0u);
  EXPECT_EQ(record.next, nullptr);
  const void *polygon = record.payload;
  std::string before(static_cast<const char *>(polygon), record.payloadBytes);
  ASSERT_EQ(interpreter.InterpretNext(record), 0u);
  EXPECT_EQ(Describe(record), "poly #FF0000 w1 0,0 1,1 2,0 0,0");
  EXPECT_EQ(before, std::string(static_cast<const char *>(polygon), before.size()));
  EXPECT_EQ(Describe(second), "layer PDF");
}

TEST(Pages, DecodedContentIsWrittenToFilesOnlyWhenAsked) {
  const platform::Settings settings(u"Software\\kaPDF-tests", u"\\PDF");
  const auto path = [](const char *name) { return std::filesystem::path(platform::DiagnosticPath(name)); };
  const auto read = [](const std::filesystem::path &file) {
    std::string bytes(64, '\0');
    std::FILE *stream = std::fopen(file.string().c_str(), "rb");
    bytes.resize(stream ? std::fread(bytes.data(), 1, bytes.size(), stream) : 0);
    if (stream) std::fclose(stream);
    return bytes;
  };
  std::filesystem::create_directories(path("x").parent_path());
  for (const char *name : {"pdf_0.txt", "pdf_1.txt", "pdf_2.txt"}) std::filesystem::remove(path(name));
  for (const bool asked : {false, true}) {
    ASSERT_TRUE(asked ? settings.WriteInteger(u"WriteToTxt", 1) : settings.RemoveKey());
    ReadPage(PageBytes({"0 0 m"}));  // a lone stream, not counted yet
    ReadPage(PageBytes({"1 1 m", "2 2\r\nl"}));
    EXPECT_EQ(read(path("pdf_0.txt")), asked ? "0 0 m" : "");
    EXPECT_EQ(read(path("pdf_1.txt")), asked ? "1 1 m" : "");
    EXPECT_EQ(read(path("pdf_2.txt")), asked ? "2 2\r\nl" : "");
    for (const char *name : {"pdf_0.txt", "pdf_1.txt", "pdf_2.txt"}) std::filesystem::remove(path(name));
  }
  settings.RemoveKey();
}

}  // namespace
}  // namespace kapdf::test
