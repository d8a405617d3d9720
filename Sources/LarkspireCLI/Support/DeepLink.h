#pragma once

#include <optional>
#include <string>

#include "LKCore/Base/UUID.h"

namespace lk {

// "larkspire://open?id=UUID", with "&collection=UUID" when one is told.
std::string deepLink(const UUID& note, const std::optional<UUID>& collection = std::nullopt);

// Hands the link to the desktop and waits for its opener. Throws CLIError (general) when there is
// none or it fails.
void openDeepLink(const UUID& note, const std::optional<UUID>& collection = std::nullopt);

}  // namespace lk
