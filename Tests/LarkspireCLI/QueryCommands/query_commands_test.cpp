// `lk query`: which notes a query shows, how it is named, and folders that refuse.

#include <iterator>

#include "LarkspireCLI/Reading/ReadingFixture.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::ProcessResult;
using Titles = std::vector<std::string>;

class QueryCommands : public test::Reading {
 protected:
  // Writes a query with this name; the number makes its id and its place in the list.
  void query(int number, const std::string& name, const std::string& rules,
             const std::string& members = "") const {
    const std::string id = "8D116ECE-1738-47D9-BD9C-00000000000" + std::to_string(number);
    fs::create_directories(notes() / ".queries");
    test::writeWhole(notes() / ".queries" / (id + ".json"),
                     "{" + members + "\"id\": \"" + id + "\", \"name\": \"" + name +
                         "\", \"combiner\": \"all\", \"createdDate\": \"2026-03-14T09:26:0" +
                         std::to_string(number) + "Z\", \"rules\": [" + rules + "]}");
  }

  static std::string rule(const std::string& field, const std::string& op,
                          const std::string& value = "") {
    return R"({"field": ")" + field + R"(", "op": ")" + op + R"(", "value": ")" + value + "\"}";
  }
};

TEST_F(QueryCommands, ShowTheNotesByTitle) {
  note("B 10", "- [ ] Pay due:2020-01-01 #work/site\n- [x] Old");
  note("b 9", "beans #work\n- [ ] Pay priority:high\n- [x] Ring due:2020-01-01");
  note(".trash/Gone", "beans #work");
  note("Archived", "beans", 0,
       [](LKFileFrontMatter& block) { block.userProperties["status"] = "archived"; });
  query(1, "By tag", rule("tag", "isUnder", "work"));
  query(2, "By text", rule("content", "contains", "BEANS"));
  query(3, "Trash", rule("isTrashed", "isTrue"));
  query(4, "Everything", "");
  query(5, "One task", "",
        R"("taskGroup": {"rules": [)" + rule("taskCompletion", "isFalse") + "," +
            rule("taskDueDate", "isOverdue") + "]},");
  query(6, "Due", rule("hasTasks", "isTrue"));
  query(7, "Recent", rule("dateModified", "after", "2026-03-13"));
  const std::map<std::string, Titles> rows = {
      {"by tag", {"b 9", "B 10"}},
      {"BY TEXT", {"Archived", "b 9"}},
      {"Trash", {"Gone"}},
      {"every", {"Archived", "b 9", "B 10"}},
      {"one task", {"B 10"}},
      {"DUE", {"b 9", "B 10"}},
      {"overdue", {"B 10"}},
      {"recent", {"Archived", "b 9", "B 10"}},
      // Two rules side by side may be met by two tasks: "b 9" has an open one and one due long ago.
      {"due this week", {"b 9", "B 10"}}};
  for (const auto& [name, wanted] : rows) EXPECT_EQ(titles("query|run|" + name), wanted) << name;
}

TEST_F(QueryCommands, PassOverAFileThatIsNoQueryAndSaySo) {
  query(1, "Broken", rule("mood", "is", "good"));
  const ProcessResult result = lk("query|list");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out.find("Broken"), std::string::npos);
  EXPECT_TRUE(result.err.starts_with("Warning: " + notes().string() + "/.queries/")) << result.err;
  EXPECT_NE(result.err.find("\"mood\" is no field of a rule."), std::string::npos) << result.err;
  EXPECT_EQ(lk("query|list|--quiet").err, "");
}

TEST_F(QueryCommands, RunInAFolderThatTakesNothing) {
  note("A", "a");
  query(1, "All", "");
  ASSERT_EQ(sandbox.lk({"collection", "add", "Notes", "--mode", "readOnly"}).status, 0);
  EXPECT_EQ(titles("query|run|all"), Titles{"A"});
  EXPECT_EQ(std::distance(fs::directory_iterator(notes() / ".queries"), {}), 1);
  fs::rename(notes() / ".queries", notes() / ".views");  // where an earlier version kept them
  EXPECT_EQ(titles("query|run|all"), Titles{"A"});
  EXPECT_FALSE(fs::exists(notes() / ".queries"));
  fs::remove_all(notes() / ".views");
  EXPECT_EQ(lk("query|list|--quiet").out, "No saved queries.\n");
  EXPECT_EQ(lk("query|list|--json").out, "[]\n");
}

}  // namespace
}  // namespace lk
