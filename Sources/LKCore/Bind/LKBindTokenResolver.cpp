#include "LKCore/Bind/LKBindTokenResolver.h"

#include <array>
#include <utility>

#include "LKCore/Base/DatePattern.h"
#include "LKCore/Base/LocaleText.h"
#include "LKCore/Base/Text.h"

namespace lk::LKBindTokenResolver {

namespace {

using TokenText = std::optional<std::string>;

TokenText digits(const std::optional<int64_t>& number) {
  return number ? TokenText(std::to_string(*number)) : std::nullopt;
}

TokenText romanUpper(const std::optional<int64_t>& number) {
  return number ? romanNumeral(*number) : std::nullopt;
}

TokenText romanLower(const std::optional<int64_t>& number) {
  const TokenText upper = romanUpper(number);
  return upper ? TokenText(text::lowercased(*upper)) : std::nullopt;
}

TokenText inWords(const std::optional<int64_t>& number, const std::string& locale) {
  if (!number) return std::nullopt;
  return capitalised(numberSpelledOut(*number, locale), locale);
}

std::string tagLeaf(std::string_view tag) {
  while (tag.ends_with('/')) tag.remove_suffix(1);
  return std::string(tag.substr(tag.rfind('/') + 1));  // npos + 1 is 0
}

std::string tagDisplayName(const LKBindTokenContext& context) {
  if (context.isTitled) return context.tagName;
  std::string name = tagLeaf(context.tagName);
  for (char& c : name) {
    if (c == '-' || c == '_') c = ' ';
  }
  return capitalised(name, context.locale);
}

TokenText authorName(const LKBindTokenContext& context) {
  return context.author.empty() ? std::nullopt : TokenText(context.author);
}

struct TokenEntry {
  std::string_view name;
  TokenText (*value)(const LKBindTokenContext& context);
};

constexpr std::array<TokenEntry, 18> kTokens = {{
    {"n", [](const LKBindTokenContext& c) { return digits(c.chapterNumber); }},
    {"n_roman_upper", [](const LKBindTokenContext& c) { return romanUpper(c.chapterNumber); }},
    {"n_roman_lower", [](const LKBindTokenContext& c) { return romanLower(c.chapterNumber); }},
    {"n_word", [](const LKBindTokenContext& c) { return inWords(c.chapterNumber, c.locale); }},
    {"title", [](const LKBindTokenContext& c) { return c.chapterTitle; }},
    {"notetitle", [](const LKBindTokenContext& c) { return c.noteTitle; }},
    {"part_n", [](const LKBindTokenContext& c) { return digits(c.partNumber); }},
    {"part_n_roman_upper", [](const LKBindTokenContext& c) { return romanUpper(c.partNumber); }},
    {"part_n_roman_lower", [](const LKBindTokenContext& c) { return romanLower(c.partNumber); }},
    {"part_n_word", [](const LKBindTokenContext& c) { return inWords(c.partNumber, c.locale); }},
    {"tag_name", [](const LKBindTokenContext& c) { return TokenText(c.tagName); }},
    {"tag_display_name", [](const LKBindTokenContext& c) { return TokenText(tagDisplayName(c)); }},
    {"tag_leaf", [](const LKBindTokenContext& c) { return TokenText(tagLeaf(c.tagName)); }},
    {"author", authorName},
    {"author_surname", [](const LKBindTokenContext& c) { return authorSurname(c.author); }},
    {"date",
     [](const LKBindTokenContext& c) { return TokenText(formattedFullDate(c.date, c.locale)); }},
    {"date_iso", [](const LKBindTokenContext& c) { return TokenText(LKDateOnly::utc(c.date)); }},
    {"wordcount", [](const LKBindTokenContext& c) { return digits(c.wordcount); }},
}};

const TokenEntry* entryNamed(std::string_view name) {
  for (const TokenEntry& entry : kTokens) {
    if (entry.name == name) return &entry;
  }
  return nullptr;
}

}  // namespace

void walk(std::string_view text, const std::function<void(std::string_view literal)>& literal,
          const std::function<void(std::string_view name)>& token) {
  bool mayClose = true;  // once no brace follows, none ever does
  while (!text.empty()) {
    const size_t brace = text.find_first_of("{}");
    literal(text.substr(0, brace));
    if (brace == std::string_view::npos) return;
    text.remove_prefix(brace);
    const bool isDouble = text.size() > 1 && text[1] == text[0];
    const size_t end = text[0] == '{' && !isDouble && mayClose ? text.find('}') : std::string::npos;
    if (text[0] == '{' && !isDouble) mayClose = end != std::string_view::npos;
    if (end == std::string_view::npos) {
      literal(text.substr(0, 1));
      text.remove_prefix(isDouble ? 2 : 1);
    } else {
      token(text.substr(1, end - 1));
      text.remove_prefix(end + 1);
    }
  }
}

std::string resolve(std::string_view text, const LKBindTokenContext& context) {
  std::string result;
  walk(
      text, [&](std::string_view literal) { result.append(literal); },
      [&](std::string_view name) {
        if (const auto resolved = value(name, context)) {
          result.append(*resolved);
        } else {
          result.append("{").append(name).append("}");
        }
      });
  return result;
}

std::optional<std::string> value(std::string_view name, const LKBindTokenContext& context) {
  const TokenEntry* const entry = entryNamed(name);
  return entry != nullptr ? entry->value(context) : std::nullopt;
}

bool isToken(std::string_view name) {
  return entryNamed(name) != nullptr;
}

std::optional<std::string> authorSurname(std::string_view name) {
  const std::string_view trimmed = text::trimmed(name);
  if (trimmed.empty()) return std::nullopt;
  size_t start = trimmed.size();
  while (start > 0) {
    const text::Decoded before = text::decodeBefore(trimmed, start);
    if (text::isWhitespaceOrNewline(before.scalar)) break;
    start -= before.length;
  }
  return std::string(trimmed.substr(start));
}

std::optional<std::string> romanNumeral(int64_t n) {
  static constexpr std::array<std::pair<int64_t, std::string_view>, 13> kNumerals = {{{1000, "M"},
                                                                                      {900, "CM"},
                                                                                      {500, "D"},
                                                                                      {400, "CD"},
                                                                                      {100, "C"},
                                                                                      {90, "XC"},
                                                                                      {50, "L"},
                                                                                      {40, "XL"},
                                                                                      {10, "X"},
                                                                                      {9, "IX"},
                                                                                      {5, "V"},
                                                                                      {4, "IV"},
                                                                                      {1, "I"}}};
  if (n < 1 || n > 3999) return std::nullopt;
  std::string result;
  for (const auto& [worth, numeral] : kNumerals) {
    for (; n >= worth; n -= worth) result.append(numeral);
  }
  return result;
}

std::string numberSpelledOut(int64_t n, std::string_view locale) {
  return spelledOut(n, locale);
}

}  // namespace lk::LKBindTokenResolver
