#pragma once

// The folder that the application shares with its extensions. On this platform there is none, and
// every question about it is answered with nothing.

#include <filesystem>
#include <functional>
#include <optional>

namespace lk::LKSharedContainer {

inline constexpr const char* identifier = "group.com.larkspire.shared";

// The container if it is known by now; never asks the platform.
std::optional<std::filesystem::path> containerURL();

// Asks the platform, once a process, if it was not asked before.
std::optional<std::filesystem::path> containerURLResolvingNow();

// Asks the platform ahead of the first use.
void prepare();

// Called once with the container when it becomes known, on the thread that asked for it; at once
// when it is known already.
void setDidResolveHandler(std::function<void(const std::filesystem::path&)> handler);

}  // namespace lk::LKSharedContainer
