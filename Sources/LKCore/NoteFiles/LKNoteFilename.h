#pragma once

// The title of a note is its file name without the extension. Every title passes through
// `sanitize` before it reaches the disk; a name that carries no title (a UUID, "Untitled 3") is
// recognised when it is read.
//
//     sanitize("a/b: c?") == "ab c"
//     displayName("/notes/Plan.md") == "Plan"
//
// All text is UTF-8. Nothing here touches the disk or throws.

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "LKCore/Base/UUID.h"

namespace lk::LKNoteFilename {

// Each of these is dropped from a title.
inline constexpr std::string_view illegalNameCharacters = ":/?*\"<>|\\#";

// The longest title in UTF-8 bytes; the rest of the 255 that file systems allow is left to
// extensions and copy suffixes.
inline constexpr size_t displayNameByteLimit = 200;

inline constexpr std::string_view noteExtension = ".md";

// True for the name of what may be a note file: something and then ".md" in any case.
bool hasNoteExtension(std::string_view fileName);

// The title that a file's name carries; "Untitled" for a UUID.
std::string displayName(const std::filesystem::path& url);

// The same for a file's name without its extension.
std::string displayNameOfBasename(std::string_view basename);

// True when the file's name carries no title: a UUID, "untitled" or "untitled N" in any case.
bool isUntitledFilename(const std::filesystem::path& url);

// True for exactly "Untitled".
bool isUntitledDisplayName(std::string_view name);

// True for a plain UUID of 36 characters, in any case.
bool isUUIDBasename(std::string_view name);

// True also when a copy's number follows: "Untitled 3 2", "3F2504E0-... 2".
bool isUntitledIgnoringCopySuffix(std::string_view name);

// The first 8 hex digits of the UUID, in lower case.
std::string shortSuffix(const UUID& uuid);

// The title as it may stand on the disk: composed, without illegal characters, leading full stops
// and outer whitespace, each run of whitespace one blank, at most 200 bytes. May be empty.
std::string sanitize(std::string_view displayName);

// The text without every scalar of `illegalNameCharacters`.
std::string stripIllegalCharacters(std::string_view text);

// At most `max` UTF-8 bytes of the text: whole user-perceived characters from the start, ending
// before the last blank when that keeps at least a quarter of `max` characters.
std::string clampToBytes(std::string_view text, size_t max);

}  // namespace lk::LKNoteFilename
