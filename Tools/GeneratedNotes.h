#pragma once

// Collections of any size, made up from a number: the same bytes for the same seed, on every
// machine. Benchmarks, tests and `lkgenerate` share it.
//
//     writeGeneratedNotes(folder, 10'000, 1);    // about 37 MB in nested folders

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

#include "LKCore/Base/Time.h"

namespace lk::test {

struct GeneratedNote {
  std::string relativePath;  // "Area 7/Part 2/Quiet lantern 93.md"
  std::string bytes;         // 1 to 6 KB, 3.7 KB on average
  Instant modified;          // up to three months after its creation
};

// A note with a block (with the ids of its tasks, a property and its hash), two to four tags, three
// tasks, and three links to other notes of the `count`. `index` is below `count`.
GeneratedNote generatedNote(size_t index, size_t count, uint64_t seed);

// Writes all of them below the folder, which is made. Gives the bytes written. Throws
// std::runtime_error and std::filesystem::filesystem_error.
uint64_t writeGeneratedNotes(const std::filesystem::path& folder, size_t count, uint64_t seed);

}  // namespace lk::test
