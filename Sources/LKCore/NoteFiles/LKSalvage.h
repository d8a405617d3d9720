#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/NoteFiles/LKFileFrontMatter.h"

namespace lk {

// What could be read from a damaged block; a field is empty when its line is missing or
// unreadable.
struct SalvagedFields {
  std::optional<UUID> id;
  std::optional<Instant> created;
  std::optional<std::string> contentHash;
  std::optional<Day> dailyDate;
  std::optional<int> cursorIndex;
  std::optional<std::vector<int>> foldedIndices;
  std::optional<std::vector<TaskEntry>> taskEntries;
  std::optional<bool> nameLocked;
  std::optional<bool> isFavourite;
  std::optional<bool> isArchived;
  std::optional<bool> isBook;
  std::map<std::string, std::string> userProperties;
  std::map<std::string, std::string> tagRanks;

  bool operator==(const SalvagedFields&) const = default;
};

struct SalvagedDocument {
  SalvagedFields fields;
  std::string body;

  bool operator==(const SalvagedDocument&) const = default;
};

// The material for rebuilding a note from a broken file: the same keys by the same rules as
// parseDocument, with nothing required but the opening `---`. When the closing line is missing the
// block ends before the first line that has no key of ours, so that no text of the user's can
// vanish into the block; properties then stand at the head of the body. Nothing when the text does
// not open with `---`, or when the block is not closed and not one key of ours follows.
std::optional<SalvagedDocument> extractSalvageableFields(std::string_view text);

}  // namespace lk
