// What every store answers, in memory and on disk, before a save, after it and in a later process.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "LKCore/DataModel/LKIndexClear.h"
#include "LKCore/DataModel/MemoryStore.h"
#include "LKCore/DataModel/SQLiteStore.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;

using Texts = std::vector<std::string>;
using Maker = std::function<std::unique_ptr<LKContext>(const fs::path&)>;

struct Kind {
  std::string name;
  Maker make;
  bool saves = true;    // `settle` saves
  bool reopens = true;  // and goes on in a fresh context
};

class Stores : public testing::TestWithParam<Kind> {
 protected:
  LKContext& store() {
    if (!store_) store_ = GetParam().make(folder_ / "test.store");
    return *store_;
  }

  // Rows must be fetched again after it.
  void settle() {
    if (GetParam().saves) store().save();
    if (GetParam().reopens) store_.reset();
  }

  LKNote& addNote(const std::string& title, int64_t modified = 0) {
    LKNote note(title, "Body of " + title);
    note.setModifiedDate({modified, 5});
    return store().notes().insert(std::move(note));
  }

  LKNote& note(const std::string& title, LKParts parts = LKParts::all) {
    return *store().notes().fetch({.where = notesTitled(title), .parts = parts}).at(0);
  }

  Texts titles(const LKFetch<LKNote>& what) {
    Texts found;
    for (const LKNote* each : store().notes().fetch(what)) found.push_back(each->title);
    return found;
  }

 private:
  test::TempFolder folder_{test::memoryFolder()};
  std::unique_ptr<LKContext> store_;
};

auto everyKind() {
  return testing::Values(
      Kind{"memory", [](const fs::path&) { return makeMemoryStore(); }, true, false},
      Kind{"disk_unsaved", openStore, false, false}, Kind{"disk_saved", openStore, true, false},
      Kind{"disk_reopened", openStore, true, true});
}

std::string kindName(const testing::TestParamInfo<Kind>& row) {
  return row.param.name;
}

INSTANTIATE_TEST_SUITE_P(EachKind, Stores, everyKind(), kindName);

template <typename Row>
Texts textsOf(const std::vector<Row*>& rows) {
  Texts texts;
  for (const Row* row : rows) texts.push_back(row->text);
  return texts;
}

// --- Fetching ------------------------------------------------------------------------------------

TEST_P(Stores, AnswerEveryPredicateAlike) {
  const UUID twice = UUID::random();
  const UUID other = UUID::random();
  for (const char* title : {"Plan", "Pla\u0308n", "PLAN B", "\u1112\u1161\u11AB", "x\"y"}) {
    LKNote& added = addNote(title);
    added.isTrashed = added.title == "PLAN B";
  }
  LKNote first("same", "");
  LKNote second("same", "");
  first.id = second.id = twice;
  store().notes().insert(first);
  store().notes().insert(second);
  settle();

  const struct {
    const char* name;
    LKPredicate<LKNote> where;
    Texts wanted;
  } cases[] = {
      {"exact title", notesTitled("Plan"), {"Plan"}},
      {"composed is not decomposed", notesTitled("Pl\u00E4n"), {}},
      {"any of", notesTitledAnyOf({"x\"y", "none", "Plan"}), {"Plan", "x\"y"}},
      {"like", notesWithTitleLike("pl\u00C4N"), {"Plan", "Pla\u0308n", "PLAN B"}},
      {"like Korean", notesWithTitleLike("\uD55C"), {"\u1112\u1161\u11AB"}},
      {"like everything", notesWithTitleLike("\u0301"), titles({})},
      {"id", notesWithID(twice), {"same", "same"}},
      {"unknown id", notesWithID(other), {}},
      {"ids", notesWithIDs({other, twice}), {"same", "same"}},
      {"no ids", notesWithIDs({}), {}},
      {"both", allOf(notesWithTitleLike("plan"), notTrashed()), {"Plan", "Pla\u0308n"}},
      {"both with ids", allOf(notTrashed(), notesWithID(twice)), {"same", "same"}},
      {"all of nothing and one", allOf(LKPredicate<LKNote>{}, notesTitled("Plan")), {"Plan"}},
  };
  EXPECT_EQ(titles({}).size(), 7U);
  EXPECT_EQ(store().notes().count(), 7U);
  for (const auto& each : cases) {
    EXPECT_EQ(titles({.where = each.where}), each.wanted) << each.name;
    EXPECT_EQ(store().notes().count(each.where), each.wanted.size()) << each.name;
  }
}

TEST_P(Stores, SortStablyAndCutAfterSorting) {
  const std::vector<std::pair<std::string, int64_t>> dates = {
      {"a", 3}, {"b", 9}, {"c", 3}, {"d", 1}};
  for (const auto& [title, date] : dates) addNote(title, date);
  settle();
  const auto newest = notesByModifiedDate(LKOrder::descending);
  const auto oldest = notesByModifiedDate(LKOrder::ascending);
  // First on a store that has read nothing, then on one that knows all rows.
  EXPECT_EQ(titles({.order = {newest}, .limit = 3}), (Texts{"b", "a", "c"}));
  EXPECT_EQ(titles({.order = {newest}}), (Texts{"b", "a", "c", "d"}));
  EXPECT_EQ(titles({.order = {oldest}, .limit = 2}), (Texts{"d", "a"}));
  EXPECT_EQ(titles({.limit = 2}), (Texts{"a", "b"}));
  EXPECT_EQ(titles({.limit = 0}), Texts{});
}

TEST_P(Stores, SeeTheirOwnChangesAtOnce) {
  for (const char* title : {"a", "b", "c", "d"}) addNote(title, 5);
  settle();
  note("b").title = "renamed";
  note("d").setModifiedDate({9, 0});
  store().notes().remove(note("a"));
  addNote("new", 1);
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(titles({}), (Texts{"renamed", "c", "d", "new"}));
    EXPECT_EQ(titles({.where = notesTitledAnyOf({"a", "b", "renamed", "new"})}),
              (Texts{"renamed", "new"}));
    EXPECT_EQ(store().notes().count(notesTitled("b")), 0U);
    EXPECT_EQ(store().notes().count(), 4U);
    EXPECT_EQ(titles({.order = {notesByModifiedDate(LKOrder::descending)}, .limit = 2}),
              (Texts{"d", "renamed"}));
    settle();
  }
}

// --- Values --------------------------------------------------------------------------------------

LKNote oddNote() {
  LKNote note("T\u00EFtle \xF0\x9F\x8C\xB1", std::string("one\0two\n\ttabs", 13), true,
              Day{2024, 2, 29});
  note.creationDate = {-62'135'596'800, 0};
  note.setModifiedDate({-1, 999'999'999});
  note.isBook = true;
  note.status = "";
  note.lastCursorLocation = -7;
  note.lineCount = 3;
  note.hasActiveTasks = true;
  note.activeTaskCount = 4;
  note.doneTaskCount = 5;
  note.overdueTaskCount = 6;
  note.imageAttachments = {"a \"b\".png", "a \"b\".png"};
  note.size = int64_t{1} << 40;
  note.userProperties = {{"key/with:odd", "v\u00E4lue\\"}, {"", ""}};
  note.tagRanks = {{"garden", "r_3fa0"}};
  note.contentHash = "45c4";
  note.fileDigest = "";
  note.fileURL = "/notes/\xFF raw.md";
  return note;
}

TEST_P(Stores, KeepEveryValueOfANote) {
  const LKNote wanted = oddNote();
  store().notes().insert(wanted);
  settle();
  const LKNote& found = *store().notes().fetch().at(0);
  const auto values = [](const LKNote& n) {
    return std::tie(n.id, n.title, n.text, n.creationDate, n.modifiedDate, n.sortModifiedDate,
                    n.isFavourite, n.isTrashed, n.isBook, n.status, n.dailyDate,
                    n.lastCursorLocation, n.lineCount, n.hasActiveTasks, n.activeTaskCount,
                    n.doneTaskCount, n.overdueTaskCount, n.imageAttachments, n.size,
                    n.userProperties, n.tagRanks, n.contentHash, n.fileDigest, n.fileURL);
  };
  EXPECT_TRUE(values(found) == values(wanted));
  EXPECT_EQ(found.sortModifiedDate, (Instant{-1, 0}));
  EXPECT_EQ(found.text.size(), 13U);
}

TEST_P(Stores, KeepEveryValueOfTheOtherRows) {
  const UUID target = UUID::random();
  LKTask task{UUID::random(), "Sow", true, Day{2026, 3, 1}, Day{2026, 3, 2}, 3, "beds", true,
              {"out"},        7,     2,    "detail",        nullptr};
  const UUID taskID = task.id;
  store().tasks().insert(std::move(task));
  store().backLinks().insert({UUID::random(), "See [[Beds]]", 4, target, "Beds", nullptr});
  store().tags().insert({UUID::random(), "garden/beds", {7, 8}, "leaf", std::nullopt, {}});
  LKNoteVersion& version =
      store().noteVersions().insert({UUID::random(), "old text", "Old", {1, 2}, 3, {}});
  setNoteVersion(store().taskVersions().insert(
                     {UUID::random(), "old task", true, Day{2020, 1, 1}, 2, nullptr}),
                 &version);
  settle();

  const LKTask& found = *store().tasks().fetch({.where = tasksWithID(taskID)}).at(0);
  EXPECT_EQ(std::tie(found.text, found.isComplete, found.dateCompleted, found.dateDue),
            std::make_tuple("Sow", true, Day{2026, 3, 1}, Day{2026, 3, 2}));
  EXPECT_EQ(std::tie(found.priority, found.project, found.projectIsInherited, found.contexts),
            std::make_tuple(3, "beds", true, Texts{"out"}));
  EXPECT_EQ(std::tie(found.paragraphIndex, found.statusRaw, found.detail),
            std::make_tuple(7, 2, "detail"));
  const LKBackLink& link = *store().backLinks().fetch({.where = linksTo(target)}).at(0);
  EXPECT_EQ(std::tie(link.sourceParagraph, link.sourceParagraphIndex, link.targetNoteReference),
            std::make_tuple("See [[Beds]]", 4, "Beds"));
  EXPECT_TRUE(store().backLinks().fetch({.where = linksTo(taskID)}).empty());
  const LKTag& tag = *store().tags().fetch({.where = tagsWithText({"x", "garden/beds"})}).at(0);
  EXPECT_EQ(std::tie(tag.createdDate, tag.symbolName, tag.tintColorName),
            std::make_tuple(Instant{7, 8}, "leaf", std::nullopt));
  const LKTaskVersion& old = *store().taskVersions().fetch().at(0);
  EXPECT_EQ(std::tie(old.text, old.isComplete, old.dateDue, old.priority),
            std::make_tuple("old task", true, Day{2020, 1, 1}, 2));
  ASSERT_NE(old.noteVersion, nullptr);
  EXPECT_EQ(old.noteVersion->noteText, "old text");
  EXPECT_EQ(old.noteVersion->dateCreated, (Instant{1, 2}));
  EXPECT_EQ(store().noteVersions().fetch().at(0)->taskVersions.size(), 1U);
}

// --- Relations -----------------------------------------------------------------------------------

// Notes "a" and "b" with the tags z and y (both) and x ("b"), a task and a link each.
class RelatedStores : public Stores {
 protected:
  void addGarden() {
    LKNote& a = addNote("a");
    LKNote& b = addNote("b");
    for (const char* text : {"z", "y", "x"}) {
      LKTag& tag = store().tags().insert({UUID::random(), text, {}, {}, {}, {}});
      if (tag.text != "x") addTag(a, tag);
      addTag(b, tag);
    }
    for (LKNote* owner : {&a, &b}) {
      LKTask task;
      task.text = "task of " + owner->title;
      setNote(store().tasks().insert(std::move(task)), owner);
      LKBackLink link;
      link.targetNoteReference = "link of " + owner->title;
      setNote(store().backLinks().insert(std::move(link)), owner);
    }
    settle();
  }

  LKTag& tag(const std::string& text) {
    return *store().tags().fetch({.where = tagsWithText({text})}).at(0);
  }
};

INSTANTIATE_TEST_SUITE_P(EachKind, RelatedStores, everyKind(), kindName);

TEST_P(RelatedStores, GiveRowsWithTheirRelationsFromEitherSide) {
  addGarden();
  EXPECT_EQ(textsOf(note("b").tags), (Texts{"z", "y", "x"}));
  EXPECT_EQ(textsOf(note("b").tasks), Texts{"task of b"});
  EXPECT_EQ(note("b").backLinks.at(0)->targetNoteReference, "link of b");
  settle();
  EXPECT_EQ(tag("y").notes.size(), 2U);
  EXPECT_EQ(tag("x").notes.at(0)->text, "Body of b");
  settle();
  for (const LKTask* task : store().tasks().fetch()) {
    EXPECT_EQ(task->text, "task of " + task->note->title);
    EXPECT_EQ(task->note->tasks.size(), 1U);
    EXPECT_EQ(task->note->tags.size(), task->note->title == "a" ? 2U : 3U);
  }
  settle();
  EXPECT_EQ(store().backLinks().fetch().at(1)->note->title, "b");
  // What was fetched from the tag's side first is completed from the note's.
  EXPECT_EQ(note("b").tags.size(), 3U);
}

TEST_P(RelatedStores, KeepChangedRelations) {
  addGarden();
  removeTag(note("a"), tag("z"));
  addTag(note("a"), tag("x"));
  addTag(note("a"), tag("x"));
  setNote(*note("a").tasks.at(0), &note("b"));
  setNote(*note("a").backLinks.at(0), nullptr);
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(textsOf(note("a").tags), (Texts{"y", "x"}));
    EXPECT_EQ(tag("z").notes.size(), 1U);
    EXPECT_EQ(tag("x").notes.size(), 2U);
    EXPECT_TRUE(note("a").tasks.empty());
    EXPECT_EQ(note("b").tasks.size(), 2U);
    EXPECT_EQ(store().backLinks().fetch().at(0)->note, nullptr);
    settle();
  }
}

TEST_P(RelatedStores, RemoveANoteWithItsTasksAndLinks) {
  addGarden();
  LKTask& saved = *note("a").tasks.at(0);
  setNote(saved, &note("b"));  // leaves before its note goes
  store().notes().remove(note("a", LKParts::none));
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(titles({}), Texts{"b"});
    EXPECT_EQ(store().tasks().count(), 2U);
    EXPECT_EQ(store().backLinks().count(), 1U);
    EXPECT_EQ(store().backLinks().fetch().size(), 1U);
    EXPECT_EQ(tag("z").notes.size(), 1U);
    settle();
  }
  store().notes().remove(note("b", LKParts::none));
  EXPECT_EQ(store().tasks().count(), 0U);
  EXPECT_TRUE(store().tasks().fetch().empty());
  settle();
  EXPECT_EQ(store().tasks().count(), 0U);
  EXPECT_EQ(store().tags().count(), 3U);
}

TEST_P(RelatedStores, RemoveATagFromItsNotes) {
  addGarden();
  store().tags().remove(tag("y"));
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(textsOf(note("b").tags), (Texts{"z", "x"}));
    EXPECT_EQ(store().tags().count(), 2U);
    settle();
  }
}

TEST_P(RelatedStores, AreClearedButForVersions) {
  addGarden();
  store().noteVersions().insert({UUID::random(), "old", "Old", {}, 1, {}});
  settle();
  EXPECT_TRUE(LKIndexClear::clearAll(store()));
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(store().notes().count() + store().tags().count() + store().tasks().count() +
                  store().backLinks().count(),
              0U);
    EXPECT_TRUE(store().notes().fetch().empty());
    EXPECT_EQ(store().noteVersions().count(), 1U);
    settle();
  }
  addGarden();
  EXPECT_EQ(textsOf(note("a").tags), (Texts{"z", "y"}));
}

TEST_P(RelatedStores, ForgetRowsThatWereRemovedAllAtOnce) {
  addGarden();
  store().notes().removeAll();
  addNote("after");
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(titles({}), Texts{"after"});
    EXPECT_EQ(store().tasks().count(), 0U);
    EXPECT_TRUE(tag("y").notes.empty());
    settle();
  }
}

TEST_P(RelatedStores, NumberTheirRowsForGood) {
  addGarden();
  store().save();
  const int64_t first = store().notes().persistentID(note("a"));
  const int64_t second = store().notes().persistentID(note("b"));
  EXPECT_NE(first, second);
  store().notes().remove(note("b"));
  LKNote& third = addNote("c");
  store().save();
  EXPECT_NE(store().notes().persistentID(third), second);
  settle();
  EXPECT_EQ(store().notes().persistentID(note("a")), first);
}

// --- Entities alone ------------------------------------------------------------------------------

TEST(Entities, TieAHundredThousandNotesToOneTagAndManyTagsToOneNote) {
  constexpr size_t kMany = 100'000;
  const Instant start = Instant::now();
  std::vector<LKNote> notes(kMany);
  LKTag popular;
  for (LKNote& each : notes) addTag(each, popular);
  std::vector<LKTag> tags(kMany);
  LKNote busy;
  for (LKTag& each : tags) addTag(busy, each);
  EXPECT_EQ(popular.notes.size(), kMany);
  EXPECT_EQ(busy.tags.size(), kMany);
  EXPECT_LT(Instant::now().seconds - start.seconds, 5);  // comparing each with each takes longer
}

TEST(Entities, FloorTheDateThatTheySortBy) {
  LKNote note("a", "");
  EXPECT_EQ(note.sortModifiedDate, (Instant{note.modifiedDate.seconds, 0}));
  note.setModifiedDate({-5, 300});
  EXPECT_EQ(note.sortModifiedDate, (Instant{-5, 0}));
  EXPECT_TRUE(note.isDeferredCreation());
  note.text = "x";
  EXPECT_FALSE(note.isDeferredCreation());
}

}  // namespace
}  // namespace lk
