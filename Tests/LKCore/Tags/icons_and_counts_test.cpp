#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>

#include "LKCore/Base/Json.h"
#include "LKCore/Tags/LKTagIconStore.h"
#include "LKCore/Tags/LKTagTreeCounts.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

TEST(TagIcons, MoveWithTheirTagsAndKeepWhatNobodyKnows) {
  const test::TempFolder folder;
  const LKTagIconStore icons(folder.path());
  icons.rename("a", "b");
  icons.clear({"a"});
  EXPECT_TRUE(std::filesystem::is_empty(folder.path())) << "nothing to keep, nothing made";
  icons.setIcon("a", {"leaf", "green"});
  const auto file = folder / ".tag-icons.json";
  test::writeWhole(file,
                   R"({"a": {"symbolName": "leaf", "later": 1}, "a/x": {"tintColorName": "red"},
                       "ab": {"symbolName": "sun"}, "later": [1], "b/x": {"symbolName": "b"}})");
  icons.rename("a", "c");
  EXPECT_EQ(icons.icons(), (std::map<std::string, LKTagIcon>{{"c", {"leaf", std::nullopt}},
                                                             {"a/x", {std::nullopt, "red"}},
                                                             {"ab", {"sun", std::nullopt}},
                                                             {"b/x", {"b", std::nullopt}}}));
  icons.rename("c", "a");
  icons.renamePrefix("a", "b");
  icons.setIcon("b", {std::nullopt, "blue"});
  icons.setIcon("ab", {});
  EXPECT_EQ(parseJson(test::readWhole(file)),
            parseJson(R"({"b": {"tintColorName": "blue", "later": 1},
            "b/x": {"symbolName": "b"}, "later": [1]})"));
}

TEST(TagIcons, KeepADamagedFileAside) {
  const test::TempFolder folder;
  const LKTagIconStore icons(folder.path());
  icons.setIcon("a", {"leaf", std::nullopt});
  const auto file = folder / ".tag-icons.json";
  for (const std::string bytes : {"{\"a\": ", "[]"}) {
    test::writeWhole(file, bytes);
    EXPECT_TRUE(icons.icons().empty());
    icons.renamePrefix("a", "b");
    icons.setIcon("a", {"sun", std::nullopt});
    EXPECT_EQ(icons.icon("a")->symbolName, "sun");
    size_t kept = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
      kept += entry.path() != file && test::readWhole(entry.path()) == bytes ? 1U : 0U;
    }
    EXPECT_EQ(kept, 1U) << bytes;
  }
  test::writeWhole(file, "");
  icons.setIcon("a", {"sun", std::nullopt});
  EXPECT_EQ(icons.icon("a")->symbolName, "sun");
}

TEST(TagTree, CountsANoteOnceForEachNodeAboveItsTags) {
  using Counts = std::map<std::string, int>;
  const LKTagTreeCounts::Item items[] = {
      {{"work/a", "work/b", "work"}, true}, {{"work/a/c", "home"}, false}, {{"work//a/"}, true}};
  EXPECT_EQ(LKTagTreeCounts::nodeCounts(items),
            (Counts{{"work", 2}, {"work/a", 2}, {"work/b", 1}, {"work/a/c", 0}, {"home", 0}}));
  std::string deep = "a";
  for (int i = 0; i < 200'000; ++i) deep += "/a";
  const LKTagTreeCounts::Item deepItem[] = {{{deep}, true}};
  EXPECT_EQ(LKTagTreeCounts::nodeCounts(deepItem).size(), LKTagTreeCounts::deepestLevel + 0U);
}

}  // namespace
}  // namespace lk
