#include "LKCore/NoteFiles/LKTaskEntries.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "LKCore/Base/Digest.h"
#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Terminology/LKProjectTerms.h"

namespace lk {

namespace {

constexpr size_t kBucketPrefix = 4;
constexpr size_t kHashLength = 8;
constexpr std::array<std::string_view, 4> kCheckboxes = {"- [ ] ", "- [/] ", "- [x] ", "- [-] "};

std::string_view withoutIndentation(std::string_view line) {
  while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) line.remove_prefix(1);
  return line;
}

std::string_view withoutCheckbox(std::string_view line) {
  line = withoutIndentation(line);
  for (const std::string_view checkbox : kCheckboxes) {
    if (line.starts_with(checkbox)) return line.substr(checkbox.size());
  }
  return line;
}

// --- The words that do not count -----------------------------------------------------------------

struct WordPattern {
  Pattern pattern;
  size_t longestKey;  // in UTF-8 bytes
};

// A pattern for `key:value` words, without the blanks before them: those are taken by
// `withoutWords`, since a pattern that begins with a run of blanks takes quadratic time on a long
// run. Nothing when the keywords make no pattern.
std::optional<WordPattern> wordPattern(const std::vector<std::string>& projectKeywords,
                                       bool stripContext) {
  std::string keys = "due|done|priority|id";
  size_t longestKey = std::string_view("priority").size();
  if (stripContext) keys.append("|context");
  for (const std::string& keyword : projectKeywords) {
    if (!keyword.empty()) keys.append("|").append(Pattern::escaped(keyword));
    longestKey = std::max(longestKey, keyword.size());
  }
  try {
    return WordPattern{Pattern("\\b(?:" + keys + "):\\S+", Pattern::Case::insensitive), longestKey};
  } catch (const PatternError&) {
    return std::nullopt;
  }
}

// Where the first word can begin, given its first colon: letters of another case have at most three
// times as many bytes.
size_t firstPlace(std::string_view line, size_t colon, size_t longestKey) {
  size_t place = colon - std::min(colon, 3 * longestKey);
  while (place > 0 && (static_cast<uint8_t>(line[place]) & 0xC0U) == 0x80U) --place;
  return place;
}

std::string withoutWords(std::string_view line, const std::optional<WordPattern>& words) {
  const size_t colon = line.find(':');
  if (!words || colon == std::string_view::npos) return std::string(line);
  std::string result;
  size_t from = 0;
  const size_t first = firstPlace(line, colon, words->longestKey);
  for (const Pattern::Match& match : words->pattern.findAll(line, first)) {
    size_t start = match[0]->start;
    while (start > from) {
      const text::Decoded before = text::decodeBefore(line, start);
      if (!text::isWhitespaceOrNewline(before.scalar)) break;
      start -= before.length;
    }
    result.append(line.substr(from, start - from));
    from = match[0]->end;
  }
  result.append(line.substr(from));
  return result;
}

// Whether `context:` stands anywhere in the line, in any case: no other word makes the older hash of
// a line differ from today's.
bool mayHoldContext(std::string_view line) {
  static constexpr std::string_view kContext = "context";
  for (size_t colon = line.find(':'); colon != std::string_view::npos;
       colon = line.find(':', colon + 1)) {
    if (colon < kContext.size()) continue;
    const std::string_view word = line.substr(colon - kContext.size(), kContext.size());
    const bool isContext = std::ranges::equal(
        word, kContext, [](char c, char wanted) { return static_cast<char>(c | 0x20) == wanted; });
    if (isContext) return true;
  }
  return false;
}

struct Hashes {
  std::string current;
  std::optional<std::string> legacy;  // when it differs
};

// What the hashes of a line depend on, compiled once for a set of keywords.
class TaskWords {
 public:
  explicit TaskWords(const std::vector<std::string>& projectKeywords)
      : keywords_(projectKeywords),
        withContext_(wordPattern(projectKeywords, true)),
        withoutContext_(wordPattern(projectKeywords, false)) {}

  const std::vector<std::string>& keywords() const { return keywords_; }

  std::string canonicalText(std::string_view line, bool stripContext) const {
    const std::string text =
        withoutWords(withoutCheckbox(line), stripContext ? withContext_ : withoutContext_);
    return std::string(text::trimmed(text));
  }

  std::string hash(std::string_view line, bool stripContext) const {
    return sha1Hex(canonicalText(line, stripContext), kHashLength / 2);
  }

  Hashes hashes(std::string_view line) const {
    const std::string current = canonicalText(line, true);
    Hashes result{sha1Hex(current, kHashLength / 2), std::nullopt};
    if (!mayHoldContext(line)) return result;
    const std::string legacy = canonicalText(line, false);
    if (legacy != current) {
      std::string legacyHash = sha1Hex(legacy, kHashLength / 2);
      if (legacyHash != result.current) result.legacy = std::move(legacyHash);
    }
    return result;
  }

 private:
  std::vector<std::string> keywords_;
  std::optional<WordPattern> withContext_;
  std::optional<WordPattern> withoutContext_;
};

// The words of the last set of keywords asked for: it changes when the user renames projects.
std::shared_ptr<const TaskWords> taskWords(const std::vector<std::string>& projectKeywords) {
  static std::mutex mutex;
  static std::shared_ptr<const TaskWords> last;
  const std::lock_guard guard(mutex);
  if (!last || last->keywords() != projectKeywords) {
    last = std::make_shared<const TaskWords>(projectKeywords);
  }
  return last;
}

std::shared_ptr<const TaskWords> currentTaskWords() {
  return taskWords(LKProjectTerms::snapshot()->metadataKeywords);
}

// --- Matching ------------------------------------------------------------------------------------

// The entries that no live task has taken yet, in queues: one for each stored hash, cut to the
// length of a live one. A live task looks at the queues of the prefixes of its hashes, so a note
// of a hundred thousand equal lines, or of lines made to share a bucket, takes linear time.
class UnusedEntries {
 public:
  static constexpr size_t kNone = std::numeric_limits<size_t>::max();

  explicit UnusedEntries(const std::vector<TaskEntry>& entries) {
    for (size_t i = 0; i < entries.size(); ++i) {
      const TaskEntry& entry = entries[i];
      if (!entry.hash || entry.hash->empty()) {
        byIndex_.emplace(entry.paragraphIndex, i);
      } else if (entry.hash->size() >= kBucketPrefix) {
        const std::string_view hash = std::string_view(*entry.hash).substr(0, kHashLength);
        hasLength_[hash.size()] = true;
        byHash_[hash].entries.push_back(i);
      }
    }
  }

  // The first entry that matches the task's hash or its alternative, or kNone.
  size_t takeMatching(const LiveTask& task) {
    Queue* best = nullptr;
    const auto consider = [&](std::string_view hash) {
      for (size_t length = kBucketPrefix; length <= std::min(hash.size(), kHashLength); ++length) {
        if (!hasLength_[length]) continue;
        const auto found = byHash_.find(hash.substr(0, length));
        if (found == byHash_.end() || found->second.isEmpty()) continue;
        if (best == nullptr || found->second.first() < best->first()) best = &found->second;
      }
    };
    consider(task.hash);
    if (task.alternative) consider(*task.alternative);
    return best == nullptr ? kNone : best->take();
  }

  // The entry without a hash at this line, or kNone.
  size_t takeAtLine(int lineIndex) {
    const auto found = byIndex_.find(lineIndex);
    return found == byIndex_.end() ? kNone : std::exchange(found->second, kNone);
  }

 private:
  struct Queue {
    std::vector<size_t> entries;
    size_t used = 0;

    bool isEmpty() const { return used == entries.size(); }
    size_t first() const { return entries[used]; }
    size_t take() { return entries[used++]; }
  };

  std::unordered_map<std::string_view, Queue> byHash_;
  std::array<bool, kHashLength + 1> hasLength_{};  // of the hashes, in bytes
  std::unordered_map<int, size_t> byIndex_;
};

std::vector<LiveTask> liveTasks(std::string_view text, const TaskWords& words) {
  std::vector<LiveTask> tasks;
  int lineIndex = 0;
  for (size_t start = 0; start < text.size(); ++lineIndex) {
    const size_t end = std::min(text.find('\n', start), text.size());
    const std::string_view line = text.substr(start, end - start);
    if (isTaskLine(line)) {
      Hashes hashes = words.hashes(line);
      tasks.push_back({lineIndex, std::move(hashes.current), std::move(hashes.legacy)});
    }
    start = end + 1;
  }
  return tasks;
}

}  // namespace

bool isTaskLine(std::string_view line) {
  line = withoutIndentation(line);
  return line.starts_with("- [") && std::ranges::any_of(kCheckboxes, [&](std::string_view box) {
           return line.starts_with(box);
         });
}

std::string canonicalTaskText(std::string_view line,
                              const std::vector<std::string>& projectKeywords, bool stripContext) {
  return taskWords(projectKeywords)->canonicalText(line, stripContext);
}

std::string taskHash(std::string_view line) {
  return currentTaskWords()->hash(line, true);
}

std::string legacyContextTaskHash(std::string_view line) {
  return currentTaskWords()->hash(line, false);
}

std::vector<std::string> taskHashCandidates(std::string_view line) {
  Hashes hashes = currentTaskWords()->hashes(line);
  std::vector<std::string> candidates = {std::move(hashes.current)};
  if (hashes.legacy) candidates.push_back(std::move(*hashes.legacy));
  return candidates;
}

bool taskHashesMatch(std::string_view stored, std::string_view computed) {
  if (stored.empty() || computed.empty()) return false;
  return stored.starts_with(computed) || computed.starts_with(stored);
}

TaskEntryMatch matchTaskEntries(const std::vector<LiveTask>& liveTasks,
                                const std::vector<TaskEntry>& entries) {
  UnusedEntries unused(entries);
  std::vector<size_t> taken(liveTasks.size());
  std::ranges::transform(liveTasks, taken.begin(),
                         [&](const LiveTask& task) { return unused.takeMatching(task); });
  TaskEntryMatch match;
  for (size_t i = 0; i < liveTasks.size(); ++i) {
    if (taken[i] == UnusedEntries::kNone) taken[i] = unused.takeAtLine(liveTasks[i].lineIndex);
    const int liveIndex = static_cast<int>(i);
    if (taken[i] == UnusedEntries::kNone) {
      match.unmatched.push_back(liveIndex);
    } else {
      match.assignments.push_back({liveIndex, entries[taken[i]]});
    }
  }
  return match;
}

std::vector<TaskEntry> deriveTaskEntries(std::string_view text,
                                         const std::vector<TaskEntry>& existing) {
  std::vector<LiveTask> live = liveTasks(text, *currentTaskWords());
  const TaskEntryMatch match = matchTaskEntries(live, existing);
  std::vector<TaskEntry> entries(live.size());
  for (const auto& [liveIndex, entry] : match.assignments) {
    entries[static_cast<size_t>(liveIndex)].id = entry.id;
  }
  for (const int liveIndex : match.unmatched) {
    entries[static_cast<size_t>(liveIndex)].id = UUID::random();
  }
  for (size_t i = 0; i < live.size(); ++i) {
    entries[i].paragraphIndex = live[i].lineIndex;
    entries[i].hash = std::move(live[i].hash);
  }
  return entries;
}

std::vector<TaskEntry> deriveTaskEntriesInPlace(std::string_view before, std::string_view after,
                                                const std::vector<TaskEntry>& existing) {
  std::vector<TaskEntry> entries = deriveTaskEntries(before, existing);
  for (TaskEntry& entry : entries) entry.hash.reset();  // the line's index alone shall count
  return deriveTaskEntries(after, entries);
}

}  // namespace lk
