#pragma once

// A collection for the reading commands, run as real processes, and the application's index of it.

#include <gtest/gtest.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Collections/LKCollectionPath.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/Platform/Files.h"
#include "Support/Process.h"
#include "Support/TempFolder.h"
#include "Tools/PlantedStore.h"

namespace lk::test {

class Reading : public testing::Test {
 protected:
  Reading() {
    setenv("TZ", "UTC", 1);
    tzset();
    std::filesystem::create_directory(notes());
    LKCollectionPath::setOverrideDocumentsDirectory(notes());
  }
  ~Reading() override { LKCollectionPath::setOverrideDocumentsDirectory(std::nullopt); }

  std::filesystem::path notes() const { return sandbox.home() / "Notes"; }
  std::filesystem::path file(const std::string& path) const { return notes() / (path + ".md"); }

  // A note changed `age` days before 2026-03-14T09:26:00Z and created `age` days before noon of
  // the day before.
  UUID note(const std::string& path, const std::string& body, int age = 0,
            const std::function<void(LKFileFrontMatter&)>& change = {}) const {
    LKFileFrontMatter block;
    block.id = UUID::random();
    block.created = {1'773'403'200 - int64_t{age} * 86'400, 0};
    block.taskEntries = deriveTaskEntries(body, {});
    if (change) change(block);
    std::filesystem::create_directories(file(path).parent_path());
    writeWhole(file(path), serialize(block, body));
    setModified(file(path), {1'773'480'360 - int64_t{age} * 86'400, 0});
    return block.id;
  }

  // Runs the words of the line, which are separated by "|", over the collection.
  ProcessResult lk(const std::string& line,
                   const std::map<std::string, std::string>& environment = {}) const {
    std::vector<std::string> words = {"--collection", notes().string()};
    for (const std::string_view word : text::split(line, '|')) words.emplace_back(word);
    return sandbox.lk(words, {.environment = environment});
  }

  // The titles of the notes that the command lists, in their order.
  std::vector<std::string> titles(const std::string& line) const {
    const ProcessResult result = lk(line + "|--json|--quiet");
    EXPECT_EQ(result.status, 0) << result.err;
    std::vector<std::string> found;
    if (result.status != 0) return found;
    for (const Json& row : parseJson(result.out)) found.push_back(row.at("title"));
    return found;
  }

  std::filesystem::path storePath() const {
    return applicationStore(sandbox.home(), kCollectionID);
  }

  // The application's index, with what the files hold now.
  void plantStore() const { plantApplication(sandbox.home(), notes(), kCollectionID); }

  static constexpr const char* kCollectionID = "6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F";
  static constexpr const char* kHint =
      "Note: lk read your note files directly, because Larkspire hasn't indexed this collection "
      "yet.\n  Faster: open the collection in Larkspire once.   (--quiet hides this note)\n";

  const Sandbox sandbox;
};

}  // namespace lk::test
