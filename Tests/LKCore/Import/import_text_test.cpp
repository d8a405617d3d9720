// What importers do to a text before it is a note: reading bytes, tags, paragraphs.

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "LKCore/Import/LKImportText.h"

namespace lk {
namespace {

using std::string_literals::operator""s;
namespace engine = LKImportEngine;

TEST(ImportText, IsDecodedOrRefused) {
  struct Row {
    const char* name;
    std::string bytes;
    std::optional<std::string> text;
  };
  for (const Row& row : std::vector<Row>{
           {"UTF-8", "caf\xC3\xA9", "café"},
           {"with a mark", "\xEF\xBB\xBFplain", "plain"},
           {"foreign line ends", "a\r\nb\rc", "a\nb\nc"},
           {"Mac OS Roman", "caf\x8E na\x95ve \xD2quoted\xD3", "café naïve “quoted”"},
           {"UTF-16, little end first", "\xFF\xFEh\0i\0"s, std::nullopt},
           {"UTF-16, big end first", "\xFE\xFF\0h\0i"s, std::nullopt},
           {"UTF-16 without a zero", "\xFF\xFE\x42\x30\x44\x30", std::nullopt},
           {"a picture", "\x89PNG\r\n\0\0"s, std::nullopt},
           {"nothing", "", ""},
       }) {
    EXPECT_EQ(engine::decoded(row.bytes), row.text) << row.name;
  }
}

TEST(ImportText, HasItsLimits) {
  const auto reasonFor = [](const std::string& text) -> std::string {
    try {
      engine::requireUsableText(text);
      return "";
    } catch (const engine::ImportRefusal& refusal) {
      return refusal.description();
    }
  };
  EXPECT_EQ(reasonFor(" \n\t"), "Text file is empty");
  EXPECT_EQ(reasonFor(std::string(5'000'000, 'a')), "");
  EXPECT_EQ(reasonFor(std::string(5'000'001, 'a')),
            "Text too large (5000001 characters, max 5,000,000)");
}

TEST(ImportText, TagsBecomeReadable) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"work", "work"},
      {"My Tag", "My-Tag"},
      {"a_b.c", "a-b-c"},
      {"/work//plan/", "work/plan"},
      {"Küche/日本語", "Küche/日本語"},
      {"2024", "2024"},
      {"🎉", "-"},
      {"///", ""},
      {"Work/.old", "Work/-old"},
  };
  for (const auto& [tag, readable] : rows) {
    EXPECT_EQ(engine::readableTag(tag), readable);
    EXPECT_EQ(engine::readableTag(readable), readable);
  }
}

TEST(ImportText, TagsStandOnALastLine) {
  EXPECT_EQ(engine::appendTagToBody("Words\n\n\n", "my tag"), "Words\n\n#my-tag\n");
  EXPECT_EQ(engine::appendTagsToBody("Words", {"a", "b/c"}), "Words\n\n#a #b/c\n");
  EXPECT_EQ(engine::appendTagsToBody("Words \n", {}), "Words \n");
  EXPECT_EQ(engine::appendTagToBody("Words\n", "/"), "Words\n");
}

TEST(ImportText, ParagraphsCollapse) {
  EXPECT_EQ(engine::collapseMarkdownParagraphs("\na\n\n\nb\nc\n\n"), "a\nb\nc");
}

TEST(ImportText, TagsGetTheirPrefixOutsideCode) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"#a and #b/c", "#p/a and #p/b/c"},
      {"(#a) *#b* #under_score", "(#a) *#p/b* #p/under-score"},
      {"#2024 #1a # #-", "#2024 #p/1a # #-"},
      {"x#a ##b # head", "x#a ##b # head"},
      {"#ünï #日本", "#p/ünï #p/日本"},
      {"#a#b", "#p/a#b"},
      {"#a\n```\n#b\n  ```\n#c", "#p/a\n```\n#b\n  ```\n#p/c"},
      {"```sh\n#never closed", "```sh\n#never closed"},
      {"#a, #b. #c", "#a, #b. #p/c"},
  };
  for (const auto& [body, expected] : rows) {
    EXPECT_EQ(engine::prefixInlineTags(body, "p/"), expected);
  }
}

TEST(ImportText, PercentEscapesThatMakeNoTextStay) {
  EXPECT_EQ(engine::percentDecoded("my%20caf%C3%A9%2"), "my café%2");
  EXPECT_EQ(engine::percentDecoded("%FF%zz"), "%FF%zz");
}

}  // namespace
}  // namespace lk
