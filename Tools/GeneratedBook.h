#pragma once

// A made-up manuscript as a collection, for measuring how books are bound: the same bytes for the
// same seed, on every machine.
//
//     writeGeneratedBook(folder, 120'000, 1);    // then: lk bind --tag book/long

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace lk::test {

struct GeneratedBookNote {
  std::string title;
  std::string body;
  std::string role;  // "part", "chapter", "scene"
};

// Forty chapters in four parts, each chapter with two scenes in notes of their own; with tables,
// code, footnotes whose labels repeat from note to note, pictures and scene breaks. Of prose at
// least `words` words, and hardly more.
std::vector<GeneratedBookNote> generatedBook(size_t words, uint64_t seed);

// Writes the notes, ranked under the tag "book/long", and the pictures into the folder, which is
// made. Gives the bytes of the notes. Throws std::runtime_error and
// std::filesystem::filesystem_error.
uint64_t writeGeneratedBook(const std::filesystem::path& folder, size_t words, uint64_t seed);

}  // namespace lk::test
