#pragma once

// Hyphenation patterns in the form in which the browser takes them from its profile: an alphabet, a
// packed tree of the patterns' letters, and the weights between the letters.

#include <filesystem>
#include <string>
#include <string_view>

namespace lk {

// The dictionary made of patterns such as "hy3ph", a line each; "." is a word's edge. Lines that
// are anything else than lower-case English letters, digits, "'" and "." are left out. Empty when
// the patterns are too many for the form (some 200,000 letters).
std::string hyphenationDictionary(std::string_view patterns);

// Puts the dictionary of American English into a profile that no browser has used yet. Throws
// FileError.
void addHyphenation(std::string_view patterns, const std::filesystem::path& profile);

}  // namespace lk
