#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <functional>
#include <string>

#include "LKCore/Base/Digest.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/SafeWrite.h"
#include "Support/Child.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::Child;
using test::readWhole;
using test::TempFolder;
using test::writeWhole;

// 0 or the errno of the FileError.
int codeOf(const std::function<void()>& body) {
  try {
    body();
    return 0;
  } catch (const FileError& error) {
    return error.code();
  }
}

size_t entryCount(const fs::path& folder) {
  return static_cast<size_t>(std::distance(fs::directory_iterator(folder), {}));
}

struct stat statOf(const fs::path& path) {
  struct stat info {};
  EXPECT_EQ(lstat(path.c_str(), &info), 0) << path;
  return info;
}

std::string accessListForOneMore() {
  const auto entry = [](uint16_t tag, uint16_t rights, uint32_t id) {
    const std::array<uint32_t, 2> words = {static_cast<uint32_t>(tag | (rights << 16U)), id};
    return std::string(reinterpret_cast<const char*>(words.data()), sizeof words);
  };
  static constexpr uint32_t kNone = 0xFFFFFFFF;
  return std::string("\2\0\0\0", 4) + entry(0x01, 6, kNone) + entry(0x02, 6, 1234) +
         entry(0x04, 0, kNone) + entry(0x10, 6, kNone) + entry(0x20, 0, kNone);
}

TEST(Replacing, KeepsModeOwnerAttributesAndLink) {
  const TempFolder folder;
  const fs::path file = folder / "Plan.md";
  const fs::path link = folder / "Link.md";
  writeWhole(file, "old");
  fs::create_symlink("Plan.md", link);
  writeAttributes(file, {{"user.color", "blue"}, {"user.empty", ""}});
  const std::string list = accessListForOneMore();
  setxattr(file.c_str(), "system.posix_acl_access", list.data(), list.size(), 0);
  ASSERT_EQ(chown(file.c_str(), test::ordinaryUser(), static_cast<gid_t>(-1)), 0);
  const struct stat before = statOf(file);
  const FileAttributes attributes = readAttributes(file);
  std::array<char, 256> found{};
  const ssize_t size =
      getxattr(file.c_str(), "system.posix_acl_access", found.data(), found.size());

  replaceFile(link, "new");

  EXPECT_EQ(readWhole(file), "new");
  EXPECT_EQ(fs::read_symlink(link), "Plan.md");
  const struct stat after = statOf(file);
  EXPECT_NE(after.st_ino, before.st_ino);
  EXPECT_EQ(after.st_mode, before.st_mode);
  EXPECT_EQ(after.st_uid, before.st_uid);
  EXPECT_EQ(after.st_gid, before.st_gid);
  EXPECT_EQ(readAttributes(file), attributes);
  EXPECT_EQ(getxattr(file.c_str(), "system.posix_acl_access", found.data(), found.size()), size);
}

TEST(Replacing, MakesAFileWithTheModeThatTheUserAskedFor) {
  const TempFolder folder;
  const mode_t mask = umask(027);
  replaceFile(folder / "Plan.md", "");
  umask(mask);
  EXPECT_EQ(statOf(folder / "Plan.md").st_mode & 0777U, 0640U);
}

TEST(Replacing, MakesTheTargetOfADanglingLink) {
  const TempFolder folder;
  fs::create_symlink("New.md", folder / "Link.md");
  replaceFile(folder / "Link.md", "text");
  EXPECT_EQ(readWhole(folder / "New.md"), "text");
  EXPECT_TRUE(fs::is_symlink(folder / "Link.md"));
}

struct Obstacle {
  std::string name;
  std::function<void(const fs::path&)> put;
  size_t leftEntries;
};

class OverAnObstacle : public testing::TestWithParam<Obstacle> {};

TEST_P(OverAnObstacle, AWriteGoesOn) {
  const std::string longest = std::string(252, 'n') + ".md";
  for (const bool anonymous : {true, false}) {
    const TempFolder folder;
    GetParam().put(folder / (".lk-" + sha256Hex(longest, 8) + ".tmp"));
    replaceFile(folder / longest, "text", FileSystemAbilities{.anonymousFiles = anonymous});
    EXPECT_EQ(readWhole(folder / longest), "text");
    EXPECT_EQ(entryCount(folder.path()), GetParam().leftEntries);
  }
}

INSTANTIATE_TEST_SUITE_P(
    AtTheTemporaryName, OverAnObstacle,
    testing::Values(
        Obstacle{"nothing", [](const fs::path&) {}, 1},
        Obstacle{"a_dead_writers_file", [](const fs::path& at) { writeWhole(at, "half"); }, 1},
        Obstacle{"a_folder", [](const fs::path& at) { fs::create_directory(at); }, 2},
        Obstacle{"a_link", [](const fs::path& at) { fs::create_symlink("/nowhere/x", at); }, 2}),
    [](const auto& row) { return row.param.name; });

struct Refusal {
  std::string name;
  std::function<fs::path(const TempFolder&)> make;
  int code;
};

class Refused : public testing::TestWithParam<Refusal> {};

TEST_P(Refused, WithoutWaiting) {
  const TempFolder folder;
  const fs::path path = GetParam().make(folder);
  const size_t before = entryCount(folder.path());
  alarm(20);  // a call that blocks ends the test
  EXPECT_EQ(codeOf([&] { replaceFile(path, "text"); }), GetParam().code);
  EXPECT_NE(codeOf([&] { readFile(path); }), 0);
  EXPECT_NE(codeOf([&] { FileLock::forUpdate(path); }), 0);
  alarm(0);
  EXPECT_EQ(entryCount(folder.path()), before);
}

fs::path fifo(const TempFolder& folder) {
  EXPECT_EQ(mkfifo((folder / "pipe.md").c_str(), 0600), 0);
  return folder / "pipe.md";
}

fs::path loop(const TempFolder& folder) {
  fs::create_symlink("loop.md", folder / "loop.md");
  return folder / "loop.md";
}

INSTANTIATE_TEST_SUITE_P(
    Paths, Refused,
    testing::Values(
        Refusal{"folder", [](const TempFolder& f) { return f.path(); }, EISDIR},
        Refusal{"trailing_slash", [](const TempFolder& f) { return f / "new/"; }, EISDIR},
        Refusal{"fifo", fifo, EINVAL}, Refusal{"link_to_itself", loop, ELOOP},
        Refusal{"device", [](const TempFolder&) { return fs::path("/dev/null"); }, EINVAL},
        Refusal{"missing_folder", [](const TempFolder& f) { return f / "no/a.md"; }, ENOENT},
        Refusal{"nul_byte", [](const TempFolder& f) { return f / std::string_view("a\0b", 3); },
                EINVAL},
        Refusal{"too_long", [](const TempFolder& f) { return f / std::string(256, 'n'); },
                ENAMETOOLONG}),
    [](const auto& row) { return row.param.name; });

// --- Faults --------------------------------------------------------------------------------------

struct Rights {
  std::string name;
  mode_t folder;
  mode_t file;
  int code;
};

class WithRights : public testing::TestWithParam<Rights> {};

TEST_P(WithRights, ReplacesOrRefusesAsAnOrdinaryUser) {
  const TempFolder folder;
  const fs::path inner = folder / "notes";
  const fs::path file = inner / "Plan.md";
  fs::create_directory(inner);
  writeWhole(file, "old");
  for (const fs::path& path : {folder.path(), inner, file}) {
    ASSERT_EQ(chown(path.c_str(), test::ordinaryUser(), static_cast<gid_t>(-1)), 0);
  }
  ASSERT_EQ(chmod(file.c_str(), GetParam().file), 0);
  ASSERT_EQ(chmod(inner.c_str(), GetParam().folder), 0);
  const std::string code = test::asOrdinaryUser(
      [&] { return std::to_string(codeOf([&] { replaceFile(file, "new"); })); });
  ASSERT_EQ(chmod(inner.c_str(), 0700), 0);
  ASSERT_EQ(chmod(file.c_str(), 0600), 0);
  EXPECT_EQ(code, std::to_string(GetParam().code));
  EXPECT_EQ(readWhole(file), GetParam().code == 0 ? "new" : "old");
  EXPECT_EQ(entryCount(inner), 1U);
}

INSTANTIATE_TEST_SUITE_P(Modes, WithRights,
                         testing::Values(Rights{"all", 0700, 0600, 0},
                                         Rights{"locked_file", 0700, 0400, EACCES},
                                         Rights{"locked_folder", 0500, 0600, EACCES},
                                         Rights{"closed_folder", 0000, 0600, EACCES},
                                         Rights{"unlistable_folder", 0300, 0600, 0},
                                         Rights{"unreadable_file", 0700, 0200, 0}),
                         [](const auto& row) { return row.param.name; });

// A small disk of its own where this process may mount one, else a limit on the size of files.
int limitSpace(const fs::path& folder) {
  if (unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
      mount("none", folder.c_str(), "tmpfs", 0, "size=64k") == 0) {
    return ENOSPC;
  }
  const rlimit limit = {.rlim_cur = 40'000, .rlim_max = 40'000};
  setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, SIG_IGN);
  return EFBIG;
}

TEST(FullDisk, KeepsTheOldFileAndNothingElse) {
  for (const bool anonymous : {true, false}) {
    const TempFolder folder;
    const FileSystemAbilities abilities{.anonymousFiles = anonymous};
    const std::string word =
        Child([&]() -> std::string {
          const int code = limitSpace(folder.path());
          const std::string big(100'000, 'b');
          replaceFile(folder / "Plan.md", "old", abilities);
          if (codeOf([&] { replaceFile(folder / "Plan.md", big, abilities); }) != code) return "1";
          if (codeOf([&] { (void)createFile(folder / "New.md", big, abilities); }) != code)
            return "2";
          if (readWhole(folder / "Plan.md") != "old") return "mangled";
          return std::to_string(entryCount(folder.path())) + " entry";
        }).word();
    EXPECT_EQ(word, "1 entry");
  }
}

// --- Moves, reading and the rest -----------------------------------------------------------------

TEST(Moving, TakesNoNameFromAnotherFile) {
  for (const FileSystemAbilities abilities :
       {FileSystemAbilities{}, FileSystemAbilities{.exclusiveRename = false}}) {
    const TempFolder folder;
    writeWhole(folder / "plan.md", "text");
    writeWhole(folder / "Other.md", "other");
    fs::create_hard_link(folder / "Other.md", folder / "Second.md");
    fs::create_symlink("nowhere", folder / "Dangling.md");
    const auto move = [&](const char* from, const char* to) {
      return moveFile(folder / from, folder / to, abilities);
    };
    EXPECT_FALSE(move("plan.md", "Other.md"));
    EXPECT_FALSE(move("plan.md", "Dangling.md"));
    EXPECT_FALSE(move("Other.md", "Second.md"));
    EXPECT_TRUE(move("plan.md", "plan.md"));
    EXPECT_TRUE(move("plan.md", "Plan.md"));
    EXPECT_EQ(codeOf([&] { (void)move("plan.md", "x.md"); }), ENOENT);
    EXPECT_EQ(readWhole(folder / "Plan.md"), "text");
    EXPECT_EQ(readWhole(folder / "Other.md"), "other");
    EXPECT_EQ(entryCount(folder.path()), 4U);
  }
}

TEST(Moving, KeepsTheFileAcrossFileSystems) {
  const TempFolder folder;
  const fs::path from = folder / "Plan.md";
  const TempFolder memory(test::memoryFolder());
  const fs::path to = memory / "Plan.md";
  writeWhole(from, "text");
  ASSERT_EQ(chmod(from.c_str(), 0640), 0);
  setModified(from, {.seconds = 1'700'000'000, .nanoseconds = 123'456'789});
  EXPECT_TRUE(moveFile(from, to));
  EXPECT_FALSE(nameIsTaken(from));
  EXPECT_EQ(readWhole(to), "text");
  EXPECT_EQ(fileInfo(to)->modified, (Instant{1'700'000'000, 123'456'789}));
  EXPECT_EQ(statOf(to).st_mode & 0777U, 0640U);
  writeWhole(from, "again");
  EXPECT_FALSE(moveFile(from, to));
}

TEST(Reading, TakesWhatIsThere) {
  const TempFolder folder;
  writeWhole(folder / "a.md", "0123456789");
  writeWhole(folder / "empty.md", "");
  EXPECT_EQ(readFile(folder / "a.md"), "0123456789");
  EXPECT_EQ(readFileStart(folder / "a.md", 4), "0123");
  EXPECT_EQ(readFileStart(folder / "a.md", 400), "0123456789");
  EXPECT_EQ(readFile(folder / "empty.md"), "");
  // Reports a size of 0 and has more than one block.
  EXPECT_GT(readFile("/proc/self/smaps").size(), 4096U);
}

TEST(Describing, TellsWhatIsAtAPath) {
  const TempFolder folder;
  createFolders(folder / "a/b/c/");
  createFolders(folder / "a/b");
  EXPECT_TRUE(fileInfo(folder / "a/b/c")->isDirectory);
  EXPECT_EQ(fileInfo(folder / "none"), std::nullopt);
  writeWhole(folder / "file", "12345");
  fs::create_symlink("none", folder / "dangling");
  EXPECT_EQ(fileInfo(folder / "file")->size, 5U);
  EXPECT_TRUE(fileInfo(folder / "file")->isRegular);
  EXPECT_FALSE(fileInfo(folder / "file")->isExecutable);
  EXPECT_EQ(fileInfo(folder / "dangling"), std::nullopt);
  EXPECT_TRUE(nameIsTaken(folder / "dangling"));
  EXPECT_FALSE(nameIsTaken(folder / "file/below"));
  EXPECT_EQ(codeOf([&] { createFolders(folder / "file/below"); }), ENOTDIR);
  EXPECT_EQ(codeOf([&] { removeFile(folder / "none"); }), ENOENT);
  EXPECT_EQ(FileError("/notes/Plan.md", ENOSPC).description(),
            "/notes/Plan.md: No space left on device");
}

TEST(Addresses, AreAbsoluteAndEncoded) {
  EXPECT_EQ(fileURL("/home/ann/My notes/Plän #1?.md"),
            "file:///home/ann/My%20notes/Pl%C3%A4n%20%231%3F.md");
  EXPECT_EQ(fileURL("/home/ann", true), "file:///home/ann/");
  const TempFolder folder;
  fs::create_directory(folder / "real");
  fs::create_symlink("real", folder / "link");
  EXPECT_EQ(resolved(folder / "link/../link/new/a.md"), folder / "real/new/a.md");
  EXPECT_EQ(resolved(folder / "link/"), folder / "real");
  EXPECT_EQ(resolved("none/below"), fs::current_path() / "none/below");
}

}  // namespace
}  // namespace lk
