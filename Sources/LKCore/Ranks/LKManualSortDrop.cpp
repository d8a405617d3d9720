#include "LKCore/Ranks/LKManualSortDrop.h"

#include <algorithm>
#include <exception>
#include <memory>

#include "LKCore/Base/Error.h"
#include "LKCore/Base/Log.h"
#include "LKCore/NoteFiles/LKRank.h"
#include "LKCore/NoteRepository/LKNoteFileService.h"

namespace lk::LKManualSortDrop {

namespace {

constexpr size_t kIDsPerFetch = 500;

using Entries = std::unordered_map<UUID, Entry>;
using Ranks = std::unordered_map<UUID, std::string>;

// The list as far as it has files: a note without one can hold no rank.
struct RankedList {
  std::vector<LKTagRankSeed> notes;
  size_t insertIndex = 0;
};

RankedList listOf(const Placement& placement, const Entries& entries) {
  RankedList list;
  for (size_t i = 0; i < placement.others.size(); ++i) {
    const UUID& id = placement.others[i];
    const auto entry = entries.find(id);
    if (id == placement.primaryID || entry == entries.end() || !entry->second.url) continue;
    list.notes.push_back({*entry->second.url, id});
    if (i < placement.insertIndex) list.insertIndex = list.notes.size();
  }
  return list;
}

Ranks ranksOf(const Entries& entries) {
  Ranks ranks;
  for (const auto& [id, entry] : entries) {
    if (entry.rank) ranks.emplace(id, *entry.rank);
  }
  return ranks;
}

bool failed(const std::string& what, const std::exception& error) {
  log::error(what + error.what());
  return false;
}

bool rebalance(const Placement& placement, RankedList list, const Entry* primary) {
  log::warning("Manual sort: rank space exhausted — rebalancing");
  if (primary != nullptr && primary->url) {
    const auto place = list.notes.begin() + static_cast<std::ptrdiff_t>(list.insertIndex);
    list.notes.insert(place, LKTagRankSeed{*primary->url, placement.primaryID});
  }
  try {
    const auto ranks = LKNoteFileService::seedTagRanks(list.notes, placement.contextKey);
    if (ranks.contains(placement.primaryID)) return true;
    log::error("Manual sort rebalance: dropped note not in the seeded map");
    return false;
  } catch (const std::exception& error) {
    return failed("Manual sort rebalance failed: ", error);
  }
}

bool write(const Placement& placement, const std::string& rank, const Entry* primary) {
  try {
    if (primary == nullptr || !primary->url) throw Error("the note has no file");
    LKNoteFileService::setTagRank(*primary->url, placement.contextKey, rank,
                                  LKNoteFileService::ModificationTime::preserved);
    return true;
  } catch (const std::exception& error) {
    return failed("Manual sort drop failed: ", error);
  }
}

// False when ranks were missing and could not be written.
bool seedWhereMissing(const RankedList& list, const std::string& contextKey, Ranks& ranks) {
  const bool isWhole = std::ranges::all_of(
      list.notes, [&](const LKTagRankSeed& note) { return ranks.contains(note.noteID); });
  if (isWhole) return true;
  try {
    ranks = LKNoteFileService::seedTagRanks(list.notes, contextKey);
    return true;
  } catch (const std::exception& error) {
    return failed("Manual sort seed failed: ", error);
  }
}

}  // namespace

Entries lookUp(const std::vector<UUID>& ids, const std::string& contextKey, LKContext& context) {
  Entries entries;
  for (size_t start = 0; start < ids.size(); start += kIDsPerFetch) {
    const auto first = ids.begin() + static_cast<std::ptrdiff_t>(start);
    const size_t count = std::min(kIDsPerFetch, ids.size() - start);
    const std::vector<UUID> batch(first, first + static_cast<std::ptrdiff_t>(count));
    for (const LKNote* note :
         context.notes().fetch({.where = notesWithIDs(batch), .parts = LKParts::none})) {
      const auto rank = note->tagRanks.find(contextKey);
      Entry entry{note->fileURL, std::nullopt};
      if (rank != note->tagRanks.end()) entry.rank = rank->second;
      entries.emplace(note->id, std::move(entry));
    }
  }
  return entries;
}

std::optional<std::string> rankAt(const std::optional<std::string>& lo,
                                  const std::optional<std::string>& hi) {
  if (!lo && !hi) return LKRank::first();
  std::string rank;
  if (!lo) {
    if (!LKRank::canInsertBefore(*hi)) return std::nullopt;
    rank = LKRank::before(*hi);
  } else if (!hi) {
    rank = LKRank::after(*lo);
  } else {
    if (!LKRank::canPlaceBetween(*lo, *hi)) return std::nullopt;
    rank = LKRank::between(*lo, *hi);
  }
  // Lists are sorted by whole ranks; a few bodies leave no room among those.
  if ((lo && rank <= *lo) || (hi && rank >= *hi)) return std::nullopt;
  return rank;
}

bool perform(const Placement& placement, LKContext& context) {
  std::vector<UUID> ids = placement.others;
  ids.push_back(placement.primaryID);
  Entries entries;
  try {
    entries = lookUp(ids, placement.contextKey, context);
  } catch (const std::exception& error) {
    return failed("Manual sort drop failed: ", error);
  }
  const RankedList list = listOf(placement, entries);
  Ranks ranks = ranksOf(entries);
  if (!seedWhereMissing(list, placement.contextKey, ranks)) return false;
  const auto rankOf = [&](size_t index) { return ranks.at(list.notes[index].noteID); };
  std::optional<std::string> lo;
  std::optional<std::string> hi;
  if (list.insertIndex > 0) lo = rankOf(list.insertIndex - 1);
  if (list.insertIndex < list.notes.size()) hi = rankOf(list.insertIndex);
  const std::optional<std::string> rank = rankAt(lo, hi);
  const auto primary = entries.find(placement.primaryID);
  const Entry* const moved = primary == entries.end() ? nullptr : &primary->second;
  return rank ? write(placement, *rank, moved) : rebalance(placement, list, moved);
}

bool perform(const Placement& placement, const LKStoreContainer& container) {
  try {
    const std::unique_ptr<LKContext> context = container.newContext();
    return perform(placement, *context);
  } catch (const std::exception& error) {
    return failed("Manual sort drop failed: ", error);
  }
}

}  // namespace lk::LKManualSortDrop
