// The host program against the fake module: what it reads, writes, says and leaves behind.
#include "commands/tool.h"

#include <gtest/gtest.h>
#include <png.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "jsonl/base64.h"
#include "platform/settings.h"
#include "support/bytes.h"
#include "system/os.h"

namespace kapdf::tool {
namespace {

struct Ran {
  int status;
  std::string out, err;
};

Ran Kapdf(std::vector<std::string> words, const std::string &input = "") {
  // Beside the tests, with this system's ending.
  words.emplace_back("--lib");
  words.push_back(ProgramFolder() + "/fake_module" + ModuleFileName().substr(ModuleFileName().find('.')));
  std::istringstream in(input);
  std::ostringstream out, err;
  const int status = RunTool(words, {in, out, err});
  return {status, out.str(), err.str()};
}

std::vector<std::string> LinesWith(const std::string &text, const std::string &start) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with(start)) lines.push_back(line);
  }
  return lines;
}

// The 1028 bytes of a palette that begins like this and goes on with zeros.
std::string Palette(std::string base64) {
  base64.resize(1371, 'A');
  return base64 + "=";
}

// A record of every kind, as the import writes them: numbers at the edge, names that are no valid Unicode.
const std::string kAll = R"({"kind":"property","name":"Scale","type":2,"value":"0.5"}
{"kind":"layer","name":"A \"<&> \u000aä😀","color":258,"width":0.25,"lineType":"Continuous","layerOff":true,"flagB":5}
{"kind":"layer","name":[65,55296,66],"color":2147483903,"width":-2}
{"kind":"lineType","name":"Dash","segments":[0.1,-1.5,1,1,1,1,1,1,1,1,1,1,1,1,1,-2],"segmentCount":20}
{"kind":"font","name":"Style","face":"Face","height":2.5,"widthFactor":0.9,"styleCode":7,"codePage":-1,"program":"AAEC/v8="}
{"kind":"font","name":"Mapped","face":"Face","height":2.5,"widthFactor":0.9,"program":"AAEC","mapping":")" +
                         std::string(174762, 'B') + R"(A="}
{"kind":"point","layer":"","at":[1,-0.0],"size":-2,"pointStyle":2}
{"kind":"line","layer":[56320],"color":7,"flags":64,"section":6,"width":0.1,"points":[[1e-320,1.7976931348623157e+308],[0.3333333333333333,-1e+21]]}
{"kind":"circle","layer":"","width":0,"center":[123456789012345680,2],"radius":3}
{"kind":"arc","layer":"","width":0.5,"center":[1,2],"radius":3,"startAngle":5,"endAngle":4}
{"kind":"ellipseArc","layer":"","width":0.5,"center":[1,2],"majorRadius":3,"minorRadius":4,"rotation":0.7,"startAngle":1,"endAngle":1}
{"kind":"solid","layer":"","points":[[1,2],[3,4],[5,6],[7,8]]}
{"kind":"text","layer":"","text":"café","at":[1,2],"height":3.5,"angle":0.5,"styleCode":4}
{"kind":"composite","layer":""}
{"kind":"polyline","layer":"","width":1,"points":[[1,2],[3,4],[5,6]]}
{"kind":"polyline","layer":"","width":1,"points":[[1,2,9],[3,4,8]]}
{"kind":"polygon","layer":"","opacity":12.5,"contours":[[[0,0],[9,0],[9,9]],[[1,1],[2,1],[2,2]]]}
{"kind":"polygon","layer":"","opacity":12.5,"strokeToo":3,"points":[[0,0],[9,0],[9,9]],"contourStarts":[1,2]}
{"kind":"raster","layer":"","image":"Im1","imageKey":"9223372036854775809","at":[1,2],"scaleX":3,"scaleY":4,"angle":0.1,"opacity":50,"clipMode":1}
{"kind":"rasterHeader","pixelsWide":2,"pixelsHigh":2,"dpi":300,"depthHint":1,"pixelType":2,"palette":")" +
                         Palette("BwcH") + R"("}
{"kind":"rasterRow","data":"iHdmVUQ="}
{"kind":"raster","layer":"","imageKey":"9223372036854775809","at":[1,2],"scaleX":1,"scaleY":1}
)";

TEST(Tool, WhatImportWroteExportGivesBackBitByBit) {
  test::WriteFile("all.pdf", kAll);
  const Ran imported = Kapdf({"import", "all.pdf", "--page", "2"});
  ASSERT_EQ(imported.status, 0) << imported.err;
  EXPECT_NE(imported.out.find("\"page\":2,\"pages\":3"), std::string::npos);
  EXPECT_EQ(imported.out.substr(imported.out.find('\n') + 1), kAll);
  EXPECT_NE(imported.err.find("1 of the rasters"), std::string::npos) << imported.err;
  const Ran exported = Kapdf({"export", "-", "-o", "all.log"}, imported.out);
  ASSERT_EQ(exported.status, 0) << exported.err;
  const std::string log = test::ReadFile("all.log");
  for (const std::string &line : LinesWith(kAll, "{")) EXPECT_NE(log.find(line + "\n"), std::string::npos) << line;
  EXPECT_NE(exported.err.find("1 composite"), std::string::npos) << exported.err;
}

TEST(Tool, SaysInOneSentenceWhatIsWrong) {
  test::WriteFile("all.pdf", kAll);
  test::WriteFile("damaged.pdf", "refuse 2");
  test::WriteFile("encrypted.pdf", "refuse 11");
  test::WriteFile("infinite.pdf", "infinite");
  test::WriteFile("point.jsonl", "{\"kind\":\"point\",\"at\":[1,2]}\n");
  test::WriteFile("empty.jsonl", "\n");
  for (const char *older : {"older.jsonl", "older.pdf"}) test::WriteFile(older, "as it was");
  test::WriteFile("two.jsonl", "{\"kapdf\":1}\n{\"kapdf\":1}\n");
  const std::vector<std::string> onePoint = {"export", "point.jsonl", "-o"};
  const auto with = [](std::vector<std::string> words, const std::vector<std::string> &more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
  };
  const struct {
    std::vector<std::string> words;
    int status;
    std::string says;
  } cases[] = {
      {{"info", "missing.pdf"}, 1, "cannot be opened for reading (result 4)"},
      {{"import", "encrypted.pdf"}, 1, "encrypted (result 11)"},
      {{"import", "infinite.pdf", "-o", "gone.jsonl"}, 1, "record 1 that came from the module"},
      {{"import", "all.pdf", "--page", "4"}, 1, "its pages are 1 to 3"},
      {{"import", "all.pdf", "-o", "gone.dxf"}, 2, "must be named .jsonl or .svg"},
      {{"import", "all.pdf", "-o", "no/such/folder.jsonl"}, 1, "cannot write"},
      {{"export", "point.jsonl", "-o", "no/such/folder.pdf"}, 1, "cannot be opened for writing (result 3)"},
      {{"export", "point.jsonl", "-o", "point.jsonl"}, 2, "would overwrite the input"},
      {{"export", "two.jsonl", "-o", "gone.pdf", "--page", "3"}, 1, "has no page 3; its pages are 1 to 2"},
      {with(onePoint, {"gone.pdf", "--replace", "1"}), 1, "to replace a page of"},
      {with(onePoint, {"all.pdf", "--replace", "4"}), 1, "has no page 4; its pages are 1 to 3"},
      {with(onePoint, {"all.pdf", "--replace", "1", "--append"}), 2, "excludes"},
      {with(onePoint, {"all.pdf", "--replace", "1", "two.jsonl"}), 2, "--replace takes one drawing only"},
      {with(onePoint, {"encrypted.pdf", "--append"}), 1, "cannot add to"},
      {with(onePoint, {".", "--append"}), 1, "it is a folder"},
      {with(onePoint, {"all.pdf", "--append", "--options", "/col X"}), 1, "option string is wrong (result 18)"},
      {with(onePoint, {"all.pdf", "--append", "two.jsonl"}), 1, "choose one with --page"},
      {with(onePoint, {"gone.pdf", "empty.jsonl"}), 1, "holds no drawing"},
      {{"convert", "all.pdf", "all.pdf"}, 2, "would overwrite the input"},
      {{"convert", "infinite.pdf", "gone.pdf", "--page", "4"}, 1, "its pages are 1 to 3"},
      {{"convert", "damaged.pdf", "older.pdf", "--append"}, 1, "(result 2)"},
      {{"convert", "all.pdf", "older.jsonl"}, 2, "must be named .pdf, not "},
      {with(onePoint, {"gone.DXF"}), 2, "must be named .pdf, not "},
      {{"info", "all.pdf", "--preview", "gone.pdf"}, 2, "must be named .bmp, not "},
      {{"import", "all.pdf", "--set", "Qualty=3"}, 2, "there is no setting \"Qualty\""},
      {{"import", "all.pdf", "--set", "Quality=3.5"}, 2, "Quality takes an integer from 1 to 100, not \"3.5\""},
      {{"import", "all.pdf", "--set", "jsupport=2"}, 2, "JSupport takes 0 or 1, not"},
      {{"import", "all.pdf", "--set", "PaperFrame=inf"}, 2, "PaperFrame takes a number"},
      {{"import", "all.pdf", "--set", "DefaultTextW2H=abc"}, 2, "takes a number from 0.001 to 1000, not \"abc\""},
      {{"import", "all.pdf", "--set", "Author=" + std::string(256, 'a')}, 2, "one line of at most 255 characters"},
      {{"import"}, 2, "FILE is required"},
      {{"info", "all.pdf", "--page", "2", "--preview", "gone.bmp"}, 1, "gives no preview of page 2"},
      {{"imprt", "all.pdf"}, 2, "there is no command \"imprt\""},
      {{"import", "damaged.pdf", "-o", "older.jsonl"}, 1, "damaged, or its page cannot be built (result 2)"},
  };
  for (const auto &c : cases) {
    const Ran ran = Kapdf(c.words);
    EXPECT_EQ(ran.status, c.status) << ran.err;
    EXPECT_NE(ran.err.find(c.says), std::string::npos) << "wanted: " << c.says << "\ngot: " << ran.err;
    EXPECT_EQ(std::count(ran.err.begin(), ran.err.end(), '\n'), 1) << ran.err;
  }
  for (const char *path : {"gone.jsonl", "gone.pdf", "gone.DXF", "gone.bmp"}) {
    EXPECT_FALSE(std::filesystem::exists(path)) << path;
  }
  for (const char *older : {"older.jsonl", "older.pdf"}) EXPECT_EQ(test::ReadFile(older), "as it was");
  EXPECT_EQ(test::ReadFile("all.pdf"), kAll) << "what had been added is cut off";
}

TEST(Tool, RefusesLinesThatItCannotKeepWhole) {
  const struct {
    const char *line, *says;
  } cases[] = {
      {"{\"kind\":\"circle\",\"center\":[0,0]}", "a circle needs \"radius\""},
      {"{\"kind\":\"circle\",\"center\":[0,0],\"radius\":1,\"centre\":1}", "a circle has no \"centre\""},
      {"{\"kind\":\"line\",\"points\":[[0,0],[1,1],[2,2]]}", "takes two points"},
      {"{\"kind\":\"line\",\"points\":[[0,0],[1,1]],\"width\":1e999}", "too large"},
      {"{\"kind\":\"line\",\"points\":[[0,0],[1,null]]}", "not a number"},
      {"{\"kind\":\"polyline\",\"points\":[[0,0],[1,1,1]]}", "takes points"},
      {"{\"kind\":\"polygon\",\"contours\":[[0,0],[1,1]]}", "takes lists of points"},
      {"{\"kind\":\"polygon\",\"contours\":[[[[0,0]]]]}", "nested too deeply"},
      {"{\"kind\":\"splin\"}", "no kind \"splin\""},
      {"{\"kind\":\"point\",\"at\":[0,0],\"at\":[0,0]}", "twice"},
      {"{\"kind\":\"point\",\"at\":[0,0],\"color\":-1}", "colour code"},
      {"{\"kind\":\"point\",\"at\":[0,0],\"layer\":[65,70000]}", "takes a text"},
      {"{\"kind\":\"font\",\"name\":\"F\",\"program\":\"x\"}", "base64"},
      {"{\"kind\":\"lineType\",\"name\":\"L\",\"segments\":[1,2,3,4,5,6,7,8,9,0,1,2,3,4,5,6,7]}", "at most 16"},
      {"{\"kapdf\":2}", "version 1"},
      {"{\"kapdf\":1,\"extents\":[5,0,1,1]}", "wrong way round"},
      {"[1]", "not an object"},
      {"{\"kind\":", "not JSON"},
  };
  for (const auto &c : cases) {
    const Ran ran =
        Kapdf({"export", "-", "-o", "gone.pdf"}, std::string("\n{\"kind\":\"composite\"}\n") + c.line + "\n");
    EXPECT_EQ(ran.status, 1) << c.line;
    EXPECT_TRUE(ran.err.find("line 3 of the standard input") != std::string::npos &&
                ran.err.find(c.says) != std::string::npos)
        << c.line << "\nwanted: " << c.says << "\ngot: " << ran.err;
  }
  EXPECT_FALSE(std::filesystem::exists("gone.pdf"));
}

TEST(Tool, DrivesTheWriterInItsOrder) {
  const std::string drawing =
      "{\"kind\":\"line\",\"width\":2,\"points\":[[0,0],[10,0]]}\n"
      "{\"kind\":\"layer\",\"name\":\"A\",\"width\":4}\n"
      "{\"kind\":\"lineType\",\"name\":\"D\",\"segments\":[3,-2]}\n"
      "{\"kind\":\"line\",\"layer\":\"A\",\"lineType\":\"D\",\"points\":[[0,20],[10,20]]}\n"
      "{\"kind\":\"property\",\"name\":\"COORDSYS\",\"type\":32,\"value\":\"00\"}\n";
  const Ran ran = Kapdf({"export", "-", "-o", "order.log", "--options", "/q 50"}, drawing);
  ASSERT_EQ(ran.status, 0) << ran.err;
  std::string order;
  std::istringstream log(test::ReadFile("order.log"));
  for (std::string word, first, line; std::getline(log, line);) {
    std::istringstream(line) >> word >> first;
    if (word == "record") order += first + " ";
    if (word == "begin" || word == "end") order += word + first + " ";
    if (word == "close") order += "close ";
  }
  // The line that the module refuses for its line type comes back as two dashes.
  EXPECT_EQ(order, "begin2 14 end2 begin3 6 6 7 end3 begin4 19 19 19 19 1 end4 close ");
  // The undefined layer has the line's own width, layer A its own.
  EXPECT_EQ(LinesWith(test::ReadFile("order.log"), "open").at(0), "open -1 of 1 box -2 -1 12 22 options /q 50");
}

TEST(Tool, PagesGoOneBehindTheOther) {
  test::WriteFile("point.jsonl", "{\"kind\":\"point\",\"at\":[1,2]}\n");
  const auto opens = [] {
    std::string all;
    for (const std::string &line : LinesWith(test::ReadFile("pages.log"), "open "))
      all += line.substr(5, line.find(" box") - 5) + "; ";
    return all;
  };
  const std::vector<std::string> one = {"export", "point.jsonl", "-o", "pages.log"};
  ASSERT_EQ(Kapdf({"export", "point.jsonl", "point.jsonl", "-o", "pages.log"}).status, 0);
  EXPECT_EQ(opens(), "-1 of 2; -2 of 2; ");
  const std::string before = test::ReadFile("pages.log");
  for (const std::vector<std::string> &more : {std::vector<std::string>{"--append"}, {"--replace", "3", "--pdfa"}}) {
    std::vector<std::string> words = one;
    words.insert(words.end(), more.begin(), more.end());
    ASSERT_EQ(Kapdf(words).status, 0);
  }
  EXPECT_EQ(opens(), "-1 of 2; -2 of 2; -2 of 1; 2 of 1; ");
  EXPECT_TRUE(test::ReadFile("pages.log").starts_with(before));
  ASSERT_EQ(Kapdf(one).status, 0);
  EXPECT_EQ(opens(), "-1 of 1; ") << "an older file is overwritten";
}

TEST(Tool, SettingsHoldForOneRun) {
  if (std::getenv("KAPDF_SETTINGS") == nullptr) GTEST_SKIP() << "ctest names settings that are nobody's";
  const platform::Settings user(u"", u"\\PDF");
  ASSERT_TRUE(user.WriteInteger(u"Log", 4));
  test::WriteFile("point.jsonl", "{\"kind\":\"point\",\"at\":[1,2]}\n");
  const Ran ran = Kapdf({"export", "-o", "settings.log", "--set", "quality=40", "--set", "PaperFrame=3.5", "--set",
                         "DefaultResolution=150", "--set", "Quality=41", "point.jsonl"});
  ASSERT_EQ(ran.status, 0) << ran.err;
  // Quality, PaperFrame, Log and DefaultResolution in each of the three places.
  using Lines = std::vector<std::string>;
  EXPECT_EQ(LinesWith(test::ReadFile("settings.log"), "setting"),
            (Lines{"setting 41 41 none", "setting 3.5 3.5 none", "setting none 4 none", "setting none none 150"}));
  // The next run sees the user's settings only.
  ASSERT_EQ(Kapdf({"export", "point.jsonl", "-o", "settings.log"}).status, 0);
  EXPECT_EQ(
      LinesWith(test::ReadFile("settings.log"), "setting"),
      (Lines{"setting none none none", "setting none none none", "setting none 4 none", "setting none none none"}));
  EXPECT_TRUE(user.RemoveKey());
}

TEST(Tool, StopsWithNothingLeftBehind) {
  test::WriteFile("interrupt.pdf", "interrupt");
  std::string drawing;
  for (int i = 0; i < 9; ++i) drawing += "{\"kind\":\"point\",\"at\":[1,2]}\n";
  for (const auto &words :
       std::vector<std::vector<std::string>>{{"import", "interrupt.pdf", "-o", "stopped.jsonl", "--set", "Quality=1"},
                                             {"import", "interrupt.pdf", "-o", "stopped.svg"},
                                             {"export", "-", "-o", "stopped.pdf", "--options", "/interrupt"}}) {
    const Ran ran = Kapdf(words, drawing);
    EXPECT_EQ(ran.status, 130) << ran.err;
    EXPECT_FALSE(std::filesystem::exists(words[3])) << words[3];
  }
}

TEST(Tool, TellsAboutFileModuleAndEveryPage) {
  test::WriteFile("all.pdf", kAll);
  EXPECT_EQ(LinesWith(Kapdf({"import", "all.pdf", "--all"}).out, "{\"kapdf\":1").size(), 3u);
  ASSERT_EQ(Kapdf({"import", "all.pdf", "--all", "-o", "pages.svg"}).status, 0);
  for (const char *path : {"pages-1.svg", "pages-2.svg", "pages-3.svg"}) {
    EXPECT_TRUE(test::ReadFile(path).ends_with("</svg>\n")) << path;
  }
  const Ran ran = Kapdf({"info", "all.pdf", "--preview", "page.bmp"}), help = Kapdf({"--help"});
  for (const char *text :
       {"pages      3", "version    2.2, which hosts show as 9.9", "maker      Nobody", "2 layers", "1 ellipse arc,"}) {
    EXPECT_NE(ran.out.find(text), std::string::npos) << text << "\n" << ran.out;
  }
  const std::string bmp = test::ReadFile("page.bmp");
  EXPECT_EQ(bmp.substr(0, 18), std::string("BM\x3E\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0", 18));
  EXPECT_EQ(bmp.substr(54), std::string("\1\2\3\4\5\6\0\0", 8));
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("kapdf export plan.jsonl"), std::string::npos);
}

// "width x height:" and each pixel as red, green, blue and opacity.
std::string Pixels(const std::string &png) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&image, png.data(), png.size()) == 0) return image.message;
  image.format = PNG_FORMAT_RGBA;
  std::vector<uint8_t> bytes(PNG_IMAGE_SIZE(image));
  png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr);
  std::ostringstream out;
  out << image.width << "x" << image.height << ":" << std::hex;
  for (size_t i = 0; i < bytes.size(); ++i) out << (i % 4 ? "." : " ") << unsigned{bytes[i]};
  return out.str();
}

TEST(Tool, RastersBecomePictures) {
  const std::string placed =
      R"(,"color":2147483903,"at":[10,20],"scaleX":1,"scaleY":-1,"angle":1.5707963267948966,"opacity":50}
{"kind":"rasterHeader","dpi":254,)";
  test::WriteFile("rasters.pdf", R"({"kind":"raster","image":"a/b")" + placed +
                                     R"("image":"a/b","pixelsWide":10,"pixelsHigh":2,"depthHint":1,"pixelType":0}
{"kind":"rasterRow","data":"AgAAAAEAAAADAAAACQAAAGMAAAA="}
{"kind":"rasterRow","data":"AAAAAA=="}
{"kind":"raster","image":"Im")" + placed +
                                     R"("image":"Im","pixelsWide":4,"pixelsHigh":1,"pixelType":2,"palette":")" +
                                     Palette("AAMDAAECAwAEBQYABwgJ/wAA") + R"("}
{"kind":"rasterRow","data":"AgEAyA=="}
{"kind":"raster","image":"im")" + placed +
                                     R"("image":"im","pixelsWide":2,"pixelsHigh":2,"pixelType":4}
{"kind":"rasterRow","data":"AQIDBAUGY2M="}
{"kind":"raster","image":"im")" + placed +
                                     R"("image":"im","pixelsWide":2,"pixelsHigh":1,"pixelType":5}
{"kind":"rasterRow","data":"AQIDAAQFBv8="}
{"kind":"rasterRow","data":"CQ=="}
{"kind":"raster","image":"none")" + placed +
                                     R"("image":"none","pixelsWide":2,"pixelsHigh":1,"pixelType":3}
{"kind":"rasterRow","data":"AQI="}
)");
  const auto bilevel = [](const std::string &ink, const std::string &ground) {
    const std::string ends = ink + ground + ground + ground;  // the runs are ground
    std::string all = "10x2:" + ends;
    for (int i = 4; i < 9; ++i) all += ink;
    all += ground;
    for (int i = 0; i < 10; ++i) all += ink;
    return all;
  };
  const std::string red = bilevel(" ff.0.0.ff", " ff.ff.ff.0"), black = bilevel(" 0.0.0.ff", " ff.ff.ff.ff");
  const struct {
    std::string name, pixels;
  } cases[] = {{"page1-a_b.png", ""},
               {"page1-Im.png", "4x1: 7.8.9.0 4.5.6.ff 1.2.3.ff 0.0.0.ff"},
               {"page1-im-2.png", "2x2: 1.2.3.ff 4.5.6.ff 0.0.0.ff 0.0.0.ff"},
               {"page1-im-3.png", "2x1: 1.2.3.ff 4.5.6.0"}};

  const Ran lines = Kapdf({"import", "rasters.pdf", "--images", "pics 1", "-o", "rasters.jsonl"});
  EXPECT_NE(lines.err.find("pics 1: 4 pictures"), std::string::npos) << lines.err;
  ASSERT_EQ(Kapdf({"import", "rasters.pdf", "--images", "pics 2", "-o", "linked.svg"}).status, 0);
  ASSERT_EQ(Kapdf({"import", "rasters.pdf", "-o", "embedded.svg"}).status, 0);
  const std::string json = test::ReadFile("rasters.jsonl"), linked = test::ReadFile("linked.svg"),
                    embedded = test::ReadFile("embedded.svg");
  EXPECT_EQ(LinesWith(json, "{\"kind\":\"rasterRow\"").size(), 1u) << "of the raster that is no picture";
  size_t at = 0;
  for (const auto &[name, pixels] : cases) {
    EXPECT_EQ(Pixels(test::ReadFile("pics 1/" + name)), pixels.empty() ? black : pixels) << name;
    EXPECT_EQ(Pixels(test::ReadFile("pics 2/" + name)), pixels.empty() ? red : pixels) << name;
    EXPECT_NE(json.find("\"file\":\"pics 1/" + name + "\""), std::string::npos) << json;
    EXPECT_NE(linked.find("xlink:href=\"pics%202/" + name + "\""), std::string::npos) << linked;
    at = embedded.find("base64,", at) + 7;
    const auto png = FromBase64(embedded.substr(at, embedded.find('"', at) - at)).value_or(std::vector<uint8_t>());
    EXPECT_EQ(Pixels({png.begin(), png.end()}), pixels.empty() ? red : pixels) << name;
  }
  EXPECT_NE(linked.find("<image transform=\"translate(10 -20) rotate(-90) scale(1 -1)\" x=\"0\" y=\"-0.2\" width=\"1\" "
                        "height=\"0.2\" preserveAspectRatio=\"none\" opacity=\"0.5\" xlink"),
            std::string::npos)
      << linked;

  // What the export takes of them: rasters ahead of everything drawn, each under an identity of its own.
  const auto taken = [](const std::string &path) {
    std::string order, rows;
    for (const std::string &line : LinesWith(test::ReadFile(path), "record ")) {
      std::string word, kind, key, row;
      std::istringstream(line) >> word >> kind >> key >> row;
      order += kind + (kind == "34" ? "=" + key : "") + " ";
      if (kind == "5") rows += row.substr(row.find("data") + 7, row.size() - row.find("data") - 9) + " ";
    }
    return order + "| " + rows;
  };
  const std::string order = "6 12 5 5 12 5 12 5 5 12 5 12 5 34=1 34=2 34=3 34=4 34=5 1 | ";
  // Ink 0 and 4 to 8, then 0 to 9.
  const std::string runs = "AgAAAAAAAAAAAAAABAAAAAgAAAA= AQAAAAAAAAAJAAAA ";

  // By its key or, without one, by its name. A key that no raster has is none's, whatever the name.
  const auto again = [](const std::string &key) {
    return R"({"kind":"raster","image":"Im")" + key + R"(,"at":[1,2],"scaleX":1,"scaleY":1})" + "\n";
  };
  const std::string keyed = again(",\"imageKey\":9") +
                            R"({"kind":"rasterHeader","image":"Im","pixelsWide":2,"pixelsHigh":1,"pixelType":1}
{"kind":"rasterRow","data":"AQI="}
)" + again(",\"imageKey\":8") +
                            again("");
  ASSERT_EQ(Kapdf({"export", "-", "-o", "keyed.log"}, keyed).status, 0);
  EXPECT_EQ(taken("keyed.log"), "6 12 5 34=9 34=9 1 | AQI= ");

  // What is hidden is white. The raster that is no picture goes out as it is.
  const Ran back = Kapdf({"export", "rasters.jsonl", "-o", "rasters.log"});
  ASSERT_EQ(back.status, 0) << back.err;
  EXPECT_EQ(taken("rasters.log"), order + runs + "AgEAyA== AQIDBAUG AAAAAAAA AQID//// AQI= ");

  // The same without a detour, where rows keep what stands behind their last pixel, and one too many goes out.
  const Ran converted = Kapdf({"convert", "rasters.pdf", "converted.log"});
  ASSERT_EQ(converted.status, 0) << converted.err;
  EXPECT_EQ(taken("converted.log"), "6 12 5 5 12 5 12 5 5 12 5 5 12 5 34=1 34=2 34=3 34=4 34=5 1 | " + runs +
                                        "AgEAyA== AQIDBAUGY2M= AAAAAAAAAAA= AQID//// //////// AQI= ");
  ASSERT_EQ(Kapdf({"convert", "rasters.pdf", "converted.log", "--all"}).status, 0);
  EXPECT_EQ(LinesWith(test::ReadFile("converted.log"), "open ").size(), 3u);
}

TEST(Tool, SaysWhatIsWrongWithAPicture) {
  const std::string header = R"({"kind":"rasterHeader","pixelsWide":2,"pixelsHigh":1,"pixelType":1,"file":")";
  test::WriteFile("text.png", "no picture");
  ASSERT_EQ(Kapdf({"import", "rasters.pdf", "--images", "pics 1", "-o", "rasters.jsonl"}).status, 0);
  for (const auto &[file, says] : {std::pair{"gone.png", "cannot read gone.png"},
                                   {"text.png", "no PNG picture"},
                                   {"pics 1/page1-Im.png", "is 4 x 1 pixels"},
                                   {"pics 1/page1-im-3.png", "of another form"}}) {
    const Ran ran = Kapdf({"export", "-", "-o", "gone.pdf"}, header + file + "\"}\n");
    EXPECT_EQ(ran.status, 1);
    EXPECT_NE(ran.err.find(says), std::string::npos) << ran.err;
    EXPECT_FALSE(std::filesystem::exists("gone.pdf"));
  }
}

}  // namespace
}  // namespace kapdf::tool
