// The store as a file: damage, locks, rights, other processes and sudden death.

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "LKCore/DataModel/LKModelContainer.h"
#include "LKCore/DataModel/SQLite.h"
#include "LKCore/DataModel/SQLiteStore.h"
#include "Support/Child.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::Child;
using test::readWhole;
using test::TempFolder;
using test::writeWhole;

void addNotes(LKContext& store, int count) {
  for (int i = 0; i < count; ++i) {
    LKNote& note = store.notes().insert(LKNote("Note", std::string(2000, 'x')));
    setNote(store.tasks().insert({}), &note);
  }
  store.save();
}

fs::path beside(const fs::path& store, const char* suffix) {
  return fs::path(store).concat(suffix);
}

// A store with the notes all in the file itself.
void makeStore(const fs::path& path, int notes = 3) {
  addNotes(*openStore(path), notes);
}

// A store whose writer died: its notes are in the log.
void makeCrashedStore(const fs::path& path, int notes = 3) {
  Child([&]() -> std::string {
    const auto store = openStore(path);
    addNotes(*store, notes);
    std::raise(SIGKILL);
    return "";
  }).word();
  EXPECT_GT(fs::file_size(beside(path, "-wal")), 0U);
}

std::map<std::string, std::string> contentOf(const fs::path& folder) {
  std::map<std::string, std::string> content;
  for (const auto& entry : fs::directory_iterator(folder)) {
    content[entry.path().filename()] = entry.is_regular_file() ? readWhole(entry.path()) : "";
  }
  return content;
}

// The number of notes and tasks, or the error.
std::string readingOf(const fs::path& path) {
  try {
    const auto store = openStoreReadOnly(path);
    const size_t notes = store->notes().fetch().size();
    return std::to_string(notes) + " " + std::to_string(store->tasks().count());
  } catch (const LKStoreError& error) {
    return error.description();
  }
}

// --- What is no store ----------------------------------------------------------------------------

struct Misfit {
  std::string name;
  std::function<void(const fs::path&)> put;
  bool isRebuilt = true;
};

class NoStore : public testing::TestWithParam<Misfit> {};

TEST_P(NoStore, IsRefusedUntouchedAndThenMadeAnew) {
  const TempFolder folder(test::memoryFolder());
  const fs::path path = folder / "x.store";
  GetParam().put(path);
  const auto before = contentOf(folder.path());
  alarm(30);  // whatever waits here waits for ever
  EXPECT_TRUE(readingOf(path).starts_with(path.string() + ": ")) << readingOf(path);
  EXPECT_THROW(openStore(path), LKStoreError);
  EXPECT_EQ(contentOf(folder.path()), before);
  if (GetParam().isRebuilt) {
    EXPECT_TRUE(openOrRebuildStore(path));
    addNotes(*openStore(path), 2);
    EXPECT_FALSE(openOrRebuildStore(path));
    EXPECT_EQ(readingOf(path), "2 2");
  } else {
    try {
      openOrRebuildStore(path);
      ADD_FAILURE() << "no error";
    } catch (const LKStoreFatalError& error) {
      EXPECT_TRUE(error.description().starts_with("Store creation failed. first=" + path.string()))
          << error.description();
      EXPECT_NE(error.description().find(" retry=" + path.string()), std::string::npos);
    }
  }
  alarm(0);
}

void changeStore(const fs::path& path, const std::string& sql) {
  makeStore(path);
  Connection connection(path, {.uriParameters = "mode=rw"});
  connection.execute(sql);
}

void cutStore(const fs::path& path) {
  makeStore(path, 100);
  fs::resize_file(path, fs::file_size(path) / 2);
}

INSTANTIATE_TEST_SUITE_P(
    Files, NoStore,
    testing::Values(
        Misfit{"other_version", [](auto& p) { changeStore(p, "PRAGMA user_version = 10100"); }},
        Misfit{"other_program", [](auto& p) { changeStore(p, "PRAGMA application_id = 1"); }},
        Misfit{"other_column", [](auto& p) { changeStore(p, "ALTER TABLE note ADD x"); }},
        Misfit{"view_for_a_table",
               [](auto& p) { changeStore(p, "DROP TABLE tag; CREATE VIEW tag AS SELECT 1"); }},
        Misfit{"trigger",
               [](auto& p) {
                 changeStore(p, "CREATE TRIGGER t AFTER INSERT ON note BEGIN SELECT 1; END");
               }},
        Misfit{"cut", cutStore},
        Misfit{"zeros", [](auto& p) { writeWhole(p, std::string(8192, '\0')); }},
        Misfit{"text", [](auto& p) { writeWhole(p, std::string(5000, 'a')); }},
        Misfit{"empty_folder", [](auto& p) { fs::create_directory(p); }},
        Misfit{"folder", [](auto& p) { fs::create_directories(p / "inner"); }, false},
        Misfit{"fifo", [](auto& p) { mkfifo(p.c_str(), 0600); }}),
    [](const auto& row) { return row.param.name; });

// The header is in order, so the store opens; the probe then meets the damage.
TEST(DamagedStore, IsKeptAndReportedByTheProbe) {
  const TempFolder folder(test::memoryFolder());
  const fs::path path = folder / "x.store";
  makeStore(path, 200);
  std::string bytes = readWhole(path);
  static constexpr size_t kSchemaPages = 4096 * 2;
  for (size_t i = kSchemaPages; i < bytes.size(); ++i) bytes[i] = '\x7F';
  writeWhole(path, bytes);
  EXPECT_TRUE(openOrRebuildStore(path));
  EXPECT_THROW(openStoreReadOnly(path)->notes().fetch(), LKStoreError);
}

TEST(MissingStore, IsNotMadeByReading) {
  const TempFolder folder;
  EXPECT_NE(readingOf(folder / "x.store").find("No such file"), std::string::npos);
  EXPECT_TRUE(contentOf(folder.path()).empty());
}

// --- Reading without a trace -----------------------------------------------------------------------

struct Lying {
  std::string name;
  std::function<void(const fs::path&)> make;
};

class Reading : public testing::TestWithParam<Lying> {};

TEST_P(Reading, FindsAllNotesAndLeavesNoTrace) {
  const TempFolder folder;
  const TempFolder scratch;
  const fs::path caches = folder / "caches";
  fs::create_directory(caches);
  GetParam().make(caches / "x.store");
  const auto before = contentOf(caches);
  setenv("TMPDIR", scratch.path().c_str(), 1);
  EXPECT_EQ(readingOf(caches / "x.store"), "3 3");
  EXPECT_EQ(contentOf(caches), before);

  for (const auto& entry : fs::directory_iterator(caches)) chmod(entry.path().c_str(), 0444);
  chmod(caches.c_str(), 0555);
  chmod(folder.path().c_str(), 0755);
  chmod(scratch.path().c_str(), 0777);
  EXPECT_EQ(test::asOrdinaryUser([&] { return readingOf(caches / "x.store"); }), "3 3");
  EXPECT_TRUE(contentOf(scratch.path()).empty());
  unsetenv("TMPDIR");
  EXPECT_EQ(contentOf(caches), before);
}

INSTANTIATE_TEST_SUITE_P(Places, Reading,
                         testing::Values(Lying{"at_rest", [](auto& p) { makeStore(p); }},
                                         Lying{"after_a_crash",
                                               [](auto& p) { makeCrashedStore(p); }},
                                         Lying{"after_a_crash_without_the_log_s_index",
                                               [](auto& p) {
                                                 makeCrashedStore(p);
                                                 fs::remove(beside(p, "-shm"));
                                               }},
                                         Lying{"with_an_empty_log",
                                               [](auto& p) {
                                                 makeStore(p);
                                                 writeWhole(beside(p, "-wal"), "");
                                               }}),
                         [](const auto& row) { return row.param.name; });

// Another process that has run `sql` and holds on to what that took. It says by a file that it is
// there.
class Writer {
 public:
  Writer(const fs::path& store, const std::string& sql)
      : sign_(beside(store, "-sign")), child_([this, &store, &sql]() -> std::string {
          Connection connection(store, {.uriParameters = "mode=rw", .patience = 2000});
          connection.execute(sql);
          writeWhole(sign_, "");
          sleep(60);
          return "";
        }) {
    for (int i = 0; i < 1000 && !fs::exists(sign_); ++i) usleep(10'000);
    EXPECT_TRUE(fs::exists(sign_));
  }

 private:
  fs::path sign_;
  Child child_;
};

TEST(ReadingBesideAWriter, SeesWhatWasSavedAndNotWhatWasNot) {
  const TempFolder folder(test::memoryFolder());
  makeStore(folder / "x.store");
  const Writer writer(folder / "x.store", "DELETE FROM task; BEGIN IMMEDIATE; DELETE FROM note");
  EXPECT_EQ(readingOf(folder / "x.store"), "3 0");
}

TEST(ReadingALockedStore, EndsSoonAndDamagesNothing) {
  const TempFolder folder(test::memoryFolder());
  const fs::path path = folder / "x.store";
  makeStore(path);
  const Writer writer(path, "PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; DELETE FROM note");
  const std::string before = readWhole(path);
  alarm(20);
  const std::string reading = readingOf(path);
  alarm(0);
  EXPECT_TRUE(reading == "3 3" || reading.find("lock") != std::string::npos) << reading;
  EXPECT_EQ(readWhole(path), before);
}

TEST(ReadingAtRest, RefusesAStoreThatChangedUnderIt) {
  const TempFolder folder(test::memoryFolder());
  const fs::path path = folder / "x.store";
  makeStore(path);
  const auto store = openStoreReadOnly(path);
  EXPECT_EQ(store->notes().count(), 3U);
  usleep(20'000);  // file times move in steps
  EXPECT_EQ(Child([&] {
              makeStore(path, 50);  // and its end moves the log into the store
              return std::string("saved");
            }).word(),
            "saved");
  EXPECT_THROW(store->notes().fetch(), LKStoreError);
  EXPECT_THROW(store->save(), LKStoreError);
}

TEST(TwoProcesses, SeeEachOthersSavedStates) {
  const TempFolder folder(test::memoryFolder());
  const fs::path path = folder / "x.store";
  makeStore(path, 10);
  Child writer([&]() -> std::string {
    for (int i = 0; i < 40; ++i) addNotes(*openStore(path), 10);
    return "done";
  });
  size_t seen = 0;
  int refused = 0;
  for (int round = 0; round < 60; ++round) {
    try {
      const auto store = openStoreReadOnly(path);
      size_t tasks = 0;
      const auto notes = store->notes().fetch({.parts = LKParts::tasks});
      for (const LKNote* note : notes) tasks += note->tasks.size();
      EXPECT_EQ(notes.size() % 10, 0U);
      EXPECT_EQ(tasks, notes.size());
      EXPECT_GE(notes.size(), seen);
      seen = notes.size();
    } catch (const LKStoreError&) {
      ++refused;  // the store at rest was changed while it was read
    }
  }
  EXPECT_LT(refused, 60);
  EXPECT_EQ(writer.word(), "done");
  EXPECT_EQ(readingOf(path), "410 410");
}

TEST(TwoWriters, WaitForEachOther) {
  const TempFolder folder(test::memoryFolder());
  const fs::path path = folder / "x.store";
  makeStore(path, 0);
  const auto work = [&]() -> std::string {
    for (int i = 0; i < 20; ++i) addNotes(*openStore(path), 2);
    return "done";
  };
  Child one(work);
  Child two(work);
  EXPECT_EQ(one.word(), "done");
  EXPECT_EQ(two.word(), "done");
  EXPECT_EQ(readingOf(path), "80 80");
}

TEST(KilledWriter, LeavesWhatItSaved) {
  const TempFolder folder(test::memoryFolder());
  const fs::path path = folder / "x.store";
  size_t before = 0;
  for (int round = 0; round < 30; ++round) {
    {
      Child writer([&]() -> std::string {
        for (;;) addNotes(*openStore(path), 20);
      });
      usleep(static_cast<useconds_t>(2000 + round * 3000));
      writer.kill();
    }
    const auto store = openStore(path);
    const size_t notes = store->notes().fetch().size();
    EXPECT_EQ(notes % 20, 0U);
    EXPECT_EQ(store->tasks().count(), notes);
    EXPECT_GE(notes, before);
    before = notes;
  }
  EXPECT_GT(before, 0U);
}

// --- One context ---------------------------------------------------------------------------------

TEST(Parts, AreFilledInWithoutOverwriting) {
  const TempFolder folder(test::memoryFolder());
  const fs::path path = folder / "x.store";
  {
    const auto store = openStore(path);
    for (const char* title : {"a", "b"}) {
      LKNote& note = store->notes().insert(LKNote(title, "old"));
      note.contentHash = "hash";
      note.lineCount = 7;
    }
    store->save();
  }
  const auto store = openStore(path);
  const auto notes = store->notes().fetch({.parts = LKParts::none});
  EXPECT_EQ(notes.at(0)->text + notes.at(0)->contentHash, "");
  EXPECT_EQ(notes.at(0)->lineCount, 0);
  notes.at(0)->text = "new";
  EXPECT_EQ(store->notes().fetch({.parts = LKParts::text | LKParts::words}), notes);
  EXPECT_EQ(notes.at(0)->text, "new");
  EXPECT_EQ(notes.at(1)->text, "old");
  EXPECT_EQ(notes.at(1)->lineCount, 7);
  EXPECT_EQ(notes.at(1)->contentHash, "");
  store->save();
  const auto reopened = openStore(path);
  const auto found = reopened->notes().fetch();
  EXPECT_EQ(found.at(0)->text, "new");
  EXPECT_EQ(found.at(0)->contentHash, "hash");
  EXPECT_EQ(found.at(1)->text, "old");
}

// A save that fails changes nothing, and the next one has everything.
TEST(Saving, IsWholeOrNotAtAll) {
  const TempFolder folder(test::memoryFolder());
  const fs::path path = folder / "x.store";
  makeStore(path);
  const auto store = openStore(path);
  LKNote& added = store->notes().insert(LKNote("added", ""));
  addTag(added, store->tags().insert({UUID::random(), "tag", {}, {}, {}, {}}));
  {
    Connection other(path, {.uriParameters = "mode=rw"});
    other.execute("CREATE TRIGGER no BEFORE INSERT ON tag BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_THROW(store->save(), LKStoreError);
    other.execute("DROP TRIGGER no");
  }
  EXPECT_EQ(store->notes().persistentID(added), 0);
  EXPECT_EQ(openStore(path)->notes().count(), 3U);
  store->save();
  const auto again = openStore(path);
  EXPECT_EQ(again->notes().fetch({.where = notesTitled("added")}).at(0)->tags.at(0)->text, "tag");
}

// --- The container -------------------------------------------------------------------------------

std::string fatalWord(const fs::path& path) {
  try {
    openOrRebuildStore(path);
    return "opened";
  } catch (const LKStoreFatalError& error) {
    return error.description().substr(0, error.description().find(" first="));
  }
}

TEST(Diagnosis, TellsWhyThereIsNoStore) {
  const TempFolder folder;
  chmod(folder.path().c_str(), 0755);
  EXPECT_EQ(fatalWord(folder / "missing/x.store"), "Store directory was missing.");
  EXPECT_EQ(fatalWord(folder / "missing/x.store"), "opened");
  writeWhole(folder / "file", "");
  EXPECT_EQ(fatalWord(folder / "file/x.store"), "Store directory could not be created.");
  fs::create_directory(folder / "closed");
  chmod((folder / "closed").c_str(), 0555);
  EXPECT_EQ(test::asOrdinaryUser([&] { return fatalWord(folder / "closed/x.store"); }),
            "Store directory not writable.");
  const std::string full =
      Child([&]() -> std::string {
        if (unshare(CLONE_NEWNS) != 0 ||
            mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("none", folder.path().c_str(), "tmpfs", 0, "size=16k") != 0) {
          return "no disk to fill";
        }
        return fatalWord(folder / "x.store");
      }).word();
  EXPECT_TRUE(full == "Store volume out of space." || full == "no disk to fill") << full;
}

class Containers : public testing::Test {
 protected:
  LKModelContainer::Folders folders() { return {folder_ / "support", folder_ / "caches"}; }

  LKCollectionRecord record() {
    LKCollectionRecord result;
    result.id = UUID::random();
    return result;
  }

  fs::path storeOf(const LKCollectionRecord& of) {
    return folder_ / "caches" / (of.id.text() + ".store");
  }

 private:
  TempFolder folder_{test::memoryFolder()};
};

TEST_F(Containers, UseACommonStoreUntilACollectionIsActive) {
  LKModelContainer model(folders(), std::nullopt);
  EXPECT_EQ(model.activeCollectionID(), std::nullopt);
  EXPECT_EQ(model.container()->path(), folders().support / "Larkspire.store");
  const LKCollectionRecord other = record();
  EXPECT_EQ(model.container(other.id)->path(), storeOf(other));
  EXPECT_EQ(model.container(other.id), model.container(other.id));
  EXPECT_EQ(model.activeCollectionID(), std::nullopt);

  EXPECT_FALSE(model.switchToCollection(other));
  EXPECT_EQ(model.activeCollectionID(), other.id);
  EXPECT_EQ(model.container(other.id), model.container());
  addNotes(*model.newContext(), 2);
  EXPECT_EQ(model.newContext(other.id)->notes().count(), 2U);
}

TEST_F(Containers, RaiseTheFlagForAStoreMadeAnewUntilItIsCleared) {
  const LKCollectionRecord damaged = record();
  fs::create_directories(folders().caches);
  writeWhole(storeOf(damaged), "no store");
  {
    LKModelContainer model(folders(), damaged.id);
    EXPECT_TRUE(model.needsFullRebuild());
    addNotes(*model.newContext(), 1);
    model.clearRebuildFlag();
    EXPECT_FALSE(model.needsFullRebuild());
    model.forceRebuildOnNextSync();
    EXPECT_TRUE(model.needsFullRebuild());
    EXPECT_FALSE(model.switchToCollection(record()));
    EXPECT_FALSE(model.needsFullRebuild());
  }
  LKModelContainer later(folders(), damaged.id);
  EXPECT_FALSE(later.needsFullRebuild());
  EXPECT_EQ(later.newContext()->notes().count(), 1U);
}

}  // namespace
}  // namespace lk
