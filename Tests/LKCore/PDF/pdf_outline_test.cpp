// Headings of a book's HTML, and finding them again on pages.

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "LKCore/PDF/LKBindPDFOutline.h"
#include "Support/Growth.h"

namespace lk {
namespace {

using OutlineHeading = LKBindPDFOutline::Heading;
using OutlinePlace = LKBindPDFOutline::Place;

TEST(PDFOutline, ReadsHeadings) {
  struct Row {
    std::string html;
    std::vector<OutlineHeading> expected;
  };
  const std::vector<Row> rows = {
      {"<h1 class=\"bind-chapter\" id=\"bind-toc-chapter-1\">Chapter 1<br>Dawn</h1>",
       {{"Chapter 1 Dawn", 1, "bind-toc-chapter-1"}}},
      {"<h2>A <em>b</em><code>c</code></h2>\n<h6>\n d\n</h6>", {{"A bc", 2}, {"d", 6}}},
      {"<h3>&lt;a&gt; &amp; &#8220;b&#x201D;&nbsp;&#0;</h3>", {{"<a> & \u201Cb\u201D &#0;", 3}}},
      {"<h1 class=\"bind-toc-title\">In</h1>", {{"In", 1, "", true}}},
      {"<h1>so\u00ADft</h1><h1></h1>", {{"soft", 1}, {"", 1}}},
      {"<h7>a</h7><hr><h1x>b</h1x><h2>c</h3><h1>d</h1>", {{"d", 1}}},
      {"<h1>never closed <h2>e</h2>", {{"e", 2}}},
      {"<h1 title=", {}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(LKBindPDFOutline::headingsFromHTML(row.html), row.expected) << row.html;
  }
  for (const char* unit : {"<h1>", "<h1 ", "<h2></h1>", "<h3>&#"}) {
    EXPECT_LE(
        test::growth(unit, 100'000,
                     [](const std::string& text) { LKBindPDFOutline::headingsFromHTML(text); }),
        8)
        << unit;
  }
}

TEST(PDFOutline, ShortensQueries) {
  EXPECT_EQ(LKBindPDFOutline::searchQueries("a b c d"), std::vector<std::string>{"a b c d"});
  EXPECT_EQ(LKBindPDFOutline::searchQueries("1 2 3 4 5 6 7 8 9"),
            (std::vector<std::string>{"1 2 3 4 5 6 7 8 9", "1 2 3 4 5 6 7 8", "1 2 3 4"}));
}

// A page of lines, 20 points apart, the first at 20.
PDFPage outlinePage(const std::vector<std::vector<std::string>>& lines) {
  PDFPage page{.width = 400, .height = 600, .words = {}};
  double top = 20;
  for (const std::vector<std::string>& line : lines) {
    for (size_t i = 0; i < line.size(); ++i) {
      page.words.push_back({line[i], 10, top, 50, top + 10, i + 1 == line.size()});
    }
    top += 20;
  }
  return page;
}

TEST(PDFOutline, FindsLinesOfText) {
  const LKBindPDFOutline::PageTexts texts(
      {outlinePage({{"Dawn"}, {"at", "Dawn"}, {"Dawn", "broke", "early"}, {"Dawn"}}),
       outlinePage({{"Dawn"}, {"The", "o\uFB03ce", "in"}, {"E\u0301T\u00C9"}, {"Dawn", "2"}})},
      {.top = 35, .bottom = 0});  // leaves out the first line of each page
  struct Row {
    std::string query;
    OutlinePlace from;
    bool wholeLines;
    std::optional<OutlinePlace> expected;
  };
  const std::vector<Row> rows = {
      {"Dawn", {0, 0}, true, OutlinePlace{0, 5}},
      {"Dawn", {0, 0}, false, OutlinePlace{0, 2}},
      {"dawn", {0, 6}, true, {}},
      {"Dawn", {0, 6}, false, OutlinePlace{1, 4}},
      {"the office in \u00E9t\u00E9", {0, 0}, true, OutlinePlace{1, 0}},
      {"office in", {0, 0}, false, {}},
      {"Daw", {0, 0}, false, {}},
      {"", {0, 0}, false, {}},
      {"Dawn", {9, 0}, false, {}},
  };
  for (const Row& row : rows) {
    const auto found = texts.locate(row.query, row.from, row.wholeLines);
    const auto place = found ? std::optional(found->first) : std::nullopt;
    EXPECT_TRUE(place == row.expected) << row.query << row.from.word;
  }
}

}  // namespace
}  // namespace lk
