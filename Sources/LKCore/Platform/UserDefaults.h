#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The user's settings: one flat JSON object in `Larkspire/defaults.json` under the configuration
// folder, written by the user or by the application. It is read anew at each call and tolerantly:
// a missing or bad file, a missing key and a value of another type all give nothing.
namespace lk::userDefaults {

std::optional<int64_t> integer(std::string_view key);
std::optional<std::string> string(std::string_view key);
std::optional<bool> boolean(std::string_view key);

// Sets one value and leaves all others; a file that is no JSON object is kept aside. Throws
// FileError.
void setInteger(std::string_view key, int64_t value);

}  // namespace lk::userDefaults
