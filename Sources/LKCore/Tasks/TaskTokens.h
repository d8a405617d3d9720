#pragma once

// Finding and removing `key:value` words on a line, each in time linear in the line's length.
// Lines are valid UTF-8 without a line feed. Whitespace is what text::isWhitespaceOrNewline says.
//
//     removing("- [ ] Sow  due:2026-03-20 beans",
//              tokens("- [ ] Sow  due:2026-03-20 beans", kDueToken)) == "- [ ] Sow beans"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/TextRange.h"

namespace lk {

// What a word looks like.
struct TaskToken {
  enum class Value {
    date,  // four, two and two decimal digits with hyphens between; more may follow
    word,  // at least one character that is not whitespace, up to the next whitespace
  };

  std::string_view key;  // with its colon, compared by bytes
  Value value = Value::word;
  bool atWordStart = true;  // else the key may end another word
};

inline constexpr TaskToken kDueToken = {"due:", TaskToken::Value::date};
inline constexpr TaskToken kPriorityToken = {"priority:", TaskToken::Value::word};
inline constexpr TaskToken kDoneToken = {"done:", TaskToken::Value::date, false};

// The first such word that begins at byte `from` or later.
std::optional<TextRange> findToken(std::string_view line, const TaskToken& token, size_t from = 0);

// All of them, left to right, without overlap.
std::vector<TextRange> tokens(std::string_view line, const TaskToken& token);

// The words whose key is one of `keywords`, in any case, before a colon. Throws PatternError when
// the keywords are too many or too long to search for.
std::vector<TextRange> projectTokens(std::string_view line,
                                     const std::vector<std::string>& keywords);

// The line without the ranges, which are ascending, and without the whitespace before each.
std::string removing(std::string_view line, const std::vector<TextRange>& ranges);

// The line without the whitespace at its end, a carriage return included.
std::string_view withoutTrailingSpace(std::string_view line);

// The spaces and tabs that a line begins with.
std::string_view leadingBlanks(std::string_view line);

}  // namespace lk
