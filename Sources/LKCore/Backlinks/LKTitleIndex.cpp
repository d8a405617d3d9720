#include "LKCore/Backlinks/LKTitleIndex.h"

#include <unordered_set>
#include <utility>

#include "LKCore/Base/Log.h"
#include "LKCore/Base/Text.h"

namespace lk {

namespace {

bool isJamo(char32_t scalar) {
  return (scalar >= 0x1100 && scalar <= 0x11FF) || (scalar >= 0xA960 && scalar <= 0xA97F) ||
         (scalar >= 0xD7B0 && scalar <= 0xD7FF);
}

bool isUncommonMark(char32_t scalar) {
  const bool isCommon = scalar >= 0x0300 && scalar <= 0x036F;
  return !isCommon && text::isMark(scalar);
}

bool holdsJamoOrUncommonMark(std::string_view decomposed) {
  for (size_t i = 0; i < decomposed.size();) {
    const text::Decoded d = text::decode(decomposed, i);
    if (isJamo(d.scalar) || isUncommonMark(d.scalar)) return true;
    i += d.length;
  }
  return false;
}

std::vector<LKNote*> bareNotes(LKContext& context, LKPredicate<LKNote> where) {
  return context.notes().fetch({.where = std::move(where), .parts = LKParts::none});
}

// A live note wins over one in the trash, and else the later one over the earlier.
bool winsOver(const LKNote& later, const LKNote* earlier) {
  return earlier == nullptr || earlier->isTrashed || !later.isTrashed;
}

template <typename Accepts>
LKNote* winner(const std::vector<LKNote*>& notes, Accepts accepts) {
  LKNote* found = nullptr;
  for (LKNote* note : notes) {
    if (winsOver(*note, found) && accepts(*note)) found = note;
  }
  return found;
}

// May throw LKStoreError.
LKNote* lookUp(const std::string& title, const std::string& key, LKContext& context) {
  if (!key.empty()) {
    LKNote* const found =
        winner(bareNotes(context, notesWithTitleLike(title)),
               [&](const LKNote& note) { return text::caseInsensitiveKey(note.title) == key; });
    if (found != nullptr) return found;
  }
  return winner(bareNotes(context, notesTitled(title)), [](const LKNote&) { return true; });
}

std::vector<LKNote*> titleCandidates(const std::string& title, LKContext& context) {
  const auto candidates = [&](const std::string& spelling) {
    return bareNotes(context, allOf(notTrashed(), notesWithTitleLike(spelling)));
  };
  std::vector<LKNote*> notes = candidates(title);
  const auto other = LKTitleIndex::otherUnicodeForm(title);
  if (!other) return notes;
  std::unordered_set<int64_t> seen;
  for (const LKNote* note : notes) seen.insert(context.notes().persistentID(*note));
  for (LKNote* note : candidates(*other)) {
    if (seen.insert(context.notes().persistentID(*note)).second) notes.push_back(note);
  }
  return notes;
}

// Each key with one of its titles.
std::unordered_map<std::string, std::string> distinctTitles(
    const std::vector<std::string>& titles) {
  std::unordered_map<std::string, std::string> distinct;
  for (const std::string& title : titles) {
    distinct.emplace(text::caseInsensitiveKey(title), title);
  }
  return distinct;
}

}  // namespace

// --- The whole table -----------------------------------------------------------------------------

void LKTitleIndex::load() {
  if (isLoaded_) return;
  const std::vector<LKNote*> notes = bareNotes(context_, {});
  isLoaded_ = true;
  byTitle_.reserve(notes.size());
  titleByNote_.reserve(notes.size());
  for (LKNote* note : notes) add(*note);
}

LKNote* LKTitleIndex::noteForTitle(std::string_view title) {
  load();
  const auto found = byTitle_.find(text::caseInsensitiveKey(title));
  return found == byTitle_.end() ? nullptr : found->second;
}

void LKTitleIndex::add(LKNote& note) {
  load();
  std::string& known = titleByNote_[note.id];
  std::string key = text::caseInsensitiveKey(note.title);
  const auto previous = byTitle_.find(known);
  const bool isRenamed = known != key;
  if (isRenamed && previous != byTitle_.end() && previous->second->id == note.id) {
    byTitle_.erase(previous);
  }
  LKNote*& entry = byTitle_[key];
  if (winsOver(note, entry)) entry = &note;
  known = std::move(key);
}

// --- Questions to the store ----------------------------------------------------------------------

LKNote* LKTitleIndex::noteTitled(const std::string& title, LKContext& context) {
  const std::string key = text::caseInsensitiveKey(title);
  try {
    if (LKNote* const found = lookUp(title, key, context)) return found;
    const auto other = otherUnicodeForm(title);
    return other ? lookUp(*other, key, context) : nullptr;
  } catch (const LKStoreError& error) {
    log::warning("title lookup failed: " + error.description());
    return nullptr;
  }
}

LKTitleIndex::Notes LKTitleIndex::notesTitledAny(const std::vector<std::string>& titles,
                                                 LKContext& context, size_t batchThreshold) {
  const auto distinct = distinctTitles(titles);
  LKTitleIndex all(context);
  Notes found;
  try {
    for (const auto& [key, title] : distinct) {
      LKNote* const note =
          distinct.size() > batchThreshold ? all.noteForTitle(title) : noteTitled(title, context);
      if (note != nullptr) found.emplace(key, note);
    }
  } catch (const LKStoreError& error) {
    log::warning("title lookup failed: " + error.description());
  }
  return found;
}

LKLinkTitleMatches LKTitleIndex::linkMatches(const std::string& title, LKContext& context) {
  const std::string key = text::caseInsensitiveKey(title);
  const std::string prefix = key + ".";
  LKLinkTitleMatches matches;
  const auto candidates =
      key.empty() ? bareNotes(context, notTrashed()) : titleCandidates(title, context);
  for (LKNote* note : candidates) {
    const std::string noteKey = text::caseInsensitiveKey(note->title);
    if (noteKey == key) {
      matches.exact.push_back(note);
    } else if (noteKey.starts_with(prefix)) {
      matches.withExtension.push_back(note);
    }
  }
  return matches;
}

LKTitleIndex::TargetIDs LKTitleIndex::linkTargetIDs(const std::vector<std::string>& titles,
                                                    LKContext& context, size_t batchThreshold) {
  const auto distinct = distinctTitles(titles);
  TargetIDs ids;
  if (distinct.size() > batchThreshold) {
    for (const LKNote* note : bareNotes(context, notTrashed())) {
      std::string key = text::caseInsensitiveKey(note->title);
      if (distinct.contains(key)) ids.try_emplace(std::move(key), note->id);
    }
    return ids;
  }
  for (const auto& [key, title] : distinct) {
    const LKLinkTitleMatches matches = linkMatches(title, context);
    if (!matches.exact.empty()) ids.emplace(key, matches.exact.front()->id);
  }
  return ids;
}

std::optional<std::string> LKTitleIndex::otherUnicodeForm(std::string_view title) {
  std::string composed = text::composed(title);
  std::string decomposed = text::decomposed(title);
  if (composed == decomposed || !holdsJamoOrUncommonMark(decomposed)) return std::nullopt;
  return decomposed == title ? std::move(composed) : std::move(decomposed);
}

}  // namespace lk
