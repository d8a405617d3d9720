#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "LKCore/Base/Notices.h"
#include "LKCore/Collections/LKCollectionPath.h"
#include "LKCore/Navigation/LKProjectDisplay.h"
#include "LKCore/Navigation/LKProjectStore.h"
#include "LKCore/Navigation/LKTaskContextStore.h"
#include "Support/Child.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using NameList = std::vector<std::string>;

using test::readWhole;

class ProjectStore : public testing::Test {
 protected:
  ProjectStore() : store_([this] { return config_; }, [] { return *parseISO8601(kNow); }) {}

  fs::path file() const { return config_ / "projects.json"; }
  void write(const std::string& bytes) {
    fs::create_directories(config_);
    test::writeWhole(file(), bytes);
    store_.invalidateCache();
  }
  // What is registered, as another process reads it.
  NameList registered() const {
    return LKProjectStore([this] { return config_; }).allProjectNames();
  }

  static constexpr const char* kNow = "2026-03-14T09:26:53Z";
  test::TempFolder home_;
  fs::path config_ = home_ / ".config";
  LKProjectStore store_;
};

TEST_F(ProjectStore, WritesWhatItReads) {
  EXPECT_TRUE(store_.loadAll().empty());
  EXPECT_FALSE(store_.archive("acme"));
  EXPECT_FALSE(fs::exists(config_)) << "nothing to change writes nothing";
  EXPECT_TRUE(store_.add("acme/site", LKProjectEntry::Origin::manual));
  EXPECT_TRUE(store_.ensureExists(NameList{"Acme/Site", "x", "", "X"}));
  EXPECT_TRUE(store_.archive("ACME/SITE"));
  EXPECT_EQ(readWhole(file()),
            "{\n  \"acme\\/site\" : {\n    \"createdDate\" : \"2026-03-14T09:26:53Z\",\n"
            "    \"isArchived\" : true,\n    \"origin\" : \"manual\"\n  },\n"
            "  \"x\" : {\n    \"createdDate\" : \"2026-03-14T09:26:53Z\",\n"
            "    \"isArchived\" : false,\n    \"origin\" : \"auto\"\n  }\n}\n");
  EXPECT_EQ(store_.activeProjectNames(), NameList{"x"});
  const LKProjectEntry entry{*parseISO8601(kNow), true, LKProjectEntry::Origin::manual};
  EXPECT_EQ(LKProjectStore([this] { return config_; }).loadAll().at("acme/site"), entry);
  EXPECT_TRUE(store_.unarchive("acme/site"));
  EXPECT_EQ(store_.activeProjectNames(), (NameList{"acme/site", "x"}));
}

TEST_F(ProjectStore, PostsOnlyWhatChanged) {
  int posted = 0;
  const auto watch = notices::observe("com.larkspire.projectsChanged", [&] { ++posted; });
  store_.add("a", LKProjectEntry::Origin::manual);
  store_.add("A", LKProjectEntry::Origin::automatic);
  store_.ensureExists(NameList{"a"});
  store_.unarchive("a");
  store_.remove("b");
  store_.rename("b", "c");
  store_.rename("a", "");
  EXPECT_EQ(posted, 1);
  store_.rename("a", "A");  // the case alone
  EXPECT_EQ(posted, 2);
  EXPECT_EQ(registered(), NameList{"A"});
}

TEST_F(ProjectStore, WhatItDoesNotKnowStays) {
  write(
      R"({"acme":{"createdDate":"soon","isArchived":1,"origin":"voice","colour":"red"},"old":7})");
  EXPECT_EQ(store_.loadAll().at("acme"), LKProjectEntry());
  EXPECT_EQ(store_.allProjectNames(), NameList{"acme"});
  EXPECT_FALSE(store_.add("old", LKProjectEntry::Origin::manual));
  EXPECT_TRUE(store_.rename("acme", "nimbus"));
  const Json document = parseJson(readWhole(file()));
  EXPECT_EQ(document["old"], 7);
  EXPECT_EQ(document["nimbus"]["colour"], "red");
  EXPECT_EQ(document["nimbus"]["createdDate"], "soon");
}

TEST_F(ProjectStore, ADamagedFileIsKeptAsideBeforeItIsWrittenOver) {
  write("{\"acme\":");
  EXPECT_TRUE(store_.loadAll().empty());
  EXPECT_EQ(readWhole(file()), "{\"acme\":") << "reading changes nothing";
  store_.add("x", LKProjectEntry::Origin::manual);
  EXPECT_EQ(registered(), NameList{"x"});
  EXPECT_EQ(readWhole(config_ / "projects.damaged-20260314T092653Z.json"), "{\"acme\":");
}

TEST_F(ProjectStore, AFailedSaveIsToldAndChangesNothing) {
  fs::create_directories(file());  // a folder where the file should be
  EXPECT_THROW(store_.add("x", LKProjectEntry::Origin::manual), Error);
  EXPECT_TRUE(store_.allProjectNames().empty());
}

TEST_F(ProjectStore, SubtreesMoveWhole) {
  store_.ensureExists(NameList{"acme", "Acme/b", "acme/b/c", "acmes", "new/c"});
  store_.archive("acme/b");
  EXPECT_EQ(store_.registeredNamesUnder("ACME"), (NameList{"Acme/b", "acme/b/c"}));
  EXPECT_TRUE(store_.renameSubtree("acme", "acme/z"));  // into itself
  EXPECT_EQ(registered(), (NameList{"acme/z", "acme/z/b", "acme/z/b/c", "acmes", "new/c"}));
  EXPECT_TRUE(store_.loadAll().at("acme/z/b").isArchived);
  store_.archive("acme/z/b/c");
  EXPECT_TRUE(store_.renameSubtree("acme/z/b", "new"));  // "new/c" is there already
  EXPECT_EQ(registered(), (NameList{"acme/z", "acmes", "new", "new/c"}));
  EXPECT_FALSE(store_.loadAll().at("new/c").isArchived) << "its own entry stays";
  EXPECT_TRUE(store_.setArchivedSubtree("acme", true));  // not registered itself
  EXPECT_EQ(store_.activeProjectNames(), (NameList{"acmes", "new/c"}));
  EXPECT_TRUE(store_.removeSubtree("new"));
  EXPECT_EQ(registered(), (NameList{"acme/z", "acmes"}));
}

TEST_F(ProjectStore, NoNameOfSeveralProcessesIsLost) {
  const auto work = [&](const std::string& start) {
    for (int i = 0; i < 50; ++i) {
      store_.ensureExists(NameList{start + std::to_string(i), "shared" + std::to_string(i)});
    }
    return std::string("done");
  };
  test::Child first([&] { return work("a"); });
  test::Child second([&] { return work("b"); });
  EXPECT_EQ(first.word(), "done");
  EXPECT_EQ(second.word(), "done");
  EXPECT_EQ(registered().size(), 150U);
}

TEST_F(ProjectStore, CountsWhatRefersToAName) {
  store_.ensureExists(NameList{"Acme", "idle"});
  const std::vector<std::string_view> twice = {"projects/acme", "Projects/ACME", "garden"};
  const std::vector<std::string_view> other = {"projects/new", "projects/"};
  const std::vector<LKNoteFacts> notes = {{twice}, {other}, {}};
  const std::vector<LKTaskFacts> tasks = {
      {"acme", true, {}}, {"ACME", false, {}}, {"", false, {}}, {"token", false, {}}};
  const LKIndexFacts facts{notes, tasks};
  using Counts = LKProjectStore::ReferenceCounts;
  const std::map<std::string, Counts> expected = {
      {"Acme", {1, 2, 1}}, {"idle", {}}, {"new", {1, 0, 0}}, {"token", {0, 1, 1}}};
  EXPECT_EQ(store_.referenceCounts(facts), expected);
  EXPECT_EQ(store_.allKnownNames(facts), (NameList{"Acme", "idle", "new", "token"}));
}

TEST_F(ProjectStore, TheSharedOneFollowsTheActiveCollection) {
  LKProjectStore& store = LKProjectStore::shared();
  LKCollectionPath::setOverrideDocumentsDirectory(home_ / "one");
  store.add("in one", LKProjectEntry::Origin::manual);
  LKCollectionPath::setOverrideDocumentsDirectory(home_ / "two");
  EXPECT_TRUE(store.allProjectNames().empty());
  LKCollectionPath::setOverrideDocumentsDirectory(home_ / "one");
  EXPECT_EQ(store.allProjectNames(), NameList{"in one"});
  LKCollectionPath::setOverrideDocumentsDirectory(std::nullopt);
  EXPECT_TRUE(fs::exists(home_ / "one/.config/projects.json"));
}

TEST(ProjectDisplay, SplitsAtTheLastSlash) {
  EXPECT_EQ(LKProjectDisplay::leaf("acme/site/blog"), "blog");
  EXPECT_EQ(LKProjectDisplay::parentPrefix("acme/site/blog"), "acme/site");
  EXPECT_EQ(LKProjectDisplay::depth("acme/site/blog"), 2U);
  EXPECT_EQ(LKProjectDisplay::leaf("acme"), "acme");
  EXPECT_EQ(LKProjectDisplay::parentPrefix("acme"), std::nullopt);
  EXPECT_EQ(LKProjectDisplay::termTitle() + LKProjectDisplay::termsTitle(), "ProjectProjects");
}

TEST(TaskContexts, HaveOneForm) {
  EXPECT_EQ(LKTaskContextStore::normalised("\n Deep Work\tNow \u00A0"), "deep_work_now");
  EXPECT_EQ(LKTaskContextStore::normalised(" \t"), "");
  const std::vector<std::string_view> phone = {"Phone", "phone", "At Home"};
  const std::vector<std::string_view> home = {"at_home", " "};
  const std::vector<std::string_view> done = {"zoo"};
  const std::vector<LKTaskFacts> tasks = {
      {"", false, phone}, {"", false, home}, {"", false, done, false}};
  const LKIndexFacts facts{{}, tasks};
  EXPECT_EQ(LKTaskContextStore::counts(facts),
            (std::map<std::string, size_t>{{"at_home", 2}, {"phone", 1}}));
  EXPECT_EQ(LKTaskContextStore::allKnownContexts(facts), (NameList{"at_home", "phone", "zoo"}));
}

TEST(TaskContexts, NearOnesAreWithinTheDistance) {
  const NameList known = {"phone", "phoned", "home", "phönes", std::string(100'000, 'p')};
  EXPECT_EQ(LKTaskContextStore::nearMatches("Phone ", known, 2),
            (NameList{"phoned", "home", "phönes"}));
  EXPECT_EQ(LKTaskContextStore::nearMatches("phone", known, 1), NameList{"phoned"});
  EXPECT_TRUE(LKTaskContextStore::nearMatches("ab", NameList{"abc"}, 5).empty());
}

}  // namespace
}  // namespace lk
