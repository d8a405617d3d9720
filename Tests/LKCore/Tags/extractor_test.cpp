#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/LexParse/Lexer.h"
#include "LKCore/Tags/LKTagExtractor.h"
#include "LKCore/Tasks/LKTaskDue.h"
#include "Support/Growth.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

const Day kToday = {2026, 3, 20};

ExtractionResult extracted(std::string_view text, Instant now = LKTaskDue::cutoff(kToday)) {
  auto terms = std::make_shared<LKProjectTermsSnapshot>();
  terms->metadataKeywords = {"client", "project"};
  terms->setKeywordTables();
  return LKTagExtractor::extract(text, std::nullopt, now, terms);
}

struct ExtractionRow {
  const char* name;
  std::string_view text;
  std::string form;  // what `describe` gives, joined by " | ", without counts that are all 0
};

class Extraction : public testing::TestWithParam<ExtractionRow> {};

TEST_P(Extraction, FindsWhatTheRowSays) {
  std::string form = describe(extracted(GetParam().text));
  form.pop_back();
  form = text::replacingAll(form, "\n", " | ");
  if (form.starts_with("counts active 0 done 0")) form.erase(0, form.find('|') + 2);
  EXPECT_EQ(form, GetParam().form);
}

const ExtractionRow kRows[] = {
    {"Hidden",
     "```\n#a [[b]]\n```\n<!--lk:noindex-->\n#c\n- [ ] d\n <!--/lk:noindex-->\n- [ ] e #f",
     R"x(counts active 1 done 0 overdue 0 | tag "f" | task 7 status 0 "e #f")x"},
    {"UnclosedFence", "```\n#x\n```\n#a\n```swift #y\n#b\n- [ ] c",
     R"x(counts active 1 done 0 overdue 0 | tag "a" | tag "b" | task 6 status 0 "c")x"},
    {"FenceAlone", "#a\n```", R"x(tag "a")x"},
    {"UnclosedRegion", "#a\n<!--lk:noindex-->\n#b\n<!--lk:noindex-->\n#c", R"x(tag "a")x"},
    {"CaseMakesTwoTags", "#work/a #Work #work/a", R"x(tag "Work" | tag "work/a")x"},
    {"EqualTagsAreOne", "#caf\u00E9 #cafe\u0301 [[e\u0301]] [[\u00E9]]",
     "tag \"caf\u00E9\" | backlink \"e\u0301\""},
    {"DatesAndLinks", "@20240131 [[A b|c#d]] `[[x]]` @2024013",
     R"x(dateRef "20240131" | backlink "A b|c#d")x"},
    {"Statuses", "- [ ] a\n\t- [/] b\n- [X] c #t\n- [-]",
     R"x(counts active 2 done 2 overdue 0 | tag "t" | task 0 status 0 "a" | task 1 status 1 "b" | task 2 status 2 "c #t" | task 3 status 3 "")x"},
    {"Metadata",
     "- [ ] pay  due:2026-03-20 priority:high contexts:Home,,home,B context:c,b client:x project:y "
     "#t",
     R"x(counts active 1 done 0 overdue 1 | tag "t" | task 0 status 0 "pay        #t" due 2026-03-20 priority 3 project "y" context "home" context "b" context "c")x"},
    {"UnreadableDate", "- [/] a due:2026-03-21 due:2026-02-30 done:x",
     R"x(counts active 1 done 0 overdue 0 | task 0 status 1 "a" due 2026-03-21)x"},
    {"EachLateDateCounts", "- [ ] a due:2020-01-01 due:2020-01-02",
     R"x(counts active 1 done 0 overdue 2 | task 0 status 0 "a" due 2020-01-02)x"},
    {"DoneIsNeverLate", "- [x] a due:2020-01-01 done:2020-01-03",
     R"x(counts active 0 done 1 overdue 0 | task 0 status 2 "a" due 2020-01-01 done 2020-01-03)x"},
    {"TextKeepsItsMarks", "- [ ]  **a** [b](c.md) ![d](e.png) `f` <!--g--> [^h] ==i== ",
     R"x(counts active 1 done 0 overdue 0 | task 0 status 0 "**a** [b](c.md) ![d](e.png) `f` <!--g--> [^h] ==i==" | image "e.png")x"},
    {"Images",
     "![a](.attachments/b.PNG#300) ![](c) [d](e.jpg) [f](g.pdf) ![h](HTTPS://x/y.png) ![i](#j) "
     "![k](.attachments/) [l](.png) [m](c.gif#x) (z.png) ![](c)",
     R"x(image "b.PNG" | image "c" | image "e.jpg" | image "c.gif" | image "c")x"},
    {"UrlBehindALoneBracket", "a](b.png)\n](c.png)", R"x(image "b.png" | image "c.png")x"},
    {"Comments", "\t- [ ] a\n\t> b\n\t\t\t> c \n>\n\n> no\n- [ ] d\n> e\n- [ ] f\nx\n> g",
     R"x(counts active 3 done 0 overdue 0 | task 0 status 0 "a" detail "b\n\t\tc\n" | task 6 status 0 "d" detail "e" | task 8 status 0 "f")x"},
    {"CommentsBehindARegion", "- [ ] a\n<!--lk:noindex-->\n> b\n<!--/lk:noindex-->\n- [ ] c\n> d",
     R"x(counts active 2 done 0 overdue 0 | task 0 status 0 "a" | task 4 status 0 "c" detail "d")x"},
    {"OtherLineEnds", "- [ ] a\u2028- [ ] b\n> c\u2028- [ ] d\n> e",
     R"x(counts active 3 done 0 overdue 0 | task 0 status 0 "a" | task 1 status 0 "b" | task 3 status 0 "d" detail "e")x"},
};

INSTANTIATE_TEST_SUITE_P(Rows, Extraction, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

// What the tokens of the whole text say, every line of it read.
ExtractionResult slowlyExtracted(std::string_view text) {
  const std::vector<LToken> tokens =
      Lexer(text, std::make_shared<const LKProjectTermsSnapshot>()).lex();
  std::vector<size_t> fences;
  for (size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].kind == LTokenKind::codeBlockFence) fences.push_back(i);
  }
  ExtractionResult result;
  int line = 0;
  for (size_t i = 0; i < tokens.size(); ++i) {
    const LToken& token = tokens[i];
    line += token.kind == LTokenKind::eol ? 1 : 0;
    bool isHidden = false;
    for (size_t f = 0; f + 1 < fences.size(); f += 2) {
      isHidden = isHidden || (i >= fences[f] && i <= fences[f + 1]);
    }
    if (isHidden) continue;
    const std::string payload(token.text);
    if (token.kind == LTokenKind::tag) result.tags.insert(payload.substr(1));
    if (token.kind == LTokenKind::dateRef) result.dateRefs.insert(payload.substr(1));
    if (token.kind == LTokenKind::backLink) result.backlinks.insert(payload);
    const bool isPicture = i > 0 && tokens[i - 1].kind == LTokenKind::image;
    const std::string name = payload.substr(0, payload.find('#'));
    if (token.kind == LTokenKind::url && !name.empty() && (isPicture || name.ends_with(".png"))) {
      result.imageAttachments.push_back(name);
    }
    if (token.kind == LTokenKind::task) {
      result.tasks.emplace_back().paragraphIndex = line;
    }
  }
  return result;
}

TEST(Extraction, FindsOnTheLinesItReadsWhatStandsOnAll) {
  const char* const pieces[] = {"\n", "\n", "\r", "\u2028", "```", "``",       "#",         "a",
                                "b ", " ",  "\t", "\u00E9", "@",   "20240131", "@20240131", "[",
                                "]",  "[[", "]]", "(",      ")",   "c.png",    "- [ ] ",    "!",
                                "*",  "**", "](", ".",      "x:",  "~~",       "<!--"};
  std::mt19937 random(7);
  for (int round = 0; round < 4000; ++round) {
    std::string text;
    for (size_t left = random() % 40; left > 0; --left)
      text += pieces[random() % std::size(pieces)];
    SCOPED_TRACE(testing::PrintToString(text));
    const ExtractionResult quick = extracted(text);
    const ExtractionResult slow = slowlyExtracted(text);
    ASSERT_EQ(quick.tags, slow.tags);
    ASSERT_EQ(quick.dateRefs, slow.dateRefs);
    ASSERT_EQ(quick.backlinks, slow.backlinks);
    ASSERT_EQ(quick.imageAttachments, slow.imageAttachments);
    ASSERT_EQ(quick.tasks.size(), slow.tasks.size());
    for (size_t i = 0; i < slow.tasks.size(); ++i) {
      ASSERT_EQ(quick.tasks[i].paragraphIndex, slow.tasks[i].paragraphIndex);
    }
  }
}

TEST(Extraction, CountsATaskAsLateFromTheCutoffOn) {
  Instant before = LKTaskDue::cutoff(kToday);
  --before.seconds;
  EXPECT_EQ(extracted("- [ ] a due:2026-03-20", before).overdueTaskCount, 0);
  EXPECT_EQ(extracted("- [ ] a due:2026-03-19", before).overdueTaskCount, 1);
}

TEST(Extraction, TakesOnlyPicturesThatAreInTheFolder) {
  const test::TempFolder folder;
  std::filesystem::create_directories(folder / "files/sub.png");
  test::writeWhole(folder / "secret.png", "x");
  test::writeWhole(folder / "files/a.png", "x");
  const std::string outside = (folder / "secret.png").string();
  const std::string text = "![](a.png) ![](b.png) ![](../secret.png) ![](sub.png) ![](" + outside +
                           ") ![](" + std::string("a.png\0b", 7) + ") ![](" +
                           std::string(5000, 'n') + ") [x](.attachments/a.png)";
  EXPECT_EQ(LKTagExtractor::extract(text, folder / "files").imageAttachments,
            (std::vector<std::string>{"a.png", "a.png"}));
}

TEST(Extraction, MasksRegionsByTheirScalars) {
  const std::string text = "a\n <!--lk:noindex-->\n\u65E5x\r\n<!--/lk:noindex-->\t\n\u00E9\n";
  EXPECT_EQ(LKTagExtractor::maskNoindexRegions(text),
            "a\n" + std::string(18, ' ') + "\n   \n" + std::string(19, ' ') + "\n\u00E9\n");
  const std::string closedAlone = "<!--/lk:noindex-->\nx <!--lk:noindex-->";
  EXPECT_EQ(LKTagExtractor::maskNoindexRegions(closedAlone),
            std::string(18, ' ') + "\nx <!--lk:noindex-->");
}

TEST(Extraction, TakesTimeInProportionToTheText) {
  for (const std::string_view unit :
       {"- [ ] a\n", "- [ ] a\n> b\n", "- [ ]\u2028", "```\n#a\n", "- [ ] context:a,b,c,d,e,f ",
        "> x\u2028- [ ] t\n", "```\n", "a```\n", "](", "#"}) {
    const double times = test::growth(unit, size_t{8} * 1024, [](std::string text) {
      for (size_t lines = text.size() / 4; lines > 0; --lines) text += "> x\n";
      size_t details = 0;
      for (const TaskInfo& task : extracted(text).tasks) details += task.detail.value_or("").size();
      EXPECT_LE(details, text.size());
    });
    EXPECT_LE(times, 8) << unit;
  }
}

}  // namespace
}  // namespace lk
