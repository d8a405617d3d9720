// What the task commands do to a line and to a body, as text alone.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/TaskArguments.h"
#include "LarkspireCLI/Support/TaskLineEdits.h"
#include "LarkspireCLI/Support/TaskRewrites.h"
#include "LarkspireCLI/Support/TaskSelector.h"
#include "Support/Growth.h"

namespace lk {
namespace {

constexpr Day kToday = {2026, 3, 14};

std::string to(TaskStatus status, const std::string& line) {
  return TaskLineEdits::transitionLine(line, status, kToday);
}

std::string due(const std::string& line) {
  return TaskLineEdits::replaceMetaToken(line, "due", "2026-04-01");
}

TEST(TaskLineEdits, ChangeTheWordsThatTheyNameAndKeepTheMark) {
  using TaskLineEdits::clearMetaToken;
  using TaskLineEdits::clearProjectTokens;
  using TaskLineEdits::replacingContext;
  const struct {
    const char* name;
    std::string changed;
    std::string expected;
  } cases[] = {
      {"a date that stands is replaced", due("\t- [ ] a due:2026-01-01 b  "),
       "\t- [ ] a b due:2026-04-01"},
      {"two dates become one", due("- [ ] a due:x due:2026-01-01"), "- [ ] a due:2026-04-01"},
      {"words that only hold the key stay", due("- [ ] overdue:x (due:y)"),
       "- [ ] overdue:x (due:y) due:2026-04-01"},
      {"a date right behind the mark", due("- [ ] due:2026-01-01"), "- [ ] due:2026-04-01"},
      {"cleared right behind the mark", clearMetaToken("- [ ] due:x Sow", "due"), "- [ ] Sow"},
      {"nothing left but the mark", clearMetaToken("- [/] due:x", "due"), "- [/] "},
      {"a key alone is a word", clearMetaToken("- [ ] due: x", "due"), "- [ ] due: x"},
      {"another case is a word", clearMetaToken("- [ ] Due:x", "due"), "- [ ] Due:x"},
      {"every keyword", clearProjectTokens("- [ ] a client:x project:y b", {"client", "project"}),
       "- [ ] a b"},
      {"done", to(TaskStatus::done, "  - [/] a "), "  - [x] a done:2026-03-14"},
      {"done before", to(TaskStatus::done, "- [x] a done:2020-01-01 b"),
       "- [x] a done:2020-01-01 b"},
      {"open again", to(TaskStatus::notStarted, "- [x] a done:2020-01-01 b done:2020-01-02"),
       "- [ ] a b done:2020-01-02"},
      {"open again without words", to(TaskStatus::inProgress, "- [x] done:2020-01-01"), "- [/] "},
      {"cancelled", to(TaskStatus::cancelled, "- [ ] a"), "- [-] a"},
      {"a context", replacingContext("- [ ] a context:x,b contexts:X y", "x", "z"),
       "- [ ] a context:z,b contexts:z y"},
      {"repeats collapse", replacingContext("- [ ] context:b,,x,c", "x", "b"), "- [ ] context:b,c"},
      {"a context stripped", replacingContext("- [ ] a context:x contexts:b,x c", "x", {}),
       "- [ ] a contexts:b c"},
      {"stripped behind the mark", replacingContext("- [ ] context:x a", "x", {}), "- [ ] a"},
      {"done in upper case", replacingContext("- [X] context:x a", "x", {}), "- [X] a"},
      {"within other words", replacingContext("- [ ] (context:x b context:xy,d", "x", "z"),
       "- [ ] (context:x b context:xy,d"},
  };
  for (const auto& each : cases) EXPECT_EQ(each.changed, each.expected) << each.name;
}

TEST(TaskLineEdits, FindLinesByTheirRawTextAndReadWhatIsTyped) {
  const std::string body = "- [ ] Buy milk\nbuy\n- [X] buy\n\t- [x] BUY due:2026-01-01\n* [ ] buy";
  EXPECT_EQ(TaskLineEdits::matchingTaskLineIndices(body, "buy"), (std::vector<size_t>{0, 3}));
  EXPECT_EQ(TaskLineEdits::matchingTaskLineIndices(body, "DUE:2026"), (std::vector<size_t>{3}));
  EXPECT_EQ(TaskLineEdits::normalizeContexts({" Deep Work,b,", "b", ","}),
            (std::vector<std::string>{"deep_work", "b"}));
  EXPECT_EQ(parseStatus("Canceled"), TaskStatus::cancelled);
  EXPECT_EQ(priorityArgument("HIGH"), "high");
  const std::function<void()> refused[] = {
      [] { parseStatus("2"); },          [] { priorityArgument("3"); },
      [] { dueArgument("someday"); },    [] { projectArgument("two words"); },
      [] { contextArguments({" , "}); }, [] { makeSelector("a", "b"); },
      [] { makeSelector({}, {}); },      [] { makeSelector("  ", {}); },
      [] { makeSelector({}, "1"); },
  };
  for (const auto& attempt : refused) EXPECT_THROW(attempt(), CLIError);
}

TEST(TaskLocation, FollowsTheLineThenItsPlaceAndNeverTakesAnothersLine) {
  const std::string body = "- [ ] a\n- [ ] twin due:2026-01-01\n- [ ] twin due:2026-02-02\n- [ ] b";
  const std::vector<TaskEntry> stored = deriveTaskEntries(body, {});
  const struct {
    const char* name;
    std::string now;
    size_t task;
    std::optional<size_t> line;
  } cases[] = {
      {"as it was", body, 2, 2},
      {"moved down, twins in their order", "x\n" + body, 2, 3},
      {"rewritten in its place", "- [ ] other\n- [ ] twin\n- [ ] twin\n- [ ] b", 0, 0},
      {"gone, and another in its place", "- [ ] twin\n- [ ] twin\n- [ ] b", 0, std::nullopt},
      {"gone with all others", "words", 3, std::nullopt},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(locateTaskLine(each.now, stored, stored[each.task].id), each.line) << each.name;
  }
  EXPECT_EQ(locateTaskLine(body, stored, UUID::random()), std::nullopt);
}

TEST(TaskRewriting, SparesCodeAndCountsLines) {
  const auto lineTransform = [](std::string_view line) {
    return TaskLineEdits::replacingContext(line, "x", "y");
  };
  const auto result = ContextsRewrite::rewritten(
      "- [ ] a context:x\ncontext:x\n```\n- [ ] b context:x\n```\n\n- [X] c context:x\n",
      lineTransform);
  EXPECT_EQ(result.text,
            "- [ ] a context:y\ncontext:x\n```\n- [ ] b context:x\n```\n\n- [X] c context:y\n");
  EXPECT_EQ(result.counts.metaHits, 2U);
}

TEST(TaskRewriting, TakesTimeInProportionToTheNote) {
  const double times =
      test::growth("- [ ] Buy milk context:a,b due:2026-01-01\n", 200'000, [](const auto& body) {
        const auto stored = entriesByLine(body, {});
        EXPECT_TRUE(locateTaskLine(body, stored, stored.back().id));
        EXPECT_FALSE(TaskLineEdits::matchingTaskLineIndices(body, "milk").empty());
        ContextsRewrite::rewritten(body, [](std::string_view line) {
          return TaskLineEdits::replacingContext(line, "a", "c");
        });
      });
  EXPECT_LE(times, 8);
}

}  // namespace
}  // namespace lk
