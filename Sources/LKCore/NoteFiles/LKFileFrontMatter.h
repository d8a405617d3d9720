#pragma once

// A note is one UTF-8 file: a front matter block of `key: value` lines, then the Markdown body.
//
//     file      = "---" LF *( line LF ) "---" LF body
//     line      = "id: " UUID                        ; upper case
//               | "created: " YYYY-MM-DDThh:mm:ssZ
//               | "title: " text                     ; raw, no quotes, no escapes
//               | "lk-folded: " int *( "," int )     ; old name: folded
//               | "lk-cursor: " int                  ; old name: cursor
//               | "lk-daily: " YYYY-MM-DD            ; old name: daily
//               | "lk-tasks: " task *( "," task )    ; old name: tasks
//               | "lk-name-locked: true" | "lk-favourite: true" | "lk-archived: true"
//               | "lk-book: true"
//               | "lk-hash: " text                   ; of the body; old name: hash
//               | "lk-tag-rank:" 1*( LF 2SP tag ": " rank )
//               | key ": " value                     ; any other key: a property of the user's
//     task      = int ":" UUID [ ":" hash ]
//
// For example, a daily note with two tasks, the second one new to this version of the tool:
//
//     ---
//     id: 0B54D1C6-52AE-4E0B-8B37-E27E5A4F9D10
//     created: 2025-11-02T07:15:00Z
//     title: 20251102
//     lk-cursor: 4
//     lk-daily: 2025-11-02
//     lk-tasks: 2:C0E3A5D8-1F57-4A43-9B6D-7D0B8E2F6A11:8f14e45f,3:5D2A9C34-7B1E-4F60-A2D9-3C4B5A69788E
//     lk-name-locked: true
//     lk-hash: 45c48cce2e2d7fbd
//     lk-tag-rank:
//       journal/autumn: r_3fa0
//     mood: calm: no calls
//     ---
//     # Sunday
//
//     - [ ] Rake the leaves context:garden
//     - [x] Ring Ann done:2025-11-02
//
// This is not YAML. Lines come in the order above when written and in any order when read. A key
// that nobody knows is a property and survives; an unknown `lk-` key is a later version's and does
// not. No value reaches beyond its line, and outer blanks (tab and the category Zs) of keys and
// values carry no meaning.
//
// Reading is tolerant: only a missing or unclosed block and a missing or unreadable `id` or
// `created` make a file invalid. Lines end at any newline scalar; the body comes back with line
// feeds alone, without leading whitespace and with its indentation as tabs (`spacesToTabs`).
//
// What holds between reading and writing:
//  - parse(serialize(x.frontMatter, x.body)) is x for every x that parse gives, but for
//    `contentHash`, which is then that of the body.
//  - serialize of anything else still gives a file that reads, with the same `id`, the same tasks
//    and the body as reading makes it. What cannot stand in a line is brought to what can: newline
//    scalars of a title, key or value become blanks, outer blanks go, and what then is not
//    writable goes (`isWritablePropertyKey`; a rank whose tag is empty or holds a colon; an empty
//    title, rank or hash). `created` is cut to whole seconds of the years 1 to 9999.
//  - A property with an old name of ours, "hash" say, is written "hash : value": the reader then
//    takes it for a property.

#include <array>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Time.h"
#include "LKCore/Base/UUID.h"

namespace lk {

// The identity of one task line.
struct TaskEntry {
  int paragraphIndex = 0;           // the line's index in the body, from 0
  UUID id;                          // of the task
  std::optional<std::string> hash;  // `taskHash` of the line when it was written

  bool operator==(const TaskEntry&) const = default;
};

// The record of a note's block.
struct LKFileFrontMatter {
  // Keys that are never properties of the user's.
  static constexpr std::array<std::string_view, 3> protectedKeys = {"id", "created", "title"};
  // Properties that the interface manages by itself.
  static constexpr std::array<std::string_view, 1> uiManagedKeys = {"manuscript-role"};

  UUID id;          // the note's identity; never changes
  Instant created;  // whole seconds
  // A copy of the display title as last written. The title itself is the file's name.
  std::optional<std::string> title;
  std::vector<int> foldedIndices;  // paragraph indices of folded rows
  int cursorIndex = 0;             // paragraph index
  std::optional<Day> dailyDate;    // set on a daily note
  std::vector<TaskEntry> taskEntries;
  std::map<std::string, std::string> userProperties;
  bool nameLocked = false;   // the file name is fixed by the user
  bool isFavourite = false;  //
  bool isArchived = false;   // read as true also from a property status: archived
  bool isBook = false;       // read as true also from manuscript-role: book or chapters
  std::optional<std::string> contentHash;       // of the body at the last write
  std::map<std::string, std::string> tagRanks;  // tag path or other context key to sort rank

  bool operator==(const LKFileFrontMatter&) const = default;
};

struct LKParsedDocument {
  LKFileFrontMatter frontMatter;
  std::string body;

  bool operator==(const LKParsedDocument&) const = default;
};

// Reads a note file. Throws LKSyncError::invalidFrontMatter with the path "unknown", which the
// caller replaces by the true one.
LKParsedDocument parseDocument(std::string_view text);

// The same, with nothing for a file without a valid block: for readers of many files, of which any
// number may be plain Markdown.
std::optional<LKParsedDocument> parseDocumentIfValid(std::string_view text);

// The whole file. The body stands in it as given; `lk-hash` is computed from it here, whatever
// `contentHash` says.
std::string serialize(const LKFileFrontMatter& frontMatter, std::string_view body);

// The id that parseDocument would find, from the first bytes of a file. Nothing when those do not
// hold the whole block with the end of its closing line, or when the block is not valid; reading
// the whole file then tells which. Looks at the block alone.
std::optional<UUID> readIdentity(std::string_view fileStart);

// The block that parseDocument would give, by the same rules.
std::optional<LKFileFrontMatter> readFrontMatter(std::string_view fileStart);

// A copy whose title is the display name of the file.
LKFileFrontMatter refreshingTitle(LKFileFrontMatter frontMatter, const std::filesystem::path& url);

// The state of the note: "archived", or else its property "status".
std::optional<std::string> blockStatus(const LKFileFrontMatter& frontMatter);

// False for a key that would not come back as a property of that name: empty or only blanks, with
// a colon, protected, or beginning with "lk-". `serialize` leaves such a property out, so whoever
// takes keys from a person asks first.
bool isWritablePropertyKey(std::string_view key);

// True for a name that, in any case and old names included, means something of its own in a block.
bool isReservedPropertyName(std::string_view name);

}  // namespace lk
