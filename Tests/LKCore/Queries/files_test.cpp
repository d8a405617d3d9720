// Queries as files: what is read, what is passed over, and what a save keeps.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/Platform/UserDefaults.h"
#include "LKCore/Queries/LKQueryStore.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;

constexpr const char* kID = "8D116ECE-1738-47D9-BD9C-172411E20B8F";

// A query's file; `members` come in addition, each ending in a comma.
std::string fileText(const std::string& members, const std::string& rules = "",
                     const std::string& id = kID) {
  return "{" + members + R"("id": ")" + id +
         R"(", "name": "Seeds", "combiner": "all", "createdDate": "2026-03-14T09:26:53Z", "rules": [)" +
         rules + "]}";
}

TEST(QueryFile, KeepsWhatNobodyHereKnows) {
  const std::string text = fileText(
      R"("later": {"a": [1]}, "symbolName": null, "taskGroup": {"rules": [
           {"field": "taskContext", "op": "is", "value": "phone", "case": 1}], "mode": "x"},)",
      R"({"field": "taskDueDate", "op": "before", "value": "+7", "unit": "days"})");
  const LKSavedQuery query = decodeQuery(text);
  ASSERT_EQ(query.rules.size(), 1U);
  EXPECT_EQ(query.rules[0].op, LKQueryRule::Operator::beforeDaysFromToday);
  EXPECT_EQ(query.rules[0].value, "7");
  EXPECT_FALSE(query.isBuiltIn);
  Json wanted = parseJson(text);
  wanted.erase("symbolName");
  wanted["isBuiltIn"] = false;
  wanted["rules"][0]["op"] = "beforeDaysFromToday";
  wanted["rules"][0]["value"] = "7";
  EXPECT_EQ(encodeQuery(query), printJson(wanted) + "\n");
  EXPECT_EQ(decodeQuery(encodeQuery(query)), query);
}

TEST(QueryFile, IsRefusedWhenHalfUnderstood) {
  const std::string rule = R"({"field": "tag", "op": "is", "value": "a"})";
  EXPECT_NO_THROW(decodeQuery(fileText("", rule)));
  const auto with = [](const std::string& text, const char* from, const char* to) {
    return text::replacingAll(text, from, to);
  };
  const std::map<std::string, std::string> files = {
      {"no object", "[]"},
      {"cut short", fileText("").substr(0, 40)},
      {"an unknown field", fileText("", with(rule, "\"tag\"", "\"mood\""))},
      {"a field in another case", fileText("", with(rule, "\"tag\"", "\"Tag\""))},
      {"an unknown operator", fileText("", with(rule, "\"is\"", "\"like\""))},
      {"a rule without value", fileText("", with(rule, "\"value\"", "\"text\""))},
      {"a number as value", fileText("", with(rule, "\"a\"", "7"))},
      {"a rule that is none", fileText("", "7")},
      {"a bad id", with(fileText(""), kID, "8D116ECE")},
      {"a bad date", with(fileText(""), "2026-03-14T", "2026-02-30T")},
      {"a bad combiner", with(fileText(""), "\"all\"", "\"none\"")},
      {"no name", with(fileText(""), "\"name\"", "\"title\"")},
      {"a flag of text", fileText(R"("isBuiltIn": "yes",)")},
      {"a colour of number", fileText(R"("tintColorName": 3,)")},
      {"a group without rules", fileText(R"("taskGroup": {},)")},
  };
  for (const auto& [name, text] : files) EXPECT_THROW(decodeQuery(text), JsonError) << name;
}

class QueryStore : public testing::Test {
 protected:
  QueryStore() { setenv("XDG_CONFIG_HOME", (home / "config").c_str(), 1); }

  fs::path file(const std::string& name) const { return home / ".queries" / name; }
  void write(const fs::path& path, const std::string& bytes) const {
    fs::create_directories(path.parent_path());
    test::writeWhole(path, bytes);
  }
  std::vector<std::string> names() const {
    std::vector<std::string> found;
    for (const LKSavedQuery& query : store.loadAll()) found.push_back(query.name);
    return found;
  }
  void install(LKQueryStore::Install how = LKQueryStore::Install::once) const {
    store.installDefaultQueries(how, true);
  }

  const test::TempFolder home;
  const LKQueryStore store = LKQueryStore(home.path(), [] { return Instant{1'773'480'413, 9}; });
};

using Names = std::vector<std::string>;
const Names kBuiltInNames = {"Overdue", "Due Today", "Due This Week"};

TEST_F(QueryStore, InstallsTheBuiltInQueriesOnceAndWithoutOverwriting) {
  const std::string week = LKQueryStore::thisWeekQueryID().text();
  write(file("." + week + ".json.icloud"), "");
  install();
  EXPECT_EQ(names(), (Names{"Overdue", "Due Today"})) << "the third is on its way";
  EXPECT_EQ(userDefaults::integer("lkDefaultQueriesVersion"), 1);
  fs::remove(file("." + week + ".json.icloud"));
  store.remove(LKQueryStore::overdueQueryID());
  store.remove(LKQueryStore::overdueQueryID());
  install();
  EXPECT_EQ(names(), Names{"Due Today"}) << "what was removed stays away";
  const std::string before =
      test::readWhole(file(LKQueryStore::dueTodayQueryID().text() + ".json"));
  install(LKQueryStore::Install::forced);
  EXPECT_EQ(names(), kBuiltInNames);
  EXPECT_EQ(test::readWhole(file(LKQueryStore::dueTodayQueryID().text() + ".json")), before);
}

TEST_F(QueryStore, GoesOnWhereNothingCanBeWritten) {
  write(home / ".queries", "no folder");
  install();
  EXPECT_EQ(names(), Names{});
  EXPECT_EQ(userDefaults::integer("lkDefaultQueriesVersion"), 1);
  EXPECT_THROW(store.save(decodeQuery(fileText(""))), Error);
}

TEST_F(QueryStore, LoadsTheOldestFirstAndPassesOverTheRest) {
  install();
  const std::string today = LKQueryStore::dueTodayQueryID().text();
  write(file(today + ".json"),
        fileText(R"("tintColorName": "red",)",
                 R"({"field": "size", "op": "lessThan", "value": "1"})", today));
  write(file("No UUID.json"), fileText(""));
  write(file(std::string(kID) + ".json"), "{}");
  Names skipped;
  const auto queries = store.loadAll(
      [&](const fs::path& path, const Error&) { skipped.push_back(path.filename()); });
  EXPECT_EQ(skipped, Names{std::string(kID) + ".json"});
  ASSERT_EQ(queries.size(), 3U);
  EXPECT_EQ(queries[1].name, "Due Today") << "of the same second, by id";
  EXPECT_EQ(queries[1].rules, LKQueryStore::builtInDefinitions()[1].rules);
  EXPECT_EQ(queries[1].tintColorName, "red");
  EXPECT_THROW(store.load(*UUID::parse(kID)), JsonError);
  LKSavedQuery old = decodeQuery(fileText(""));
  old.createdDate.seconds -= 1;
  store.save(old);
  EXPECT_EQ(store.load(old.id), old);
  EXPECT_EQ(names().front(), "Seeds");
}

TEST_F(QueryStore, BringsOverTheOldFolderWithoutLosingAFile) {
  const std::string name = std::string(kID) + ".json";
  write(home / ".views" / name, fileText(R"("from": "views",)"));
  write(home / ".views/A1116ECE-1738-47D9-BD9C-172411E20B8F.json",
        fileText("", "", "A1116ECE-1738-47D9-BD9C-172411E20B8F"));
  write(file(name), fileText(R"("from": "queries",)"));
  EXPECT_EQ(names().size(), 2U);
  EXPECT_FALSE(fs::exists(home / ".views"));
  EXPECT_EQ(test::readWhole(file(name)), fileText(R"("from": "queries",)"));
  EXPECT_EQ(test::readWhole(file(std::string(kID) + " 2.json")), fileText(R"("from": "views",)"));
}

TEST_F(QueryStore, TakesNothingFromBehindALink) {
  write(home / "Project/package.json", "{}");
  fs::create_directory_symlink("Project", home / ".views");
  EXPECT_TRUE(names().empty());
  EXPECT_TRUE(fs::exists(home / ".views/package.json"));
}

}  // namespace
}  // namespace lk
