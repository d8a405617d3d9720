// What the commands do when the ground gives way: full disks, folders without permission,
// collections that vanish, processes that race, closed pipes.

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "Support/Process.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::ProcessResult;
using test::readWhole;

class Faults : public testing::Test {
 protected:
  Faults() { fs::create_directory(notes()); }

  fs::path notes() const { return sandbox.home() / "Notes"; }

  ProcessResult lk(std::vector<std::string> arguments) const {
    arguments.insert(arguments.end(), {"--collection", notes().string()});
    return sandbox.lk(arguments);
  }

  // The tool as a user without rights, which root is not.
  ProcessResult lkAsNobody(std::vector<std::string> arguments) const {
    arguments.insert(arguments.end(), {"--collection", notes().string()});
    return sandbox.lkAsOrdinaryUser(arguments);
  }

  void allowEveryone() const {
    for (fs::path path = notes(); path != sandbox.home().parent_path(); path = path.parent_path()) {
      if (fs::status(path).permissions() == fs::perms::owner_all) {
        fs::permissions(path, fs::perms{0755});
      }
    }
  }

  const test::Sandbox sandbox;
};

TEST_F(Faults, TwoProcessesThatAppendLoseNoLine) {
  ASSERT_EQ(lk({"create", "Log", "--content", "start"}).status, 0);
  constexpr int kAppends = 40;
  std::vector<std::thread> writers;
  for (const char* name : {"a", "b"}) {
    writers.emplace_back([this, name] {
      for (int i = 0; i < kAppends; ++i) {
        EXPECT_EQ(lk({"edit", "Log", "--append", name + std::to_string(i)}).status, 0);
      }
    });
  }
  for (std::thread& writer : writers) writer.join();
  const std::string body = parseDocument(readWhole(notes() / "Log.md")).body;
  for (const char* name : {"a", "b"}) {
    for (int i = 0; i < kAppends; ++i) {
      EXPECT_NE(body.find("\n" + (name + std::to_string(i)) + "\n"), std::string::npos)
          << name << i;
    }
  }
}

TEST_F(Faults, RacingCreatesNeverReplaceEachOther) {
  std::vector<std::thread> writers;
  for (const char* name : {"a", "b", "c"}) {
    writers.emplace_back([this, name] {
      for (int i = 0; i < 10; ++i) EXPECT_EQ(lk({"create", "Same", "--content", name}).status, 0);
    });
  }
  for (std::thread& writer : writers) writer.join();
  std::map<std::string, int> bodies;
  for (const auto& entry : fs::directory_iterator(notes())) {
    ++bodies[parseDocument(readWhole(entry.path())).body];
  }
  EXPECT_EQ(bodies, (std::map<std::string, int>{{"a", 10}, {"b", 10}, {"c", 10}}));
}

TEST_F(Faults, AFolderThatMayNotBeWrittenLeavesTheNoteWhole) {
  ASSERT_EQ(lk({"create", "Plan", "--content", "words"}).status, 0);
  allowEveryone();
  fs::permissions(notes() / "Plan.md", fs::perms{0666});
  fs::permissions(notes(), fs::perms{0555});
  const std::string before = readWhole(notes() / "Plan.md");
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"edit", "Plan", "--append", "more"},
        std::vector<std::string>{"create", "Other", "--content", "x"},
        std::vector<std::string>{"rename", "Plan", "Scheme"},
        std::vector<std::string>{"delete", "Plan"},
        std::vector<std::string>{"delete", "Plan", "--permanent"}}) {
    SCOPED_TRACE(arguments.front());
    const ProcessResult result = lkAsNobody(arguments);
    EXPECT_EQ(result.status, 4) << result.err;
    EXPECT_NE(result.err.find("Permission denied"), std::string::npos) << result.err;
    EXPECT_NE(result.err.find("File write failed — /"), std::string::npos) << result.err;
  }
  EXPECT_EQ(readWhole(notes() / "Plan.md"), before);
}

TEST_F(Faults, AFolderThatMayNotBeReadSaysSo) {
  ASSERT_EQ(lk({"create", "Plan", "--content", "words"}).status, 0);
  allowEveryone();
  fs::permissions(notes() / "Plan.md", fs::perms{0600});
  const ProcessResult unreadable = lkAsNobody({"show", "Plan"});
  if (geteuid() == 0) {
    EXPECT_EQ(unreadable.status, 1);
    EXPECT_NE(unreadable.err.find("Plan.md: Permission denied"), std::string::npos)
        << unreadable.err;
  } else {
    EXPECT_EQ(unreadable.status, 0);  // the owner may
  }
}

TEST_F(Faults, ATrashThatMayNotBeReadIsNotCalledEmpty) {
  ASSERT_EQ(lk({"create", "Plan", "--content", "words"}).status, 0);
  ASSERT_EQ(lk({"delete", "Plan"}).status, 0);
  allowEveryone();
  fs::permissions(notes() / ".trash", fs::perms::none);
  const ProcessResult unreadable = lkAsNobody({"restore", "Plan"});
  fs::permissions(notes() / ".trash", fs::perms{0755});
  EXPECT_EQ(unreadable.status, 1);
  EXPECT_NE(unreadable.err.find(".trash: Permission denied"), std::string::npos) << unreadable.err;
}

TEST_F(Faults, ATrashThatIsALinkIsNotEmptied) {
  const fs::path outside = sandbox.home() / "Thesis";
  fs::create_directory(outside);
  test::writeWhole(outside / "Chapter.txt", "words");
  fs::create_directory_symlink(outside, notes() / ".trash");
  const ProcessResult result = lk({"delete", "--empty-trash"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "Error: " + (notes() / ".trash").string() +
                            " is a symbolic link to another folder. Nothing was deleted.\n");
  EXPECT_EQ(readWhole(outside / "Chapter.txt"), "words");
}

TEST_F(Faults, AFullDiskLeavesTheNoteWholeAndNothingBesideIt) {
  // A disk of its own where this user may mount one, else the kernel's limit on a file's size.
  const bool mounted = mount("tmpfs", notes().c_str(), "tmpfs", 0, "size=256k") == 0;
  ASSERT_EQ(lk({"create", "Plan", "--content", "words"}).status, 0);
  const std::string before = readWhole(notes() / "Plan.md");
  test::writeWhole(sandbox.home() / "large.md", std::string(600'000, 'x'));
  const std::string tool = std::string("'") + LK_TOOL_PATH + "'";
  const std::string limit = mounted ? "" : "trap '' XFSZ; ulimit -f 100; ";
  for (const std::string& command :
       {std::string(" edit Plan --collection Notes < large.md"),
        std::string(" create Other --collection Notes --from large.md")}) {
    const ProcessResult result =
        sandbox.run("/bin/sh", {"-c", std::string(limit).append(tool).append(command)});
    EXPECT_EQ(result.status, 4) << result.err;
    EXPECT_NE(result.err.find(mounted ? "No space left on device" : "File too large"),
              std::string::npos)
        << result.err;
  }
  EXPECT_EQ(readWhole(notes() / "Plan.md"), before);
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(notes()))
    names.push_back(entry.path().filename());
  EXPECT_EQ(names, std::vector<std::string>{"Plan.md"});
  if (mounted) umount2(notes().c_str(), MNT_DETACH);
}

TEST_F(Faults, NotesInAFolderThatMayNotBeReadAreNotJustMissing) {
  fs::create_directory(notes() / "Projects");
  allowEveryone();
  fs::permissions(notes() / "Projects", fs::perms::none);
  const ProcessResult shown = lkAsNobody({"show", "Plan"});
  fs::permissions(notes() / "Projects", fs::perms{0755});
  EXPECT_EQ(shown.status, 2);
  EXPECT_NE(shown.err.find("Projects: Permission denied"), std::string::npos) << shown.err;

  fs::permissions(notes(), fs::perms{0311});
  const ProcessResult listed = lkAsNobody({"list"});
  fs::permissions(notes(), fs::perms{0755});
  EXPECT_NE(listed.err.find("Notes: Permission denied"), std::string::npos) << listed.err;
}

TEST_F(Faults, AVanishedCollectionIsNotFound) {
  fs::remove_all(notes());
  for (const char* command : {"show", "edit", "delete", "restore", "archive", "open"}) {
    EXPECT_EQ(lk({command, "Plan"}).status, 3) << command;
  }
  EXPECT_FALSE(fs::exists(notes()));
}

TEST_F(Faults, AClosedPipeEndsQuietly) {
  ASSERT_EQ(lk({"create", "Long", "--content", std::string(120'000, 'x')}).status, 0);
  const std::string tool = std::string("'") + LK_TOOL_PATH + "'";
  const ProcessResult result =
      sandbox.run("/bin/sh", {"-c", tool + " show Long --collection Notes | head -c 10"});
  EXPECT_EQ(result.out.size(), 10U);
  EXPECT_EQ(result.err, "");
  const ProcessResult full =
      sandbox.run("/bin/sh", {"-c", tool + " show Long --collection Notes > /dev/full"});
  EXPECT_EQ(full.status, 1);
  EXPECT_NE(full.err, "");
}

TEST_F(Faults, ANameThatIsNotTextIsSkippedWithAWarning) {
  test::writeWhole(notes() / "bad\xFF.md", "x");
  ASSERT_EQ(lk({"create", "Garden plan", "--content", "words"}).status, 0);
  const ProcessResult found = lk({"show", "garden", "--body"});
  EXPECT_EQ(found.out, "words\n");
  EXPECT_NE(found.err.find("bad\\xFF.md"), std::string::npos) << found.err;
  EXPECT_EQ(lk({"show", "garden", "--body", "--quiet"}).err, "");
}

TEST_F(Faults, AReadOnlyCollectionRefusesInItsCommandsWords) {
  ASSERT_EQ(lk({"create", "Plan", "--content", "words"}).status, 0);
  ASSERT_EQ(lk({"create", "Old", "--content", "words"}).status, 0);
  ASSERT_EQ(lk({"delete", "Old"}).status, 0);
  ASSERT_EQ(sandbox.lk({"collection", "add", notes().string(), "--mode", "readOnly"}).status, 0);
  const std::string before = readWhole(notes() / "Plan.md");
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"create", "Other"},
        std::vector<std::string>{"edit", "Plan", "--append", "x"},
        std::vector<std::string>{"rename", "Plan", "Scheme"},
        std::vector<std::string>{"archive", "Plan"}, std::vector<std::string>{"unarchive", "Plan"},
        std::vector<std::string>{"delete", "Plan"},
        std::vector<std::string>{"delete", "--empty-trash"},
        std::vector<std::string>{"restore", "Old"}}) {
    const ProcessResult result = lk(arguments);
    EXPECT_EQ(result.status, 1) << arguments.front();
    EXPECT_EQ(result.err, arguments.front() == "create"
                              ? "Error: This collection is read-only. Notes cannot be created.\n"
                              : "Error: This collection is read-only. Notes cannot be modified.\n")
        << arguments.front();
  }
  EXPECT_EQ(readWhole(notes() / "Plan.md"), before);
  EXPECT_EQ(lk({"show", "Plan", "--body"}).out, "words\n");
}

}  // namespace
}  // namespace lk
