#include "LKCore/Platform/FolderWalk.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>

#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::TempFolder;
using test::writeWhole;

struct Listing {
  std::vector<std::string> files, links, packages, problems;
};

Listing list(const fs::path& folder, std::vector<std::string_view> hiddenFolders = {}) {
  Listing listing;
  WalkOptions options;
  options.hiddenFolders = std::move(hiddenFolders);
  options.onProblem = [&](const WalkProblem& problem) {
    listing.problems.push_back(std::string(problem.relativePath) + ":" +
                               std::to_string(problem.code));
  };
  const auto visit = [&](const WalkEntry& entry) {
    if (entry.kind == WalkEntry::Kind::file) {
      struct stat info {};
      EXPECT_EQ(fstatat(entry.folder, entry.name.data(), &info, 0), 0) << entry.relativePath;
      listing.files.emplace_back(entry.relativePath);
    }
    if (entry.kind == WalkEntry::Kind::symbolicLink) listing.links.emplace_back(entry.relativePath);
    if (entry.kind == WalkEntry::Kind::package) listing.packages.emplace_back(entry.relativePath);
    return WalkStep::proceed;
  };
  EXPECT_TRUE(walkFolder(folder, visit, options));
  std::ranges::sort(listing.files);
  return listing;
}

using Names = std::vector<std::string>;

TEST(FolderWalk, PassesOverHiddenEntriesPackagesAndLinks) {
  const TempFolder root;
  for (const char* folder : {"b/c", ".git", "b/.daily", "Trip.TextBundle", "v1.2"}) {
    fs::create_directories(root / folder);
    writeWhole(root / folder / "n.md", "");
  }
  writeWhole(root / ".hidden.md", "");
  writeWhole(root / "line\nfeed ö.md", "");
  fs::create_directory_symlink(root.path(), root / "loop");
  const Listing plain = list(root.path());
  EXPECT_EQ(plain.files, (Names{"b/c/n.md", "line\nfeed ö.md", "v1.2/n.md"}));
  EXPECT_EQ(plain.links, Names{"loop"});
  EXPECT_EQ(plain.packages, Names{"Trip.TextBundle"});
  EXPECT_EQ(plain.problems, Names{});
  EXPECT_EQ(list(root.path(), {".daily"}).files,
            (Names{"b/.daily/n.md", "b/c/n.md", "line\nfeed ö.md", "v1.2/n.md"}));
}

TEST(FolderWalk, ReportsWhatItCannotListAndGoesOn) {
  const TempFolder root;
  writeWhole(root / "caf\xe9.md", "");
  writeWhole(root / "fine.md", "");
  const Listing listing = list(root.path());
  EXPECT_EQ(listing.files, Names{"fine.md"});
  EXPECT_EQ(listing.problems, Names{"caf\xe9.md:0"});
  EXPECT_EQ(list(root / "nothing").problems, Names{":" + std::to_string(ENOENT)});
  EXPECT_EQ(list(root / "fine.md").problems, Names{":" + std::to_string(ENOTDIR)});
}

TEST(FolderWalk, StopsWhenTold) {
  const TempFolder root;
  for (int i = 0; i < 10; ++i) writeWhole(root / std::to_string(i), "");
  int seen = 0;
  EXPECT_FALSE(walkFolder(root.path(), [&](const WalkEntry&) {
    return ++seen == 3 ? WalkStep::stop : WalkStep::proceed;
  }));
  EXPECT_EQ(seen, 3);
}

TEST(FolderWalk, GoesDeepWithoutHoldingEveryFolderOpen) {
  const TempFolder root;
  std::string deep;
  int folder = open(root.path().c_str(), O_RDONLY | O_DIRECTORY);
  for (int i = 0; i < 1500; ++i) {
    ASSERT_EQ(mkdirat(folder, "d", 0755), 0);
    const int next = openat(folder, "d", O_RDONLY | O_DIRECTORY);
    close(folder);
    folder = next;
    deep += "d/";
  }
  const int file = openat(folder, "n.md", O_CREAT | O_WRONLY, 0644);
  ASSERT_GE(file, 0);
  close(file);
  close(folder);
  EXPECT_EQ(list(root.path()).files, Names{deep + "n.md"});
}

}  // namespace
}  // namespace lk
