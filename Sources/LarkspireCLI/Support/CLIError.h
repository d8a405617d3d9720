#pragma once

#include <string>

#include "LKCore/Base/Error.h"

namespace lk {

// The one error that commands report in words of their own. The entry point turns it into text
// or JSON on standard error and into the exit status; nothing else prints or exits.
//
//     throw CLIError::noteNotFound("Groceries");
class CLIError : public Error {
 public:
  enum class Case {
    noteNotFound,
    writeFailed,
    invalidFrontMatter,
    duplicateTitle,
    propertyValidation,
    general,
    collectionNotFound,
  };

  static CLIError noteNotFound(const std::string& title);
  static CLIError writeFailed(const std::string& detail);
  static CLIError invalidFrontMatter(const std::string& fileName);
  static CLIError duplicateTitle(const std::string& title);
  static CLIError propertyValidation(const std::string& message);
  static CLIError general(const std::string& message);
  static CLIError collectionNotFound();

  Case kind() const noexcept { return case_; }
  const std::string& message() const noexcept { return description(); }
  // The JSON `error` key, e.g. "note_not_found".
  const char* code() const noexcept;
  // 1 to 7.
  int exitStatus() const noexcept;

  // The same failure with a word of advice, which a person sees after the message; a script, with
  // --json or --quiet, does not.
  CLIError withHint(const std::string& hint) const;
  const std::string& hint() const noexcept { return hint_; }

 private:
  CLIError(Case which, std::string message) : Error(std::move(message)), case_(which) {}

  Case case_;
  std::string hint_;
};

}  // namespace lk
