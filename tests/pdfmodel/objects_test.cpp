#include "pdfmodel/objects.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "io/memory_file.h"
#include "io/memory_file_read.h"
#include "support/bytes.h"
#include "support/temp_file.h"

namespace kapdf {
namespace {

using test::Bytes;

// An object as text: R12.0 a reference, 3/3.9 a number, (..) a string, w(..) a wide one, /A, [ ], < >, true, null.
std::string Describe(const CPDFObject *object) {
  std::string text;
  if (const auto *reference = dynamic_cast<const CPDFIndirectObject *>(object)) {
    return "R" + std::to_string(reference->objectNumber) + "." + std::to_string(reference->generation);
  }
  if (const auto *number = dynamic_cast<const CPDFNumeric *>(object)) {
    const std::string real = std::to_string(number->realValue);
    return std::to_string(number->intValue) + "/" + real.substr(0, real.find('.') + 2);
  }
  if (const auto *string = dynamic_cast<const CPDFString *>(object))
    return (string->wide ? "w(" : "(") + string->bytes + ")";
  if (const auto *name = dynamic_cast<const CPDFNameObject *>(object)) return "/" + name->name;
  if (const auto *flag = dynamic_cast<const CPDFBool *>(object)) return flag->value ? "true" : "false";
  if (dynamic_cast<const CPDFNull *>(object)) return "null";
  if (const auto *array = dynamic_cast<const CPDFArray *>(object)) {
    for (uint32_t i = 0; i < array->Count(); ++i) text += (i ? " " : "") + Describe(array->GetAt(i));
    return "[" + text + "]";
  }
  if (const auto *dictionary = dynamic_cast<const CPDFDictionary *>(object)) {
    for (const auto *entry : dictionary->Sorted()) text += "/" + entry->name + " " + Describe(entry->value.get()) + ";";
    return "<" + text + ">";
  }
  return "-";
}

// What was not consumed: the byte in hand and all behind it.
std::string Rest(CZVBaseIO &source, uint8_t inHand) {
  std::string rest;
  for (uint8_t c = inHand; !source.AtEnd(); c = source.GetByte()) rest += static_cast<char>(c);
  return rest;
}

TEST(Objects, ParseAny) {
  const std::string n127(127, '1'), n128(128, '1'), a127(127, 'a'), a128(128, 'a');
  // clang-format off
  const struct {
    std::string text, object, rest;
  } cases[] = {
      // Numbers and references share their beginning.
      {"12 0 R/N", "R12.0", "/N"}, {"12 0 R ]", "R12.0", "]"}, {"12 0]", "12/12.0", " 0]"}, {"12 ", "12/12.0", " "},
      {"12", "12/12.0", ""}, {"12 0", "12/12.0", " 0"}, {"12 0 ", "12/12.0", " 0 "}, {"1 2 3 R", "1/1.0", " 2 3 R"},
      {"12 .5 R]", "R12.0", "]"}, {"12\xFF" "5 R", "R12.5", ""}, {"12 5\xFFR", "12/12.0", " 5\xFFR"}, {"3.9]", "3/3.9", "]"}, {"-.5 ", "0/-0.5", " "}, {"--5 ", "0/0.0", " "},
      {"4-3 ", "4/4.0", " "}, {"+7 ", "7/7.0", " "}, {"99999999999 ", "2147483647/99999999999.0", " "},
      {n127 + " ", "2147483647/" + std::to_string(std::stod(n127)).substr(0, 129), " "}, {n128 + "]", "-", "]"},
      // Names keep their text; a delimiter or white space ends them, the latter is passed over.
      {"/A#20B  /C", "/A#20B", "/C"}, {"/ /C", "/", "/C"}, {"/A(x)", "/A", "(x)"}, {"/A%c\n1", "/A%c", "1"},
      {"/" + a127 + " ", "/" + a127, ""}, {"/" + a128 + " x", "-", "x"},
      // Literal strings.
      {"()]", "()", "]"}, {"(a(b)c) 1", "(a(b)", "c) 1"}, {"(a\\)b) 1", "(a)b)", "1"},
      {"(\\n\\r\\t\\b\\f\\\\\\(\\q)", "(\n\r\t\b\f\\(q)", ""}, {"(\\101\\60\\7x\\0053)", "(A0\7x\0053)", ""},
      {"(\\5 a)", "(\5 a)", ""}, {"(\\53\\54)", "(+,)", ""},
      {"(\\19)", "(\x11)", ""},  // 9 counts as a digit
      {"(\\1a)", "(9)", ""},  // and so does the letter, by its code: 8 + 49
      {"(a\\\r\nb\\\nc)", "(a\nb\nc)", ""},  // only the carriage return goes
      {"(a\xFF" "b)]", "(a\xFF" "b)", "]"}, {"(abc", "(abc)", ""}, {"(a\\", "(a)", ""}, {"(a\\1", "(a\1)", ""},
      // Hexadecimal strings come out of the dictionary that fails first.
      {"<48656C6c6F>]", "(Hello)", "]"}, {"<4 8\n6> /A", "(H`)", "/A"}, {"<4>", "(@)", ""},
      {"<FEFF00410042>", "w(A" + std::string(1, '\0') + "B" + std::string(1, '\0') + ")", ""}, {"<>", "-", ">"},
      {"<41x42>", "(A)", "x42>"},
      // Words.
      {"true]", "true", "]"}, {"false ", "false", " "}, {"null/A", "null", "/A"}, {"nul/A", "-", "/A"},
      {"xyz", "-", "xyz"},
      // One comment is passed over, no more.
      {"% comment\n 5]", "5/5.0", "]"}, {"%\r(a)]", "(a)", "]"}, {"%a\n%b\n5", "-", "%b\n5"},
      {"% to the end", "-", ""},
      // Containers.
      {"[] 1", "[]", "1"}, {"[1 0 R(a)/N<41>true null[ ]3 0 R] x", "[R1.0 (a) /N (A) true null [] R3.0]", "x"},
      {"[1 % one\n2 %two\r\n3]", "[1/1.0 2/2.0 3/3.0]", ""}, {"[1 2", "-", ""}, {"<<>> x", "<>", "x"},
      {"<</A 1/B[2 0 R]/C<</D(e)>>>>stream", "</A 1/1.0;/B [R2.0];/C </D (e);>;>", "stream"},
      {"<< /A 1 /B", "</A 1/1.0;>", ""}, {"<</A>>x", "<>", "x"}, {"<</A 1/A 2/B 3>>", "</A 1/1.0;/B 3/3.0;>", ""},
      {"<<%c\n/A %d\n1 %e\n/B 2>>", "</A 1/1.0;/B 2/2.0;>", ""}, {"<</A 1 rubbish /B 2>> x", "</A 1/1.0;>", "x"},
      {"<<%c\n%d\r %e\n/A 1>>x", "</A 1/1.0;>", "x"}, {"<</A 1%c\n%d\n/B 2>>x", "</A 1/1.0;>", "x"},
      {"<<%c\n%d", "<>", ""},
  };
  // clang-format on
  for (const auto &c : cases) {
    MemorySource whole(Bytes(c.text));
    const test::TempFile file(c.text);
    CZVMemoryFileRead pieces(3, u"Software\\kaPDF-tests");  // a look ahead goes beyond what is at hand
    ASSERT_TRUE(pieces.Attach(file.stream()));
    for (CZVBaseIO *source : {static_cast<CZVBaseIO *>(&whole), static_cast<CZVBaseIO *>(&pieces)}) {
      uint8_t byte = 255;
      const auto object = ParseAny(*source, byte, 0);
      EXPECT_EQ(Describe(object.get()), c.object) << c.text;
      EXPECT_EQ(Rest(*source, byte), c.rest) << c.text;
    }
  }
}

template <class T>
std::string ParseAs(std::string_view text) {
  MemorySource source(Bytes(text));
  T object(source);
  return object.Parse(255) ? Describe(&object) : "refused";
}

TEST(Objects, WhatOneClassTakes) {
  EXPECT_EQ(ParseAs<CPDFArray>(" 5 6"), "[5/5.0]");  // a lone value
  EXPECT_EQ(ParseAs<CPDFArray>("/A"), "refused");
  EXPECT_EQ(ParseAs<CPDFDictionary>("rubbish << /A 1 >>"), "</A 1/1.0;>");
  for (const char *text : {"[1]", "no brackets", "rubbish <41>", ""})
    EXPECT_EQ(ParseAs<CPDFDictionary>(text), "refused") << text;
  const std::tuple<const char *, bool, uint8_t> intros[] = {{"7 0 obj<<", true, '<'},
                                                            {" 7 0\nobj [", true, ' '},
                                                            {"7 0 R", false, 'R'},
                                                            {"7 obj", false, 'o'},
                                                            {"%PDF", false, '%'}};
  for (const auto &[text, result, last] : intros) {
    MemorySource source(Bytes(text));
    CPDFObjectIntro intro(source);
    EXPECT_EQ(intro.Parse(255), result) << text;
    EXPECT_EQ(intro.lastChar, last) << text;
  }
}

TEST(Objects, NestingAndSizeHaveBounds) {
  const auto parse = [](const std::string &text) {
    MemorySource source(Bytes(text));
    uint8_t byte = 255;
    return ParseAny(source, byte, 0) != nullptr;
  };
  EXPECT_TRUE(parse(std::string(256, '[') + std::string(256, ']')));
  EXPECT_FALSE(parse(std::string(257, '[') + std::string(257, ']')));
  EXPECT_FALSE(parse(std::string(1000000, '[')));
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "<</A";
  EXPECT_TRUE(parse(deep));  // a dictionary that is not closed still counts

  std::string items = "[[";
  for (int i = 0; i < 1'900'000; ++i) items += "0 ";
  EXPECT_TRUE(parse(items + "]]"));
  for (int i = 0; i < 100'000; ++i) items += "0 ";
  EXPECT_FALSE(parse(items + "]]"));
}

TEST(Objects, LargeDictionariesFindTheFirstOfEqualKeys) {
  std::string text = "<<";
  for (int i = 0; i < 1000; ++i) text += "/K" + std::to_string(i % 500) + " " + std::to_string(i);
  text += ">>";
  MemorySource source(Bytes(text));
  CPDFDictionary dictionary(source);
  ASSERT_TRUE(dictionary.Parse(255));
  EXPECT_EQ(dictionary.Count(), 500u);
  for (int i = 0; i < 500; ++i) EXPECT_EQ(dictionary.GetAs<CPDFNumeric>("K" + std::to_string(i))->intValue, i);
  EXPECT_EQ(dictionary.Get("K500"), nullptr);
  EXPECT_EQ(dictionary.GetAs<CPDFNameObject>("K1"), nullptr);
}

}  // namespace
}  // namespace kapdf
