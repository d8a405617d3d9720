#include "LKCore/Rendering/LKInlineImage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "LKCore/Rendering/LKAutolinkDetector.h"
#include "LKCore/Rendering/LKInlineImageLayoutRules.h"
#include "Support/Growth.h"

namespace lk {
namespace {

// "12+5 alt -> a.png 400x300 hidden document", a line for each match.
std::string form(const std::string& paragraph) {
  std::string lines;
  for (const auto& [image, range] : LKInlineImageParser::parseAll(paragraph)) {
    lines += std::to_string(range.location) + "+" + std::to_string(range.length) + " " + image.alt +
             " -> " + image.reference;
    if (image.requestedWidth) lines += " w" + std::to_string(std::lround(*image.requestedWidth));
    if (image.requestedHeight) lines += " h" + std::to_string(std::lround(*image.requestedHeight));
    if (image.isHidden) lines += " hidden";
    if (image.isDocumentLink) lines += " document";
    lines += "\n";
  }
  return lines;
}

TEST(InlineImage, IsFoundWithWhatItAsksFor) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"![alt|400](a.png)", "0+17 alt -> a.png w400\n"},
      {"![alt | 400 X 300 |HIDE](a.png)", "0+31 alt -> a.png w400 h300 hidden\n"},
      {"![b](a.png#400x300)", "0+19 b -> a.png w400 h300\n"},
      {"![b|50](a.png#400x300)", "0+22 b -> a.png w50 h300\n"},
      {"![b|0|40](a.png#x)", "0+18 b|0 -> a.png#x w40\n"},
      {"![b|30|40](#40)", "0+15 b|30 -> #40 w40\n"},
      {"![b|4x0](a.png#123456)", "0+22 b -> a.png#123456 w4\n"},
      {"é\U0001F600 [n](f.pdf#hide) ![](c.gif)",
       "4+15 n -> f.pdf hidden document\n20+10  -> c.gif\n"},
      {"[n](f.md) [n](http://a/f.pdf) [n](#2) [n](f.zip#other)", "38+16 n -> f.zip document\n"},
      {"`![a](b.png)` ``x` ![a](c.png)``  `![a](d.png)", "35+11 a -> d.png\n"},
      {"![a](b c.png) ![a]() ![a](d.png", ""},
  };
  for (const auto& [paragraph, expected] : cases) EXPECT_EQ(form(paragraph), expected) << paragraph;
}

TEST(InlineImage, CanBeAllOfAParagraph) {
  const auto alone = LKInlineImageParser::parse("![a](b.png)\n");
  ASSERT_TRUE(alone);
  EXPECT_EQ(alone->resolved("c.png").withRequestedWidth(7),
            (LKInlineImage{.reference = "c.png", .alt = "a", .requestedWidth = 7}));
  for (const char* other : {"![a](b.png) x", "[a](b.pdf)", "![a](b.png)![a](b.png)", ""}) {
    EXPECT_FALSE(LKInlineImageParser::parse(other)) << other;
  }
}

TEST(InlineImage, IsReadInLinearTime) {
  for (const char* unit : {"[", "![](", "![a]", "`", "``a`", "[a](b"}) {
    EXPECT_LE(test::growth(unit, 100'000,
                           [](const std::string& text) { LKInlineImageParser::parseAll(text); }),
              8)
        << unit;
  }
}

TEST(InlineImageLayout, FitsTheRoom) {
  using LKInlineImageLayoutRules::Size;
  struct Row {
    Size intrinsic;
    LKInlineImage image;
    Size fitted;
  };
  const std::vector<Row> rows = {
      {{0, 50}, {}, {500, 120}},
      {{1000, 500}, {}, {500, 250}},
      {{100, 50}, {}, {100, 50}},
      {{100, 50}, {.requestedWidth = 300}, {300, 150}},
      {{100, 50}, {.requestedWidth = 800}, {500, 250}},
      {{100, 50}, {.requestedWidth = 300, .requestedHeight = 20}, {300, 20}},
      {{100, 50}, {.requestedHeight = 100}, {200, 100}},
      {{100, 50}, {.requestedHeight = 1000}, {500, 250}},
      {{100, 50}, {.reference = "a.MP3#40"}, {48, 24}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(LKInlineImageLayoutRules::fittedSize(row.intrinsic, row.image, 500), row.fitted)
        << row.fitted.width << " x " << row.fitted.height;
  }
  EXPECT_EQ(LKInlineImageLayoutRules::bitmapKey("a.png", {10.5, 3.4}, 7), "a.png|11x3|7");
  EXPECT_EQ(LKInlineImageLayoutRules::bitmapCost({10, 0.1}, 2), 80);
  EXPECT_GT(LKInlineImageLayoutRules::bitmapCost({1e300, 1e300}, 2), 0);
}

TEST(AutolinkDetector, LooksOnlyWhereALinkMayBe) {
  for (const char* text : {"a@b", "＠", "a.b", "1.5", "a。日", "a:b", "a：b"}) {
    EXPECT_TRUE(LKAutolinkDetector::mayContainLink(text)) << text;
  }
  for (const char* text : {"", "a. b", "a:", "a:\n", "a：　b", "end.", "..!"}) {
    EXPECT_FALSE(LKAutolinkDetector::mayContainLink(text)) << text;
    EXPECT_TRUE(LKAutolinkDetector::matches(text).empty()) << text;
  }
  EXPECT_EQ(LKAutolinkDetector::matches("é https://a.b/c"),
            (std::vector<LKAutolinkDetector::Match>{{LinkKind::url, {2, 13}}}));
}

}  // namespace
}  // namespace lk
