#include "LarkspireCLI/Support/AppIndexAccess.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/AppContainerRegistry.h"

namespace lk::AppIndexAccess {

namespace {

bool isPermissionCode(int code) {
  return code == EPERM || code == EACCES;
}

}  // namespace

Access check() {
  std::error_code failure;
  const std::filesystem::directory_iterator listing(AppContainerRegistry::supportDir(), failure);
  if (!failure) return Access::readable;
  return isPermissionCode(failure.value()) ? Access::denied : Access::missing;
}

bool isPermissionError(const std::exception& error) {
  if (const auto* file = dynamic_cast<const FileError*>(&error)) {
    return isPermissionCode(file->code());
  }
  if (const auto* system = dynamic_cast<const std::system_error*>(&error)) {
    if (isPermissionCode(system->code().value())) return true;
  }
  try {
    std::rethrow_if_nested(error);
  } catch (const std::exception& underlying) {
    return isPermissionError(underlying);
  }
  return false;
}

}  // namespace lk::AppIndexAccess
