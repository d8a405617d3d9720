#pragma once

#include <string>
#include <string_view>

namespace lk {

inline constexpr std::string_view kDocumentationHost = "https://larkspire.example";

// The address of a page of the documentation, e.g. of "/cli/permissions/".
inline std::string documentationPage(std::string_view path) {
  return std::string(kDocumentationHost).append(path);
}

// Explains why the application's data may be closed to the tool.
inline constexpr std::string_view kPermissionsPage = "/cli/permissions/";

}  // namespace lk
