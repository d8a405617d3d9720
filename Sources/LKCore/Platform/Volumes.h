#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace lk {

// True when the system says that the volume which holds the path can be taken out, such as a
// memory stick. False for what it does not know.
bool isOnRemovableVolume(const std::filesystem::path& path);

// The bytes that this user may still write to the volume which holds the path; nothing when the
// system does not tell, also because there is no such path.
std::optional<uint64_t> availableCapacity(const std::filesystem::path& path);

}  // namespace lk
