#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Error.h"
#include "LarkspireCLI/Support/ArgumentList.h"

namespace lk {

// Words that don't fit an argument list.
class ArgumentError : public Error {
 public:
  enum class Kind { unknownOption, unexpectedArgument, badValue, missing };

  // `word` is the one in question; `nearest` the right word it resembles, or empty.
  ArgumentError(Kind kind, std::string message, std::string word = "", std::string nearest = "")
      : Error(std::move(message)),
        kind_(kind),
        word_(std::move(word)),
        nearest_(std::move(nearest)) {}

  Kind kind() const noexcept { return kind_; }
  const std::string& word() const noexcept { return word_; }
  const std::string& nearest() const noexcept { return nearest_; }

 private:
  Kind kind_;
  std::string word_;
  std::string nearest_;
};

// Fills the fields of `arguments` from `words`, byte for byte. Options stand before, between or
// after the positionals, as `--name value` or `--name=value`; the word after an option is its
// value whatever it looks like; of an option given twice the last one holds; after `--` every word
// is a positional. When --help is among the words, nothing else is asked of them.
// Throws ArgumentError.
void parseArguments(const ArgumentList& arguments, const std::vector<std::string>& words);

// The candidate that a mistyped `word` most likely means, empty when none is near.
std::string_view nearestWord(std::string_view word,
                             const std::vector<std::string_view>& candidates);

}  // namespace lk
