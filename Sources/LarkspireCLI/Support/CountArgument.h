#pragma once

#include <optional>
#include <string>

#include "LarkspireCLI/Support/CLIError.h"

namespace lk {

// The value of an option that counts something. Throws CLIError (general) below zero.
inline size_t countArgument(const std::string& option, int value) {
  if (value < 0) throw CLIError::general(option + " takes a number from 0 upwards.");
  return static_cast<size_t>(value);
}

inline std::optional<size_t> countArgument(const std::string& option,
                                           const std::optional<int>& value) {
  return value ? std::optional(countArgument(option, *value)) : std::nullopt;
}

}  // namespace lk
