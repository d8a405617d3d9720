#include "LKCore/Base/Text.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace lk {
namespace {

struct Named {
  std::string name;
};

template <typename Case>
std::string caseName(const testing::TestParamInfo<Case>& row) {
  return row.param.name;
}

struct ValidityCase : Named {
  std::string bytes;
  bool valid;
};

class Validity : public testing::TestWithParam<ValidityCase> {};

TEST_P(Validity, IsWhatUnicodeSays) {
  EXPECT_EQ(text::isValidUTF8(GetParam().bytes), GetParam().valid);
}

INSTANTIATE_TEST_SUITE_P(Bytes, Validity,
                         testing::Values(ValidityCase{{"ascii"}, "plain", true},
                                         ValidityCase{{"last_scalar"}, "\xF4\x8F\xBF\xBF", true},
                                         ValidityCase{
                                             {"beyond_the_last_scalar"}, "\xF4\x90\x80\x80", false},
                                         ValidityCase{{"overlong_slash"}, "\xC0\xAF", false},
                                         ValidityCase{{"overlong_three"}, "\xE0\x80\xAF", false},
                                         ValidityCase{{"overlong_four"}, "\xF0\x80\x80\xAF", false},
                                         ValidityCase{{"surrogate"}, "\xED\xA0\x80", false},
                                         ValidityCase{{"cut_short"}, "ab\xE2\x82", false},
                                         ValidityCase{{"lone_continuation"}, "a\x80", false},
                                         ValidityCase{{"byte_order_mark"}, "\xEF\xBB\xBF", true}),
                         caseName<ValidityCase>);

TEST(Decoding, WalksBothWaysOverTheSameScalars) {
  const std::string text = "a\u00E9\u20AC\U0001F600z";
  std::vector<char32_t> forward;
  for (size_t i = 0; i < text.size();) {
    const text::Decoded d = text::decode(text, i);
    forward.push_back(d.scalar);
    i += d.length;
  }
  std::vector<char32_t> backward;
  for (size_t i = text.size(); i > 0;) {
    const text::Decoded d = text::decodeBefore(text, i);
    backward.insert(backward.begin(), d.scalar);
    i -= d.length;
  }
  EXPECT_EQ(forward, (std::vector<char32_t>{'a', 0xE9, 0x20AC, 0x1F600, 'z'}));
  EXPECT_EQ(backward, forward);
  std::string again;
  for (const char32_t scalar : forward) text::append(again, scalar);
  EXPECT_EQ(again, text);
}

TEST(Decoding, StaysInBoundsOnEveryPairOfBytes) {
  for (int first = 0; first < 256; ++first) {
    for (int second = 0; second < 256; ++second) {
      const std::string bytes = {static_cast<char>(first), static_cast<char>(second)};
      for (size_t i = 0; i < bytes.size();) i += text::decode(bytes, i).length;
      for (size_t i = bytes.size(); i > 0;) i -= text::decodeBefore(bytes, i).length;
      EXPECT_TRUE(text::isValidUTF8(text::escapedInvalid(bytes)));
    }
  }
}

TEST(Counting, TellsScalarsUnitsAndCharactersApart) {
  const std::string family = "\U0001F468\u200D\U0001F469\u200D\U0001F467";
  const std::string text = "e\u0301" + family;
  EXPECT_EQ(text::scalarCount(text), 7U);
  EXPECT_EQ(text::utf16Count(text), 10U);
  EXPECT_EQ(text::characterEnds(text), (std::vector<size_t>{3, text.size()}));
  EXPECT_TRUE(text::characterEnds("").empty());
}

TEST(Trimming, KnowsItsThreeSets) {
  const std::string text = "\u00A0 \t\n\u2028x\u3000\r\n";
  EXPECT_EQ(text::trimmed(text), "x");
  EXPECT_EQ(text::trimmedBlanks(text), "\n\u2028x\u3000\r\n");
  EXPECT_EQ(text::trimmedBlanks("\u3000 x \u00A0"), "x");
  EXPECT_EQ(text::trimmedSpacesTabs(" \t\u00A0x\u00A0 "), "\u00A0x\u00A0");
  EXPECT_EQ(text::trimmedLeading("\n x "), "x ");
  EXPECT_EQ(text::trimmed(" \n "), "");
}

TEST(Splitting, TreatsEveryNewlineScalarAsASeparator) {
  using Lines = std::vector<std::string_view>;
  EXPECT_EQ(text::splitLines(""), Lines{""});
  EXPECT_EQ(text::splitLines("a\r\nb"), (Lines{"a", "", "b"}));
  EXPECT_EQ(text::splitLines("a\vb\fc\u0085d\u2028e\u2029f\n"),
            (Lines{"a", "b", "c", "d", "e", "f", ""}));
  EXPECT_EQ(text::split("a,,b,", ','), (Lines{"a", "", "b", ""}));
}

struct IntegerCase : Named {
  std::string text;
  std::optional<int> value;
};

class Integers : public testing::TestWithParam<IntegerCase> {};

TEST_P(Integers, AreReadWholeOrNotAtAll) {
  int value = -99;
  EXPECT_EQ(text::parseInteger(GetParam().text, value), GetParam().value.has_value());
  EXPECT_EQ(value, GetParam().value.value_or(-99));
}

INSTANTIATE_TEST_SUITE_P(Texts, Integers,
                         testing::Values(IntegerCase{{"plain"}, "12", 12},
                                         IntegerCase{{"plus"}, "+12", 12},
                                         IntegerCase{{"minus"}, "-12", -12},
                                         IntegerCase{{"two_signs"}, "+-12", std::nullopt},
                                         IntegerCase{{"blank"}, " 12", std::nullopt},
                                         IntegerCase{{"rest"}, "12a", std::nullopt},
                                         IntegerCase{{"empty"}, "", std::nullopt},
                                         IntegerCase{{"too_large"}, "99999999999", std::nullopt}),
                         caseName<IntegerCase>);

TEST(Equality, IsCanonicalAndCanIgnoreCase) {
  EXPECT_TRUE(text::equal("caf\u00E9", "cafe\u0301"));
  EXPECT_FALSE(text::equal("cafe", "caf\u00E9"));
  EXPECT_TRUE(text::equalIgnoringCase("\u00C9TUDE", "e\u0301tude"));
  EXPECT_EQ(text::lowercased("\u0130\u03A3 ABC"), "i\u0307\u03C2 abc");
  EXPECT_EQ(text::uppercased("stra\u00DFe"), "STRASSE");
  EXPECT_TRUE(text::containsIgnoringCase("The GARDEN plan", "garden"));
  EXPECT_FALSE(text::containsIgnoringCase("garden", "gardens"));
}

TEST(Order, CountsDigitsByValueAndAccentsLast) {
  EXPECT_LT(text::compareLocalized("Note 9", "Note 10"), 0);
  EXPECT_LT(text::compareLocalized("caf\u00E9", "cafz"), 0);
  EXPECT_LT(text::compareLocalized("apple", "Banana"), 0);
  EXPECT_EQ(text::compareLocalized("a", "a"), 0);
}

TEST(EditDistance, CountsScalars) {
  EXPECT_EQ(text::editDistance("shwo", "show"), 2U);
  EXPECT_EQ(text::editDistance("", "abc"), 3U);
  EXPECT_EQ(text::editDistance("caf\u00E9", "cafe"), 1U);
}

}  // namespace
}  // namespace lk
