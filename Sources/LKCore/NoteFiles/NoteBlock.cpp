#include "LKCore/NoteFiles/NoteBlock.h"

#include <algorithm>
#include <array>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKIndentation.h"
#include "LKCore/NoteFiles/NoteLists.h"

namespace lk {

namespace {

constexpr std::string_view kNextLine = "\xC2\x85";
constexpr std::string_view kLineSeparator = "\xE2\x80\xA8";
constexpr std::string_view kParagraphSeparator = "\xE2\x80\xA9";

struct Line {
  std::string_view text;
  size_t next = 0;  // where the following line begins
};

Line lineAt(std::string_view text, size_t start) {
  const NewlinePosition newline = findNewline(text, start);
  return {text.substr(start, newline.start - start), newline.start + newline.length};
}

// A readable value wins over an unreadable one in another line.
void readID(ScannedBlock& block, std::string_view value) {
  if (const auto id = UUID::parse(value)) block.fields.id = id;
}

void readCreated(ScannedBlock& block, std::string_view value) {
  if (const auto created = parseISO8601(value)) block.fields.created = created;
}

void readTitle(ScannedBlock& block, std::string_view value) {
  if (!value.empty()) block.title = value;
}

void readFolded(ScannedBlock& block, std::string_view value) {
  block.fields.foldedIndices = readIndexList(value);
}

void readCursor(ScannedBlock& block, std::string_view value) {
  int index = 0;
  text::parseInteger(value, index);
  block.fields.cursorIndex = index;
}

void readDaily(ScannedBlock& block, std::string_view value) {
  if (!value.empty()) block.fields.dailyDate = LKDateOnly::parse(value);
}

void readTasks(ScannedBlock& block, std::string_view value) {
  block.fields.taskEntries = readTaskList(value);
}

template <std::optional<bool> SalvagedFields::*Flag>
void readFlag(ScannedBlock& block, std::string_view value) {
  block.fields.*Flag = text::lowercased(value) == "true";
}

void readHash(ScannedBlock& block, std::string_view value) {
  if (!value.empty()) block.fields.contentHash = value;
}

// The ranks are in the lines that follow; what stands in the line itself has no meaning.
void readNothing(ScannedBlock& /*block*/, std::string_view /*value*/) {}

struct KeyReader {
  std::string_view key;
  void (*read)(ScannedBlock&, std::string_view value);
};

constexpr std::string_view kRankKey = "lk-tag-rank";

constexpr std::array kReaders = {
    KeyReader{"id", readID},
    KeyReader{"created", readCreated},
    KeyReader{"title", readTitle},
    KeyReader{"lk-folded", readFolded},
    KeyReader{"folded", readFolded},
    KeyReader{"lk-cursor", readCursor},
    KeyReader{"cursor", readCursor},
    KeyReader{"lk-daily", readDaily},
    KeyReader{"daily", readDaily},
    KeyReader{"lk-tasks", readTasks},
    KeyReader{"tasks", readTasks},
    KeyReader{"lk-name-locked", readFlag<&SalvagedFields::nameLocked>},
    KeyReader{"lk-favourite", readFlag<&SalvagedFields::isFavourite>},
    KeyReader{"lk-archived", readFlag<&SalvagedFields::isArchived>},
    KeyReader{"lk-book", readFlag<&SalvagedFields::isBook>},
    KeyReader{"lk-hash", readHash},
    KeyReader{"hash", readHash},
    KeyReader{kRankKey, readNothing},
};

const KeyReader* readerOf(std::string_view key) {
  const auto* const found = std::ranges::find(kReaders, key, &KeyReader::key);
  return found == kReaders.end() ? nullptr : found;
}

// Reads the lines of a block one after the other.
class BlockReader {
 public:
  explicit BlockReader(ScannedBlock& block) : block_(block) {}

  // True when the line is ours: a key that we read, a key that begins as ours, or a rank.
  bool isOurs(std::string_view line) const {
    if (isInRanks_ && isIndented(line)) return true;
    const std::string_view trimmed = text::trimmedBlanks(line);
    const size_t colon = trimmed.find(':');
    return colon != std::string_view::npos &&
           (trimmed.starts_with("lk-") || readerOf(trimmed.substr(0, colon)) != nullptr);
  }

  void read(std::string_view line) {
    isInRanks_ = isInRanks_ && isIndented(line);
    const std::string_view trimmed = text::trimmedBlanks(line);
    const size_t colon = trimmed.find(':');
    if (colon == std::string_view::npos) return;
    const std::string_view name = trimmed.substr(0, colon);
    const std::string_view value = text::trimmedBlanks(trimmed.substr(colon + 1));
    if (isInRanks_) {
      readRank(text::trimmedBlanks(name), value);
    } else if (const KeyReader* const reader = readerOf(name)) {
      reader->read(block_, value);
      isInRanks_ = reader->key == kRankKey;
    } else {
      readProperty(text::trimmedBlanks(name), value);
    }
  }

 private:
  void readRank(std::string_view tag, std::string_view rank) {
    if (!tag.empty() && !rank.empty()) block_.fields.tagRanks[std::string(tag)] = rank;
  }

  void readProperty(std::string_view key, std::string_view value) {
    if (!key.empty() && !isReserved(key)) block_.fields.userProperties[std::string(key)] = value;
  }

  ScannedBlock& block_;
  bool isInRanks_ = false;
};

// Where the closing line stands; its text is empty when there is none.
struct ClosingLine {
  size_t start = 0;
  size_t next = 0;
  bool isThere = false;
};

ClosingLine findClosing(std::string_view text, size_t from) {
  for (size_t start = from; start < text.size();) {
    const Line line = lineAt(text, start);
    if (text::trimmedBlanks(line.text) == kBlockFence) return {start, line.next, true};
    start = line.next;
  }
  return {};
}

void readClosed(BlockReader& reader, std::string_view block) {
  for (size_t start = 0; start < block.size();) {
    const Line line = lineAt(block, start);
    reader.read(line.text);
    start = line.next;
  }
}

// Gives where the block ends.
size_t readUnclosed(BlockReader& reader, std::string_view text, size_t start) {
  while (start < text.size()) {
    const Line line = lineAt(text, start);
    if (!reader.isOurs(line.text)) break;
    reader.read(line.text);
    start = line.next;
  }
  return start;
}

// Older files say it with a property.
void applyOlderFlags(SalvagedFields& fields) {
  if (const auto status = fields.userProperties.find("status");
      status != fields.userProperties.end() && text::lowercased(status->second) == "archived") {
    fields.isArchived = true;
  }
  if (const auto role = fields.userProperties.find("manuscript-role");
      role != fields.userProperties.end()) {
    const std::string value = text::lowercased(role->second);
    if (value == "book" || value == "chapters") fields.isBook = true;
  }
}

// A search for each, since each runs at the speed of memory and most texts have none.
bool hasOtherNewline(std::string_view text) {
  constexpr auto kNone = std::string_view::npos;
  return text.find('\r') != kNone || text.find('\v') != kNone || text.find('\f') != kNone ||
         text.find(kNextLine) != kNone || text.find(kLineSeparator) != kNone ||
         text.find(kParagraphSeparator) != kNone;
}

std::string withLineFeeds(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (size_t start = 0;;) {
    const NewlinePosition newline = findNewline(text, start);
    result.append(text.substr(start, newline.start - start));
    if (newline.length == 0) return result;
    result.push_back('\n');
    start = newline.start + newline.length;
  }
}

}  // namespace

NewlinePosition findNewline(std::string_view text, size_t from) {
  for (size_t i = from; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte > 0x0D && byte < 0xC2) continue;
    if (byte >= 0x0A && byte <= 0x0D) return {i, 1};
    if (byte == 0xC2 && text.substr(i).starts_with(kNextLine)) return {i, kNextLine.size()};
    if (byte == 0xE2 && (text.substr(i).starts_with(kLineSeparator) ||
                         text.substr(i).starts_with(kParagraphSeparator))) {
      return {i, kLineSeparator.size()};
    }
  }
  return {text.size(), 0};
}

bool isIndented(std::string_view line) {
  return line.starts_with(' ') || line.starts_with('\t');
}

std::optional<ScannedBlock> scanBlock(std::string_view text) {
  const Line opening = lineAt(text, 0);
  if (text::trimmedBlanks(opening.text) != kBlockFence) return std::nullopt;
  ScannedBlock block;
  BlockReader reader(block);
  const ClosingLine closing = findClosing(text, opening.next);
  block.isClosed = closing.isThere;
  if (closing.isThere) {
    readClosed(reader, text.substr(opening.next, closing.start - opening.next));
    block.rest = text.substr(closing.next);
  } else {
    block.rest = text.substr(readUnclosed(reader, text, opening.next));
  }
  applyOlderFlags(block.fields);
  return block;
}

std::string bodyOf(std::string_view rest) {
  rest = text::trimmedLeading(rest);
  return hasOtherNewline(rest) ? spacesToTabs(withLineFeeds(rest)) : spacesToTabs(rest);
}

bool isReadByUs(std::string_view key) {
  return readerOf(key) != nullptr;
}

bool isReserved(std::string_view key) {
  return key.starts_with("lk-") || std::ranges::find(LKFileFrontMatter::protectedKeys, key) !=
                                       LKFileFrontMatter::protectedKeys.end();
}

}  // namespace lk
