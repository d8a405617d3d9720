#pragma once

#include <exception>

namespace lk::AppIndexAccess {

// Whether this process may look into the application's support folder.
enum class Access { readable, denied, missing };

Access check();

// True for a FileError or a std::system_error, or one nested in the error, with EPERM or EACCES.
bool isPermissionError(const std::exception& error);

}  // namespace lk::AppIndexAccess
