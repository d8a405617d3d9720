// Drawn pictures, which see nothing but their own text, and the colours of code.

#include <gtest/gtest.h>

#include "LKCore/Base/Base64.h"
#include "LKCore/Modules/CodeColours.h"
#include "LKCore/Modules/VectorPicture.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

std::string svgWith(const std::string& content, const std::string& before = "") {
  return before +
         "<svg xmlns=\"http://www.w3.org/2000/svg\" "
         "xmlns:xlink=\"http://www.w3.org/1999/xlink\" viewBox=\"0 0 10 10\">" +
         content + "</svg>";
}

std::string drawnSmall(const std::string& svg) {
  return pngOfSVG(svg, 10, 10).value_or("nothing");
}

TEST(VectorPicture, HasTheSize) {
  const std::string png = *pngOfSVG(svgWith("<rect width='9' height='9'/>"), 300, 20);
  EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1a\n");
  EXPECT_EQ(png.substr(16, 8), std::string("\0\0\x01\x2C\0\0\0\x14", 8));
  for (const std::string none : {"", "<svg", "plain", "<html/>"}) {
    EXPECT_EQ(pngOfSVG(none, 10, 10), std::nullopt) << none;
  }
}

TEST(VectorPicture, SeesNothingButItself) {
  const test::TempFolder folder;
  const std::string red = drawnSmall(svgWith("<rect width='10' height='10' fill='red'/>"));
  test::writeWhole(folder / "red.png", red);
  test::writeWhole(folder / "red.svg", svgWith("<rect id='r' width='10' height='10'/>"));
  test::writeWhole(folder / "red.css", "rect { fill: red }");
  test::writeWhole(folder / "secret", "W");
  const std::string place = folder.path().string();
  const auto image = [](const std::string& address) {
    return svgWith("<image width='10' height='10' xlink:href='" + address + "'/>");
  };
  const std::string empty = drawnSmall(svgWith(""));
  ASSERT_NE(empty, red);
  // The way to a picture is open, but for files and addresses, and its colours stay.
  const std::string half =
      drawnSmall(svgWith("<rect width='6' height='9' fill='#36c' opacity='.5'/>"));
  for (const std::string& png : {red, half}) {
    EXPECT_EQ(drawnSmall(image("data:image/png;base64," + base64Text(png))), png);
  }

  const std::string entity = "<!DOCTYPE svg [<!ENTITY s SYSTEM \"file://" + place + "/secret\">]>";
  const std::string black = drawnSmall(svgWith("<rect width='10' height='10'/>"));
  const std::string import = "<style>@import url('file://" + place + "/red.css');</style>";
  const std::vector<std::pair<std::string, std::string>> rows = {
      {image("file://" + place + "/red.png"), empty},
      {image(place + "/red.png"), empty},
      {svgWith("<use xlink:href='file://" + place + "/red.svg#r'/>"), empty},
      {svgWith("<text y='9'>&s;</text>", entity), empty},
      {svgWith(import + "<rect width='10' height='10'/>"), black},
      {svgWith("<rect width='10' height='10'/><script>while (true) {}</script>"), black},
  };
  for (const auto& [svg, wanted] : rows) {
    // A document may be refused whole; what it must not do is show the file.
    const std::string drawn = drawnSmall(svg);
    EXPECT_TRUE(drawn == wanted || drawn == "nothing") << svg;
  }
}

// "keyword[let] number[1]"
std::string colourWords(const std::string& code, const std::string& language) {
  static const std::vector<std::string> kNames = {"keyword", "string", "comment", "number"};
  const auto coloured = colouredCode(code, language);
  if (!coloured) return "unknown";
  std::string result;
  for (const ColouredCode& stretch : *coloured) {
    if (!result.empty()) result += ' ';
    result += kNames.at(static_cast<size_t>(stretch.colour)) + "[" +
              std::string(stretch.range.of(code)) + "]";
  }
  return result;
}

TEST(ColouredCode, KnowsLanguages) {
  struct Row {
    std::string language;
    std::string code;
    std::string wanted;
  };
  const std::vector<Row> rows = {
      {"Swift", "let x = \"a\\\"\" // 1", "keyword[let] string[\"a\\\"\"] comment[// 1]"},
      {"c", "int x = 0x1F; /* a\n b */", "keyword[int] number[0x1F] comment[/* a] comment[ b */]"},
      {"python", "return \"é🙂\" + '1' # no 🙂",
       "keyword[return] string[\"é🙂\"] string['1'] comment[# no 🙂]"},
      {"py", "def f", "keyword[def]"},
      {"SQL", "select 1", "keyword[select] number[1]"},
      {"golang", "var x = 1", "keyword[var] number[1]"},
      {"C#", "class A {}", "keyword[class]"},
      {"c", "", ""},
      {"odd", "let", "unknown"},
      {"", "let", "unknown"},
      {"../../etc/passwd", "let", "unknown"},
      {std::string(10000, 'c'), "let", "unknown"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(colourWords(row.code, row.language), row.wanted) << row.language.substr(0, 40);
  }
}

TEST(ColouredCode, LeavesLinesThatNobodyWroteByHandPlain) {
  const std::string endless(300000, '"');
  EXPECT_EQ(colourWords("int a;\n" + endless + "\nint b;", "c"), "keyword[int] keyword[int]");
  // No text of the library, but no reason to fall over it either.
  EXPECT_EQ(colourWords("\"\xFF\xC3\" int a;\nint b;", "c"), "keyword[int]");
}

}  // namespace
}  // namespace lk
