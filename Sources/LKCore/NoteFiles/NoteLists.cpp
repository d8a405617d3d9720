#include "LKCore/NoteFiles/NoteLists.h"

#include <algorithm>
#include <optional>

#include "LKCore/Base/Text.h"

namespace lk {

namespace {

// Calls `use` with each trimmed piece between commas.
template <typename Use>
void forEachPiece(std::string_view list, Use use) {
  for (size_t start = 0; start <= list.size();) {
    const size_t comma = std::min(list.find(',', start), list.size());
    use(text::trimmedBlanks(list.substr(start, comma - start)));
    start = comma + 1;
  }
}

std::optional<TaskEntry> taskEntry(std::string_view piece) {
  const size_t first = piece.find(':');
  if (first == std::string_view::npos) return std::nullopt;
  const size_t second = std::min(piece.find(':', first + 1), piece.size());
  TaskEntry entry;
  const std::optional<UUID> id = UUID::parse(piece.substr(first + 1, second - first - 1));
  if (!id || !text::parseInteger(piece.substr(0, first), entry.paragraphIndex)) {
    return std::nullopt;
  }
  entry.id = *id;
  if (second < piece.size()) {
    const std::string_view hash = text::trimmedBlanks(piece.substr(second + 1));
    if (!hash.empty()) entry.hash = hash;
  }
  return entry;
}

}  // namespace

std::vector<TaskEntry> readTaskList(std::string_view value) {
  std::vector<TaskEntry> entries;
  forEachPiece(value, [&](std::string_view piece) {
    if (auto entry = taskEntry(piece)) entries.push_back(std::move(*entry));
  });
  return entries;
}

std::vector<int> readIndexList(std::string_view value) {
  std::vector<int> indices;
  forEachPiece(value, [&](std::string_view piece) {
    int index = 0;
    if (text::parseInteger(piece, index)) indices.push_back(index);
  });
  return indices;
}

std::string taskListText(const std::vector<TaskEntry>& entries) {
  std::string list;
  for (const TaskEntry& entry : entries) {
    if (!list.empty()) list.push_back(',');
    list.append(std::to_string(entry.paragraphIndex)).append(":").append(entry.id.text());
    if (entry.hash && !entry.hash->empty()) list.append(":").append(*entry.hash);
  }
  return list;
}

std::string indexListText(const std::vector<int>& indices) {
  std::string list;
  for (const int index : indices) {
    if (!list.empty()) list.push_back(',');
    list.append(std::to_string(index));
  }
  return list;
}

}  // namespace lk
