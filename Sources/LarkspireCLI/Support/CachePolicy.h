#pragma once

// Which index of the application a run may read for the folder in use.

#include <filesystem>
#include <variant>

namespace lk {

// The most recent store that can be found.
struct AutoPolicy {
  bool operator==(const AutoPolicy&) const = default;
};

// This very store.
struct StorePolicy {
  std::filesystem::path url;
  bool operator==(const StorePolicy&) const = default;
};

// No store belongs to the folder.
struct UnavailablePolicy {
  bool operator==(const UnavailablePolicy&) const = default;
};

using CachePolicy = std::variant<AutoPolicy, StorePolicy, UnavailablePolicy>;

}  // namespace lk
