#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Error.h"
#include "LKCore/Base/TextRange.h"

namespace lk {

// A pattern that does not compile, or whose search costs more than it may (PatternSearcher); the
// description is the engine's text.
class PatternError : public Error {
 public:
  using Error::Error;
};

// A compiled regular expression (PCRE2 with its JIT) over valid UTF-8, with Unicode properties:
// `\w`, `\s`, `\b` and case folding mean what Unicode says. Immutable and safe to share between
// threads. Make each one once (a function-local static), not once a call.
class Pattern {
 public:
  enum class Case { sensitive, insensitive };

  // Throws PatternError.
  explicit Pattern(std::string_view source, Case letters = Case::sensitive);
  ~Pattern();
  Pattern(Pattern&&) noexcept;
  Pattern& operator=(Pattern&&) noexcept;
  Pattern(const Pattern&) = delete;
  Pattern& operator=(const Pattern&) = delete;

  // The groups of one match, group 0 the whole; a group that took no part is empty.
  using Match = std::vector<std::optional<TextRange>>;

  // The first match at or after byte `from`. `^` and `\b` see the text before `from`. A search
  // that exceeds the engine's limits counts as no match.
  std::optional<Match> find(std::string_view text, size_t from = 0) const;

  // Every match at or after byte `from`, left to right, without overlap; an empty match advances by
  // one scalar.
  std::vector<Match> findAll(std::string_view text, size_t from = 0) const;

  bool matches(std::string_view text) const { return find(text).has_value(); }

  // The text with every match replaced by `replacement` as it stands.
  std::string replacingAll(std::string_view text, std::string_view replacement) const;

  // The text with every match replaced by the template, in which "$1" stands for what group 1 took
  // (nothing, when it took no part), and a character behind a backslash for itself.
  std::string replacingAllByTemplate(std::string_view text, std::string_view replacement) const;

  // `text` as a template that gives back `text`.
  static std::string escapedTemplate(std::string_view text);

  // `text` with every character that has a meaning in patterns escaped.
  static std::string escaped(std::string_view text);

 private:
  friend class PatternSearcher;
  struct Compiled;
  std::unique_ptr<Compiled> compiled_;
};

// Looks for one pattern in many texts, keeping the engine's memory from one to the next. For
// patterns from outside: a search that goes on and on ends in an error. For one thread; the pattern
// must outlive it.
class PatternSearcher {
 public:
  explicit PatternSearcher(const Pattern& pattern);
  ~PatternSearcher();
  PatternSearcher(const PatternSearcher&) = delete;
  PatternSearcher& operator=(const PatternSearcher&) = delete;

  // The first match at or after byte `from`. Throws PatternError beyond the engine's limits.
  std::optional<TextRange> first(std::string_view text, size_t from = 0);

 private:
  struct Memory;
  const Pattern& pattern_;
  std::unique_ptr<Memory> memory_;
};

}  // namespace lk
