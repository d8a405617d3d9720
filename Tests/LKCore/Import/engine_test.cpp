// The engine on real folders: files, bundles, what is hostile among them, and the rows of an index.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "LKCore/Base/Notices.h"
#include "LKCore/DataModel/MemoryStore.h"
#include "LKCore/Import/LKImportActivity.h"
#include "LKCore/Import/LKImportEngine.h"
#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/Platform/Files.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
namespace engine = LKImportEngine;
using test::readWhole;
using test::writeWhole;

class ImportEngine : public testing::Test {
 protected:
  ImportEngine() {
    fs::create_directories(source());
    fs::create_directories(notes());
    context.destinationFolder = notes();
    context.attachmentsDirectory = notes() / ".attachments";
  }

  fs::path source() const { return folder / "source"; }
  fs::path notes() const { return folder / "notes"; }

  fs::path write(const std::string& name, const std::string& bytes) const {
    fs::path file = source() / name;
    fs::create_directories(file.parent_path());
    writeWhole(file, bytes);
    return file;
  }

  LKParsedDocument note(const std::string& name) const {
    return parseDocument(readWhole(notes() / (name + ".md")));
  }

  std::map<std::string, std::string> reasons(const engine::ImportBatchResult& result) const {
    std::map<std::string, std::string> found;
    for (const auto& [filename, reason] : result.errors) found[filename] += reason;
    return found;
  }

  const test::TempFolder folder;
  engine::ImportContext context;
};

TEST_F(ImportEngine, ImportsAFolderAndTellsWhatItCannotTake) {
  write("b/Plan.md", "second");
  write("a/Plan.md", "---\r\ntitle: \"Plan\"\r\n---\r\n\r\n# First\r\n");
  write("Menu.txt", "caf\x8E\n");
  write("empty.md", " \n");
  write("wide.md", std::string("\xFF\xFEh\0i\0", 6));
  write("large.md", std::string(engine::maxTextBytes + 1, 'a'));
  write("long.md", std::string(engine::maxTextCharacters + 1, 'a'));
  write("Outline.bike", "<html/>");
  write("tool.exe", "MZ");
  write(".hidden.md", "never");
  write(std::string(250, 'n') + ".md", "long name");
  writeWhole(folder / "outside.md", "outside");
  fs::create_symlink(folder / "outside.md", source() / "leak.md");
  fs::create_directory_symlink(source(), source() / "loop.md");
  ASSERT_EQ(mkfifo((source() / "pipe.md").c_str(), 0600), 0);
  const auto result = engine::performImport({source()}, context, {.appendTags = {"old", "my tag"}});
  EXPECT_EQ(result.importedCount, 4U);
  EXPECT_EQ(result.skippedCount, 9U);
  const std::map<std::string, std::string> expected = {
      {"empty.md", "Text file is empty"},
      {"wide.md", "Could not decode file"},
      {"large.md", "File too large (max 5 MB)"},
      {"long.md", "Text too large (5000001 characters, max 5,000,000)"},
      {"leak.md", "Could not read file"},
      {"loop.md", "Could not read file"},
      {"pipe.md", "Could not read file"},
      {"tool.exe", ".exe files cannot be added to a collection."},
      {"Outline.bike",
       ".bike files cannot be added to a collection. Open the original in Bike to view it."},
  };
  EXPECT_EQ(reasons(result), expected);
  EXPECT_EQ(note("Plan").body, "# First\n\n#old #my-tag\n");
  EXPECT_EQ(note("Plan").frontMatter.title, std::nullopt);
  EXPECT_EQ(note("Plan 2").body, "second\n\n#old #my-tag\n");
  EXPECT_EQ(note("Plan 2").frontMatter.title, "Plan");
  EXPECT_EQ(note("Menu").body, "café\n\n#old #my-tag\n");
  EXPECT_EQ(note(std::string(200, 'n')).frontMatter.title, std::string(250, 'n'));
  EXPECT_FALSE(LKImportActivity::isActive());
}

TEST_F(ImportEngine, KeepsTheDatesOfFiles) {
  const fs::path file = write("Plan.md", "words");
  const Instant changed = parseISO8601("2020-05-06T07:08:09Z").value();
  setModified(file, changed);
  ASSERT_TRUE(engine::importPlainTextFile(file, context).success);
  EXPECT_EQ(fileInfo(notes() / "Plan.md")->modified, changed);
  const auto info = fileInfo(file);
  EXPECT_EQ(note("Plan").frontMatter.created.seconds,
            info->created.value_or(info->modified).seconds);
}

TEST_F(ImportEngine, TakesABundleWithItsAssets) {
  write("Trip.textbundle/text.text",
        "# Trip\n![boat](assets/my%20boat.png) [map](assets/sub/map.pdf \"The map\") "
        "![gone](assets/gone.png) ![pier](assets/pier(1).png) ![bow](assets/bow(.png)");
  write("Trip.textbundle/assets/pier(1).png", "pier");
  write("Trip.textbundle/assets/bow(.png", "bow");
  write("Trip.textbundle/info.json", R"({"tags": ["by sea", 7, "2024"], "version": 2})");
  write("Trip.textbundle/assets/my boat.png", "boat");
  write("Trip.textbundle/assets/sub/map.pdf", "map");
  write("Trip.textbundle/assets/run.sh", "#!/bin/sh");
  write("Trip.textbundle/assets/huge.mov", "");
  fs::resize_file(source() / "Trip.textbundle/assets/huge.mov", 20 * 1024 * 1024 + 1);
  fs::create_symlink("/etc/passwd", source() / "Trip.textbundle/assets/secret.txt.png");
  fs::create_directories(notes() / ".attachments");
  writeWhole(notes() / ".attachments/map.pdf", "another map");
  writeWhole(notes() / ".attachments/my_boat.png", "boat");
  const auto result = engine::performImport({source()}, context);
  EXPECT_EQ(result.importedCount, 1U);
  EXPECT_EQ(note("Trip").body,
            "# Trip\n![boat](.attachments/my_boat.png) [map](.attachments/map%202.pdf \"The map\") "
            "![gone](assets/gone.png) ![pier](.attachments/pier_1_.png) "
            "![bow](.attachments/bow_.png)\n\n#by-sea\n\n#2024\n");
  const std::vector<engine::ImportProblem> expected = {
      {"Trip.textbundle", "huge.mov (too large: 21 MB, max 20 MB)"},
      {"Trip.textbundle", "Trip.textbundle — .sh files cannot be added to a collection."},
      {"Trip.textbundle", "Failed to copy asset secret.txt.png"},
  };
  EXPECT_EQ(result.errors, expected);
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(notes() / ".attachments")) {
    names.push_back(entry.path().filename());
  }
  std::ranges::sort(names);
  EXPECT_EQ(names, (std::vector<std::string>{"bow_.png", "map 2.pdf", "map.pdf", "my_boat.png",
                                             "pier_1_.png"}));
  EXPECT_EQ(readWhole(notes() / ".attachments/map.pdf"), "another map");
  EXPECT_EQ(readWhole(notes() / ".attachments/map 2.pdf"), "map");
}

TEST_F(ImportEngine, RefusesABundleInTheToldWords) {
  write("None.textbundle/info.json", "{");
  write("Blank.textbundle/text.md", "---\ntitle: x\n---\n\n");
  fs::create_directories(source() / "Link.textbundle");
  fs::create_symlink("/etc/passwd", source() / "Link.textbundle/text.md");
  write("Wide.textbundle/text.md", std::string("\xFF\xFEh\0i\0", 6));
  fs::create_directories(folder / "elsewhere");
  writeWhole(folder / "elsewhere/text.md", "outside");
  fs::create_directory_symlink(folder / "elsewhere", source() / "Away.textbundle");
  const std::map<std::string, std::string> expected = {
      {"None.textbundle",
       "No text file found (expected text.markdown, text.md, text.txt, or text.text)"},
      {"Blank.textbundle", "Text file is empty"},
      {"Link.textbundle", "Could not read text file"},
      {"Away.textbundle", "Could not read text file"},
      {"Wide.textbundle", "Could not decode text file (not UTF-8 or macOS Roman)"},
  };
  EXPECT_EQ(reasons(engine::performImport({source()}, context)), expected);
  EXPECT_TRUE(fs::is_empty(notes()));
}

TEST_F(ImportEngine, FillsTheOpenIndex) {
  const auto index = makeMemoryStore();
  context.context = index.get();
  write("1.md", "See [[2]] and [[Nobody]] #garden\n- [ ] Order seeds due:2020-01-01\n- [x] Rest\n");
  write("2.md", "Back to [[1]] #garden");
  engine::performImport({source()}, context);
  const auto rows = index->notes().fetch();
  ASSERT_EQ(rows.size(), 2U);
  const LKNote& first = *rows[0];
  const std::string file = readWhole(notes() / "1.md");
  EXPECT_EQ(first.id, parseDocument(file).frontMatter.id);
  EXPECT_EQ(first.fileDigest, computeRawDigest(file));
  EXPECT_EQ(first.title, "1");
  EXPECT_EQ(first.activeTaskCount, 1);
  EXPECT_EQ(first.doneTaskCount, 1);
  EXPECT_EQ(first.overdueTaskCount, 1);
  ASSERT_EQ(first.tasks.size(), 2U);
  EXPECT_EQ(first.tasks[0]->id, parseDocument(file).frontMatter.taskEntries[0].id);
  EXPECT_EQ(index->tags().fetch().size(), 1U);
  std::map<std::string, std::optional<UUID>> targets;
  for (const LKBackLink* link : index->backLinks().fetch()) {
    targets[link->targetNoteReference] = link->targetNoteID;
  }
  const std::map<std::string, std::optional<UUID>> expected = {
      {"1", first.id}, {"2", rows[1]->id}, {"Nobody", std::nullopt}};
  EXPECT_EQ(targets, expected);
}

TEST(ImportActivity, RemembersItsWritesForATimeAndSaysWhenTheLastImportEnds) {
  Instant now = {.seconds = 1000};
  LKImportActivity::reset([&] { return now; });
  int finished = 0;
  const notices::Observation watch = notices::observe(lkImportDidFinish, [&] { ++finished; });
  {
    const LKImportActivity::Scope outer;
    { const LKImportActivity::Scope inner; }
    LKImportActivity::recordWritten("/notes/Plan.md");
    EXPECT_TRUE(LKImportActivity::isActive());
    EXPECT_EQ(finished, 0);
  }
  EXPECT_EQ(finished, 1);
  EXPECT_TRUE(LKImportActivity::consumeImportEcho("/notes/sub/../Plan.md"));
  EXPECT_FALSE(LKImportActivity::consumeImportEcho("/notes/Plan.md"));
  LKImportActivity::recordWritten("/notes/Plan.md");
  LKImportActivity::recordWritten("/notes/Old.md");
  now.seconds += 600;
  EXPECT_FALSE(LKImportActivity::consumeImportEcho("/notes/Plan.md"));
  LKImportActivity::recordWritten("/notes/New.md");
  EXPECT_EQ(LKImportActivity::recordCount(), 1U);
  LKImportActivity::reset();
}

}  // namespace
}  // namespace lk
