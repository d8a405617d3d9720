#pragma once

// The rows of a collection's index. The note files are the truth; every row but the two versions
// can be derived from them again.
//
// A row belongs to the table that it was inserted into or fetched from (LKContext.h) and stays
// where it is as long as the context lives or until it is removed. Relations are plain pointers,
// null for none, with the inverse kept by the functions below; nobody else writes them. A fetch
// fills only what it was asked for (LKParts); what was not asked for has the value of a new row. Such
// a value can be set, but not emptied: fetch it first. The far side of a relation (`LKTag::notes`)
// holds the rows that were fetched so far, and all of them once the row itself was fetched.

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "LKCore/Base/Time.h"
#include "LKCore/Base/UUID.h"

namespace lk {

struct LKBackLink;
struct LKTag;
struct LKTask;
struct LKTaskVersion;

// One note file.
struct LKNote {
  using Properties = std::map<std::string, std::string>;

  LKNote() = default;
  // With a fresh id, and now as its dates.
  LKNote(std::string title, std::string text, bool isFavourite = false,
         std::optional<Day> dailyDate = std::nullopt);

  UUID id;            // of the file's block; two rows with one id can occur
  std::string title;  // the file's display name
  std::string text;   // the body
  Instant creationDate;
  Instant modifiedDate;      // of the file
  Instant sortModifiedDate;  // floored to the second; see `setModifiedDate`
  bool isFavourite = false;
  bool isTrashed = false;  // below a folder ".trash"
  bool isBook = false;
  std::optional<std::string> status;  // "archived", or else the property "status"
  std::optional<Day> dailyDate;       // set on a daily note
  int lastCursorLocation = 0;
  int lineCount = 0;  // the words of the body, in spite of its name
  bool hasActiveTasks = false;
  int activeTaskCount = 0;
  int doneTaskCount = 0;
  int overdueTaskCount = 0;
  std::vector<std::string> imageAttachments;
  int64_t size = 0;  // of the body, in UTF-8 bytes
  Properties userProperties;
  Properties tagRanks;
  std::string contentHash;
  std::optional<std::string> fileDigest;  // of the file's bytes, lower-case hex
  std::optional<std::filesystem::path> fileURL;
  std::vector<LKTag*> tags;
  std::vector<LKTask*> tasks;
  std::vector<LKBackLink*> backLinks;  // the links that go out from this note

  // A row made before its first content: no file is written for it until it has some.
  bool isDeferredCreation() const { return !fileURL && text.empty(); }
  bool isArchived() const { return status == "archived"; }
  void setModifiedDate(Instant date);
};

// One task line of a note.
struct LKTask {
  UUID id;
  std::string text;
  bool isComplete = false;
  std::optional<Day> dateCompleted;
  std::optional<Day> dateDue;
  int priority = 0;  // see LKTaskPriority
  std::optional<std::string> project;
  bool projectIsInherited = false;  // from a tag of the note, not from the line
  std::vector<std::string> contexts;
  int paragraphIndex = 0;  // the line in the body, from 0
  int statusRaw = 0;       // a TaskStatus
  std::optional<std::string> detail;
  LKNote* note = nullptr;
};

// One tag text of the collection.
struct LKTag {
  UUID id;
  std::string text;
  Instant createdDate;
  std::optional<std::string> symbolName;     // from the tag icons
  std::optional<std::string> tintColorName;  // likewise
  std::vector<LKNote*> notes;
};

// One `[[reference]]` of a note, whatever number of lines it stands in, or one date reference.
struct LKBackLink {
  UUID id;
  std::string sourceParagraph;   // the first line that holds it, trimmed
  int sourceParagraphIndex = 0;  // that line's number, from 0
  std::optional<UUID> targetNoteID;
  std::string targetNoteReference;  // as written between the brackets
  LKNote* note = nullptr;           // the note that holds the link
};

// An earlier state of a note. It has no link to the note's row and outlives it.
struct LKNoteVersion {
  UUID id;
  std::string noteText;
  std::string title;
  Instant dateCreated;
  int lineCount = 0;
  std::vector<LKTaskVersion*> taskVersions;
};

// A task as it stood in a version.
struct LKTaskVersion {
  UUID id;
  std::string text;
  bool isComplete = false;
  std::optional<Day> dateDue;
  int priority = 0;
  LKNoteVersion* noteVersion = nullptr;
};

// Both sides of each relation. Setting what is there already changes nothing.
void addTag(LKNote& note, LKTag& tag);
void removeTag(LKNote& note, LKTag& tag);
void setNote(LKTask& task, LKNote* note);
void setNote(LKBackLink& link, LKNote* note);
void setNoteVersion(LKTaskVersion& task, LKNoteVersion* version);

// Columns and relations of a note that cost something to have; a set of them.
enum class LKParts : uint32_t {
  none = 0,                      // names, dates, flags, properties, ranks, size, URL: always there
  text = 1U << 0,                // `text`
  tags = 1U << 1,                // `tags`, the task counters and `imageAttachments`
  taskLines = 1U << 2,           // `tasks`, which may lack their ids
  tasks = taskLines | 1U << 3U,  // `tasks`
  links = 1U << 4,               // `backLinks`
  words = 1U << 5,               // `lineCount`
  hashes = 1U << 6,              // `contentHash` and `fileDigest`
  all = (1U << 7) - 1,
};

constexpr LKParts operator|(LKParts a, LKParts b) {
  return static_cast<LKParts>(static_cast<uint32_t>(a) | static_cast<uint32_t>(b));
}
// True when `parts` has all of `wanted`.
constexpr bool hasParts(LKParts parts, LKParts wanted) {
  return (static_cast<uint32_t>(parts) & static_cast<uint32_t>(wanted)) ==
         static_cast<uint32_t>(wanted);
}

}  // namespace lk
