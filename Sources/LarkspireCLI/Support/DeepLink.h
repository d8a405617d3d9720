#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "LKCore/Base/UUID.h"

namespace lk {

// "larkspire://open?id=UUID", with "&collection=UUID" when one is told.
std::string deepLink(const UUID& note, const std::optional<UUID>& collection = std::nullopt);

// Hands the link to the desktop and waits for its opener. Throws CLIError (general) when there is
// none or it fails.
void openDeepLink(const UUID& note, const std::optional<UUID>& collection = std::nullopt);

// The same for a note of the collection that has this folder, which the link names when it is
// registered.
void openNoteIn(const std::filesystem::path& collection, const UUID& note);

}  // namespace lk
