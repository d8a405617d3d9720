#include "LKCore/Platform/UserDefaults.h"

#include "LKCore/Base/Json.h"
#include "LKCore/Platform/Directories.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/SharedFile.h"

namespace lk::userDefaults {

namespace {

std::filesystem::path settingsFile() {
  return directories::configuration() / "Larkspire/defaults.json";
}

// Null when there is no such value.
Json valueOf(std::string_view key) {
  try {
    const Json all = parseJson(readFile(settingsFile()));
    const auto found = all.is_object() ? all.find(std::string(key)) : all.end();
    return found == all.end() ? Json() : *found;
  } catch (const Error&) {
    return {};  // a damaged file of settings must not stop anybody's work
  }
}

}  // namespace

std::optional<int64_t> integer(std::string_view key) {
  const Json value = valueOf(key);
  const bool fits = value.is_number_integer() &&
                    (!value.is_number_unsigned() || value.get<uint64_t>() <= INT64_MAX);
  return fits ? std::optional(value.get<int64_t>()) : std::nullopt;
}

std::optional<std::string> string(std::string_view key) {
  const Json value = valueOf(key);
  return value.is_string() ? std::optional(value.get<std::string>()) : std::nullopt;
}

std::optional<bool> boolean(std::string_view key) {
  const Json value = valueOf(key);
  return value.is_boolean() ? std::optional(value.get<bool>()) : std::nullopt;
}

void setInteger(std::string_view key, int64_t value) {
  changeSharedObject(settingsFile(), Instant::now(),
                     [&](Json& settings) { settings[std::string(key)] = value; });
}

}  // namespace lk::userDefaults
