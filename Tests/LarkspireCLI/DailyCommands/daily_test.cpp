// `lk daily show`, `append`, `overdue` and `summary` over a collection, run as real processes.

#include <sys/stat.h>

#include "LarkspireCLI/Reading/ReadingFixture.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::ProcessResult;
using test::readWhole;

const std::string kHeading = "# Saturday 14 March 2026\n\n";
const std::string kTaskBlock =
    "<!--lk:noindex-->\n## Overdue\n\n- [ ] Pay rent due:2026-03-01 — [[Home]]\n\n"
    "## Due Today\n\n- [ ] Call Sam due:2026-03-14 — [[Work]]\n\n<!--/lk:noindex-->\n";
const char* const kReadOnly =
    "Error: This collection is read-only. Daily notes cannot be created or modified.\n";

class DailyCommands : public test::Reading {
 protected:
  DailyCommands() {
    note("Home", "- [ ] Pay rent due:2026-03-01\n- [x] Done due:2026-03-01", 1);
    note("Work", "Words\n\n- [ ] Call Sam due:2026-03-14\n- [ ] Later due:2026-03-15", 3);
  }

  // The run of `lk daily` with the words for that day.
  ProcessResult daily(const std::string& words, const std::string& date = "2026-03-14") const {
    return lk("daily|" + words + "|--date|" + date + "|--quiet");
  }
  std::string body(const std::string& key = "20260314") const {
    return parseDocument(readWhole(file(".daily/" + key))).body;
  }
  ino_t inode() const {
    struct stat info {};
    EXPECT_EQ(stat(file(".daily/20260314").c_str(), &info), 0);
    return info.st_ino;
  }
  void choose(int seed) const {
    fs::create_directories(sandbox.home() / "config/Larkspire");
    test::writeWhole(sandbox.home() / "config/Larkspire/defaults.json",
                     "{\"dailyNoteSeed\": " + std::to_string(seed) + "}");
  }
};

TEST_F(DailyCommands, KeepTheTaskBlockTrueToTheNotes) {
  const std::string updated = "Updated task block in the daily note for Saturday 14 March 2026\n";
  EXPECT_EQ(daily("overdue").out, updated);
  EXPECT_EQ(body(), kHeading + kTaskBlock);
  EXPECT_EQ(daily("append|Mine").status, 0);
  const ino_t before = inode();
  EXPECT_EQ(daily("overdue").out, updated);
  EXPECT_EQ(inode(), before);  // a write puts another file in its place
  EXPECT_EQ(lk("backlinks|Work|--quiet").out, "No notes reference \"Work\".\n");

  note("Work", "- [x] Call Sam due:2026-03-14");
  EXPECT_EQ(daily("overdue").out, updated);
  EXPECT_EQ(body(), kHeading +
                        "<!--lk:noindex-->\n## Overdue\n\n- [ ] Pay rent due:2026-03-01 — [[Home]]"
                        "\n\n<!--/lk:noindex-->\nMine\n");
  note("Home", "- [-] Pay rent due:2026-03-01");
  EXPECT_EQ(daily("overdue").out,
            "Removed the task block from the daily note for Saturday 14 March 2026 — nothing "
            "outstanding.\n");
  EXPECT_EQ(body(), kHeading + "Mine\n");
  EXPECT_EQ(daily("overdue|--json").out,
            "{\n  \"message\" : \"No overdue or due-today tasks for 2026-03-14\"\n}\n");
}

TEST_F(DailyCommands, SummariseTheDayOnceAtTheEnd) {
  const std::string start = "<!--lk:noindex-->\n## Activity\n\n*Activity summary — updated ";
  const std::string lists = "*\n\n### Modified\n\n- [[Home]]\n\n<!--/lk:noindex-->\n";
  for (int run = 0; run < 2; ++run) {
    EXPECT_EQ(daily("summary", "2026-03-13").out,
              "Updated activity summary in the daily note for Friday 13 March 2026\n");
    const std::string text = body("20260313");
    EXPECT_TRUE(text.starts_with("# Friday 13 March 2026\n\n" + start)) << text;
    EXPECT_TRUE(text.ends_with(lists)) << text;
    EXPECT_EQ(text.find(start), text.rfind(start)) << text;
  }
  EXPECT_EQ(daily("summary", "2026-03-12").status, 0);  // Home was created on it
  EXPECT_NE(body("20260312").find("### Created\n\n- [[Home]]\n\n<!--/"), std::string::npos);
}

TEST_F(DailyCommands, SeedANewNoteAsTheUserChose) {
  EXPECT_EQ(daily("show|--create", "2026-03-16").out, "Created daily note: 20260316.md\n");
  EXPECT_EQ(body("20260316"), "# Monday 16 March 2026\n\n");
  choose(1);
  EXPECT_EQ(daily("append|Mine").out, "Appended to daily note: 20260314.md\n");
  EXPECT_EQ(body(), kHeading + kTaskBlock + "\nMine\n");
  EXPECT_EQ(daily("show|--create").out, body());
  choose(2);
  const ProcessResult created = lk("daily|show|--create|--tasks|--json|--date|2026-03-12");
  EXPECT_EQ(created.out, "[]\n");
  EXPECT_EQ(created.err, std::string(kHint) + "Created daily note: 20260312.md\n");
  EXPECT_NE(body("20260312").find("— [[Home]]\n\n<!--/lk:noindex-->\n\n<!--lk:noindex-->\n## Act"),
            std::string::npos);
}

struct DailyReply {
  std::string words;
  std::string out;
  std::string err = "";
  int status = 0;
};

TEST_F(DailyCommands, AnswerInTheseWords) {
  note(".daily/20260312", "# Day\n\n- [ ] Ring Ann due:2026-03-20\n", 2,
       [](LKFileFrontMatter& block) {
         block.dailyDate = Day{2026, 3, 12};
       });
  test::writeWhole(file(".daily/20260311"), "plain");
  const std::string noDate = " is no date. Use e.g. 2026-03-14 or \"last friday\".\n";
  const std::vector<DailyReply> cases = {
      {"show|--date|12 march 2026", "# Day\n\n- [ ] Ring Ann due:2026-03-20\n"},
      {"show|--date|20260312|--tasks", "[ ] Ring Ann  due:2026-03-20  Thursday 12 March 2026\n"},
      {"show|--date|2026-03-10", "",
       "Error: Note \"the daily note for Tuesday 10 March 2026\" not found.\n"
       "  Hint: Use `lk list` to see all notes, or `lk search` to search.\n",
       2},
      {"append|--date|2026-03-12", "", "Error: Provide text to append or pipe from stdin.\n", 1},
      {"append| \n|--date|2026-03-12", "", "Error: Provide text to append or pipe from stdin.\n",
       1},
  };
  for (const DailyReply& each : cases) {
    const ProcessResult result = lk("daily|" + each.words + "|--quiet");
    EXPECT_EQ(result.out, each.out) << each.words;
    EXPECT_EQ(result.err, each.err) << each.words;
    EXPECT_EQ(result.status, each.status) << each.words;
  }
  for (const char* command : {"show", "append|x", "overdue", "summary"}) {
    const ProcessResult typo = daily(command, "2026-02-30");
    EXPECT_EQ(typo.err, "Error: \"2026-02-30\"" + noDate) << command;
    EXPECT_EQ(typo.status, 1) << command;
    EXPECT_EQ(daily(command, "2026-03-11").status, 5) << command;
  }
  EXPECT_EQ(readWhole(file(".daily/20260311")), "plain");
  EXPECT_FALSE(fs::exists(file(".daily/20260310")));
  EXPECT_EQ(parseJson(daily("show|--json", "2026-03-12").out).at("title").get<std::string>(),
            "20260312");
}

TEST_F(DailyCommands, LeaveAReadOnlyCollectionAsItIs) {
  note(".daily/20260312", "Words", 2, [](LKFileFrontMatter& block) {
    block.dailyDate = Day{2026, 3, 12};
  });
  ASSERT_EQ(sandbox.lk({"collection", "add", notes().string(), "--mode", "readOnly"}).status, 0);
  const std::string before = readWhole(file(".daily/20260312"));
  for (const char* date : {"2026-03-12", "2026-03-14"}) {
    for (const char* command : {"append|x", "overdue", "summary"}) {
      EXPECT_EQ(daily(command, date).err, kReadOnly) << command;
    }
  }
  EXPECT_EQ(daily("show|--create").err, kReadOnly);
  EXPECT_EQ(daily("show|--create", "2026-03-12").out, "Words\n");
  EXPECT_EQ(readWhole(file(".daily/20260312")), before);
  EXPECT_FALSE(fs::exists(file(".daily/20260314")));
}

TEST_F(DailyCommands, MeanTheLocalDayWithoutADate) {
  for (const char* zone : {"XXX-14", "YYY+11"}) {
    setenv("TZ", zone, 1);
    tzset();
    const Day before = Day::local(Instant::now());
    const std::string said = lk("daily|append|x", {{"TZ", zone}}).out;
    const Day after = Day::local(Instant::now());  // another one when midnight came between
    const std::string words = "Appended to daily note: ";
    EXPECT_TRUE(said == words + LKDateOnly::dayKey(before) + ".md\n" ||
                said == words + LKDateOnly::dayKey(after) + ".md\n")
        << said;
  }
}

}  // namespace
}  // namespace lk
