#include "LKCore/Collections/LKCollectionStore.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Notices.h"
#include "LKCore/Platform/Files.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::readWhole;
using test::TempFolder;
using test::writeWhole;

constexpr Instant kNow{1'773'480'413, 0};  // 2026-03-14T09:26:53Z
constexpr const char* kID = "6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F";

class CollectionStore : public testing::Test {
 protected:
  LKCollectionStore::Folders folders() const {
    return {home_ / "support", home_.path(), home_ / "Documents", std::nullopt, std::nullopt};
  }
  LKCollectionStore open() const {
    return LKCollectionStore(folders(), [] { return kNow; });
  }
  fs::path file() const { return home_ / "support/collections.json"; }
  Json document() const { return parseJson(readWhole(file())); }
  void writeRegistry(const std::string& text) const {
    fs::create_directories(home_ / "support");
    writeWhole(file(), text);
  }
  LKCollectionRegistration folderNamed(const std::string& name) const {
    fs::create_directories(home_ / name);
    LKCollectionRegistration registration;
    registration.name = name;
    registration.path = home_ / name;
    return registration;
  }

  TempFolder home_;
};

TEST_F(CollectionStore, LoadingCreatesNothing) {
  const LKCollectionStore store = open();
  EXPECT_TRUE(store.collections().empty());
  EXPECT_TRUE(store.warnings().empty());
  EXPECT_TRUE(fs::is_empty(home_.path()));
}

TEST_F(CollectionStore, TheDefaultIsMadeOnceAndActive) {
  open().ensureDefaultCollection();
  LKCollectionStore store = open();
  store.ensureDefaultCollection();
  ASSERT_EQ(store.collections().size(), 1U);
  const LKCollectionRecord record = store.collections().front();
  EXPECT_EQ(store.activeCollection(), record);
  EXPECT_EQ(record.name, "Larkspire");
  EXPECT_EQ(record.path, home_ / "Documents/Larkspire");
  EXPECT_TRUE(fs::is_directory(record.path));
  EXPECT_TRUE(record.isDefault);
  EXPECT_FALSE(record.isCloudSynced);
  EXPECT_EQ(
      readWhole(file()), "{\n  \"activeCollectionID\" : \"" + record.id.text() +
                             "\",\n  \"collections\" : [\n    {\n"
                             "      \"createdDate\" : \"2026-03-14T09:26:53Z\",\n"
                             "      \"id\" : \"" +
                             record.id.text() +
                             "\",\n      \"isCloudSynced\" : false,\n      \"isDefault\" : true,\n"
                             "      \"lastOpenedDate\" : \"2026-03-14T09:26:53Z\",\n"
                             "      \"mode\" : \"larkspire\",\n      \"name\" : \"Larkspire\",\n"
                             "      \"noteCount\" : 0,\n      \"path\" : \"" +
                             [&] {
                               std::string path;
                               for (const char c : record.path.string())
                                 path += c == '/' ? "\\/" : std::string(1, c);
                               return path;
                             }() +
                             "\",\n      \"userAcceptedRisk\" : false\n    }\n  ]\n}\n");
}

TEST_F(CollectionStore, TheCloudFolderComesFirst) {
  const fs::path cloud = home_ / "Library/Mobile Documents/iCloud~com~larkspire/Documents";
  fs::create_directories(cloud);
  const LKCollectionRecord planned = open().plannedDefaultCollection();
  EXPECT_EQ(planned.path, cloud);
  EXPECT_TRUE(planned.isCloudSynced);
}

TEST_F(CollectionStore, EveryFieldComesBack) {
  LKCollectionStore store = open();
  LKCollectionRegistration registration = folderNamed("Käse \"and\"\nwine");
  registration.collectionDescription = "About food";
  registration.mode = LKCollectionMode::readOnly;
  registration.bookmarkData = std::string("\0\xff bytes", 8);
  registration.userAcceptedRisk = true;
  registration.isCloudSynced = true;
  const LKCollectionRecord first = store.registerCollection(registration);
  const LKCollectionRecord second = store.registerCollection(folderNamed("Second"));
  const LKCollectionStore again = open();
  EXPECT_EQ(again.collections(), (std::vector{first, second}));
  EXPECT_EQ(again.activeCollectionID(), first.id) << "the first one registered becomes active";
}

TEST_F(CollectionStore, RemovingGoesBackToTheDefaultAndDropsTheCacheOnly) {
  LKCollectionStore store = open();
  store.ensureDefaultCollection();
  const LKCollectionRecord record = store.registerCollection(folderNamed("Old"));
  store.setActive(record.id);
  fs::create_directories(store.cachesDirectory());
  const fs::path cache = store.cacheStorePath(record.id);
  for (const char* companion : {"", "-shm", "-wal"}) writeWhole(fs::path(cache) += companion, "x");
  store.remove(record.id);
  EXPECT_TRUE(fs::is_empty(store.cachesDirectory()));
  EXPECT_TRUE(fs::is_directory(record.path));
  EXPECT_EQ(open().collections().size(), 1U);
  EXPECT_EQ(open().activeCollection()->name, "Larkspire");
}

TEST_F(CollectionStore, RemovingWithoutADefaultGoesOnWithTheFirst) {
  LKCollectionStore store = open();
  const LKCollectionRecord first = store.registerCollection(folderNamed("First"));
  const LKCollectionRecord second = store.registerCollection(folderNamed("Second"));
  store.remove(first.id);
  EXPECT_EQ(open().activeCollectionID(), second.id);
  store.remove(second.id);
  EXPECT_FALSE(open().activeCollectionID());
}

TEST_F(CollectionStore, SwitchingStampsAndTells) {
  LKCollectionStore store = open();
  store.ensureDefaultCollection();
  const LKCollectionRecord record = store.registerCollection(folderNamed("Other"));
  int told = 0;
  const notices::Observation watch = notices::observe(kCollectionDidSwitch, [&] { ++told; });
  LKCollectionStore later(folders(), [] { return Instant{kNow.seconds + 60, 0}; });
  later.setActive(UUID::random());
  EXPECT_EQ(told, 0) << "an id that is not registered changes nothing";
  later.setActive(record.id);
  EXPECT_EQ(told, 1);
  EXPECT_EQ(open().activeCollection()->lastOpenedDate.seconds, kNow.seconds + 60);
  EXPECT_EQ(open().activeCollection()->createdDate, kNow);
}

TEST_F(CollectionStore, TheNearestFolderContainsAPath) {
  LKCollectionStore store = open();
  store.registerCollection(folderNamed("Notes"));
  store.registerCollection(folderNamed("Notes/Work"));
  fs::create_directory_symlink(home_ / "Notes/Work", home_ / "link");
  const auto owner = [&](const char* path) {
    const auto record = store.collectionContaining(home_ / path);
    return record ? record->name : "none";
  };
  EXPECT_EQ(owner("Notes/a.md"), "Notes");
  EXPECT_EQ(owner("Notes/Work"), "Notes/Work");
  EXPECT_EQ(owner("link/deep/a.md"), "Notes/Work");
  EXPECT_EQ(owner("Notes/Workshop/a.md"), "Notes");
  EXPECT_EQ(owner("Notes2/a.md"), "none");
  EXPECT_FALSE(store.isURLInsideAnyCollection("/"));
}

TEST_F(CollectionStore, WhatAnotherVersionWroteSurvives) {
  writeRegistry(std::string(R"({"collections":[{"id":")") + kID +
                R"(","name":"A","path":"/a","shelf":{"x":[1,2.5,null]},"mode":"encrypted"},)"
                R"({"name":"no id","keep":1},"text",{"id":"bad","name":"B","path":"/b"}],)"
                R"("schema":7,"activeCollectionID":")" +
                kID + R"("})");
  LKCollectionStore store = open();
  ASSERT_EQ(store.collections().size(), 1U);
  EXPECT_EQ(store.warnings().size(), 3U);
  EXPECT_EQ(store.collections().front().mode, LKCollectionMode::readOnly)
      << "nothing is written into a collection of a mode that is not known";
  const Json before = document();
  store.setActive(*UUID::parse(kID));
  const LKCollectionRecord added = store.registerCollection(folderNamed("New"));
  store.remove(added.id);
  Json after = document();
  EXPECT_EQ(after["collections"][0].at("lastOpenedDate"), "2026-03-14T09:26:53Z");
  after["collections"][0].erase("lastOpenedDate");
  EXPECT_EQ(after, before);
}

TEST_F(CollectionStore, ADamagedFileIsKeptAsideBeforeItIsWrittenOver) {
  for (const char* damaged : {"", "{\"collections\" : [", "[]", "{\"collections\":1e999}"}) {
    writeRegistry(damaged);
    LKCollectionStore store = open();
    EXPECT_EQ(store.warnings().size(), 1U) << damaged;
    EXPECT_EQ(readWhole(file()), damaged) << "reading changes nothing";
    store.ensureDefaultCollection();
    ASSERT_EQ(store.warnings().size(), 2U);
    EXPECT_EQ(open().collections().size(), 1U);
  }
  const fs::path kept = home_ / "support/collections.damaged-20260314T092653Z";
  EXPECT_EQ(readWhole(fs::path(kept) += ".json"), "");
  EXPECT_EQ(readWhole(fs::path(kept) += "-2.json"), "{\"collections\" : [");
  EXPECT_EQ(readWhole(fs::path(kept) += "-4.json"), "{\"collections\":1e999}");
}

TEST_F(CollectionStore, AFailedSaveIsToldAndCountsInMemory) {
  fs::create_directories(file());  // a folder where the file should be
  LKCollectionStore store = open();
  EXPECT_EQ(store.warnings().size(), 1U);
  store.ensureDefaultCollection();
  ASSERT_EQ(store.collections().size(), 1U);
  EXPECT_THROW(store.registerCollection(folderNamed("More")), FileError);
  EXPECT_EQ(store.collections().size(), 2U);
  EXPECT_TRUE(fs::is_directory(file()));
}

TEST_F(CollectionStore, AFolderThatJSONCannotNameIsRefused) {
  LKCollectionStore store = open();
  LKCollectionRegistration registration = folderNamed("x");
  registration.path = home_ / "caf\xe9";
  try {
    store.registerCollection(registration);
    FAIL() << "registered under another name";
  } catch (const FileError& error) {
    EXPECT_EQ(error.code(), EILSEQ);
  }
}

}  // namespace
}  // namespace lk
