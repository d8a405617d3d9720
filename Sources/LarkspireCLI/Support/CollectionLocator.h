#pragma once

#include <filesystem>
#include <optional>

namespace lk::CollectionLocator {

// With an override: that folder if something exists there. Without one: the folder of the active
// collection (the default one is made at the first use), the cloud folder, or Larkspire in the
// user's Documents folder, the first that exists. Throws FileError for a place that cannot be
// looked at.
std::optional<std::filesystem::path> resolve(
    const std::optional<std::filesystem::path>& override = std::nullopt);

}  // namespace lk::CollectionLocator
