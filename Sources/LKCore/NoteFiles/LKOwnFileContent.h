#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "LKCore/Base/Clock.h"

// What this process wrote lately, by digest, so that the file watcher can tell its own writes from
// those of others. One table for the process, safe from any thread; ten minutes are kept. Names
// that differ in case alone count as one file, as do paths through symbolic links to its folder.
//
//     LKOwnFileContent::record(data, url);                          // before the write
//     if (LKOwnFileContent::wrote(computeRawDigest(bytes), url))    // ours: nothing to do
namespace lk::LKOwnFileContent {

// Records the digest of a Markdown file's bytes; any other file is passed over.
void record(std::string_view data, const std::filesystem::path& url);

// Records the digest whatever the file's name.
void recordDigest(std::string digest, const std::filesystem::path& url);

// True when this digest was recorded for the file less than 600 seconds ago.
bool wrote(std::string_view digest, const std::filesystem::path& url);

// The number of digests held, for whoever watches the table's size.
size_t count();

// Tests run on a clock of their own; an empty one puts the system's back. Forgets every record.
void reset(Clock clock = {});

}  // namespace lk::LKOwnFileContent
