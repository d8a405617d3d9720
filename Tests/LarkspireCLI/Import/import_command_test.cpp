// `lk import` as a process: hostile folders, and runs that are killed.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string>
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

class Importing : public testing::Test {
 protected:
  Importing() {
    fs::create_directory(notes());
    fs::create_directory(source());
  }

  fs::path notes() const { return sandbox.home() / "Notes"; }
  fs::path source() const { return sandbox.home() / "Old"; }

  void write(const std::string& name, const std::string& bytes) const {
    fs::create_directories((source() / name).parent_path());
    test::writeWhole(source() / name, bytes);
  }

  ProcessResult importOld(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"import", "Old", "--collection", notes().string()});
    return sandbox.lk(arguments);
  }

  std::map<std::string, std::string> bodies() const {
    std::map<std::string, std::string> found;
    for (const auto& entry : fs::directory_iterator(notes())) {
      if (entry.path().extension() != ".md") continue;
      found[entry.path().stem().string()] = parseDocument(readWhole(entry.path())).body;
    }
    return found;
  }

  const test::Sandbox sandbox;
};

TEST_F(Importing, TakesWhatItCanAndNamesTheRest) {
  write("Plan.md", "\xEF\xBB\xBF---\ntitle: 'A/B: plan'\n---\n\nwords\n\n");
  write("Menu.TXT", "a\r\nb");
  write("Empty.md", "");
  write("Roman.md", "caf\x8E");
  write(std::string(250, 'n') + ".md", "long");
  write(":?*\"<>|\\#.md", "unnamed");
  write("caf\xC3\xA9.md", "composed");
  write("cafe\xCC\x81.md", "decomposed");
  write("PLAN.md", "other");
  write("picture.png", "x");
  write(".hidden.md", "x");
  write("Sub/Deep.md", "x");
  test::writeWhole(sandbox.home() / "secret.md", "secret");
  fs::create_symlink(sandbox.home() / "secret.md", source() / "leak.md");
  fs::create_symlink(source(), source() / "loop");
  ASSERT_EQ(mkfifo((source() / "pipe.md").c_str(), 0600), 0);
  test::writeWhole(source() / "bad\xE9.md", "x");
  const ProcessResult result = importOld({"--tag", "#old", "--tag", "a/b"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "Imported 8 notes.\n");
  const std::vector<std::string_view> lines = text::split(text::trimmed(result.err), '\n');
  const std::set<std::string_view> told(lines.begin(), lines.end());
  const std::set<std::string_view> expected = {
      "skip (unreadable): Roman.md", "skip (unreadable): bad\\xE9.md", "skip (unreadable): leak.md",
      "skip (unreadable): pipe.md"};
  EXPECT_EQ(told, expected);
  const std::map<std::string, std::string> made = {
      {"AB plan", "words\n\n#old #a/b\n"},
      {"Menu", "a\nb\n\n#old #a/b\n"},
      {"Empty", "#old #a/b\n"},
      {std::string(200, 'n'), "long\n\n#old #a/b\n"},
      {"Untitled", "unnamed\n\n#old #a/b\n"},
      {"café", "decomposed\n\n#old #a/b\n"},
      {"café 2", "composed\n\n#old #a/b\n"},
      {"PLAN", "other\n\n#old #a/b\n"},
  };
  EXPECT_EQ(bodies(), made);
}

TEST_F(Importing, EntersFoldersOnlyWhenAsked) {
  write("Sub/Deep.md", "deep");
  write(".git/Config.md", "x");
  fs::create_directory_symlink(source() / "Sub", source() / "Again");
  const ProcessResult flat = importOld({});
  EXPECT_EQ(flat.status, 1);
  EXPECT_EQ(flat.err, "Error: No .md or .txt files found in Old\n");
  EXPECT_EQ(importOld({"--recursive"}).out, "Imported 1 note.\n");
  EXPECT_EQ(importOld({"--recursive"}).out, "Imported 1 note.\n");
  const std::map<std::string, std::string> expected = {{"Deep", "deep"}, {"Deep 2", "deep"}};
  EXPECT_EQ(bodies(), expected);
}

TEST_F(Importing, AFolderThatMayNotBeReadIsPassedOver) {
  write("Plan.md", "words");
  write("Closed/Deep.md", "deep");
  fs::permissions(source() / "Closed", fs::perms::none);
  fs::permissions(notes(), fs::perms::all);
  for (fs::path path = sandbox.home(); path != sandbox.home().parent_path();
       path = path.parent_path()) {
    if (fs::status(path).permissions() == fs::perms::owner_all) {
      fs::permissions(path, fs::perms{0755});
    }
  }
  std::vector<std::string> arguments = {"import", "Old", "--recursive", "--collection",
                                        notes().string()};
  const ProcessResult result = sandbox.lkAsOrdinaryUser(arguments);
  EXPECT_EQ(result.out, "Imported 1 note.\n");
  EXPECT_EQ(result.err, "skip (unreadable): Closed\n");
  fs::remove(source() / "Plan.md");
  fs::create_directory(source() / ".obsidian");
  std::ranges::replace(arguments, std::string("--recursive"), std::string("--vault"));
  const ProcessResult vault = sandbox.lkAsOrdinaryUser(arguments);
  EXPECT_EQ(vault.err, "Closed: Could not read file\nError: No .md or .txt files found in Old\n");
}

TEST_F(Importing, ACollectionThatTakesNoNoteIsToldFromAFileThatCannotBeRead) {
  write("Plan.md", std::string(20000, 'x'));
  write("Roman.md", "caf\x8E");
  const std::string failure =
      "Error: File write failed — 1 file could not be imported: " + (notes() / "Plan.md").string() +
      ": File too large\n";
  // A limit that what is told fits in and the note does not, which stands for a full disk.
  const std::string limited =
      "trap '' XFSZ; ulimit -f 8; exec \"$0\" import Old --quiet --collection \"$1\" ";
  const ProcessResult files = sandbox.run("sh", {"-c", limited, LK_TOOL_PATH, notes().string()});
  EXPECT_EQ(files.status, 4);
  EXPECT_EQ(files.err, "skip (not written): Plan.md\nskip (unreadable): Roman.md\n" + failure);
  fs::create_directories(source() / ".obsidian");
  const ProcessResult vault =
      sandbox.run("sh", {"-c", limited + "--vault", LK_TOOL_PATH, notes().string()});
  EXPECT_EQ(vault.status, 4);
  EXPECT_TRUE(vault.err.ends_with(failure)) << vault.err;
}

TEST_F(Importing, WhenKilledLeavesWholeNotesAndCanRunAgain) {
  constexpr size_t kFiles = 400;
  for (size_t i = 0; i < kFiles; ++i) {
    write("Note " + std::to_string(i) + ".md", std::string(9000, 'x'));
  }
  for (int round = 1; round <= 8; ++round) {
    const std::string seconds = "0.0" + std::to_string(round);
    sandbox.run("timeout", {"-s", "KILL", seconds, LK_TOOL_PATH, "import", "Old", "--collection",
                            notes().string()});
    for (const auto& [name, body] : bodies()) ASSERT_EQ(body, std::string(9000, 'x')) << name;
  }
  const size_t before = bodies().size();
  EXPECT_EQ(importOld({}).out, "Imported 400 notes.\n");
  EXPECT_EQ(bodies().size(), before + kFiles);
}

}  // namespace
}  // namespace lk
