#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <string>

#include "LKCore/Base/Text.h"
#include "LKCore/Tags/LKTagExtractor.h"
#include "LKCore/Tasks/LKTaskDue.h"
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
    {"LateOnce", "- [ ] a due:2020-01-01 due:2020-01-02",
     R"x(counts active 1 done 0 overdue 1 | task 0 status 0 "a" due 2020-01-02)x"},
    {"DoneIsNeverLate", "- [x] a due:2020-01-01 done:2020-01-03",
     R"x(counts active 0 done 1 overdue 0 | task 0 status 2 "a" due 2020-01-01 done 2020-01-03)x"},
    {"TextKeepsItsMarks", "- [ ]  **a** [b](c.md) ![d](e.png) `f` <!--g--> [^h] ==i== ",
     R"x(counts active 1 done 0 overdue 0 | task 0 status 0 "**a** [b](c.md) ![d](e.png) `f` <!--g--> [^h] ==i==" | image "e.png")x"},
    {"Images",
     "![a](.attachments/b.PNG#300) ![](c) [d](e.jpg) [f](g.pdf) ![h](HTTPS://x/y.png) ![i](#j) "
     "![k](.attachments/) [l](.png) [m](c.gif#x) (z.png) ![](c)",
     R"x(image "b.PNG" | image "c" | image "e.jpg" | image "c.gif" | image "c")x"},
    {"Comments", "\t- [ ] a\n\t> b\n\t\t\t> c \n>\n\n> no\n- [ ] d\n> e\n- [ ] f\nx\n> g",
     R"x(counts active 3 done 0 overdue 0 | task 0 status 0 "a" detail "b\n\t\tc\n" | task 6 status 0 "d" detail "e" | task 8 status 0 "f")x"},
    {"CommentsBehindARegion", "- [ ] a\n<!--lk:noindex-->\n> b\n<!--/lk:noindex-->\n- [ ] c\n> d",
     R"x(counts active 2 done 0 overdue 0 | task 0 status 0 "a" | task 4 status 0 "c" detail "d")x"},
    {"OtherLineEnds", "- [ ] a\u2028- [ ] b\n> c\u2028- [ ] d\n> e",
     R"x(counts active 3 done 0 overdue 0 | task 0 status 0 "a" | task 1 status 0 "b" | task 3 status 0 "d" detail "e")x"},
};

INSTANTIATE_TEST_SUITE_P(Rows, Extraction, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

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
  const auto seconds = [](std::string_view unit, size_t bytes) {
    std::string text;
    while (text.size() < bytes / 2) text += unit;
    while (text.size() < bytes) text += "> x\n";
    const std::clock_t start = std::clock();
    size_t details = 0;
    for (const TaskInfo& task : extracted(text).tasks) details += task.detail.value_or("").size();
    EXPECT_LE(details, text.size());
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  };
  for (const std::string_view unit : {"- [ ] a\n", "- [ ] a\n> b\n", "- [ ]\u2028", "```\n#a\n",
                                      "- [ ] context:a,b,c,d,e,f ", "> x\u2028- [ ] t\n"}) {
    double ratio = 0;
    // A busy machine may spoil a measurement, not three in a row.
    for (int attempt = 0; attempt < 3; ++attempt) {
      ratio = seconds(unit, 64 * 1024) / seconds(unit, 32 * 1024);
      if (ratio <= 3) break;
    }
    EXPECT_LE(ratio, 3) << unit;
  }
}

}  // namespace
}  // namespace lk
