// Holds the direction of includes: a folder may use those below it and never in a circle.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "LKCore/Base/Pattern.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;

// From the ground up; folders of one floor stand beside each other. A new folder belongs here.
const std::vector<std::vector<std::string>> kFloors = {
    {"Base"},
    {"Platform"},
    {"Collections", "Terminology", "NoteFiles", "Attachments", "Modules", "Pictures"},
    {"LexParse", "ParagraphModel"},
    {"Tasks", "Navigation"},
    {"Tags"},
    {"DataModel"},
    {"Backlinks", "CacheSync"},
    {"NoteRepository"},
    {"DailyNotes", "Properties", "Templates", "Queries", "Notifications", "Import", "Rendering",
     "Ranks", "Bind", "DOCX", "EPUB", "PDF"},
};

std::map<std::string, size_t> floorOfFolder() {
  std::map<std::string, size_t> floors;
  for (size_t floor = 0; floor < kFloors.size(); ++floor) {
    for (const std::string& folder : kFloors[floor]) floors[folder] = floor;
  }
  return floors;
}

// Folder to the folders it includes.
std::map<std::string, std::set<std::string>> includesBelow(const fs::path& core) {
  const Pattern include(R"((?m)^#include "LKCore/([A-Za-z]+)/)");
  std::map<std::string, std::set<std::string>> result;
  for (const auto& entry : fs::recursive_directory_iterator(core)) {
    if (!entry.is_regular_file()) continue;
    const std::string folder = entry.path().lexically_relative(core).begin()->string();
    const std::string text = test::readWhole(entry.path());
    result[folder];
    for (const auto& match : include.findAll(text)) {
      const std::string target(match[1]->of(text));
      if (target != folder) result[folder].insert(target);
    }
  }
  return result;
}

bool reaches(const std::map<std::string, std::set<std::string>>& includes, const std::string& from,
             const std::string& to, std::set<std::string>& seen) {
  if (!seen.insert(from).second || !includes.contains(from)) return false;
  return std::ranges::any_of(includes.at(from), [&](const std::string& next) {
    return next == to || reaches(includes, next, to, seen);
  });
}

TEST(Includes, PointDownwardsAndNeverInACircle) {
  const fs::path core = fs::path(LK_SOURCE_ROOT) / "Sources/LKCore";
  const auto includes = includesBelow(core);
  const auto floors = floorOfFolder();
  ASSERT_GT(includes.size(), 5U);
  for (const auto& [folder, targets] : includes) {
    ASSERT_TRUE(floors.contains(folder)) << folder << " has no floor in this test";
    for (const std::string& target : targets) {
      ASSERT_TRUE(floors.contains(target)) << target << " has no floor in this test";
      EXPECT_LE(floors.at(target), floors.at(folder)) << folder << " includes " << target;
    }
    std::set<std::string> seen;
    EXPECT_FALSE(reaches(includes, folder, folder, seen)) << folder << " includes itself";
  }
}

TEST(Includes, OfTheLibraryNeverNameTheTool) {
  for (const auto& entry :
       fs::recursive_directory_iterator(fs::path(LK_SOURCE_ROOT) / "Sources/LKCore")) {
    if (!entry.is_regular_file()) continue;
    EXPECT_EQ(test::readWhole(entry.path()).find("#include \"LarkspireCLI/"), std::string::npos)
        << entry.path();
  }
}

}  // namespace
}  // namespace lk
