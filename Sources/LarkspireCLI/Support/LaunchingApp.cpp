#include "LarkspireCLI/Support/LaunchingApp.h"

#include "LKCore/Platform/LaunchingApplication.h"

namespace lk::LaunchingApp {

std::optional<std::string> name() {
  return launchingApplicationName();
}

}  // namespace lk::LaunchingApp
