#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <string>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"

namespace lk {
namespace {

struct CanonicalCase {
  std::string name, line, stripped, withContext;
};

class CanonicalText : public testing::TestWithParam<CanonicalCase> {};

TEST_P(CanonicalText, KeepsWhatTheTaskSays) {
  const std::vector<std::string> keywords = {"bed (raised)", "project", std::string(20, 'k')};
  EXPECT_EQ(canonicalTaskText(GetParam().line, keywords, true), GetParam().stripped);
  EXPECT_EQ(canonicalTaskText(GetParam().line, keywords, false), GetParam().withContext);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, CanonicalText,
    testing::Values(
        CanonicalCase{"plain", "\t- [/] Rake - [ ] it ", "Rake - [ ] it", "Rake - [ ] it"},
        CanonicalCase{"no_task", "  Rake due:1", "Rake", "Rake"},
        CanonicalCase{"words_go", "- [x] Rake DUE:1  Priority:2 id:x leaves done:3", "Rake leaves",
                      "Rake leaves"},
        CanonicalCase{"context", "- [ ] Rake context:garden now", "Rake now",
                      "Rake context:garden now"},
        CanonicalCase{"keywords", "- [-] Rake project:a bed (raised):b", "Rake", "Rake"},
        CanonicalCase{"word_boundary", "- [ ] overdue:1 \u00E9due:2 (due:3)",
                      "overdue:1 \u00E9due:2 (", "overdue:1 \u00E9due:2 ("},
        CanonicalCase{
            "letters_of_three_bytes",
            "- [ ] Rake " + text::replacingAll(std::string(20, 'k'), "k", "\u212A") + ":a", "Rake",
            "Rake"},
        CanonicalCase{"no_value", "- [ ] Rake due: 1", "Rake due: 1", "Rake due: 1"},
        CanonicalCase{"wide_blanks", "- [ ] Rake\u3000\u00A0due:1\u00A0b", "Rake\u00A0b",
                      "Rake\u00A0b"}),
    [](const auto& testCase) { return testCase.param.name; });

TEST(TaskHash, IsTheStartOfTheDigestOfTheCanonicalText) {
  EXPECT_EQ(taskHash("- [ ] Order seeds due:2026-03-20"), "e98d0d01");
  EXPECT_EQ(taskHashCandidates("- [x] Rake context:garden"),
            (std::vector<std::string>{"ccb3b7cf", "0d23b9a8"}));
  EXPECT_EQ(taskHashCandidates("- [x] Rake id:7"), std::vector<std::string>{"ccb3b7cf"});
  EXPECT_TRUE(taskHashesMatch("ccb3b", "ccb3b7cf"));
  EXPECT_TRUE(taskHashesMatch("ccb3b7cf00", "ccb3b7cf"));
  EXPECT_FALSE(taskHashesMatch("", "ccb3b7cf"));
  EXPECT_FALSE(taskHashesMatch("ccb4", "ccb3b7cf"));
}

TEST(TaskLine, BeginsWithOneOfFourCheckboxes) {
  for (const char* line : {"- [ ] a", " \t- [/] a", "- [x] ", "- [-] b"}) {
    EXPECT_TRUE(isTaskLine(line)) << line;
  }
  for (const char* line : {"- [X] a", "- [ ]a", "-[ ] a", "* [ ] a", "\u00A0- [ ] a", ""}) {
    EXPECT_FALSE(isTaskLine(line)) << line;
  }
}

UUID id(int number) {
  return *UUID::parse("00000000-0000-0000-0000-" + std::to_string(100'000'000'000 + number));
}

struct MatchCase {
  std::string name, body;
  std::vector<TaskEntry> existing;
  std::vector<int> ids;  // one a task line, 0 for a fresh one
};

class Deriving : public testing::TestWithParam<MatchCase> {};

TEST_P(Deriving, KeepsTheIdentityOfTasks) {
  const auto entries = deriveTaskEntries(GetParam().body, GetParam().existing);
  ASSERT_EQ(entries.size(), GetParam().ids.size());
  for (size_t i = 0; i < entries.size(); ++i) {
    if (const int number = GetParam().ids[i]; number != 0) {
      EXPECT_EQ(entries[i].id, id(number)) << i;
    }
    const auto isOfEntry = [&](const TaskEntry& e) { return e.id == entries[i].id; };
    EXPECT_EQ(std::ranges::any_of(GetParam().existing, isOfEntry), GetParam().ids[i] != 0) << i;
    EXPECT_EQ(entries[i].hash->size(), 8U);
  }
  EXPECT_EQ(deriveTaskEntries(GetParam().body, entries), entries);
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, Deriving,
    testing::Values(
        MatchCase{"no_entries", "- [ ] Rake\ntext\n- [ ] Rake", {}, {0, 0}},
        MatchCase{"identical_lines_in_order",
                  "- [ ] Rake\n\t- [x] Rake",
                  {{9, id(1), "ccb3b7cf"}, {3, id(2), "ccb3b7cf"}, {4, id(3), "ccb3b7cf"}},
                  {1, 2}},
        MatchCase{"changed_due_moved_down",
                  "new\n- [ ] Sow\n- [x] Rake due:2026-01-02",
                  {{0, id(1), "ccb3b7cf"}},
                  {0, 1}},
        MatchCase{"changed_text", "- [ ] Rake more", {{0, id(1), "ccb3b7cf"}}, {0}},
        MatchCase{"legacy_hash", "- [ ] Rake context:garden", {{0, id(1), "0d23b9a8"}}, {1}},
        MatchCase{"shorter_and_longer_hashes",
                  "- [ ] Rake\n- [ ] Rake\n- [ ] Rake",
                  {{0, id(1), "ccb3"}, {1, id(2), "ccb3b7cf01"}, {2, id(3), "ccb"}},
                  {1, 2, 0}},
        MatchCase{"hash_differs_within_its_bucket", "- [ ] Rake", {{0, id(1), "ccb3b7c0"}}, {0}},
        MatchCase{"without_a_hash_by_index",
                  "- [ ] Sow\n- [ ] Rake\n- [ ] Hoe",
                  {{0, id(1), {}}, {1, id(2), ""}, {7, id(3), {}}, {2, id(4), "ccb3b7cf"}},
                  {1, 4, 0}}),
    [](const auto& testCase) { return testCase.param.name; });

TEST(Matching, TakesTheFirstEntryThatFitsEitherHash) {
  const std::vector<LiveTask> live = {{4, "aaaa1111", "bbbb2222"}, {6, "cccc3333", {}}};
  const TaskEntryMatch match =
      matchTaskEntries(live, {{0, id(1), "bbbb2222"}, {1, id(2), "aaaa1111"}});
  EXPECT_EQ(match, (TaskEntryMatch{{{0, {0, id(1), "bbbb2222"}}}, {1}}));
}

TEST(Deriving, TakesLinearTimeOnNotesMadeToBeSlow) {
  std::string body;
  std::vector<TaskEntry> existing;
  for (int i = 0; i < 100'000; ++i) {
    body += "- [ ] Rake\n";
    existing.push_back({i, id(i), i < 50'000 ? "ccb3" + std::to_string(10'000 + i) : "ccb3b7cf"});
  }
  body += "- [ ] Rake" + std::string(200'000, ' ') + "now due:1";
  const std::clock_t start = std::clock();  // of this process alone, however busy the machine
  const auto entries = deriveTaskEntries(body, existing);
  EXPECT_LT(std::clock() - start, 20 * CLOCKS_PER_SEC);
  EXPECT_EQ(entries[0].id, id(50'000));
  EXPECT_EQ(entries[49'999].id, id(99'999));
}

}  // namespace
}  // namespace lk
