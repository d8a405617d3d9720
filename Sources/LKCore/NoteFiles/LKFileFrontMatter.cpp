#include "LKCore/NoteFiles/LKFileFrontMatter.h"

#include <algorithm>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/NoteFiles/LKSyncError.h"
#include "LKCore/NoteFiles/NoteBlock.h"
#include "LKCore/NoteFiles/NoteLists.h"

namespace lk {

namespace {

using Pairs = std::map<std::string, std::string>;

// The moment as a `created` line can tell it: 0001-01-01T00:00:00Z to 9999-12-31T23:59:59Z.
Instant writable(Instant instant) {
  constexpr int64_t kFirst = -62'135'596'800;
  constexpr int64_t kLast = 253'402'300'799;
  return {std::clamp(instant.seconds, kFirst, kLast), 0};
}

// The text as it can stand in a line and come back: a blank for each newline scalar, no outer
// blanks.
std::string oneLine(std::string_view text) {
  std::string result;
  for (size_t start = 0;;) {
    const NewlinePosition newline = findNewline(text, start);
    result.append(text.substr(start, newline.start - start));
    if (newline.length == 0) break;
    result.push_back(' ');
    start = newline.start + newline.length;
  }
  return std::string(text::trimmedBlanks(result));
}

// The pairs of which `accepts` takes key and value, each as it can stand in a line. Where two keys
// come down to one, the key that needed no change stays.
template <typename Accepts>
Pairs writablePairs(const Pairs& pairs, Accepts accepts) {
  Pairs result;
  for (const bool isExactPass : {true, false}) {
    for (const auto& [key, value] : pairs) {
      std::string lineKey = oneLine(key);
      if ((lineKey == key) != isExactPass) continue;
      std::string lineValue = oneLine(value);
      if (accepts(lineKey, lineValue)) result.emplace(std::move(lineKey), std::move(lineValue));
    }
  }
  return result;
}

void appendLine(std::string& file, std::string_view key, std::string_view value) {
  file.append(key).append(": ").append(value).push_back('\n');
}

void appendFlag(std::string& file, std::string_view key, bool isSet) {
  if (isSet) appendLine(file, key, "true");
}

void appendFolded(std::string& file, const std::vector<int>& indices) {
  if (!indices.empty()) appendLine(file, "lk-folded", indexListText(indices));
}

void appendTasks(std::string& file, std::vector<TaskEntry> entries) {
  if (entries.empty()) return;
  for (TaskEntry& entry : entries) {
    std::string hash = oneLine(entry.hash.value_or(""));
    if (hash.find(',') != std::string::npos) hash.clear();
    entry.hash = std::move(hash);
  }
  appendLine(file, "lk-tasks", taskListText(entries));
}

void appendDaily(std::string& file, const std::optional<Day>& day) {
  if (!day) return;
  const std::string form = LKDateOnly::text(*day);
  if (LKDateOnly::parse(form) == day) appendLine(file, "lk-daily", form);
}

void appendRanks(std::string& file, const Pairs& tagRanks) {
  const Pairs ranks = writablePairs(tagRanks, [](const std::string& tag, const std::string& rank) {
    return !tag.empty() && !rank.empty() && tag.find(':') == std::string::npos;
  });
  if (ranks.empty()) return;
  file.append("lk-tag-rank:\n");
  for (const auto& [tag, rank] : ranks) appendLine(file.append("  "), tag, rank);
}

void appendProperties(std::string& file, const Pairs& userProperties) {
  const Pairs properties =
      writablePairs(userProperties, [](const std::string& key, const std::string& /*value*/) {
        return isWritablePropertyKey(key);
      });
  for (const auto& [key, value] : properties) {
    // A blank before the colon keeps the reader from taking an old name for its own.
    appendLine(file, isReadByUs(key) ? key + ' ' : key, value);
  }
}

// True when nothing is missing that a note has to have.
bool isValid(const std::optional<ScannedBlock>& block) {
  return block && block->isClosed && block->fields.id && block->fields.created;
}

LKFileFrontMatter frontMatterOf(ScannedBlock&& block) {
  SalvagedFields& fields = block.fields;
  return {
      .id = *fields.id,
      .created = writable(*fields.created),
      .title = std::move(block.title),
      .foldedIndices = std::move(fields.foldedIndices).value_or(std::vector<int>{}),
      .cursorIndex = fields.cursorIndex.value_or(0),
      .dailyDate = fields.dailyDate,
      .taskEntries = std::move(fields.taskEntries).value_or(std::vector<TaskEntry>{}),
      .userProperties = std::move(fields.userProperties),
      .nameLocked = fields.nameLocked.value_or(false),
      .isFavourite = fields.isFavourite.value_or(false),
      .isArchived = fields.isArchived.value_or(false),
      .isBook = fields.isBook.value_or(false),
      .contentHash = std::move(fields.contentHash),
      .tagRanks = std::move(fields.tagRanks),
  };
}

// The block at a file's start; nothing when the start does not hold all of it. A line that the
// start cuts off could still become anything.
std::optional<ScannedBlock> scanFileStart(std::string_view fileStart) {
  const size_t lastLineFeed = fileStart.rfind('\n');
  if (lastLineFeed == std::string_view::npos) return std::nullopt;
  std::optional<ScannedBlock> block = scanBlock(fileStart.substr(0, lastLineFeed + 1));
  if (!isValid(block)) return std::nullopt;
  return block;
}

}  // namespace

LKParsedDocument parseDocument(std::string_view text) {
  std::optional<LKParsedDocument> document = parseDocumentIfValid(text);
  if (!document) throw LKSyncError::invalidFrontMatter("unknown");
  return std::move(*document);
}

std::optional<LKParsedDocument> parseDocumentIfValid(std::string_view text) {
  std::optional<ScannedBlock> block = scanBlock(text);
  if (!isValid(block)) return std::nullopt;
  std::string body = bodyOf(block->rest);
  return LKParsedDocument{frontMatterOf(std::move(*block)), std::move(body)};
}

std::string serialize(const LKFileFrontMatter& frontMatter, std::string_view body) {
  constexpr size_t kUsualBlock = 512;
  std::string file;
  file.reserve(body.size() + kUsualBlock);
  file.append("---\n");
  appendLine(file, "id", frontMatter.id.text());
  appendLine(file, "created", formatISO8601(writable(frontMatter.created)));
  const std::string title = oneLine(frontMatter.title.value_or(""));
  if (!title.empty()) appendLine(file, "title", title);
  appendFolded(file, frontMatter.foldedIndices);
  appendLine(file, "lk-cursor", std::to_string(frontMatter.cursorIndex));
  appendDaily(file, frontMatter.dailyDate);
  appendTasks(file, frontMatter.taskEntries);
  appendFlag(file, "lk-name-locked", frontMatter.nameLocked);
  appendFlag(file, "lk-favourite", frontMatter.isFavourite);
  appendFlag(file, "lk-archived", frontMatter.isArchived);
  appendFlag(file, "lk-book", frontMatter.isBook);
  appendLine(file, "lk-hash", computeContentHash(body));
  appendRanks(file, frontMatter.tagRanks);
  appendProperties(file, frontMatter.userProperties);
  file.append("---\n").append(body);
  return file;
}

std::optional<UUID> readIdentity(std::string_view fileStart) {
  const std::optional<ScannedBlock> block = scanFileStart(fileStart);
  return block ? block->fields.id : std::nullopt;
}

std::optional<LKFileFrontMatter> readFrontMatter(std::string_view fileStart) {
  std::optional<ScannedBlock> block = scanFileStart(fileStart);
  if (!block) return std::nullopt;
  return frontMatterOf(std::move(*block));
}

LKFileFrontMatter refreshingTitle(LKFileFrontMatter frontMatter, const std::filesystem::path& url) {
  frontMatter.title = LKNoteFilename::displayName(url);
  return frontMatter;
}

std::optional<std::string> blockStatus(const LKFileFrontMatter& frontMatter) {
  constexpr const char* kArchived = "archived";
  if (frontMatter.isArchived) return kArchived;
  const auto status = frontMatter.userProperties.find("status");
  if (status == frontMatter.userProperties.end()) return std::nullopt;
  return text::lowercased(status->second) == kArchived ? kArchived : status->second;
}

bool isWritablePropertyKey(std::string_view key) {
  const std::string lineKey = oneLine(key);
  return !lineKey.empty() && lineKey.find(':') == std::string::npos && !isReserved(lineKey);
}

bool isReservedPropertyName(std::string_view name) {
  const std::string lowered = text::lowercased(name);
  return isReserved(lowered) || isReadByUs(lowered);
}

}  // namespace lk
