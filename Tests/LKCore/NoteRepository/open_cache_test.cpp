#include "LKCore/NoteRepository/OpenCache.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "LKCore/Collections/LKCollectionPath.h"
#include "LKCore/DataModel/MemoryStore.h"
#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteRepository/LKNoteFileService.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;

class OpenCache : public testing::Test {
 protected:
  OpenCache() { LKCollectionPath::setOverrideDocumentsDirectory(folder.path()); }
  ~OpenCache() override {
    setOpenCache({});
    LKCollectionPath::setOverrideDocumentsDirectory(std::nullopt);
  }

  // A note on the disk and, if there is to be one, its row.
  fs::path makeNote(const std::string& body) {
    NewNote note;
    note.title = "Plan";
    note.body = body;
    note.noteID = row.id;
    return LKNoteFileService::createNote(note, folder.path());
  }

  test::TempFolder folder;
  std::unique_ptr<LKContext> context = makeMemoryStore();
  LKNote& row = context->notes().insert(LKNote("Plan", ""));
};

TEST_F(OpenCache, FollowsTheWritesOfNotes) {
  setOpenCache([this](const fs::path&) { return context.get(); });
  const fs::path file = makeNote("- [ ] Sow\n- [ ] Rake");
  ASSERT_EQ(row.tasks.size(), 2U);
  const UUID rake = row.tasks[1]->id;
  NoteChange change;
  change.bodyTransform = [](const std::string&) { return "- [x] Rake"; };
  LKNoteFileService::updateNote(file, change);
  ASSERT_EQ(row.tasks.size(), 1U);
  EXPECT_EQ(row.tasks[0]->id, rake);
  EXPECT_TRUE(row.tasks[0]->isComplete);
  using LKNoteFileService::ModificationTime;
  LKNoteFileService::setTagRank(file, "garden", "m", ModificationTime::preserved);
  EXPECT_EQ(row.tagRanks, (LKNote::Properties{{"garden", "m"}}));
  LKNoteFileService::setFrontMatter(file, ModificationTime::changes, [](LKFileFrontMatter& block) {
    block.isFavourite = true;
    block.userProperties["status"] = "Archived";
  });
  EXPECT_TRUE(row.isFavourite && row.isArchived());
  EXPECT_EQ(row.fileDigest, computeRawDigest(test::readWhole(file)));
}

TEST_F(OpenCache, ThatFailsLeavesTheFile) {
  setOpenCache([](const fs::path&) -> LKContext* { throw LKStoreError("no store"); });
  const fs::path file = makeNote("- [ ] Sow");
  LKNoteFileService::lockName(file);
  EXPECT_TRUE(parseDocument(test::readWhole(file)).frontMatter.nameLocked);
  EXPECT_EQ(context->tasks().count(), 0U);
}

}  // namespace
}  // namespace lk
