#pragma once

// What a language does to words. Locales as in DatePattern.h: "de_DE", empty for the user's, and
// one that is not known falls back on its language. Valid UTF-8; nothing throws.

#include <cstdint>
#include <string>
#include <string_view>

namespace lk {

// Every word with a large first letter and small ones behind it: "my NOVEL" is "My Novel".
std::string capitalised(std::string_view text, std::string_view locale);

// "twenty-one", "einundzwanzig"; digits when the language has no words for numbers.
std::string spelledOut(int64_t number, std::string_view locale);

// The name of the user's locale: "de_DE", "en_US_POSIX" where none is set.
std::string userLocale();

// "de_DE" as "de-DE", by which documents say their language and programs hyphenate; empty when the
// locale names no language.
std::string languageTag(std::string_view locale);

}  // namespace lk
