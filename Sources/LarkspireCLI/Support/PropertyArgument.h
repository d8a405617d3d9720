#pragma once

#include <string>
#include <string_view>

namespace lk {

// A user property given as "key=value".
struct PropertyArgument {
  std::string key;
  std::string value;

  // Splits at the first "=" and trims both sides, as a note file keeps them. Throws CLIError:
  // general without a "=", propertyValidation for a key or value that a note file cannot hold as
  // a property (a line break, a colon in the key, a key of the system's own).
  static PropertyArgument parse(std::string_view argument);

  bool operator==(const PropertyArgument&) const = default;
};

// The name of a property as a note file keeps it. Throws CLIError, propertyValidation, for one that
// is empty or holds a line break or a colon.
std::string readablePropertyName(std::string_view typed);

}  // namespace lk
