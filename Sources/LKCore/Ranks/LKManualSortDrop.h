#pragma once

// Dropping a note at a place of a list: its file gets a rank between those of its new neighbours, and
// no other file changes, unless some note of the list has no rank yet, or no rank lies between the
// two. Then the whole list gets fresh ones.
//
//     perform({.primaryID = moved, .others = rest, .insertIndex = 2, .contextKey = "garden"}, store)
//
// The way is free of failures for the caller: what goes wrong is logged, the answer is false, and the
// order on the disk stays as it was, but for ranks that were written before. Blocks; not for a main
// queue.

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "LKCore/Base/UUID.h"
#include "LKCore/DataModel/LKContext.h"
#include "LKCore/DataModel/LKModelContainer.h"

namespace lk::LKManualSortDrop {

struct Entry {
  std::optional<std::filesystem::path> url;
  std::optional<std::string> rank;

  bool operator==(const Entry&) const = default;
};

struct Placement {
  UUID primaryID;            // the note that moves
  std::vector<UUID> others;  // the other notes of the list, in their order
  size_t insertIndex = 0;    // the place in `others`; beyond the end is the end
  std::string contextKey;    // LKRankComparator::key
};

bool perform(const Placement& placement, const LKStoreContainer& container);
bool perform(const Placement& placement, LKContext& context);

// The notes' files and ranks. Ids without a row have no entry. Throws LKStoreError.
std::unordered_map<UUID, Entry> lookUp(const std::vector<UUID>& ids, const std::string& contextKey,
                                       LKContext& context);

// The rank for a place between two notes, either of which may be missing at an end of the list;
// nothing when there is no room and the list needs fresh ranks.
std::optional<std::string> rankAt(const std::optional<std::string>& lo,
                                  const std::optional<std::string>& hi);

}  // namespace lk::LKManualSortDrop
