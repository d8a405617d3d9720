#pragma once

// What the commands that change notes share: how failures of the note file service become the
// failures of a command, and which notes they refuse to touch.

#include <filesystem>
#include <functional>
#include <string>

#include "LarkspireCLI/Support/CLIError.h"

namespace lk {

// Runs `write`, turning what it throws into a CLIError: a damaged block into invalidFrontMatter
// with the file's name, a read-only collection into general with `readOnlyMessage`, everything
// else into writeFailed with the error's description.
void writeNotes(
    const std::function<void()>& write,
    const std::string& readOnlyMessage = "This collection is read-only. Notes cannot be modified.");

// Fails with general and `message` when the record of the collection says read-only.
void requireWritable(
    const std::filesystem::path& collection,
    const std::string& message = "This collection is read-only. Notes cannot be modified.");

// Fails with invalidFrontMatter, and a hint that tells a plain Markdown file from a damaged note,
// when the file has no block that can be read.
void requireReadableBlock(const std::filesystem::path& url);

// That failure for a file whose text is `text`.
CLIError notANote(const std::filesystem::path& url, const std::string& text);

// Every literal "\n" of an argument as a line feed.
std::string withLineFeeds(const std::string& argument);

}  // namespace lk
