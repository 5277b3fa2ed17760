// Objects inside object streams, and reading on where one was while others are fetched.
#include <gtest/gtest.h>

#include <string>

#include "support/opened_pdf.h"
#include "support/pdf_builder.h"

namespace kapdf {
namespace {

using test::BigEndian;

// A document whose objects from 10 on are said to be the members 0, 1, ... of the object stream 8, and which may have a
// further plain object 5.
std::string WithObjectStream(const std::string &entries, const std::string &text, const std::string &object5 = "") {
  const std::string body = "%PDF-1.5\n1 0 obj\n<</Pages 2 0 R>>\n2 0 obj\n<</Type /Pages /Kids []>>\n5 0 obj\n" +
                           object5 + "\n8 0 obj\n<</Type /ObjStm " + entries + " /Length " +
                           std::to_string(text.size()) + ">>stream\n" + text + "\nendstream\n";
  std::string rows;
  for (int i = 0; i <= 12; ++i) {
    const size_t at = body.find("\n" + std::to_string(i) + " 0 obj");
    const bool plain = at != std::string::npos;
    rows += i >= 10 ? BigEndian(2, 1) + BigEndian(8, 4) + BigEndian(static_cast<unsigned>(i - 10), 1)
                    : BigEndian(plain, 1) + BigEndian(plain ? at + 1 : 0, 4) + BigEndian(0, 1);
  }
  return test::WithXRefStream(body, 9, "/Root 1 0 R /W [1 4 1] /Size 13", rows);
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
  const std::string fill = "\x14\x14";  // two bytes more than the length are copied
  const struct {
    std::string entries, text, object10, object11;
  } cases[] = {
      {"/N 2 /First 10", "10 0 11 4 /AB /CD /E", "10 0 obj /AB /", "11 0 obj /CD /E" + fill},
      {"/N 2 /First 12", "10\n0  11\n\n4 /AB /CD", "10 0 obj /AB /", "11 0 obj /CD" + fill},
      // No such member keeps what was there; N counts, not the header, which may hold fewer.
      {"/N 1 /First 5", "10 0 /A", "10 0 obj /A" + fill, "10 0 obj /A" + fill},
      {"/N 1 /First 10", "10 0 11 4 /AB /CD", "10 0 obj /AB /CD" + fill, "10 0 obj /AB /CD" + fill},
      {"/N 9 /First 5", "10 0 /A", "10 0 obj /A" + fill, "10 0 obj /A" + fill},
      // Offsets out of order go on to the end, one outside gives nothing.
      {"/N 2 /First 10", "10 4 11 0 /AB /CD", "10 0 obj /CD" + fill, "11 0 obj /AB /CD" + fill},
      {"/N 1 /First 7", "10 999 /A", "10 0 obj " + fill, "10 0 obj " + fill},
      {"/N 1", "10 0 /A", "", ""},
      {"/N 1 /First 5 /Type /X", "10 0 /A", "10 0 obj /A" + fill, "10 0 obj /A" + fill},
      {"/N 1 /First 5 /Filter /X", "10 0 /A", "?", "?"},
      // No object stream is found through another: its length stands in it, or a plain one is fine.
      {"/N 1 /First 5 /Length 10 0 R", "10 0 7", "?", "?"},
      {"/N 1 /First 5 /Length 5 0 R", "10 0 7", "10 0 obj 7" + fill, "10 0 obj 7" + fill},
  };
  for (const auto &c : cases) {
    test::OpenedPdf pdf(WithObjectStream(c.entries, c.text, "6"));
    ASSERT_EQ(pdf.result, 0u) << c.entries << c.text;
    EXPECT_EQ(TextAt(pdf.file, 10), c.object10) << c.entries << c.text;
    EXPECT_EQ(TextAt(pdf.file, 11), c.object11) << c.entries << c.text;
    EXPECT_EQ(TextAt(pdf.file, 1).substr(0, 7), "1 0 obj") << c.entries;  // back to the file
  }
}

TEST(ObjectStreams, OneOfAnotherTypeOrInsideItselfIsNone) {
  const std::string bytes = WithObjectStream("/N 1 /First 5", "10 0 7");
  test::OpenedPdf other(test::Replaced(bytes, "/ObjStm", "/ObjStn"));
  EXPECT_EQ(TextAt(other.file, 10), "?");
  const std::string itsRow = BigEndian(1, 1) + BigEndian(bytes.find("8 0 obj"), 4);
  test::OpenedPdf itself(test::Replaced(bytes, itsRow, BigEndian(2, 1) + BigEndian(8, 4)));
  EXPECT_EQ(TextAt(itself.file, 10), "?");
}

TEST(ObjectStreams, AStreamWhoseLengthIsAMember) {
  test::OpenedPdf pdf(WithObjectStream("/N 2 /First 10", "10 0 11 2 3 <</Length 10 0 R>>stream",
                                       "<</Length 10 0 R /Length1 10 0 R>>stream\nabcdef"));
  uint8_t first;
  ASSERT_TRUE(OpenObject(pdf.file.objects(), 5, first));
  CPDFStream stream(pdf.file.objects());
  ASSERT_TRUE(stream.Parse(first));
  EXPECT_EQ(stream.length1(), 3);
  ByteBuffer bytes;
  ASSERT_TRUE(stream.ReadAll(bytes));
  EXPECT_EQ(std::string(bytes.data(), bytes.data() + bytes.size()), "abc");

  // Within the block that the fetch replaces, it is the caller's loss alone.
  ASSERT_TRUE(OpenObject(pdf.file.objects(), 11, first));
  CPDFStream inside(pdf.file.objects());
  EXPECT_FALSE(inside.Parse(first));
  EXPECT_EQ(TextAt(pdf.file, 10).substr(0, 10), "10 0 obj 3");
}

TEST(BlockSource, MarksLeadBackUntilTheBlockIsReplaced) {
  const test::TempFile temp("0123456789");
  CPDFBlockSource source(u"Software\\kaPDF-tests");
  ASSERT_TRUE(source.Attach(temp.stream()));
  source.ActivateBlock("abcdef");
  source.Seek(2, SeekOrigin::kStart);
  const auto mark = source.GetMark();
  EXPECT_FALSE(source.Seek(7, SeekOrigin::kStart));
  EXPECT_EQ(source.GetByte(), 'c');  // a refused position changes nothing
  EXPECT_TRUE(source.Restore(mark));
  EXPECT_EQ(source.GetByte(), 'c');
  source.ActivateBlock("xyz");
  EXPECT_FALSE(source.Restore(mark));
}

}  // namespace
}  // namespace kapdf
