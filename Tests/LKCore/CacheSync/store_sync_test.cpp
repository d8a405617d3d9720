#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "LKCore/Backlinks/LKTagLookup.h"
#include "LKCore/Base/Notices.h"
#include "LKCore/CacheSync/LKTaskCacheSync.h"
#include "LKCore/CacheSync/StoreIndexFacts.h"
#include "LKCore/CacheSync/StoreTagCache.h"
#include "LKCore/CacheSync/StoreTaskCache.h"
#include "LKCore/Collections/LKCollectionPath.h"
#include "LKCore/DataModel/MemoryStore.h"
#include "LKCore/Navigation/LKProjectStore.h"
#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/Tasks/LKTaskLiveChange.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

using LKTaskCacheSync::ClearedNoTasks;
using LKTaskCacheSync::NoteNotFound;
using LKTaskCacheSync::ResolvedProject;
using LKTaskCacheSync::Synced;

// A collection of one note, with a registry of projects of its own.
class StoreSync : public testing::Test {
 protected:
  StoreSync() { LKCollectionPath::setOverrideDocumentsDirectory(folder.path()); }
  ~StoreSync() override { LKCollectionPath::setOverrideDocumentsDirectory(std::nullopt); }

  LKTaskCacheSync::Outcome sync(const std::string& body) {
    entries = deriveTaskEntries(body, entries);
    return LKTaskCacheSync::syncTasks(note.id, body, entries, *context);
  }

  const LKTask* task(const std::string& text) const {
    for (const LKTask* row : context->tasks().fetch()) {
      if (row->text == text) return row;
    }
    return nullptr;
  }

  test::TempFolder folder;
  std::unique_ptr<LKContext> context = makeMemoryStore();
  LKNote& note = context->notes().insert(LKNote("Plan", ""));
  std::vector<TaskEntry> entries;
  int notified = 0;
  notices::Observation watch = notices::observe(lkTasksChanged, [this] { ++notified; });
};

TEST_F(StoreSync, MakesTheRowsThoseOfTheText) {
  EXPECT_EQ(sync("- [ ] Sow #projects/acme\nx\n- [x] Rake project:site done:2026-03-14"),
            LKTaskCacheSync::Outcome(Synced{2}));
  ASSERT_EQ(note.tasks.size(), 2U);
  const LKTask& sow = *note.tasks[0];
  EXPECT_EQ(sow.id, entries[0].id);
  EXPECT_EQ(sow.project, "acme");
  EXPECT_TRUE(sow.projectIsInherited);
  const LKTask& rake = *task("Rake");
  EXPECT_EQ(rake.id, entries[1].id);
  EXPECT_EQ(rake.paragraphIndex, 2);
  EXPECT_EQ(rake.project, "site");
  EXPECT_FALSE(rake.projectIsInherited);
  EXPECT_TRUE(rake.isComplete);
  EXPECT_EQ(rake.dateCompleted, (Day{2026, 3, 14}));
  EXPECT_EQ(LKProjectStore::shared().activeProjectNames(),
            (std::vector<std::string>{"acme", "site"}));
  EXPECT_EQ(notified, 1);

  const UUID rakeID = rake.id;
  sync("- [ ] Sow #projects/acme\nx\n- [x] Rake project:site done:2026-03-14");
  EXPECT_EQ(notified, 1) << "nothing changed";
  EXPECT_EQ(sync("- [ ] Rake"), LKTaskCacheSync::Outcome(Synced{1}));
  ASSERT_EQ(context->tasks().count(), 1U);
  EXPECT_EQ(note.tasks[0]->id, rakeID);
  EXPECT_EQ(note.tasks[0]->paragraphIndex, 0);
  EXPECT_EQ(note.tasks[0]->dateCompleted, std::nullopt);
  EXPECT_EQ(notified, 2);

  EXPECT_EQ(sync("no tasks"), LKTaskCacheSync::Outcome(ClearedNoTasks{}));
  EXPECT_EQ(context->tasks().count(), 0U);
  EXPECT_EQ(notified, 3);
  sync("none still");
  EXPECT_EQ(notified, 3);
  EXPECT_EQ(LKTaskCacheSync::syncTasks(UUID::random(), "- [ ] a", {}, *context),
            LKTaskCacheSync::Outcome(NoteNotFound{}));
}

TEST_F(StoreSync, InheritsAProjectAsItIsFirstSpelt) {
  sync("#projects/b #projects/B\n- [ ] Sow");
  EXPECT_EQ(note.tasks[0]->project, "b");
  sync("#projects/B #projects/b\n- [ ] Sow");
  EXPECT_EQ(note.tasks[0]->project, "B");
}

TEST_F(StoreSync, TakesATaskThatMovedHereAndKeepsOneWithoutAnEntry) {
  sync("- [ ] Moved");
  const UUID moved = note.tasks[0]->id;
  LKNote& other = context->notes().insert(LKNote("Other", ""));
  LKTaskCacheSync::syncTasks(other.id, "- [ ] Moved\n- [X] Bare", {{0, moved, std::nullopt}},
                             *context);
  ASSERT_EQ(other.tasks.size(), 2U);
  EXPECT_TRUE(note.tasks.empty());
  EXPECT_EQ(task("Moved")->note, &other);
  const UUID bare = task("Bare")->id;
  LKTaskCacheSync::syncTasks(other.id, "- [ ] Moved\n- [X] Bare", {{0, moved, std::nullopt}},
                             *context);
  EXPECT_EQ(task("Bare")->id, bare);
  EXPECT_EQ(context->tasks().count(), 2U);
}

TEST_F(StoreSync, CallsTheReminders) {
  std::vector<LKContext*> called;
  LKTaskCacheSync::setReminders([&](LKContext& with) { called.push_back(&with); });
  sync("- [ ] a");
  sync("");
  LKTaskCacheSync::setReminders({});
  sync("- [ ] a");
  EXPECT_EQ(called, std::vector<LKContext*>{context.get()});
}

TEST(InheritableProject, IsTheOneThatTheTagsName) {
  using Tags = std::vector<std::string_view>;
  const auto inherited = [](const Tags& tags) { return LKTaskCacheSync::inheritableProject(tags); };
  EXPECT_EQ(inherited({}), std::nullopt);
  EXPECT_EQ(inherited({"garden", "project"}), std::nullopt);
  EXPECT_EQ(inherited({"garden", "projects/a/b"}), "a/b");
  EXPECT_EQ(inherited({"projects/a", "projects/A"}), "a");
  EXPECT_EQ(inherited({"projects/a", "projects/b", "projects/a"}), std::nullopt);
  EXPECT_EQ(LKTaskCacheSync::resolvedProject("x", "a"), (ResolvedProject{"x", false}));
  EXPECT_EQ(LKTaskCacheSync::resolvedProject("", "a"), (ResolvedProject{"a", true}));
  EXPECT_EQ(LKTaskCacheSync::resolvedProject(std::nullopt, ""), ResolvedProject{});
}

TEST_F(StoreSync, LetsTheSurgeonFindAndUpdateTasks) {
  const Instant noon = {Day{2026, 3, 18}.localStart().seconds + 12 * 3600, 0};
  addTag(note, context->tags().insert(LKTagLookup::newTag("projects/a", {}, UUID::random(), {})));
  note.fileURL = "/notes/Plan.md";
  sync("\n- [ ] Sow");
  StoreTaskCache cache(*context, [&] { return noon; });
  const LKTask& row = *note.tasks[0];
  EXPECT_EQ(cache.urlOfNote(note.id), note.fileURL);
  EXPECT_EQ(cache.urlOfNote(UUID::random()), std::nullopt);
  const auto place = cache.placeOfTask(note.id, row.id, UUID());
  ASSERT_TRUE(place.has_value());
  EXPECT_EQ(place->paragraphIndex, 1);
  EXPECT_FALSE(cache.placeOfTask(UUID::random(), row.id, UUID()).has_value());

  cache.updateDue(row.id, Day{2026, 3, 17});
  EXPECT_EQ(note.overdueTaskCount, 1);
  cache.updateStatus(row.id, TaskStatus::done, noon);
  EXPECT_EQ(row.dateCompleted, (Day{2026, 3, 18}));
  EXPECT_EQ(note.activeTaskCount + note.overdueTaskCount, 0);
  EXPECT_EQ(note.doneTaskCount, 1);
  cache.updatePriority(row.id, 3);
  EXPECT_EQ(row.priority, 3);
  cache.updateProject(row.id, "b");
  EXPECT_EQ(row.project, "b");
  cache.updateProject(row.id, std::nullopt);
  EXPECT_EQ(row.project, "a");
  EXPECT_TRUE(row.projectIsInherited);
  cache.updateText(UUID::random(), "nobody's");
  EXPECT_EQ(row.text, "Sow");
}

TEST_F(StoreSync, LetsTagsBeRenamedInTheStore) {
  const LKNote& linked = context->notes().insert(LKNote("Linked", ""));
  StoreTagCache cache(*context, folder.path());
  cache.setNote(note.id, {"#old\n- [ ] Sow #old", {"old"}, {}});
  const UUID taskID = note.tasks.at(0)->id;
  const LKTagCache::Note renamed = {"#new\n- [ ] Sow #new\n[[linked]]", {"new"}, {{"new", "m"}}};
  cache.setNote(note.id, renamed);
  EXPECT_EQ(cache.note(note.id), renamed);
  EXPECT_EQ(note.tasks.at(0)->id, taskID);
  EXPECT_EQ(note.tasks.at(0)->text, "Sow #new");
  EXPECT_EQ(note.activeTaskCount, 1);
  EXPECT_EQ(note.contentHash, computeContentHash(renamed.text));
  EXPECT_EQ(note.backLinks.at(0)->targetNoteID, linked.id);
  EXPECT_EQ(cache.noteCount("old"), 0U);
  EXPECT_EQ(cache.noteCount("new"), 1U);
  cache.removeTag("old");
  EXPECT_EQ(cache.tags(), std::vector<std::string>{"new"});
  EXPECT_EQ(cache.note(UUID::random()), std::nullopt);
}

TEST_F(StoreSync, TellsTheRegistriesWhatLiesOutsideTheTrash) {
  sync("- [ ] Sow context:yard project:acme");
  LKNote& trashed = context->notes().insert(LKNote("Gone", ""));
  trashed.isTrashed = true;
  LKTaskCacheSync::syncTasks(trashed.id, "- [ ] x project:gone", {}, *context);
  addTag(note, context->tags().insert(LKTagLookup::newTag("garden", {}, UUID::random(), {})));
  const StoreIndexFacts facts(*context);
  ASSERT_EQ(facts.facts().notes.size(), 1U);
  EXPECT_EQ(facts.facts().notes[0].tags[0], "garden");
  ASSERT_EQ(facts.facts().tasks.size(), 1U);
  EXPECT_EQ(facts.facts().tasks[0].project, "acme");
  EXPECT_EQ(facts.facts().tasks[0].contexts[0], "yard");
  EXPECT_TRUE(facts.facts().tasks[0].isActive);
}

}  // namespace
}  // namespace lk
