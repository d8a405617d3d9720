#pragma once

// Renames a tag wherever it stands: in the bodies of note files (in fenced code too), in the ranks
// of their blocks, in the icon store and in the cache.
//
//     LKTagRewriter::renameInFiles(files, "work", "office", true);   // #work/plan: #office/plan
//
// Names are without "#", and such as LKTagNameRules lets stand.

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Error.h"
#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/Tags/LKTagCache.h"
#include "LKCore/Tags/LKTagIconStore.h"

namespace lk::LKTagRewriter {

// A regular expression and the template that replaces what it finds.
struct RenamePattern {
  std::string pattern;
  std::string replacement;

  bool operator==(const RenamePattern&) const = default;
};

// Finds the tag up to its end, so that "work" is not found in "#workshop"; with `isPrefix` also at
// the head of the tags below it, else in those alone that are exactly it.
RenamePattern renamePattern(std::string_view from, std::string_view to, bool isPrefix);

using KeyTransform = std::function<std::string(const std::string&)>;

// `from` becomes `to`, "from/x" becomes "to/x", any other key stays.
KeyTransform rankKeyTransform(std::string from, std::string to);

// The existing tags that tags of this renaming would become one with, sorted: none for a renaming
// within the tag's own subtree.
std::vector<std::string> collisions(std::string_view renaming, std::string_view to,
                                    const std::vector<std::string>& existingTags);

// True when some of the tags lies below `tag`.
bool isPrefix(std::string_view tag, const std::vector<std::string>& tags);

// The note's file with its tags renamed; nothing when nothing in it changes, when it is not UTF-8
// or has no valid block. `url` gives the title, "Untitled" for a UUID; only a changed file gets it.
// Of the block, the task entries, the hash and the ranks alone are written anew, of the body the
// matches. Where a renamed rank meets one that the note has already, the latter stays.
std::optional<std::string> rewritten(std::string_view file, const std::filesystem::path& url,
                                     const Pattern& pattern, std::string_view replacement,
                                     const KeyTransform& rankKeyTransform);

// The same on the disk, under the file's lock, whole or not at all. True when the file changed. A
// failed lock or write is logged, and the file is as it was.
bool rewriteFile(const std::filesystem::path& url, const Pattern& pattern,
                 std::string_view replacement, const KeyTransform& rankKeyTransform);

// Hears of a file that could not be changed and keeps its tags.
using FileFailure = std::function<void(const std::filesystem::path& url, const Error& error)>;

// Hears how many of the files are done, changed or not.
using FileProgress = std::function<void(size_t done)>;

// Renames the icon or, with `isPrefix`, icons, and then in each of the files (file to its text as
// the caller read it; the file is read again under its lock). Gives those that changed. Every
// failure is told to `onFailure`, a failed lock or write is logged too, and the rest goes on.
std::vector<std::filesystem::path> renameInFiles(
    const std::map<std::filesystem::path, std::string>& files, const std::string& from,
    const std::string& to, bool isPrefix,
    const LKTagIconStore& icons = LKTagIconStore::ofActiveCollection(),
    const FileFailure& onFailure = {}, const FileProgress& onProgress = {});

// --- In the cache --------------------------------------------------------------------------------

// Renames in the cached note's text, tags and ranks. True when it changed.
bool rewriteNote(const UUID& id, const Pattern& pattern, std::string_view replacement,
                 const KeyTransform& rankKeyTransform, LKTagCache& cache);

// Makes the cached note's tags those of the text. Gives the tags that the note lost, which may be
// orphans now.
std::vector<std::string> syncTags(const UUID& id, std::string_view text, LKTagCache& cache);

// Removes those of the tags that no note carries, and their icons. Gives the removed ones. The
// icons come last; when they cannot be written that is logged.
std::vector<std::string> removeOrphaned(
    const std::vector<std::string>& among, LKTagCache& cache,
    const LKTagIconStore& icons = LKTagIconStore::ofActiveCollection());

// The same among all tags of the cache.
std::vector<std::string> removeOrphanedTags(
    LKTagCache& cache, const LKTagIconStore& icons = LKTagIconStore::ofActiveCollection());

}  // namespace lk::LKTagRewriter
