// Files of at most a few megabytes, each built on one way to ask for more time or memory than its size allows.
#include <zlib.h>

#include <cstdlib>
#include <functional>

#include "seeds/seeds.h"
#include "support/pdf_builder.h"

namespace kapdf::fuzz {
namespace {

using namespace kapdf::test;

std::string Repeated(std::string_view text, size_t times) {
  std::string out;
  out.reserve(text.size() * times);
  for (size_t i = 0; i < times; ++i) out += text;
  return out;
}

// A zlib stream of a text many times over, without holding it at once.
std::string DeflatedRepeats(std::string_view text, size_t bytes) {
  const std::string piece = Repeated(text, (size_t{1} << 20) / text.size());
  z_stream stream{};
  if (deflateInit(&stream, Z_BEST_SPEED) != Z_OK) std::abort();
  std::string out, room(size_t{1} << 16, '\0');
  for (size_t done = 0; done < bytes; done += piece.size()) {
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(piece.data()));
    stream.avail_in = static_cast<uInt>(piece.size());
    const int flush = done + piece.size() < bytes ? Z_NO_FLUSH : Z_FINISH;
    do {
      stream.next_out = reinterpret_cast<Bytef *>(room.data());
      stream.avail_out = static_cast<uInt>(room.size());
      deflate(&stream, flush);
      out.append(room.data(), room.size() - stream.avail_out);
    } while (stream.avail_out == 0);
  }
  deflateEnd(&stream);
  return out;
}

// One page whose content is already deflated.
PdfBuilder PageOf(std::string_view deflated, std::string_view entries = "") {
  return PagesOf({""}, "/MediaBox [0 0 1000000000 1000000000] " + std::string(entries))
      .Stream(4, "/Filter /FlateDecode", deflated);
}

void AddContentBombs(SeedFolder &folder) {
  constexpr size_t kGigabyte = size_t{1} << 30, kTens = size_t{12} << 20;
  const struct {
    std::string_view name, text;
    size_t bytes;
  } repeats[] = {
      {"content_zeros", std::string_view("\0", 1), kGigabyte},
      {"content_line_ends", "\n", kGigabyte},
      {"content_save", "q\n", kTens},
      {"content_text_objects", "BT ET ", kTens},
      {"content_no_operator", "a\n", kTens},
      {"content_numbers", "1 2 3 4 5 6 7 8\n", kTens},
      {"content_open_strings", "(\n", kTens},
      {"content_open_dictionaries", "<<", kTens},
      {"content_inline_images", "BI ID\n", kTens},
      {"content_open_path", "1 1 l ", kTens},
      {"content_strokes", "0 0 m 1 1 l S\n", kTens},
      {"content_curves", "0 0 m 150000 0 0 150000 150000 150000 c n\n", size_t{1} << 20},
      {"content_states", "/A gs /B gs ", kTens},
  };
  for (const auto &one : repeats) {
    folder.Add(one.name, PageOf(DeflatedRepeats(one.text, one.bytes)).Build());
  }
  std::string dashes, patterns = "[";
  for (int i = 0; i < 300'000; ++i) dashes += "[" + std::to_string(i) + "]0 d\n";
  for (int i = 0; i < 1'000'000; ++i) patterns += "1 ";
  folder.Add("content_dashes", PageOf(Deflate(dashes + "0 0 m 1 1 l S")).Build());
  folder.Add("content_long_dash", PageOf(Deflate(patterns + "]0 d 0 0 m 1 1 l S")).Build());
  std::string contents;
  for (int i = 0; i < 200'000; ++i) contents += "4 0 R ";
  folder.Add(
      "content_shared",
      PageOf(Deflate(std::string(1 << 16, ' '))).Object(3, "<</Type /Page /Contents [" + contents + "]>>").Build());
}

void AddResourceBombs(SeedFolder &folder) {
  std::string states, uses;
  for (int i = 0; i < 100'000; ++i) {
    states += "/S" + std::to_string(i) + " 5 0 R";
    uses += "/S" + std::to_string(i) + " gs\n";
  }
  const std::string huge = "<</Type /ExtGState /ca 1 /X [" + Repeated("[1]", 300'000) + "]>>";
  const PdfBuilder page = PageOf(Deflate(uses), "/Resources <</ExtGState <<" + states + ">>>>").Object(5, huge);
  folder.Add("resources_shared_state", page.Build());
  folder.Add("resources_shared_state_packed", page.Build(XRefForm::kObjectStream));
}

void AddObjectBombs(SeedFolder &folder) {
  const auto page = [&](std::string_view name, std::string_view entries) {
    folder.Add(name, OnePage("0 0 m 1 1 l S", "/MediaBox [0 0 9 9] " + std::string(entries)));
  };
  page("nesting_arrays", "/A " + Repeated("[", 1'000'000));
  page("nesting_dictionaries", "/A " + Repeated("<</A ", 300'000));
  page("equal_keys", Repeated("/A 1", 500'000));
  page("no_dictionary", ">> " + Repeated("x", 3'000'000));
}

void AddCrossReferenceBombs(SeedFolder &folder) {
  const std::string packed = OnePage("0 0 m 1 1 l S", "/MediaBox [0 0 9 9]", XRefForm::kObjectStream);
  folder.Add("count_members", Replaced(packed, "/N ", "/N 2000000000 /M "));
  folder.Add("count_first", Replaced(packed, "/First ", "/First 2000000000 /M "));
  folder.Add("count_columns", Replaced(packed, "/Columns 7", "/Columns 2000000000"));
}

void AddPageTreeBombs(SeedFolder &folder) {
  const auto tree = [] { return PdfBuilder().Object(1, "<</Type /Catalog /Pages 2 0 R>>"); };
  folder.Add("tree_circle", tree()
                                .Object(2, "<</Type /Pages /Kids [3 0 R 3 0 R]>>")
                                .Object(3, "<</Type /Pages /Kids [4 0 R 2 0 R]>>")
                                .Object(4, "<</Type /Page>>")
                                .Build());
  PdfBuilder doubled = tree(), chain = tree();
  for (int i = 2; i < 66; ++i) {
    const std::string next = std::to_string(i + 1) + " 0 R ";
    doubled.Object(i, "<</Type /Pages /Kids [" + next + next + "]>>");
  }
  for (int i = 2; i < 100'000; ++i) chain.Object(i, "<</Type /Pages /Kids [" + std::to_string(i + 1) + " 0 R]>>");
  folder.Add("tree_doubled", doubled.Object(66, "<</Type /Page>>").Build());
  folder.Add("tree_chain", chain.Object(100'000, "<</Type /Page>>").Build());
  folder.Add("tree_same_large_page", tree()
                                         .Object(2, "<</Type /Pages /Kids [" + Repeated("3 0 R ", 10'000) + "]>>")
                                         .Object(3, "<</Type /Page /A (" + std::string(200'000, 'x') + ")>>")
                                         .Build());
}

}  // namespace

void AddBombs(SeedFolder &folder) {
  AddContentBombs(folder);
  AddResourceBombs(folder);
  AddObjectBombs(folder);
  AddCrossReferenceBombs(folder);
  AddPageTreeBombs(folder);
}

}  // namespace kapdf::fuzz
