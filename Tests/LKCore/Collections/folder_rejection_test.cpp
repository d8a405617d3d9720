#include "LKCore/Collections/FolderRejection.h"

#include <gtest/gtest.h>

#include <functional>

#include "Support/ChangedVariable.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::TempFolder;
using test::writeWhole;

void addFiles(const fs::path& folder, int count, const std::string& extension, bool executable) {
  for (int i = 0; i < count; ++i) {
    const fs::path file = folder / ("f" + std::to_string(i) + extension);
    writeWhole(file, "x");
    if (executable) fs::permissions(file, fs::perms::owner_exec, fs::perm_options::add);
  }
}

void addSparse(const fs::path& file, uintmax_t size) {
  writeWhole(file, "");
  fs::resize_file(file, size);
}

struct FolderCase {
  const char* name;
  std::function<void(const fs::path&)> fill;
  const char* message;  // empty: acceptable
};

class FolderContent : public testing::TestWithParam<FolderCase> {};

TEST_P(FolderContent, IsJudged) {
  const TempFolder folder;
  GetParam().fill(folder.path());
  const auto rejection = validateFolder(folder.path());
  EXPECT_EQ(rejection ? rejectionMessage(*rejection) : "", GetParam().message);
}

const FolderCase kFolderCases[] = {
    {"Empty", [](const fs::path&) {}, ""},
    {"HundredOtherFiles", [](const fs::path& f) { addFiles(f, 100, ".txt", false); }, ""},
    {"HundredAndOne", [](const fs::path& f) { addFiles(f, 101, ".txt", false); },
     "This folder contains 101+ non-Markdown files. It doesn’t look like a notes collection."},
    {"CountingEnds", [](const fs::path& f) { addFiles(f, 300, ".txt", false); },
     "This folder contains 201+ non-Markdown files. It doesn’t look like a notes collection."},
    {"ManyNotes", [](const fs::path& f) { addFiles(f, 300, ".MD", true); }, ""},
    {"FourExecutables", [](const fs::path& f) { addFiles(f, 4, "", true); }, ""},
    {"FiveExecutables", [](const fs::path& f) { addFiles(f, 5, ".EXE", true); },
     "This folder contains 5+ executable files. It appears to be a software project, not a notes "
     "collection."},
    {"FiveScripts", [](const fs::path& f) { addFiles(f, 5, ".txt", true); }, ""},
    {"HiddenAndPackagesDoNotCount",
     [](const fs::path& f) {
       for (const char* name : {".cache", "Trip.textbundle"}) {
         fs::create_directory(f / name);
         addFiles(f / name, 150, "", true);
       }
     },
     ""},
    {"SubfoldersCount",
     [](const fs::path& f) {
       fs::create_directories(f / "a/b");
       addFiles(f / "a/b", 101, "", false);
     },
     "This folder contains 101+ non-Markdown files. It doesn’t look like a notes collection."},
    {"JustBelowTheSize", [](const fs::path& f) { addSparse(f / "big.mov", 524'287'999); }, ""},
    {"TheSize", [](const fs::path& f) { addSparse(f / "big.mov", 524'288'000); },
     "This folder contains 500 MB+ of non-Markdown content. It doesn’t look like a notes "
     "collection."},
    {"Git", [](const fs::path& f) { writeWhole(f / ".git", "gitdir: x"); },
     "This folder is a Git repository. Use a subfolder instead, or create a new collection."},
    {"GitComesFirst",
     [](const fs::path& f) {
       fs::create_directory(f / ".git");
       writeWhole(f / "package.json", "");
     },
     "This folder is a Git repository. Use a subfolder instead, or create a new collection."},
    {"Xcode", [](const fs::path& f) { fs::create_directory(f / "A.xcodeproj"); },
     "This folder contains an Xcode project. It’s a software project, not a notes collection."},
    {"Node", [](const fs::path& f) { writeWhole(f / "package.json", ""); },
     "This folder contains a Node.js project (package.json). It’s a software project, not a notes "
     "collection."},
    {"Cargo", [](const fs::path& f) { writeWhole(f / "Cargo.toml", ""); },
     "This folder contains “Cargo.toml” — it’s a software project, not a notes collection."},
    {"Python", [](const fs::path& f) { writeWhole(f / "setup.py", ""); },
     "This folder contains “Python project” — it’s a software project, not a notes collection."},
    {"Make", [](const fs::path& f) { writeWhole(f / "CMakeLists.txt", ""); },
     "This folder contains “Makefile/CMake project” — it’s a software project, not a notes "
     "collection."},
};

INSTANTIATE_TEST_SUITE_P(All, FolderContent, testing::ValuesIn(kFolderCases),
                         [](const auto& each) { return std::string(each.param.name); });

struct PlaceCase {
  const char* name;
  const char* path;  // "~" stands for the home folder
  enum { fine, system, broad } verdict;
};

class FolderPlace : public testing::TestWithParam<PlaceCase> {};

TEST_P(FolderPlace, IsJudged) {
  const TempFolder home;
  fs::create_directories(home / "Documents/Notes");
  fs::create_directory_symlink("/tmp", home / "link-to-tmp");
  fs::create_directory_symlink(home.path(), home / "link-home");

  std::string path = GetParam().path;
  if (path.starts_with('~')) path.replace(0, 1, home.path().string());
  const auto rejection = [&] {
    const test::ChangedVariable variable("HOME", home.path().string());
    return validateFolder(path);
  }();

  using P = PlaceCase;
  const auto verdict = GetParam().verdict;
  ASSERT_EQ(rejection.has_value(), verdict != P::fine);
  if (verdict == P::system) {
    EXPECT_EQ(*rejection, FolderRejection(rejection::SystemPath{path}));
    EXPECT_EQ(rejectionMessage(*rejection),
              "The path “" + path + "” is a system directory and cannot be used as a collection.");
  }
  if (verdict == P::broad) {
    EXPECT_EQ(*rejection, FolderRejection(rejection::BroadUserDirectory{path}));
    EXPECT_EQ(rejectionMessage(*rejection),
              "The path “" + path +
                  "” contains too many unrelated files. Choose a subfolder instead, or create a "
                  "new collection inside it.");
  }
}

const PlaceCase kPlaceCases[] = {
    {"Root", "/", PlaceCase::system},
    {"ClosingSlash", "/tmp/", PlaceCase::system},
    {"DotDot", "/usr/../etc", PlaceCase::system},
    {"LinkToTmp", "~/link-to-tmp", PlaceCase::system},
    {"OfThisPlatform", "/proc", PlaceCase::system},
    {"Home", "~", PlaceCase::broad},
    {"LinkToHome", "~/link-home", PlaceCase::broad},
    {"Documents", "~/Documents", PlaceCase::broad},
    {"InDocuments", "~/Documents/Notes", PlaceCase::fine},
    {"Library", "~/Library/Caches", PlaceCase::system},
    {"DataFolder", "~/.local/share", PlaceCase::system},
    {"NotThere", "~/nothing", PlaceCase::fine},
};

INSTANTIATE_TEST_SUITE_P(All, FolderPlace, testing::ValuesIn(kPlaceCases),
                         [](const auto& each) { return std::string(each.param.name); });

TEST(Detectors, SeeOtherProgramsFoldersAndTheCloud) {
  const TempFolder folder;
  EXPECT_FALSE(detectObsidianVault(folder.path()));
  EXPECT_FALSE(detectLogseqGraph(folder.path()));
  EXPECT_FALSE(detectCloudSync(folder.path()));
  fs::create_directory(folder / ".obsidian");
  fs::create_directory(folder / "logseq");
  fs::create_directories(folder / "Library/Mobile Documents/x");
  fs::create_directory_symlink(folder / "Library/Mobile Documents/x", folder / "link");
  EXPECT_TRUE(detectObsidianVault(folder.path()));
  EXPECT_TRUE(detectLogseqGraph(folder.path()));
  EXPECT_TRUE(detectCloudSync(folder / "link"));
  EXPECT_FALSE(detectRemovable("/proc"));
}

}  // namespace
}  // namespace lk
