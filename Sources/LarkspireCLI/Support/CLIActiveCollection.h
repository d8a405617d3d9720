#pragma once

// The collection that the user chose for the tool with `lk collection switch`, apart from what
// the application has open. Kept in Larkspire/cli-active-collection of the application support
// folder: the UUID, a line feed, the folder's path, a line feed.

#include <filesystem>
#include <optional>

#include "LKCore/Base/UUID.h"

namespace lk::CLIActiveCollection {

// The chosen id; nothing when none was chosen. Throws FileError for a file that cannot be read.
std::optional<UUID> get();

// Throws FileError.
void set(const UUID& id, const std::filesystem::path& path);
void clear();

struct Resolution {
  std::optional<UUID> id;
  bool healed = false;  // the choice was stale and has just been forgotten
};

// The chosen id, if it may still mean something. A choice that no registry knows is forgotten,
// unless a registry could not be read and nothing can be concluded. Throws FileError.
Resolution resolve();

// The folder that was stored with the choice, if it still exists.
std::optional<std::filesystem::path> rememberedPath();

}  // namespace lk::CLIActiveCollection
