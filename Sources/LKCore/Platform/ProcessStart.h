#pragma once

// What starting another program has in common, however it is talked to afterwards.

#include <chrono>
#include <filesystem>
#include <optional>
#include <string_view>

namespace lk {

// The executable file of that name in the folders of PATH; a folder that is not absolute is passed
// over, since a program of the working folder is nobody's choice.
std::optional<std::filesystem::path> programOnPath(std::string_view name);

// For a new process, before it becomes the program: a network without a single way out. Where only a
// user namespace allows that, the user stays the same within; where the kernel allows neither, the
// network stays. System calls alone.
void leaveNetwork() noexcept;

// What `poll` is to wait: from 0 to an hour.
int millisecondsUntil(std::chrono::steady_clock::time_point deadline) noexcept;

}  // namespace lk
