#pragma once

// Fences of code in Markdown, as all stages of a book read them.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace lk {

struct CodeFenceOpening {
  size_t backtickCount = 0;             // 3 or more
  std::optional<std::string> language;  // what follows the backticks, trimmed, when not empty

  bool operator==(const CodeFenceOpening&) const = default;
};

// A line that, trimmed, is at least three backticks and perhaps a language without backticks.
std::optional<CodeFenceOpening> parseCodeFenceStart(std::string_view line);

// A line that, trimmed, is only backticks, at least as many as the opening's.
bool isCodeFenceClose(std::string_view line, const CodeFenceOpening& opening);

// Shown every line of a text in turn, tells which ones are code; fences of tildes are seen too.
class CodeFenceWalk {
 public:
  enum class Line { outside, opening, inside, closing };

  Line take(std::string_view line);

  // The line that would close the open fence; nothing when none is open.
  std::optional<std::string> closingLine() const;

 private:
  char mark_ = 0;  // 0: no fence is open
  size_t count_ = 0;
};

}  // namespace lk
