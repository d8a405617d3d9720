// What `lk attachments` counts and what it dares to delete, in real collections.

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "Support/Process.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::ProcessResult;

class Attachments : public testing::Test {
 protected:
  Attachments() { fs::create_directories(files()); }

  fs::path notes() const { return sandbox.home() / "Notes"; }
  fs::path files() const { return notes() / ".attachments"; }

  void attach(const std::string& name) const {
    fs::create_directories((files() / name).parent_path());
    test::writeWhole(files() / name, "x");
  }

  void note(const std::string& path, const std::string& body) const {
    fs::create_directories((notes() / path).parent_path());
    test::writeWhole(notes() / path, body);
  }

  ProcessResult attachments(std::vector<std::string> words) const {
    words.insert(words.begin(), "attachments");
    words.insert(words.end(), {"--collection", notes().string()});
    return sandbox.lk(words);
  }

  const test::Sandbox sandbox;
};

TEST_F(Attachments, CountNotesThatAreEverBackInUse) {
  for (const char* name :
       {"daily.png", "trashed.pdf", "Two words.png", "sub/deep.mp3", "lost.zip", "~$Report.docx"}) {
    attach(name);
  }
  note(".daily/20260314.md", "![](.attachments/daily.png)");
  note(".trash/Old.md", "[old](.attachments/trashed.pdf)");
  note("A.md", "![](.attachments/Two%20words.png) ![](.attachments/Two words.png)");
  note("Sub/B.md", "[s](.attachments/sub/deep.mp3) ![](.attachments/Two%20words.png)");
  note(".hidden/C.md", "lost.zip");
  note("D.txt", "lost.zip");
  EXPECT_EQ(attachments({}).out,
            "Two words.png  1 byte  2 references\n"
            "daily.png  1 byte  1 reference\n"
            "lost.zip  1 byte  0 references\n"
            "sub/deep.mp3  1 byte  1 reference\n"
            "trashed.pdf  1 byte  1 reference\n");
  EXPECT_EQ(attachments({"prune", "--force"}).out, "Deleted 1 orphaned image(s)\n");
  EXPECT_FALSE(fs::exists(files() / "lost.zip"));
  EXPECT_TRUE(fs::exists(files() / "~$Report.docx"));
  EXPECT_EQ(attachments({"prune", "--force"}).out, "No orphaned images.\n");
}

TEST_F(Attachments, AreNeverDeletedBehindALink) {
  const fs::path outside = sandbox.home() / "Outside";
  fs::create_directory(outside);
  test::writeWhole(outside / "kept.png", "x");
  fs::create_symlink(outside / "kept.png", files() / "link.png");
  fs::create_directory_symlink(outside, files() / "folder");
  EXPECT_EQ(attachments({"prune", "--force"}).out, "Deleted 1 orphaned image(s)\n");
  EXPECT_FALSE(fs::exists(fs::symlink_status(files() / "link.png")));
  EXPECT_TRUE(fs::exists(outside / "kept.png"));

  fs::remove_all(files());
  fs::create_directory_symlink(outside, files());
  const ProcessResult result = attachments({"prune", "--force"});
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("symbolic link to another folder. Nothing was deleted."),
            std::string::npos)
      << result.err;
  EXPECT_TRUE(fs::exists(outside / "kept.png"));
}

TEST_F(Attachments, StayWhileANoteCannotBeRead) {
  attach("bed.png");
  fs::create_symlink("Loop.md", notes() / "Loop.md");
  fs::create_symlink("Nowhere.md", notes() / "Dangling.md");
  const ProcessResult refused = attachments({"prune", "--force"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.err,
            "Error: Could not read Loop.md, which may use attachments. Nothing was deleted.\n");
  EXPECT_TRUE(fs::exists(files() / "bed.png"));
  const ProcessResult listed = attachments({"orphans"});
  EXPECT_EQ(listed.out, "bed.png  1 byte  0 references\n");
  EXPECT_EQ(listed.err, "Warning: Could not read Loop.md, which may use attachments.\n");
  fs::remove(notes() / "Loop.md");
  EXPECT_EQ(attachments({"prune", "--force"}).status, 0);
}

TEST_F(Attachments, GoOnAfterOneThatCannotBeDeleted) {
  attach("free.png");
  attach("locked/bed.png");
  fs::permissions(files() / "locked", fs::perms{0555});
  if (geteuid() == 0) {  // whom no mode hinders: the tool runs as a user without rights
    fs::permissions(files(), fs::perms{0777});
    for (fs::path path = files(); path != sandbox.home().parent_path(); path = path.parent_path()) {
      if (fs::status(path).permissions() == fs::perms::owner_all) {
        fs::permissions(path, fs::perms{0755});
      }
    }
  }
  const ProcessResult result = sandbox.lkAsOrdinaryUser(
      {"attachments", "prune", "--force", "--collection", notes().string()});
  fs::permissions(files() / "locked", fs::perms{0755});
  EXPECT_EQ(result.status, 4) << result.err;
  EXPECT_NE(result.err.find("Deleted 1 orphaned image(s). These are still there:\n  "),
            std::string::npos)
      << result.err;
  EXPECT_NE(result.err.find("locked/bed.png: Permission denied"), std::string::npos) << result.err;
  EXPECT_FALSE(fs::exists(files() / "free.png"));
  EXPECT_TRUE(fs::exists(files() / "locked/bed.png"));
}

}  // namespace
}  // namespace lk
