#include "LKCore/Backlinks/LKTitleIndex.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "LKCore/Backlinks/LKTagLookup.h"
#include "LKCore/Base/Text.h"
#include "LKCore/DataModel/MemoryStore.h"

namespace lk {
namespace {

LKNote& put(LKContext& context, const std::string& title, bool isTrashed = false) {
  LKNote& note = context.notes().insert(LKNote(title, ""));
  note.isTrashed = isTrashed;
  return note;
}

// What each way to ask finds, which must be the same note.
void expectFound(LKContext& context, const std::string& asked, const LKNote* expected) {
  const std::string key = text::caseInsensitiveKey(asked);
  EXPECT_EQ(LKTitleIndex::noteTitled(asked, context), expected);
  EXPECT_EQ(LKTitleIndex(context).noteForTitle(asked), expected);
  for (const size_t threshold : {size_t{0}, size_t{40}}) {
    const auto notes = LKTitleIndex::notesTitledAny({asked, "nothing"}, context, threshold);
    ASSERT_EQ(notes.size(), expected == nullptr ? 0U : 1U) << threshold;
    EXPECT_TRUE(expected == nullptr || notes.at(key) == expected) << threshold;
  }
}

struct TitleRow {
  const char* name;
  std::string title;
  std::string asked;
  bool isFound;
};

class Titles : public testing::TestWithParam<TitleRow> {};

TEST_P(Titles, MatchInEveryWayToAsk) {
  const TitleRow& row = GetParam();
  const auto context = makeMemoryStore();
  put(*context, "Another note");
  const LKNote& note = put(*context, row.title);
  put(*context, row.title + " more");
  expectFound(*context, row.asked, row.isFound ? &note : nullptr);
  const auto exact = LKTitleIndex::linkMatches(row.asked, *context).exact;
  EXPECT_EQ(exact.size(), row.isFound ? 1U : 0U);
  for (const size_t threshold : {size_t{0}, size_t{40}}) {
    const auto ids = LKTitleIndex::linkTargetIDs({row.asked}, *context, threshold);
    ASSERT_EQ(ids.size(), row.isFound ? 1U : 0U) << threshold;
    EXPECT_TRUE(!row.isFound || ids.at(text::caseInsensitiveKey(row.asked)) == note.id);
  }
}

const TitleRow kTitles[] = {
    {"SameBytes", "Plan", "Plan", true},
    {"OtherCase", "Plan", "pLAN", true},
    {"PartOfATitle", "Garden plan", "Plan", false},
    {"AnAccentIsALetter", "Café", "Cafe", false},
    {"ComposedAskedDecomposed", "Caf\u00E9", "cafe\u0301", true},
    {"DecomposedAskedComposed", "Cafe\u0301", "CAF\u00C9", true},
    {"HangulAskedInJamo", "\uC815\uC6D0", "\u110C\u1165\u11BC\u110B\u116F\u11AB", true},
    {"JamoAskedInHangul", "\u110C\u1165\u11BC\u110B\u116F\u11AB", "\uC815\uC6D0", true},
    {"TurkishDottedCapital", "\u0130stanbul", "i\u0307stanbul", true},
    {"TurkishDotIsNoPlainI", "\u0130stanbul", "istanbul", false},
    {"SharpSIsNotTwoS", "Stra\u00DFe", "STRASSE", false},
    {"CapitalSharpS", "Stra\u00DFe", "STRA\u1E9EE", true},
    {"GreekFinalSigma", "\u039B\u039F\u0393\u039F\u03A3", "\u03BB\u03BF\u03B3\u03BF\u03C2", true},
    {"Cyrillic", "\u041F\u043B\u0430\u043D", "\u043F\u041B\u0410\u041D", true},
    {"Deseret", "\U00010410", "\U00010438", true},
    {"SignsOfPatterns", "50% [_*]", "50% [_*]", true},
};

INSTANTIATE_TEST_SUITE_P(Rows, Titles, testing::ValuesIn(kTitles),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(TitleIndex, PrefersTheLastLiveNoteOfATitle) {
  const auto context = makeMemoryStore();
  put(*context, "Plan");
  LKNote& last = put(*context, "plan");
  put(*context, "PLAN", true);
  for (const char* asked : {"Plan", "plan", "PLAN"}) expectFound(*context, asked, &last);
  LKNote& trashed = put(*context, "Old", true);
  expectFound(*context, "old", &trashed);
  EXPECT_TRUE(LKTitleIndex::linkMatches("old", *context).exact.empty());
}

TEST(TitleIndex, FollowsNotesThatCameOrWereRenamed) {
  const auto context = makeMemoryStore();
  LKNote& first = put(*context, "Plan");
  LKNote& second = put(*context, "Plan");
  LKTitleIndex index(*context);
  EXPECT_EQ(index.noteForTitle("plan"), &second);
  first.title = "Draft";
  index.add(first);
  EXPECT_EQ(index.noteForTitle("draft"), &first);
  EXPECT_EQ(index.noteForTitle("plan"), &second) << "the other note of that title stays";
  second.title = "Sketch";
  index.add(second);
  EXPECT_EQ(index.noteForTitle("plan"), nullptr);
}

TEST(TitleIndex, TellsTitlesWithAnExtensionApart) {
  const auto context = makeMemoryStore();
  for (const char* title : {"Plan.v2", "Planet", "plan", "PLAN.md"}) put(*context, title);
  put(*context, "Plan.old", true);
  const LKLinkTitleMatches matches = LKTitleIndex::linkMatches("Plan", *context);
  ASSERT_EQ(matches.exact.size(), 1U);
  EXPECT_EQ(matches.exact[0]->title, "plan");
  ASSERT_EQ(matches.withExtension.size(), 2U);
  EXPECT_EQ(matches.withExtension[0]->title, "Plan.v2");
  EXPECT_EQ(matches.withExtension[1]->title, "PLAN.md");
}

TEST(TitleIndex, KnowsAnotherFormOnlyOfWhatHidesFromAPlainComparison) {
  const std::string hangul = "\uC815";
  const std::string jamo = "\u110C\u1165\u11BC";
  EXPECT_EQ(LKTitleIndex::otherUnicodeForm("plan"), std::nullopt);
  EXPECT_EQ(LKTitleIndex::otherUnicodeForm("caf\u00E9"), std::nullopt);
  EXPECT_EQ(LKTitleIndex::otherUnicodeForm(hangul), jamo);
  EXPECT_EQ(LKTitleIndex::otherUnicodeForm(jamo), hangul);
}

TEST(TagLookup, FindsEitherUnicodeForm) {
  const auto context = makeMemoryStore();
  const auto putTag = [&](const char* text) -> LKTag& {
    return context->tags().insert(
        LKTagLookup::newTag(text, LKTagIcon{"leaf", std::nullopt}, UUID::random(), {}));
  };
  LKTag& tag = putTag("caf\u00E9");
  EXPECT_EQ(LKTagLookup::existingTag("cafe\u0301", *context), &tag);
  EXPECT_EQ(tag.symbolName, "leaf");
  EXPECT_EQ(LKTagLookup::existingTag("CAF\u00C9", *context), nullptr);
  LKTag& later = putTag("cafe\u0301");
  EXPECT_EQ(LKTagLookup::existingTag("caf\u00E9", *context), &later);
}

}  // namespace
}  // namespace lk
