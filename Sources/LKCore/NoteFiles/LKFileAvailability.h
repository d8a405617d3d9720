#pragma once

#include <filesystem>
#include <optional>
#include <string>

// The gate before every read that could wait for a download. This platform has no cloud items:
// every file is safe to read.
namespace lk::LKFileAvailability {

bool isSafeToReadNow(const std::filesystem::path& url);

// The file's bytes; nothing when it is not safe to read now or cannot be read.
std::optional<std::string> dataIfSafeToReadNow(const std::filesystem::path& url);

}  // namespace lk::LKFileAvailability
