#pragma once

// A line as people type it at a shell, read as far as completion needs it: words, quotes and where
// one command ends. Nothing is expanded or run.
//
//     lk show "Planting pl        one command of three words; the last one is open
//
// POSIX quoting: '...', "..." and backslashes. A ";", "&", "|", "<", ">", "(", ")" or line feed
// outside quotes ends a command.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lk {

struct ShellWord {
  std::string text = {};  // without its quotes
  char openQuote = 0;     // the quote that the end of the line leaves open, ' or "; else 0
  // The bytes of `text` that bash keeps when it replaces what is being completed: those up to a
  // quote, or to the last ":", "=" or "@" outside quotes.
  size_t kept = 0;
};

using ShellWords = std::vector<ShellWord>;

// The commands of the line, none of them empty but the last, which ends in the word that the line
// ends in; that one is empty after a blank or at the start of a command.
std::vector<ShellWords> shellCommands(std::string_view line);

// A part of a value as it may follow an open quote (' or ") or, with 0, stand outside quotes in
// bash.
std::string shellQuoted(std::string_view value, char openQuote);

}  // namespace lk
