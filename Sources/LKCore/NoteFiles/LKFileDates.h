#pragma once

#include <filesystem>
#include <optional>

#include "LKCore/Base/Time.h"

namespace lk {

// When the file's content last changed; nothing when that cannot be found out.
std::optional<Instant> lkContentModificationDate(const std::filesystem::path& url);

// Sets that date and nothing else. Throws FileError.
void lkSetContentModificationDate(const std::filesystem::path& url, Instant date);

}  // namespace lk
