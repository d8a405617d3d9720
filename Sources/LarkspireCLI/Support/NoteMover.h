#pragma once

#include <filesystem>

// Moves note files without ever replacing one.
namespace lk::NoteMover {

// Throws what LKNoteFileService::moveNote throws.
void move(const std::filesystem::path& from, const std::filesystem::path& to);

// Moves the file into a folder under its own name, or with a number where that is taken ("X 2.md"),
// also when another process takes the name at the same moment. Gives the new place.
std::filesystem::path moveInto(const std::filesystem::path& folder,
                               const std::filesystem::path& file);

}  // namespace lk::NoteMover
