#pragma once

#include <filesystem>

namespace lk {

// True when the system says that the volume which holds the path can be taken out, such as a
// memory stick. False for what it does not know.
bool isOnRemovableVolume(const std::filesystem::path& path);

}  // namespace lk
