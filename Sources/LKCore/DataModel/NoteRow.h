#pragma once

// How a note's row follows its file.
//
//     LKNoteSyncChanges changes = syncProperties(note, url, title, modified, frontMatter, body,
//                                                attachments);
//     if (changes.anyChanged) context.save();

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "LKCore/Base/Time.h"
#include "LKCore/DataModel/Entities.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"

namespace lk {

struct LKNoteSyncChanges {
  bool trashedChanged = false;
  bool newTrashedValue = false;  // has a meaning with `trashedChanged`
  bool statusBecameArchived = false;
  bool anyChanged = false;

  bool operator==(const LKNoteSyncChanges&) const = default;
};

// Makes the row say what the file says, touching only fields that differ; tags, tasks and links are
// rows of their own and stay as they are. The row has all of its parts. A file that is older than
// the row moves the row's date only when it brought something else. `attachmentsDirectory` and `now`
// are those of LKTagExtractor::extract.
LKNoteSyncChanges syncProperties(LKNote& note, const std::filesystem::path& fileURL,
                                 const std::string& title, Instant modifiedDate,
                                 const LKFileFrontMatter& frontMatter, const std::string& bodyText,
                                 const std::optional<std::filesystem::path>& attachmentsDirectory,
                                 Instant now = Instant::now());

// Sets `lineCount` to the words and `size` to the bytes of the body. True when one of them changed.
bool updateBodyDerivedCounters(LKNote& note, std::string_view bodyText);

// True when the row agrees with what is known of a file without reading it: date and place, and the
// digest of its bytes where both have one.
bool matchesOnLaunch(const LKNote& note, Instant modifiedDate,
                     const std::optional<std::filesystem::path>& url,
                     std::string_view contentDigest);

}  // namespace lk
