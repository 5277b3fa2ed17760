// Objects inside object streams, and reading on where one was while others are fetched.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "support/opened_pdf.h"
#include "support/pdf_builder.h"

namespace kapdf {
namespace {

using test::BigEndian;

// A document whose objects from 10 on are said to be the members 0, 1, ... of the object stream 8. Its cross-reference
// stream 9 has rows for 0 to `last`; `objects` are further plain ones by number.
std::string WithObjectStream(const std::string &streamEntries, const std::string &text, int last,
                             const std::vector<std::pair<int, std::string>> &objects = {}) {
  std::string out = "%PDF-1.5\n";
  std::map<int, std::string> rows;
  const auto put = [&](int number, const std::string &body) {
    rows[number] = BigEndian(1, 1) + BigEndian(out.size(), 4) + BigEndian(0, 2);
    out += std::to_string(number) + " 0 obj\n" + body + "\nendobj\n";
  };
  put(1, "<</Pages 2 0 R>>");
  put(2, "<</Type /Pages /Kids []>>");
  for (const auto &[number, body] : objects) put(number, body);
  put(8, "<</Type /ObjStm " + streamEntries +
             (streamEntries.find("/Length") == std::string::npos ? " /Length " + std::to_string(text.size())
                                                                 : std::string()) +
             ">>stream\n" + text + "\nendstream");
  std::string data;
  for (int i = 0; i <= last; ++i) {
    if (i >= 10)
      data += BigEndian(2, 1) + BigEndian(8, 4) + BigEndian(static_cast<unsigned>(i - 10), 2);
    else
      data += rows.count(i) ? rows[i] : std::string(7, '\0');
  }
  const size_t start = out.size();
  out += "9 0 obj<</Type /XRef /Root 1 0 R /W [1 4 2] /Size " + std::to_string(last + 1) + " /Length " +
         std::to_string(data.size()) + ">>stream\n" + data + "\nendstream\nendobj\nstartxref\n" +
         std::to_string(start) + "\n%%EOF\n";
  return out;
}

// The bytes at an object's position to the end of what can be read there, "?" for an unknown object.
std::string TextAt(CPDFFile &file, int32_t number) {
  const uint32_t position = file.objects().Resolve(number);
  if (position == 0) return "?";
  std::string text(file.Seek(position, SeekOrigin::kStart) ? 60 : 0, '\0');
  text.resize(file.Read(text.data(), text.size()));
  return text;
}

TEST(ObjectStreams, TheTextIsCutOutOfTheStream) {
  const std::string fill = "\x14\x14";
  const struct {
    const char *what;
    std::string entries, text;
    std::vector<std::string> objects;  // from 10
  } cases[] = {
      // Two bytes more than the length are copied.
      {"two", "/N 2 /First 10", "10 0 11 4 /AB /CD /E", {"10 0 obj /AB /", "11 0 obj /CD /E" + fill}},
      {"one, up to the end", "/N 1 /First 5", "77 0 [1 2]", {"77 0 obj [1 2]" + fill}},
      {"other white space in the header",
       "/N 2 /First 12",
       "10\n0  11\n\n4 /AB /CD",
       {"10 0 obj /AB /", "11 0 obj /CD" + fill}},
      {"no such member keeps what was there", "/N 1 /First 5", "10 0 /A", {"10 0 obj /A" + fill, "10 0 obj /A" + fill}},
      {"N counts, not the header",
       "/N 1 /First 10",
       "10 0 11 4 /AB /CD",
       {"10 0 obj /AB /CD" + fill, "10 0 obj /AB /CD" + fill}},
      {"the header may hold fewer than N", "/N 9 /First 5", "10 0 /A", {"10 0 obj /A" + fill}},
      {"offsets out of order go on to the end",
       "/N 2 /First 10",
       "10 4 11 0 /AB /CD",
       {"10 0 obj /CD" + fill, "11 0 obj /AB /CD" + fill}},
      {"an offset outside gives nothing", "/N 1 /First 7", "10 999 /A", {"10 0 obj " + fill}},
      {"no header length: no member, and never was", "/N 1", "10 0 /A", {""}},
      {"of two types the first counts", "/N 1 /First 5 /Type /X", "10 0 /A", {"10 0 obj /A" + fill}},
      {"unknown filter", "/N 1 /First 5 /Filter /X", "10 0 /A", {"?"}},
  };
  for (const auto &c : cases) {
    test::OpenedPdf pdf(WithObjectStream(c.entries, c.text, 12));
    ASSERT_EQ(pdf.result, 0u) << c.what;
    int32_t number = 10;
    for (const std::string &expected : c.objects) EXPECT_EQ(TextAt(pdf.file, number++), expected) << c.what;
    EXPECT_EQ(TextAt(pdf.file, 1).substr(0, 7), "1 0 obj") << c.what;  // back to the file
  }
}

TEST(ObjectStreams, RowsArePackedAndPredicted) {
  std::string rows = test::PngUpRows("10 0 11 4 /AB /CD   ", 5);
  rows = test::Deflate(rows);
  test::OpenedPdf pdf(
      WithObjectStream("/N 2 /First 10 /Filter /Fl /DecodeParms <</Predictor 15 /Columns 5>>", rows, 11));
  EXPECT_EQ(TextAt(pdf.file, 11).substr(0, 12), "11 0 obj /CD");
}

TEST(ObjectStreams, NoneIsFoundThroughAnother) {
  test::OpenedPdf other(test::Replaced(WithObjectStream("/N 1 /First 5", "10 0 7", 10), "/ObjStm", "/ObjStn"));
  EXPECT_EQ(TextAt(other.file, 10), "?");
  // The length of the stream stands in the stream; the stream is a member of itself; a plain length is fine.
  test::OpenedPdf itself(WithObjectStream("/N 1 /First 5 /Length 10 0 R", "10 0 7", 10));
  EXPECT_EQ(TextAt(itself.file, 10), "?");
  test::OpenedPdf plain(WithObjectStream("/N 1 /First 5 /Length 5 0 R", "10 0 7", 10, {{5, "6"}}));
  EXPECT_EQ(TextAt(plain.file, 10), "10 0 obj 7\x14\x14");
  const std::string row = BigEndian(2, 1) + BigEndian(8, 4);
  const std::string bytes = WithObjectStream("/N 1 /First 5", "10 0 7", 10);
  const std::string rowOf8 = BigEndian(1, 1) + BigEndian(bytes.find("8 0 obj"), 4);
  test::OpenedPdf nested(test::Replaced(bytes, rowOf8, row));
  EXPECT_EQ(TextAt(nested.file, 10), "?");
}

TEST(ObjectStreams, AStreamWhoseLengthIsAMember) {
  test::OpenedPdf pdf(WithObjectStream("/N 2 /First 10", "10 0 11 2 3 <</Length 10 0 R>>stream", 11,
                                       {{5, "<</Length 10 0 R /Length1 10 0 R>>stream\nabcdef"}}));
  uint8_t first;
  ASSERT_TRUE(OpenObject(pdf.file.objects(), 5, first));
  CPDFStream stream(pdf.file.objects());
  ASSERT_EQ(stream.Parse(first), 0);
  EXPECT_EQ(stream.length(), 3);
  EXPECT_EQ(stream.length1(), 3);
  EXPECT_FALSE(pdf.file.blockActive());
  ByteBuffer bytes;
  ASSERT_TRUE(stream.ReadAll(bytes));
  EXPECT_EQ(std::string(bytes.data(), bytes.data() + bytes.size()), "abc");

  // Within the block that the fetch replaces, it is the caller's loss alone.
  ASSERT_TRUE(OpenObject(pdf.file.objects(), 11, first));
  CPDFStream inside(pdf.file.objects());
  EXPECT_EQ(inside.Parse(first), 1);
  EXPECT_EQ(TextAt(pdf.file, 10).substr(0, 10), "10 0 obj 3");
}

TEST(BlockSource, MarksLeadBack) {
  const test::TempFile temp("0123456789");
  CPDFBlockSource source(u"Software\\kaPDF-tests");
  ASSERT_TRUE(source.Attach(temp.stream()));
  source.Seek(4, SeekOrigin::kStart);
  const auto inFile = source.GetMark();
  source.ReactivateBlock();  // there never was one
  EXPECT_EQ(source.GetByte(), 255);
  source.ActivateBlock("abcdef");
  source.Seek(2, SeekOrigin::kStart);
  const auto inBlock = source.GetMark();
  EXPECT_TRUE(source.Restore(inFile));
  EXPECT_EQ(source.GetByte(), '4');
  EXPECT_TRUE(source.Restore(inBlock));
  EXPECT_EQ(source.GetByte(), 'c');
  EXPECT_TRUE(source.Seek(1, SeekOrigin::kCurrent));
  EXPECT_EQ(source.Tell(), 4);
  EXPECT_FALSE(source.Seek(0, SeekOrigin::kEnd));
  EXPECT_FALSE(source.Seek(7, SeekOrigin::kStart));
  EXPECT_FALSE(source.Seek(-5, SeekOrigin::kCurrent));
  EXPECT_EQ(source.GetByte(), 'e');  // a refused position changes nothing
  source.ActivateBlock("xyz");
  EXPECT_FALSE(source.Restore(inBlock));
  EXPECT_TRUE(source.Restore(inFile));
  EXPECT_EQ(source.GetByte(), '4');
}

}  // namespace
}  // namespace kapdf
