#pragma once

#include <optional>
#include <string>

namespace lk::LaunchingApp {

// The name of the application from which the tool was started, such as a terminal; nothing under
// ssh or cron.
std::optional<std::string> name();

}  // namespace lk::LaunchingApp
