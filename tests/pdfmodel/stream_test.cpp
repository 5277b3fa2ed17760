#include "pdfmodel/stream.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "support/opened_pdf.h"
#include "support/pdf_builder.h"

namespace kapdf {
namespace {

using test::Deflate;

// The data of object 5 as a stream.
std::string ReadStream(CPDFFile &file) {
  uint8_t first;
  if (!OpenObject(file.objects(), 5, first)) return "none";
  CPDFStream stream(file.objects());
  ByteBuffer bytes;
  if (!stream.Parse(first) || !stream.ReadAll(bytes)) return stream.hasData() ? "no codec" : "no data";
  return {bytes.data(), bytes.data() + bytes.size()};
}

TEST(Streams, FiltersLengthsAndLineEnds) {
  const std::string flate = Deflate("Hello"), large = Deflate(std::string(3'000'000, 'x')),
                    a85 = "Gb\"@rc,n'4!!S;^o`~>";
  const auto length = [](const std::string &data) { return " /Length " + std::to_string(data.size()); };
  // clang-format off
  const struct {
    std::string entries, behind, outcome;  // behind the dictionary
  } cases[] = {
      {"/Length 3", "stream\nabc", "abc"}, {"/Length 3", "stream\r\nabc", "abc"},
      {"/Length 3", "stream\rabc", "abc"},
      {"/Length 3", "stream abc", "abc"},  // one byte, whatever it is
      {"/Length 3", " \n stream\n\nbc", "\nbc"}, {"/Length 3", "strean\nabc", "no data"},
      {"/Length 3 /Filter /DCTDecode", "other", "no data"}, {"/Length 0", "stream\nabc", "no data"},
      {"/Length -4", "stream\nabc", "no data"}, {"", "stream\nabc", "no data"}, {"/Length (3)", "stream\nabc", "no data"},
      {"/Length 6 0 R", "stream\nabc", "abc"}, {"/Length 77 0 R", "stream\nabc", "no data"},
      {"/Length 3 /Filter []", "stream\nabc", "abc"}, {"/Length 3 /Filter 6 0 R", "stream\nabc", "abc"},
      {"/Length 3 /Filter /DCTDecode", "stream\nabc", "no codec"},
      {"/Filter /FlateDecode" + length(flate), "stream\n" + flate, "Hello"},
      {"/Filter /Fl /Length 1", "stream\n" + flate, "Hello"},
      {"/Filter [/FlateDecode]" + length(flate), "stream\r\n" + flate, "Hello"},
      {"/Filter [/A85 /Fl]" + length(a85), "stream\n" + a85, "Hello"},
      {"/Filter [/Fl /A85]" + length(a85), "stream\n" + a85, a85},  // no known order: as it stands
      {"/Filter [/A85 /AHx /Fl] /Length 3", "stream\nabc", "abc"},
      {"/Filter /AHx /Length 5", "stream\n4142>", "AB"},
      {"/Filter /ASCII85Decode /Length 9", "stream\n87cURDZ~>", "Hello"},
      {"/Filter /Fl /DecodeParms [null null]" + length(flate), "stream\n" + flate, "no codec"},
      {"/Filter /Fl" + length(large), "stream\n" + large, std::string(3'000'000, 'x')},
  };
  // clang-format on
  for (const auto &c : cases) {
    test::OpenedPdf pdf(test::PagesOf({"n"}).Object(5, "<<" + c.entries + ">>" + c.behind).Object(6, "3").Build());
    EXPECT_EQ(ReadStream(pdf.file), c.outcome) << c.entries << c.behind;
  }
  test::OpenedPdf beyond(test::PagesOf({"n"}).Object(5, "<</Length 2000000000>>stream\nabc").Build());
  EXPECT_EQ(ReadStream(beyond.file).substr(0, 4), "abc\n");
}

// Those that are decoded at once when they are in good order, and in pieces as far as they go when they are not.
TEST(Streams, LongOnes) {
  std::string plain;
  for (int i = 0; i < 20000; ++i) plain += std::to_string(i * i);
  const std::string zeros(5'000'000, '0'), coded = Deflate(plain);
  ASSERT_GT(coded.size(), 40000u);
  const struct {
    std::string data;
    size_t length;
    std::string outcome;
  } cases[] = {{coded + "rubbish", coded.size(), plain},
               {coded, coded.size() - 9, plain},
               {coded.substr(0, coded.size() - 1) + "?", coded.size(), plain},  // the checksum
               {Deflate(plain + zeros), coded.size() + 9000, plain + zeros},
               {coded.substr(0, 20000), 20000, plain.substr(0, 40000)}};
  for (const auto &c : cases) {
    const std::string entries = "<</Filter /Fl /Length " + std::to_string(c.length) + ">>stream\n";
    test::OpenedPdf pdf(test::PagesOf({"n"}).Object(5, entries + c.data).Build());
    const std::string read = ReadStream(pdf.file);
    EXPECT_TRUE(c.data.size() == 20000 ? read.starts_with(c.outcome) : read == c.outcome) << c.length;
  }
}

TEST(Streams, ParametersAndSingleReads) {
  const std::string parameters = "/Length1 9 /DecodeParms <</Predictor 12 /Columns 4>>";
  test::OpenedPdf pdf(
      test::PagesOf({"n"}).FlateStream(5, parameters, "AB").Stream(6, "/Length1 9 /Length2 1", "x").Build());
  uint8_t first, two[2];
  ASSERT_TRUE(OpenObject(pdf.file.objects(), 5, first));
  CPDFStream stream(pdf.file.objects()), other(pdf.file.objects());
  EXPECT_EQ(stream.ReadDecoded(two, 2), 1u);  // no codec yet
  ASSERT_TRUE(stream.Parse(first));
  EXPECT_EQ(std::tuple(stream.length1(), stream.predictor(), stream.columns()), std::tuple(9, 12, 4));
  EXPECT_EQ(stream.ReadByte(), 'A');
  EXPECT_EQ(stream.ReadDecoded(two, 2), 1u);  // fewer than asked
  EXPECT_EQ(stream.ReadByte(), 255);
  EXPECT_EQ(stream.status(), 5u);
  ASSERT_TRUE(OpenObject(pdf.file.objects(), 6, first));
  ASSERT_TRUE(other.Parse(first));
  EXPECT_EQ(other.length1(), 0);  // a second length takes it away
}

TEST(Streams, UndoRows) {
  using namespace std::string_literals;
  // clang-format off
  const struct {
    std::string rows;
    int predictor, columns;
    std::string bytes;
  } cases[] = {
      {"\2\1\2\2\1\1\2\0\3"s, 12, 2, "\1\2\2\3\2\6"s}, {"\1\1\1\1\1\5"s, 10, 2, "\1\2\1\6"s},
      {"\2\1\1\1\5\5\2\1\1"s, 2, 2, "\1\1\5\12\6\13"s},
      {"\2\1\2\3\7\7\4\7\7\2\1\1"s, 15, 2, "\1\2\2\3"s},  // tags above 2 write nothing
      {"\0\7\7"s, 15, 2, ""s},  // nor does tag 0,
      {"\0\7\7\2\1\1"s, 15, 2, "\1\10"s},  // which leaves the start of the bytes as the row above
      {"\2\1\2\0\7\7\2\1\1"s, 15, 2, "\1\2\2\3"s},
      {"\2\1\2\2\1"s, 12, 2, "\1\2"s},  // a row cut short is dropped
      {"\2\1"s, 12, 2, ""s}, {"\2\1\2"s, 1, 2, "\2\1\2"s}, {"\2\1\2"s, 12, 0, "\2\1\2"s},
      {"\2\1\2"s, 12, 2147483647, ""s},
  };
  // clang-format on
  for (const auto &c : cases) {
    std::string bytes = c.rows;
    bytes.resize(UndoRows({reinterpret_cast<uint8_t *>(bytes.data()), bytes.size()}, c.predictor, c.columns));
    EXPECT_EQ(testing::PrintToString(bytes), testing::PrintToString(c.bytes)) << testing::PrintToString(c.rows);
  }
}

}  // namespace
}  // namespace kapdf
