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
  std::string body() const { return parseDocument(readWhole(file(".daily/20260314"))).body; }
  ino_t inode() const {
    struct stat info {};
    EXPECT_EQ(stat(file(".daily/20260314").c_str(), &info), 0);
    return info.st_ino;
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

TEST_F(DailyCommands, SeedANewNoteAsTheUserChose) {
  fs::create_directories(sandbox.home() / "config/Larkspire");
  test::writeWhole(sandbox.home() / "config/Larkspire/defaults.json", R"({"dailyNoteSeed": 1})");
  EXPECT_EQ(daily("append|Mine").out, "Appended to daily note: 20260314.md\n");
  EXPECT_EQ(body(), kHeading + kTaskBlock + "\nMine\n");
  EXPECT_EQ(daily("show|--create").out, body());
  const ProcessResult created = lk("daily|show|--create|--tasks|--json|--date|2026-03-12");
  EXPECT_EQ(created.out, "[]\n");
  EXPECT_EQ(created.err, std::string(kHint) + "Created daily note: 20260312.md\n");
}

TEST_F(DailyCommands, RefuseWhatTheyCannotRead) {
  fs::create_directory(notes() / ".daily");
  test::writeWhole(file(".daily/20260311"), "plain");
  for (const char* command : {"show", "append|x", "overdue", "summary"}) {
    const ProcessResult typo = daily(command, "2026-02-30");
    EXPECT_EQ(typo.err,
              "Error: \"2026-02-30\" is no date. Use e.g. 2026-03-14 or \"last friday\".\n");
    EXPECT_EQ(typo.status, 1) << command;
    EXPECT_EQ(daily(command, "2026-03-11").status, 5) << command;
  }
  EXPECT_EQ(daily("append| \n").status, 1);
  EXPECT_EQ(readWhole(file(".daily/20260311")), "plain");
  EXPECT_FALSE(fs::exists(file(".daily/20260314")));
}

TEST_F(DailyCommands, LeaveAReadOnlyCollectionAsItIs) {
  ASSERT_EQ(daily("append|Mine").status, 0);
  ASSERT_EQ(sandbox.lk({"collection", "add", notes().string(), "--mode", "readOnly"}).status, 0);
  const std::string before = readWhole(file(".daily/20260314"));
  for (const char* date : {"2026-03-14", "2026-03-13"}) {
    for (const char* command : {"append|x", "overdue", "summary"}) {
      EXPECT_EQ(
          daily(command, date).err,
          "Error: This collection is read-only. Daily notes cannot be created or modified.\n");
    }
  }
  EXPECT_EQ(daily("show|--create", "2026-03-13").status, 1);
  EXPECT_EQ(daily("show|--create").out, kHeading + "Mine\n");
  EXPECT_EQ(readWhole(file(".daily/20260314")), before);
  EXPECT_FALSE(fs::exists(file(".daily/20260313")));
}

}  // namespace
}  // namespace lk
