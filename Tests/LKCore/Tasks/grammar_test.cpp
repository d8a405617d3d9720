// What a task line says, and each edit of one, as text.

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

#include "LKCore/Tasks/LKTaskDue.h"
#include "LKCore/Tasks/LKTaskLiveChange.h"
#include "LKCore/Tasks/LKTaskPriority.h"
#include "LKCore/Tasks/TaskEdit.h"
#include "Support/Growth.h"

namespace lk {
namespace {

TEST(TaskPriority, ReadsNumbersAndWords) {
  const std::vector<std::pair<std::string, int>> cases = {{"high", 3},
                                                          {"HiGh", 3},
                                                          {"medium", 2},
                                                          {"low", 1},
                                                          {"2", 2},
                                                          {"+1", 1},
                                                          {"0003", 3},
                                                          {"4", 3},
                                                          {"-7", 0},
                                                          {"0", 0},
                                                          {"none", 0},
                                                          {"", 0},
                                                          {"-", 0},
                                                          {" 2", 0},
                                                          {"2x", 0},
                                                          {"high!", 0},
                                                          {"99999999999999999999", 3},
                                                          {"-99999999999999999999", 0}};
  for (const auto& [text, raw] : cases) EXPECT_EQ(LKTaskPriority::rawValue(text), raw) << text;
  EXPECT_EQ(LKTaskPriority::token(2), "priority:medium");
  EXPECT_EQ(LKTaskPriority::token(0) + LKTaskPriority::token(4) + LKTaskPriority::token(-1), "");
}

void setZone(const char* zone) {
  setenv("TZ", zone, 1);
  tzset();
}

TEST(TaskDue, IsLateFromFiveInTheAfternoonLocalTime) {
  struct Case {
    const char* name;
    const char* zone;
    Day due;
    const char* cutoff;
  };
  const std::vector<Case> cases = {
      {"UTC", "UTC0", {2026, 3, 20}, "2026-03-20T17:00:00Z"},
      {"standard time", "EST5EDT,M3.2.0,M11.1.0", {2026, 1, 20}, "2026-01-20T22:00:00Z"},
      {"summer time", "EST5EDT,M3.2.0,M11.1.0", {2026, 7, 20}, "2026-07-20T21:00:00Z"},
      {"skipped hour", "AAA0BBB,M3.2.0/16:30,M11.1.0", {2026, 3, 8}, "2026-03-08T16:30:00Z"},
      {"hour shown twice", "AAA0BBB,M3.2.0,M11.1.0/17:30", {2026, 11, 1}, "2026-11-01T16:00:00Z"},
      {"far east", "XXX-14", {2026, 3, 20}, "2026-03-20T03:00:00Z"},
      {"first day", "UTC0", {1, 1, 1}, "0001-01-01T17:00:00Z"},
  };
  for (const Case& row : cases) {
    setZone(row.zone);
    const Instant cutoff = LKTaskDue::cutoff(row.due);
    EXPECT_EQ(formatISO8601(cutoff), row.cutoff) << row.name;
    EXPECT_TRUE(LKTaskDue::isOverdue(row.due, cutoff)) << row.name;
    EXPECT_FALSE(LKTaskDue::isOverdue(row.due, {cutoff.seconds - 1, 999'999'999})) << row.name;
  }
  setZone("UTC0");
}

TEST(TaskState, IsReadFromTheLine) {
  using State = LKTaskDiscreteState;
  const Day march{2026, 3, 20};
  const std::vector<std::pair<std::string, std::optional<State>>> cases = {
      {"- [ ] a", State{0, {}, 0}},
      {"\t - [/] a due:2026-03-20 priority:high", State{1, march, 3}},
      {"- [x] ", State{2, {}, 0}},
      {"* [-] a priority:2", State{3, {}, 2}},
      {"* [ ] a", State{0, {}, 0}},
      {"- [ ] due:2026-02-30 due:2026-03-20", State{0, {}, 0}},
      {"- [ ] (due:2026-03-20)", State{0, march, 0}},
      {"- [ ] xdue:2026-03-20 due:2026-3-20 due:2026-03-20x", State{0, march, 0}},
      {"- [ ] e\u0301due:2026-03-20", State{0, {}, 0}},
      {"- [ ] a priority: priority:low priority:high", State{0, {}, 1}},
      {"- [X] a", std::nullopt},
      {"- [ ]a", std::nullopt},
      {"+ [ ] a", std::nullopt},
      {"", std::nullopt}};
  for (const auto& [line, state] : cases) {
    EXPECT_EQ(LKTaskDiscreteState::parse(line), state) << line;
  }
}

struct EditCase {
  const char* name;
  std::string before;
  TaskEdit edit;
  std::string after;  // empty: refused, or nothing to do
};

const Day kToday{2026, 3, 14};
const std::vector<std::string> kKeywords = {"client", "project"};

std::vector<EditCase> editCases() {
  const auto status = [](int raw) { return SetTaskStatus{raw, kToday}; };
  const SetTaskDue due{Day{2026, 4, 1}};
  return {
      {"start", "- [ ] a", status(1), "- [/] a"},
      {"finish", "- [/] a  ", status(2), "- [x] a done:2026-03-14"},
      {"finish keeps an old date", "- [ ] a done:2020-01-01 b", status(2),
       "- [x] a done:2020-01-01 b"},
      {"reopen drops dates anywhere", "- [x] done:2026-01-01 a  done:2026-01-02\tb", status(0),
       "- [ ] a\tb"},
      {"reopen cuts into words", "- [x] undone:2026-01-01s", status(1), "- [/] uns"},
      {"cancel", "\t- [ ] a", status(3), "\t- [-] a"},
      {"cancel a done one", "- [x] a done:2026-01-01", status(3), "- [-] a"},
      {"no change", "- [/] a", status(1), ""},
      {"no such status", "- [/] a", status(4), ""},
      {"negative status", "- [/] a", status(-1), ""},
      {"capital X", "- [X] a", status(0), ""},
      {"due", "- [ ] a \u00A0", due, "- [ ] a due:2026-04-01"},
      {"due again", "- [ ] a due:2026-04-01", due, ""},
      {"due, all removed", "- [ ] due:2026-01-01 a  due:2026-01-02 b", due,
       "- [ ] a b due:2026-04-01"},
      {"due, ill-formed stays", "- [ ] a due:soon xdue:2026-01-01", due,
       "- [ ] a due:soon xdue:2026-01-01 due:2026-04-01"},
      {"no due", "- [ ] a due:2026-01-01 b", SetTaskDue{}, "- [ ] a b"},
      {"no due where none is", "- [ ] a", SetTaskDue{}, ""},
      {"no due keeps CR", "- [ ] a due:2026-01-01\r", SetTaskDue{}, "- [ ] a\r"},
      {"due takes CR", "- [ ] a\r", due, "- [ ] a due:2026-04-01"},
      {"due without a written form", "- [ ] a", SetTaskDue{Day{12026, 1, 1}}, ""},
      {"priority", "- [ ] a priority:1 b priority:x,y", SetTaskPriority{3},
       "- [ ] a b priority:high"},
      {"no priority", "- [ ] a priority:1", SetTaskPriority{0}, "- [ ] a"},
      {"project", "- [ ] a PROJECT:x Client:y subproject:z", SetTaskProject{"Garden", kKeywords},
       "- [ ] a subproject:z client:Garden"},
      {"project after a bracket", "- [ ] a (project:x) b", SetTaskProject{"", kKeywords},
       "- [ ] a ( b"},
      {"no project", "- [ ] a project:x", SetTaskProject{std::nullopt, kKeywords}, "- [ ] a"},
      {"project of two lines", "- [ ] a", SetTaskProject{"x\ny", kKeywords}, ""},
      {"text", "\t- [x] a due:2026-01-01\r", SetTaskText{"b"}, "\t- [x] b\r"},
      {"same text", "- [x] a", SetTaskText{"a"}, ""},
      {"text of two lines", "- [x] a", SetTaskText{"b\u2028c"}, ""},
      {"text that is no UTF-8", "- [x] a", SetTaskText{"b\xFF"}, ""},
      {"no task", "a", SetTaskText{"b"}, ""},
  };
}

TEST(TaskLineEdits, ChangeTheirLineAlone) {
  for (const EditCase& row : editCases()) {
    const std::string rest = "\n> comment\n- [ ] other\n\xE2\x80\xA8 end";
    const auto edited = editTask(row.before + rest, UUID(), 0, row.edit);
    EXPECT_EQ(edited ? edited->text : "", row.after.empty() ? "" : row.after + rest) << row.name;
    // At the last line of a file no line feed is added.
    const auto alone = editTask(row.before, UUID(), 0, row.edit);
    EXPECT_EQ(alone ? alone->text : "", row.after) << row.name;
  }
}

TEST(TaskLineEdits, TakeLinearTime) {
  const std::vector<TaskEdit> edits = {SetTaskStatus{0, kToday}, SetTaskDue{kToday},
                                       SetTaskPriority{1}, SetTaskProject{"x", kKeywords}};
  for (const char* part : {" ", "due:", "xproject:", " project:a", " due:2026-01-01",
                           "done:2026-01-01", "e\u0301due:", "priority:", "\u0301"}) {
    const double times = test::growth(part, size_t{16} * 1024, [&](const std::string& rest) {
      for (const TaskEdit& edit : edits) EXPECT_TRUE(editTask("- [x] " + rest, UUID(), 0, edit));
    });
    EXPECT_LE(times, 8) << part;
  }
}

}  // namespace
}  // namespace lk
