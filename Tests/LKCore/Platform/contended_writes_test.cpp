// Writers that are killed, and writers that meet at one file. Each test runs on the file system at
// hand, and again with each thing taken away that a file system may lack.

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <new>
#include <random>
#include <string>
#include <vector>

#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/SafeWrite.h"
#include "Support/Child.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::Child;
using test::TempFolder;

struct FileSystem {
  std::string name;
  FileSystemAbilities abilities;
  bool forgetsNothing = true;  // a killed writer's file is found again
};

class Contended : public testing::TestWithParam<FileSystem> {
 protected:
  FileSystemAbilities abilities() const { return GetParam().abilities; }
  // The disk for the file system as it is; memory, which is quicker, for the others.
  bool isReal() const { return GetParam().name == "as_it_is"; }
  const TempFolder folder{isReal() ? fs::temp_directory_path() : test::memoryFolder()};
};

INSTANTIATE_TEST_SUITE_P(
    OnAFileSystem, Contended,
    testing::Values(
        FileSystem{"as_it_is", {}},
        FileSystem{"without_anonymous_files", {.anonymousFiles = false}},
        FileSystem{"without_locks", {.locks = false}},
        FileSystem{"without_both", {.anonymousFiles = false, .locks = false}, false},
        FileSystem{"with_links_only", {.anonymousFiles = false, .exclusiveRename = false}},
        FileSystem{"with_plain_renames_only",
                   {.anonymousFiles = false, .exclusiveRename = false, .hardLinks = false}}),
    [](const auto& row) { return row.param.name; });

std::vector<std::string> entries(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename());
  return names;
}

// Two versions of a file that differ in every byte and in length.
std::string version(bool second) {
  return second ? std::string(150'000, 'b') : std::string(90'000, 'a');
}

bool isWhole(const std::string& bytes) {
  return bytes == version(false) || bytes == version(true);
}

TEST_P(Contended, AKilledWriterLeavesTheOldFileOrTheNewOne) {
  const fs::path file = folder / "Plan.md";
  std::mt19937 random(20260314);
  std::uniform_int_distribution<useconds_t> moment(0, 4000);
  const int kills = isReal() ? 300 : 20;
  replaceFile(file, version(false), abilities());
  for (int i = 0; i < kills; ++i) {
    Child writer([&]() -> std::string {
      for (bool second = true;; second = !second) replaceFile(file, version(second), abilities());
    });
    usleep(moment(random));
    writer.kill();
    ASSERT_TRUE(isWhole(readFile(file))) << "after kill " << i;
  }
  replaceFile(file, version(true), abilities());
  EXPECT_EQ(readFile(file), version(true));
  if (GetParam().forgetsNothing) {
    EXPECT_EQ(entries(folder.path()).size(), 1U);
  }
}

TEST_P(Contended, WritersOfOneFileDoNotDisturbEachOther) {
  const fs::path file = folder / "Plan.md";
  replaceFile(file, version(false), abilities());
  const auto work = [&](bool second) -> std::string {
    for (int i = 0; i < 60; ++i) replaceFile(file, version(second), abilities());
    return "done";
  };
  Child first([&] { return work(false); });
  Child second([&] { return work(true); });
  for (int i = 0; i < 100; ++i) ASSERT_TRUE(isWhole(readFile(file)));
  EXPECT_EQ(first.word(), "done");
  EXPECT_EQ(second.word(), "done");
  EXPECT_TRUE(isWhole(readFile(file)));
  EXPECT_EQ(entries(folder.path()).size(), 1U);
}

TEST(Locking, ChangesByTwoProcessesAreAllKept) {
  static constexpr int kChanges = 500;
  const TempFolder folder(test::memoryFolder());
  const fs::path file = folder / "Log.md";
  fs::create_symlink(file, folder / "Link.md");
  ASSERT_TRUE(createFile(file, ""));
  const auto append = [](const fs::path& path) -> std::string {
    for (int i = 0; i < kChanges; ++i) {
      const FileLock lock = FileLock::forUpdate(path);
      replaceFile(lock.path(), readFile(lock.path()) + "a line\n");
    }
    return "done";
  };
  Child first([&] { return append(file); });
  Child second([&] { return append(folder / "Link.md"); });
  EXPECT_EQ(first.word(), "done");
  EXPECT_EQ(second.word(), "done");
  EXPECT_EQ(readFile(file).size(), std::string("a line\n").size() * 2 * kChanges);
}

// A point that two processes pass together, again and again.
class Gate {
 public:
  Gate()
      : arrived_(new (mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE,
                           MAP_SHARED | MAP_ANONYMOUS, -1, 0)) std::atomic<int>(0)) {}
  ~Gate() { munmap(arrived_, sizeof(std::atomic<int>)); }
  Gate(const Gate&) = delete;
  Gate& operator=(const Gate&) = delete;

  void pass() {
    const int all = (arrived_->fetch_add(1) / 2 + 1) * 2;
    while (arrived_->load() < all) sched_yield();
  }

 private:
  std::atomic<int>* arrived_;
};

TEST_P(Contended, OneOfTwoMakersOfANameWins) {
  static constexpr int kRounds = 60;
  Gate gate;
  const auto name = [&](int round) { return folder / ("Note " + std::to_string(round) + ".md"); };
  const auto make = [&](bool second) {
    std::string wins;
    for (int i = 0; i < kRounds; ++i) {
      gate.pass();
      wins.push_back(createFile(name(i), version(second), abilities()) ? '1' : '0');
    }
    return wins;
  };
  Child first([&] { return make(false); });
  Child second([&] { return make(true); });
  const std::string firstWins = first.word();
  const std::string secondWins = second.word();
  ASSERT_EQ(firstWins.size(), kRounds) << firstWins;
  ASSERT_EQ(secondWins.size(), kRounds) << secondWins;
  for (size_t i = 0; i < kRounds; ++i) {
    EXPECT_NE(firstWins[i], secondWins[i]) << "round " << i;
    EXPECT_EQ(readFile(name(static_cast<int>(i))), version(secondWins[i] == '1'));
  }
  EXPECT_EQ(entries(folder.path()).size(), kRounds);
}

}  // namespace
}  // namespace lk
