#pragma once

// Tokens in the texts of a spec: "Chapter {n}\n{title}".
//
// {n} {n_roman_upper} {n_roman_lower} {n_word} {title} {notetitle} {part_n} {part_n_roman_upper}
// {part_n_roman_lower} {part_n_word} {tag_name} {tag_display_name} {tag_leaf} {author}
// {author_surname} {date} {date_iso} {wordcount}
//
// A token without a value, or that nobody knows, stays as it is written; "{{" and "}}" are braces.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "LKCore/Base/Time.h"

namespace lk {

struct LKBindTokenContext {
  std::optional<int64_t> chapterNumber;
  std::optional<std::string> chapterTitle;
  std::optional<std::string> noteTitle;
  std::optional<int64_t> partNumber;
  std::string tagName;
  std::string author;
  Instant date;
  std::string locale;  // "de_DE"; empty for the user's
  std::optional<int64_t> wordcount;
  bool isTitled = false;  // `tagName` is a book note's title: {tag_display_name} is just that
};

namespace LKBindTokenResolver {

// The text with the values in the place of its tokens. Linear in the text and the values.
std::string resolve(std::string_view text, const LKBindTokenContext& context);

// The same walk for another use of the text: `literal` gets each stretch outside of tokens, `token`
// each name between braces.
void walk(std::string_view text, const std::function<void(std::string_view literal)>& literal,
          const std::function<void(std::string_view name)>& token);

// The value of one token by its name; nothing when it has none.
std::optional<std::string> value(std::string_view name, const LKBindTokenContext& context);

// Whether there is such a token at all.
bool isToken(std::string_view name);

// The last word of the name; nothing when it is blank.
std::optional<std::string> authorSurname(std::string_view name);

// 1 to 3999 in capitals; nothing for any other number.
std::optional<std::string> romanNumeral(int64_t n);

// "twenty-one"; digits when the language has no words for numbers.
std::string numberSpelledOut(int64_t n, std::string_view locale);

}  // namespace LKBindTokenResolver
}  // namespace lk
