#include <gtest/gtest.h>

#include <string>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"

namespace lk {
namespace {

std::string repeated(const std::string& piece, size_t count) {
  std::string result;
  for (size_t i = 0; i < count; ++i) result += piece;
  return result;
}

struct Title {
  std::string name;
  std::string typed;
  std::string onDisk;
};

class Sanitizing : public testing::TestWithParam<Title> {};

TEST_P(Sanitizing, GivesANameForTheDiskAndLeavesItAlone) {
  const std::string result = LKNoteFilename::sanitize(GetParam().typed);
  EXPECT_EQ(result, GetParam().onDisk);
  EXPECT_EQ(LKNoteFilename::sanitize(result), result);
}

const std::string kFamily =
    "\U0001F468\u200D\U0001F469\u200D\U0001F467";  // one character, 18 bytes

INSTANTIATE_TEST_SUITE_P(
    Titles, Sanitizing,
    testing::Values(
        Title{"plain", "Plan", "Plan"}, Title{"illegal", "a/b: c?", "ab c"},
        Title{"every_illegal", "x:/?*\"<>|\\#y", "xy"}, Title{"only_illegal", "???", ""},
        Title{"empty", "", ""}, Title{"hidden", "...hidden", "hidden"},
        Title{"hidden_behind_blanks", " . .hidden", "hidden"},
        Title{"hidden_behind_illegal", "/.hidden", "hidden"}, Title{"only_stops", ". . .", ""},
        Title{"inner_and_last_stops", "v1.2.", "v1.2."},
        Title{"whitespace_runs", "\t a \n\r b\u00A0\u2003c\u2028", "a b c"},
        Title{"composed", "Cafe\u0301", "Caf\u00E9"},
        Title{"hangul", "\u1112\u1161\u11AB", "\uD55C"}, Title{"nul", std::string("a\0b", 3), "ab"},
        Title{"right_to_left", "\u05E9\u05DC\u05D5\u05DD: \u05E2\u05D5\u05DC\u05DD",
              "\u05E9\u05DC\u05D5\u05DD \u05E2\u05D5\u05DC\u05DD"},
        Title{"just_fits", std::string(200, 'a'), std::string(200, 'a')},
        Title{"words", repeated("fifteen letters ", 19),
              repeated("fifteen letters ", 12) + "fifteen"},
        Title{"one_word", std::string(300, 'a'), std::string(200, 'a')},
        Title{"one_word_of_two_bytes", "a" + repeated("\u00E9", 150), "a" + repeated("\u00E9", 99)},
        Title{"joined_emoji", repeated(kFamily, 17), repeated(kFamily, 11)},
        Title{"early_blank", "ab " + std::string(300, 'c'), "ab " + std::string(197, 'c')},
        Title{"one_endless_character", "e" + repeated("\u0323\u0305", 150), ""}),
    [](const auto& row) { return row.param.name; });

TEST(Clamping, KeepsFewCharactersWholeAndEndsAtABlankWhenEnoughIsLeft) {
  EXPECT_EQ(LKNoteFilename::clampToBytes("ab cd", 5), "ab cd");
  EXPECT_EQ(LKNoteFilename::clampToBytes("ab cd", 4), "ab");
  EXPECT_EQ(LKNoteFilename::clampToBytes("a bcdefghij", 8), "a bcdefg");
  EXPECT_EQ(LKNoteFilename::clampToBytes(" bcde", 4), " bcd");
  EXPECT_EQ(LKNoteFilename::clampToBytes("\u00E9", 1), "");
  // Five characters of eighteen bytes are fewer than a quarter of 100: the blank does not count.
  const std::string few = repeated(kFamily, 2) + " " + repeated(kFamily, 8);
  EXPECT_EQ(LKNoteFilename::clampToBytes(few, 100), few.substr(0, 91));
  EXPECT_EQ(LKNoteFilename::clampToBytes("abc", 0), "");
}

struct BaseName {
  std::string name;
  std::string text;
  bool isUUID;
  bool isUntitledFile;
  bool isUntitledCopy;
};

class Untitled : public testing::TestWithParam<BaseName> {};

TEST_P(Untitled, IsToldByTheName) {
  const BaseName& expected = GetParam();
  const std::filesystem::path url = "/notes/" + expected.text + ".md";
  EXPECT_EQ(LKNoteFilename::isUUIDBasename(expected.text), expected.isUUID);
  EXPECT_EQ(LKNoteFilename::isUntitledFilename(url), expected.isUntitledFile);
  EXPECT_EQ(LKNoteFilename::isUntitledIgnoringCopySuffix(expected.text), expected.isUntitledCopy);
  EXPECT_EQ(LKNoteFilename::displayName(url), expected.isUUID ? "Untitled" : expected.text);
}

const std::string kUUID = "3F2504E0-4F89-41D3-9A0C-0305E82C3301";

INSTANTIATE_TEST_SUITE_P(
    Names, Untitled,
    testing::Values(BaseName{"uuid", kUUID, true, true, true},
                    BaseName{"lower_uuid", text::lowercased(kUUID), true, true, true},
                    BaseName{"uuid_copy", kUUID + " 2", false, false, true},
                    BaseName{"uuid_without_hyphens", "3F2504E04F8941D39A0C0305E82C3301", false,
                             false, false},
                    BaseName{"uuid_in_braces", "{" + kUUID + "}", false, false, false},
                    BaseName{"legacy", "Untitled", false, true, true},
                    BaseName{"legacy_number", "Untitled 3", false, true, true},
                    BaseName{"legacy_copy", "untitled 3 2", false, false, true},
                    BaseName{"long_number", "Untitled 20260314092653", false, true, true},
                    BaseName{"words", "Untitled notes", false, false, false},
                    BaseName{"two_copies", "Untitled 3 2 1", false, false, false},
                    BaseName{"not_quite_a_number", "Untitled 3a", false, false, false},
                    BaseName{"title_with_stop", "v1.2", false, false, false}),
    [](const auto& row) { return row.param.name; });

TEST(Names, OfUUIDsAreShortened) {
  EXPECT_EQ(LKNoteFilename::shortSuffix(*UUID::parse(kUUID)), "3f2504e0");
  EXPECT_TRUE(LKNoteFilename::isUntitledDisplayName("Untitled"));
  EXPECT_FALSE(LKNoteFilename::isUntitledDisplayName("untitled"));
}

}  // namespace
}  // namespace lk
