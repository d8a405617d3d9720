#include "LKCore/NoteFiles/LKNoteEdit.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteFiles/LKSyncError.h"
#include "LKCore/NoteFiles/NoteBlock.h"

namespace lk {

namespace {

// In the order of `serialize`.
constexpr std::array<std::string_view, 13> kEditableKeys = {
    "id",       "created",  "title",          "lk-folded",    "lk-cursor",
    "lk-daily", "lk-tasks", "lk-name-locked", "lk-favourite", "lk-archived",
    "lk-book",  "lk-hash",  "lk-tag-rank"};
constexpr size_t kNoKey = kEditableKeys.size();
constexpr size_t kHashKey = 11;
constexpr size_t kRanksKey = 12;

// Lines of a block with their ends: one line, or a list of ranks.
struct BlockPart {
  size_t key = kNoKey;  // into kEditableKeys
  std::string text;
};

size_t keyOf(std::string_view line) {
  line = text::trimmedBlanks(line);
  const std::string_view name = line.substr(0, line.find(':'));
  if (name.size() == line.size()) return kNoKey;
  const auto* const found = std::ranges::find_if(kEditableKeys, [&](std::string_view key) {
    const bool isOldName = key.starts_with("lk-") && key.substr(3) == name;
    return key == name || (isOldName && isReadByUs(name));
  });
  return static_cast<size_t>(found - kEditableKeys.begin());
}

// Whether an indented line behind the part would be one of its ranks. To the reader CR LF is two line
// ends, and the empty line between them ends the list.
bool isOpenList(const BlockPart& part) {
  return part.key == kRanksKey && !part.text.empty() && !part.text.ends_with("\r\n");
}

// The block's parts, its opening and closing lines among them as parts without a key.
std::vector<BlockPart> partsOf(std::string_view block) {
  std::vector<BlockPart> parts;
  for (size_t start = 0; start < block.size();) {
    const NewlinePosition newline = findNewline(block, start);
    const std::string_view line = block.substr(start, newline.start - start);
    const bool isCRLF = block.substr(newline.start).starts_with("\r\n");
    const size_t next = newline.start + newline.length + (isCRLF ? 1 : 0);
    const bool isRank = !parts.empty() && isOpenList(parts.back()) && isIndented(line);
    if (!isRank) parts.push_back({keyOf(line), {}});
    parts.back().text.append(block.substr(start, next - start));
    start = next;
  }
  return parts;
}

std::string textOfKey(const std::vector<BlockPart>& parts, size_t key) {
  const auto found = std::ranges::find(parts, key, &BlockPart::key);
  return found == parts.end() ? std::string() : found->text;
}

// Where the first line of the key stands, the new text stands instead, and further ones go. A key
// that is not there comes behind the last line of those that `serialize` has before it.
void replaceKey(std::vector<BlockPart>& parts, size_t key, std::string text) {
  const auto first = std::ranges::find(parts, key, &BlockPart::key);
  if (first == parts.end()) {
    if (text.empty()) return;
    auto place = parts.begin() + 1;
    for (auto part = place; part != parts.end(); ++part) {
      if (part->key < key) place = part + 1;
    }
    parts.insert(place, {key, std::move(text)});
    return;
  }
  first->text = std::move(text);
  const auto isFurther = [&](const BlockPart& part) { return part.key == key; };
  parts.erase(std::remove_if(first + 1, parts.end(), isFurther), parts.end());
}

std::string blockOf(std::string_view file) {
  return std::string(file.substr(0, file.size() - scanBlock(file)->rest.size()));
}

}  // namespace

std::optional<LKNoteEdit> LKNoteEdit::read(std::string_view file) {
  if (!text::isValidUTF8(file)) return std::nullopt;
  try {
    LKParsedDocument document = parseDocument(file);
    const size_t blockSize = file.size() - scanBlock(file)->rest.size();
    return LKNoteEdit{file.substr(0, blockSize), file.substr(blockSize),
                      std::move(document.frontMatter)};
  } catch (const LKSyncError&) {
    return std::nullopt;
  }
}

std::string LKNoteEdit::bodyInMemory(std::string_view rawBody) {
  return bodyOf(rawBody);
}

std::string LKNoteEdit::written(const LKFileFrontMatter& changed,
                                std::string_view newRawBody) const {
  const std::string body = bodyOf(newRawBody);
  const auto before = partsOf(blockOf(serialize(frontMatter, "")));
  const auto after = partsOf(blockOf(serialize(changed, body)));
  std::vector<BlockPart> parts = partsOf(block);
  const std::string& opening = parts.front().text;
  const std::string lineEnd = opening.substr(findNewline(opening, 0).start);
  const bool isHashStale = frontMatter.contentHash != computeContentHash(body);
  for (size_t key = 0; key < kNoKey; ++key) {
    std::string text = textOfKey(after, key);
    const bool differs = key == kHashKey ? isHashStale : text != textOfKey(before, key);
    if (!differs) continue;
    if (key != kRanksKey) text = text::replacingAll(text, "\n", lineEnd);
    replaceKey(parts, key, std::move(text));
  }
  std::string file;
  bool isOpen = false;
  for (const BlockPart& part : parts) {
    // An indented property would become a rank of the new list; an empty line keeps it apart.
    if (isOpen && isIndented(part.text)) file.push_back('\n');
    file.append(part.text);
    if (!part.text.empty()) isOpen = isOpenList(part);
  }
  return file.append(newRawBody);
}

}  // namespace lk
