#include "LarkspireCLI/Support/TaskLineEdits.h"

#include <algorithm>
#include <unordered_set>

#include "LKCore/Base/Text.h"
#include "LKCore/Navigation/LKTaskContextStore.h"
#include "LKCore/Navigation/ProjectHits.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/Tasks/TaskTokens.h"

namespace lk::TaskLineEdits {

namespace {

constexpr size_t kMarkSize = 6;      // "- [ ] "
constexpr size_t kStatusInMark = 3;  // the character between the brackets

// Indentation and mark, and the words behind them. Edits are made to the words alone: the blank that
// goes with a word must not be the mark's own, without which the line would be no task any more.
struct TaskLineParts {
  std::string_view head;
  std::string_view words;
};

TaskLineParts partsOf(std::string_view line) {
  const size_t size = isTaskLine(line) ? leadingBlanks(line).size() + kMarkSize : 0;
  return {line.substr(0, size), line.substr(size)};
}

// The line without these ranges of its words.
std::string withoutRanges(const TaskLineParts& parts, const std::vector<TextRange>& ranges) {
  if (ranges.empty()) return std::string(parts.head).append(parts.words);
  const std::string left = removing(parts.words, ranges);
  const bool beganWithOne =
      withoutTrailingSpace(parts.words.substr(0, ranges.front().start)).empty();
  return std::string(parts.head).append(beganWithOne ? text::trimmedLeading(left) : left);
}

// The words with this key, its colon included, that readers take for metadata: behind a blank, or
// first.
std::vector<TextRange> metaTokens(std::string_view words, std::string_view key) {
  std::vector<TextRange> found = tokens(words, {key, TaskToken::Value::word});
  std::erase_if(found, [&](const TextRange& range) {
    return range.start > 0 && words[range.start - 1] != ' ';
  });
  return found;
}

// --- Contexts ------------------------------------------------------------------------------------

// Equal for two spellings of one context.
std::string contextKey(std::string_view name) {
  return text::composed(LKTaskContextStore::normalised(name));
}

std::vector<TextRange> contextTokens(std::string_view words) {
  std::vector<TextRange> found = metaTokens(words, "context:");
  const std::vector<TextRange> lists = metaTokens(words, "contexts:");
  found.insert(found.end(), lists.begin(), lists.end());
  std::ranges::sort(found, {}, &TextRange::start);
  return found;
}

// The word with the item replaced or taken out, empty when no item is left; nothing when it has no
// such item.
std::optional<std::string> contextTokenReplacing(std::string_view token, const std::string& from,
                                                 const std::optional<std::string>& to) {
  const size_t list = token.find(':') + 1;
  std::string items;
  std::unordered_set<std::string> seen;
  bool isFound = false;
  for (const std::string_view item : text::split(token.substr(list), ',')) {
    const std::string key = contextKey(item);
    const bool isWanted = key == from;
    isFound = isFound || isWanted;
    if (key.empty() || (isWanted && !to)) continue;
    if (!seen.insert(isWanted ? contextKey(*to) : key).second) continue;
    if (!items.empty()) items += ',';
    items += isWanted ? std::string_view(*to) : item;
  }
  if (!isFound) return std::nullopt;
  return items.empty() ? items : std::string(token.substr(0, list)) + items;
}

}  // namespace

// --- Words ---------------------------------------------------------------------------------------

std::string setMetaToken(std::string_view line, std::string_view key, std::string_view value) {
  return std::string(withoutTrailingSpace(line)).append(" ").append(key).append(":").append(value);
}

std::string replaceMetaToken(std::string_view line, std::string_view key, std::string_view value) {
  const TaskLineParts parts = partsOf(line);
  const std::string keyed = std::string(key) + ":";
  return setMetaToken(withoutRanges(parts, metaTokens(parts.words, keyed)), key, value);
}

std::string clearMetaToken(std::string_view line, std::string_view key) {
  const TaskLineParts parts = partsOf(line);
  const std::string keyed = std::string(key) + ":";
  return withoutRanges(parts, tokens(parts.words, {keyed, TaskToken::Value::word, false}));
}

std::string clearProjectTokens(std::string_view line, const std::vector<std::string>& keywords) {
  std::string cleared(line);
  for (const std::string& keyword : keywords) cleared = clearMetaToken(cleared, keyword);
  return cleared;
}

std::string transitionLine(std::string_view line, TaskStatus to, Day today) {
  std::string changed(line);
  changed[leadingBlanks(line).size() + kStatusInMark] = markOf(to);
  if (to == TaskStatus::done) {
    const bool hasDone = changed.find(kDoneToken.key) != std::string::npos;
    return hasDone ? changed : setMetaToken(changed, "done", LKDateOnly::text(today));
  }
  const TaskLineParts parts = partsOf(changed);
  const auto done = findToken(parts.words, kDoneToken);
  return done ? withoutRanges(parts, {*done}) : changed;
}

std::string replacingContext(std::string_view line, std::string_view from,
                             const std::optional<std::string>& to) {
  const std::string_view head = line.substr(0, taskMarkLength(line));
  const std::string_view words = line.substr(head.size());
  const std::string wanted = contextKey(from);
  std::string changed(head);
  size_t copied = 0;
  for (const TextRange& range : contextTokens(words)) {
    const auto token = contextTokenReplacing(range.of(words), wanted, to);
    if (!token) continue;
    const std::string_view before = words.substr(copied, range.start - copied);
    changed.append(token->empty() ? withoutTrailingSpace(before) : before).append(*token);
    copied = range.end;
    const bool isFirst = changed.size() == head.size();
    if (isFirst && copied < words.size() && words[copied] == ' ') ++copied;
  }
  return changed.append(words.substr(copied));
}

// --- Lines ---------------------------------------------------------------------------------------

std::vector<size_t> matchingTaskLineIndices(std::string_view body, std::string_view substring) {
  const std::string wanted = text::caseInsensitiveKey(substring);
  const std::vector<std::string_view> lines = text::split(body, '\n');
  std::vector<size_t> matching;
  for (size_t i = 0; i < lines.size(); ++i) {
    const bool matches = isTaskLine(lines[i]) &&
                         text::caseInsensitiveKey(lines[i]).find(wanted) != std::string::npos;
    if (matches) matching.push_back(i);
  }
  return matching;
}

std::string taskLineDisplay(std::string_view line) {
  return std::string(text::trimmed(partsOf(line).words));
}

std::vector<std::string> normalizeContexts(const std::vector<std::string>& values) {
  std::vector<std::string> contexts;
  std::unordered_set<std::string> seen;
  for (const std::string& value : values) {
    for (const std::string_view item : text::split(value, ',')) {
      std::string name = LKTaskContextStore::normalised(item);
      if (!name.empty() && seen.insert(text::composed(name)).second) {
        contexts.push_back(std::move(name));
      }
    }
  }
  return contexts;
}

}  // namespace lk::TaskLineEdits
