#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "LKCore/Base/UUID.h"

namespace lk {

class CacheReader;

// A note that a reference on the command line stands for.
struct ResolvedNote {
  std::filesystem::path url;
  UUID id;  // fresh when the file has no readable block
  std::string title;
};

// Finds notes by what a person typed. A title is a file's name, so finding one reads names and no
// contents; only a UUID makes it look into the files. An index that is at hand saves both, and is
// believed no more than the disk confirms: it may be older than the files.
namespace NoteFinder {

// In this order: a UUID (then nothing else is tried), the title in the collection's root, the
// title in any folder and any case, a part of a title in any case. Daily notes count. A trashed
// note is found by its UUID or whole title where no other note has them: so the title of a note
// just deleted never stands for another note that has it as a part. Among several equal titles the
// one in the same case wins, then the first path; among several partial ones the most recently
// changed, then the first by title. Of files that share an id it is the one that LKFileIndex lists.
//
// Nothing when no note fits. Never throws for unreadable files or folders: they are passed over.
// Never makes `cache` build an index. `warn` hears of file names that cannot be used and of folders
// that cannot be read, once each.
std::optional<ResolvedNote> resolve(const std::string& reference,
                                    const std::filesystem::path& collection, CacheReader& cache,
                                    const std::function<void(const std::string&)>& warn);

// The note files of a folder, not of those below it: what `.trash` holds.
std::vector<std::filesystem::path> notesDirectlyIn(const std::filesystem::path& folder);

// The note's id from its block, or nothing when the file has none that can be read.
std::optional<UUID> identityOf(const std::filesystem::path& url);

}  // namespace NoteFinder

}  // namespace lk
