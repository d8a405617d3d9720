#pragma once

// How a task line keeps its identity while its text changes. A note's block stores one entry for
// each task line: index, id and a hash of what the task says. The hash leaves out the checkbox, the
// dates, priority, id, context and project, so all of those may change and the entry still fits.
//
//     taskHash("- [ ] Order seeds due:2026-03-20") == taskHash("\t- [x] Order seeds")
//
//     frontMatter.taskEntries = deriveTaskEntries(body, frontMatter.taskEntries);
//
// The project keywords are those of LKProjectTerms::snapshot() unless a function takes its own.
// All text is UTF-8, a line has no line feed in it.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/NoteFiles/LKFileFrontMatter.h"

namespace lk {

// True when the line begins, after blanks and tabs, with "- [ ] ", "- [/] ", "- [x] " or "- [-] ".
bool isTaskLine(std::string_view line);

// What the task says: the line without indentation, checkbox and `key:value` words of the keys
// due, done, priority, id, (with `stripContext`) context, and the project keywords, trimmed.
std::string canonicalTaskText(std::string_view line,
                              const std::vector<std::string>& projectKeywords, bool stripContext);

// The first 4 bytes of the canonical text's SHA-1 as 8 lower-case hex digits.
std::string taskHash(std::string_view line);
// The same with the context kept in, as older files have it.
std::string legacyContextTaskHash(std::string_view line);
// The current hash and, when it differs, the legacy one.
std::vector<std::string> taskHashCandidates(std::string_view line);

// True when neither is empty and the longer begins with the shorter.
bool taskHashesMatch(std::string_view stored, std::string_view computed);

// A task line as it stands in a body now.
struct LiveTask {
  int lineIndex = 0;
  std::string hash;                        // `taskHash`
  std::optional<std::string> alternative;  // `legacyContextTaskHash` when it differs

  bool operator==(const LiveTask&) const = default;
};

struct TaskEntryMatch {
  struct Assignment {
    int liveIndex = 0;  // into the live tasks
    TaskEntry entry;

    bool operator==(const Assignment&) const = default;
  };

  std::vector<Assignment> assignments;  // ascending by liveIndex
  std::vector<int> unmatched;           // live tasks without an entry, ascending

  bool operator==(const TaskEntryMatch&) const = default;
};

// Pairs live tasks with entries, each used once. A live task takes the first unused entry whose
// hash agrees with it in the first 4 characters and matches its hash or its alternative. After
// that an entry without a hash goes to the live task at its index, if that one has none yet. So
// identical lines keep their order. Hashes of live tasks have 8 characters.
TaskEntryMatch matchTaskEntries(const std::vector<LiveTask>& liveTasks,
                                const std::vector<TaskEntry>& entries);

// One entry for each task line of the body, in order, with its index and hash of now: the id of
// the matching entry or else a fresh one. Lines end at line feeds.
std::vector<TaskEntry> deriveTaskEntries(std::string_view text,
                                         const std::vector<TaskEntry>& existing);

// The same for a text whose lines were changed in place, none added, none taken away: each task
// keeps the id that it has in `before`, whatever it says in `after`.
std::vector<TaskEntry> deriveTaskEntriesInPlace(std::string_view before, std::string_view after,
                                                const std::vector<TaskEntry>& existing);

}  // namespace lk
