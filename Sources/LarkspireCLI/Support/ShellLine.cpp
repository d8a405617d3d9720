#include "LarkspireCLI/Support/ShellLine.h"

namespace lk {

namespace {

bool isOneOf(char c, std::string_view set) {
  return set.find(c) != std::string_view::npos;
}

class ShellLineReader {
 public:
  std::vector<ShellWords> read(std::string_view line) {
    for (const char c : line) take(c);
    if (isEscaped_) word_.text += '\\';
    word_.openQuote = quote_;
    words_.push_back(word_);
    commands_.push_back(words_);
    return std::move(commands_);
  }

 private:
  void take(char c) {
    if (isEscaped_) {
      // Inside double quotes a backslash stands for itself before all but these.
      if (quote_ == '"' && !isOneOf(c, "$`\"\\\n")) word_.text += '\\';
      if (c != '\n') word_.text += c;
      isEscaped_ = false;
    } else if (c == '\\' && quote_ != '\'') {
      isEscaped_ = isWord_ = true;
    } else if (quote_ != 0) {
      takeQuoted(c);
    } else {
      takePlain(c);
    }
  }

  void takeQuoted(char c) {
    if (c != quote_) {
      word_.text += c;
      return;
    }
    quote_ = 0;
    word_.kept = word_.text.size();
  }

  void takePlain(char c) {
    if (isOneOf(c, "'\"")) {
      quote_ = c;
      isWord_ = true;
      word_.kept = word_.text.size();
    } else if (isOneOf(c, " \t")) {
      endWord();
    } else if (isOneOf(c, ";&|<>()\n")) {
      endWord();
      if (!words_.empty()) commands_.push_back(std::move(words_));
      words_.clear();
    } else {
      word_.text += c;
      isWord_ = true;
      if (isOneOf(c, ":=@")) word_.kept = word_.text.size();
    }
  }

  void endWord() {
    if (isWord_) words_.push_back(word_);
    word_ = {};
    isWord_ = false;
  }

  std::vector<ShellWords> commands_;
  ShellWords words_;
  ShellWord word_;
  bool isWord_ = false;  // also true for an empty one in quotes
  bool isEscaped_ = false;
  char quote_ = 0;
};

// A byte that means nothing to a shell, wherever it stands. Those of a character outside ASCII
// stay together.
bool isHarmless(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         isOneOf(c, "-_./,+%") || static_cast<unsigned char>(c) >= 0x80;
}

}  // namespace

std::vector<ShellWords> shellCommands(std::string_view line) {
  return ShellLineReader().read(line);
}

std::string shellQuoted(std::string_view value, char openQuote) {
  std::string quoted;
  for (const char c : value) {
    if (openQuote == '\'' && c == '\'') {
      quoted += "'\\''";
      continue;
    }
    const bool isSpecial = openQuote == 0     ? !isHarmless(c)
                           : openQuote == '"' ? isOneOf(c, "$`\"\\")
                                              : false;
    if (isSpecial) quoted += '\\';
    quoted += c;
  }
  return quoted;
}

}  // namespace lk
