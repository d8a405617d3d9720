#include "LKCore/Backlinks/LKLinkRows.h"

#include <algorithm>
#include <optional>
#include <unordered_set>
#include <utility>
#include <vector>

#include "LKCore/Backlinks/LKTitleIndex.h"
#include "LKCore/Base/Log.h"
#include "LKCore/Base/Text.h"

namespace lk::LKLinkRows {

namespace {

constexpr size_t kBatchThreshold = 40;

// --- Lines ---------------------------------------------------------------------------------------

// What stands between each "]]" of the line and the "[[" closest before it.
template <typename Visit>
void forEachBracketed(std::string_view line, Visit visit) {
  constexpr auto kNone = std::string_view::npos;
  for (size_t from = line.find("[["); from != kNone;) {
    const size_t close = line.find("]]", from + 2);
    if (close == kNone) return;
    const size_t open = line.rfind("[[", close - 2) + 2;  // never before `from`
    visit(line.substr(open, close - open));
    from = line.find("[[", close + 2);
  }
}

// --- Rows ----------------------------------------------------------------------------------------

struct Wanted {
  std::string reference;  // as written
  size_t count = 0;
  bool isLink = false;
};

using WantedByKey = std::map<std::string, Wanted>;
using Rows = std::vector<LKBackLink*>;
using RowsByKey = std::map<std::string, Rows>;

WantedByKey wantedReferences(const References& dateRefs, const References& links) {
  WantedByKey wanted;
  for (const std::string& reference : links) {
    wanted.try_emplace(text::composed(reference), Wanted{reference, 1, true});
  }
  for (const std::string& reference : dateRefs) {
    ++wanted.try_emplace(text::composed(reference), Wanted{reference, 0, false})
          .first->second.count;
  }
  return wanted;
}

RowsByKey rowsByReference(const LKNote& note) {
  RowsByKey groups;
  for (LKBackLink* row : note.backLinks) {
    groups[text::composed(row->targetNoteReference)].push_back(row);
  }
  return groups;
}

void addTarget(Outcome& outcome, const std::optional<UUID>& target) {
  if (target) outcome.targets.insert(*target);
}

void raise(Outcome& outcome, Change change) {
  outcome.change = std::max(outcome.change, change);
}

class LinkSync {
 public:
  LinkSync(LKNote& note, LKContext& context, bool retryUnresolved)
      : note_(note), context_(context), retryUnresolved_(retryUnresolved) {}

  Outcome run(std::string_view body, const References& links, const WantedByKey& wanted) {
    RowsByKey groups = rowsByReference(note_);
    for (auto& [key, rows] : groups) {
      const auto found = wanted.find(key);
      keepFirst(rows, found == wanted.end() ? 0 : found->second.count);
    }
    const auto lines = contextLines(links, body);
    for (const auto& [key, reference] : wanted) {
      const auto line = lines.find(reference.reference);
      update(groups[key], reference, line == lines.end() ? nullptr : &line->second);
    }
    resolve();
    return std::move(outcome_);
  }

 private:
  // Rows with a target stay before those without.
  void keepFirst(Rows& rows, size_t count) {
    std::stable_partition(rows.begin(), rows.end(),
                          [](const LKBackLink* row) { return row->targetNoteID.has_value(); });
    for (size_t i = count; i < rows.size(); ++i) {
      addTarget(outcome_, rows[i]->targetNoteID);
      context_.backLinks().remove(*rows[i]);
    }
    rows.resize(std::min(rows.size(), count));
  }

  void update(Rows& rows, const Wanted& wanted, const ContextLine* line) {
    if (wanted.isLink) {
      if (rows.empty()) toResolve_.push_back(addRow(rows, wanted));
      setLine(rowForLine(rows), line);
      if (retryUnresolved_) retry(rows);
    }
    while (rows.size() < wanted.count) addRow(rows, wanted);
  }

  LKBackLink* addRow(Rows& rows, const Wanted& wanted) {
    LKBackLink row;
    row.id = ids_.next();
    row.targetNoteReference = wanted.reference;
    LKBackLink& added = context_.backLinks().insert(std::move(row));
    setNote(added, &note_);
    rows.push_back(&added);
    raise(outcome_, Change::links);
    return &added;
  }

  static LKBackLink& rowForLine(const Rows& rows) {
    const auto blank = std::ranges::find_if(rows, [](const LKBackLink* row) {
      return row->sourceParagraph.empty() && !row->targetNoteID;
    });
    return blank == rows.end() ? *rows.front() : **blank;
  }

  void setLine(LKBackLink& row, const ContextLine* line) {
    const std::string text = line == nullptr ? std::string() : line->text;
    const int index = line == nullptr ? row.sourceParagraphIndex : line->index;
    if (row.sourceParagraph == text && row.sourceParagraphIndex == index) return;
    row.sourceParagraph = text;
    row.sourceParagraphIndex = index;
    addTarget(outcome_, row.targetNoteID);
    raise(outcome_, Change::lines);
  }

  void retry(const Rows& rows) {
    for (LKBackLink* row : rows) {
      const bool isListed = !toResolve_.empty() && toResolve_.back() == row;  // made just now
      if (!row->targetNoteID && !isListed) toResolve_.push_back(row);
    }
  }

  void resolve() {
    if (toResolve_.empty()) return;
    std::vector<std::string> references;
    for (const LKBackLink* row : toResolve_) references.push_back(row->targetNoteReference);
    const auto notes = LKTitleIndex::notesTitledAny(references, context_, kBatchThreshold);
    for (LKBackLink* row : toResolve_) {
      const auto found = notes.find(text::caseInsensitiveKey(row->targetNoteReference));
      if (found == notes.end() || row->targetNoteID == found->second->id) continue;
      addTarget(outcome_, row->targetNoteID);
      row->targetNoteID = found->second->id;
      addTarget(outcome_, row->targetNoteID);
      raise(outcome_, Change::links);
    }
  }

  LKNote& note_;
  LKContext& context_;
  bool retryUnresolved_;
  UUIDBatch ids_;
  Rows toResolve_;
  Outcome outcome_;
};

// --- Healing -------------------------------------------------------------------------------------

std::set<UUID> liveTargets(const std::set<UUID>& ids, LKContext& context) {
  if (ids.empty()) return {};
  const std::vector<UUID> list(ids.begin(), ids.end());
  try {
    const auto where = allOf(notesWithIDs(list), notTrashed());
    if (context.notes().count(where) >= ids.size()) return ids;
    std::set<UUID> live;
    for (const LKNote* note : context.notes().fetch({.where = where, .parts = LKParts::none})) {
      live.insert(note->id);
    }
    return live;
  } catch (const LKStoreError& error) {
    log::warning("link targets cannot be read: " + error.description());
    return {};
  }
}

Rows rowsToHeal(const LKNote& note, LKContext& context) {
  std::set<UUID> ids;
  for (const LKBackLink* row : note.backLinks) {
    if (row->targetNoteID) ids.insert(*row->targetNoteID);
  }
  const std::set<UUID> live = liveTargets(ids, context);
  Rows rows;
  for (LKBackLink* row : note.backLinks) {
    if (!row->targetNoteID || !live.contains(*row->targetNoteID)) rows.push_back(row);
  }
  return rows;
}

// By composed title: the live notes of exactly these titles.
std::map<std::string, UUID> exactTargets(const References& references, LKContext& context) {
  std::map<std::string, UUID> targets;
  if (references.empty()) return targets;
  const std::vector<std::string> titles(references.begin(), references.end());
  try {
    for (const LKNote* note : context.notes().fetch(
             {.where = allOf(notTrashed(), notesTitledAnyOf(titles)), .parts = LKParts::none})) {
      targets[text::composed(note->title)] = note->id;
    }
  } catch (const LKStoreError& error) {
    log::warning("link targets cannot be read: " + error.description());
  }
  return targets;
}

// By composed reference: the live notes that the references mean.
std::map<std::string, UUID> targetsOf(const References& references, LKContext& context,
                                      size_t caseFallbackLimit) {
  std::map<std::string, UUID> targets = exactTargets(references, context);
  size_t looked = 0;
  for (const std::string& reference : references) {
    std::string key = text::composed(reference);
    if (targets.contains(key)) continue;
    if (looked++ == caseFallbackLimit) break;
    const LKNote* const note = LKTitleIndex::noteTitled(reference, context);
    if (note != nullptr && !note->isTrashed) targets.emplace(std::move(key), note->id);
  }
  return targets;
}

}  // namespace

Outcome sync(LKNote& note, std::string_view body, const References& dateRefs,
             const References& links, LKContext& context, bool retryUnresolved) {
  return LinkSync(note, context, retryUnresolved)
      .run(body, links, wantedReferences(dateRefs, links));
}

std::set<UUID> healTargets(LKNote& note, const References& checked,
                           const std::map<std::string, UUID>& verified, LKContext& context,
                           size_t caseFallbackLimit) {
  std::set<UUID> changed;
  const Rows rows = rowsToHeal(note, context);
  References open;
  for (const LKBackLink* row : rows) {
    const std::string key = text::composed(row->targetNoteReference);
    if (!verified.contains(key) && !checked.contains(key)) open.insert(row->targetNoteReference);
  }
  std::map<std::string, UUID> targets = targetsOf(open, context, caseFallbackLimit);
  targets.insert(verified.begin(), verified.end());
  for (LKBackLink* row : rows) {
    const auto target = targets.find(text::composed(row->targetNoteReference));
    if (target == targets.end() || row->targetNoteID == target->second) continue;
    if (row->targetNoteID) changed.insert(*row->targetNoteID);
    changed.insert(target->second);
    row->targetNoteID = target->second;
  }
  return changed;
}

std::map<std::string, ContextLine> contextLines(const References& references,
                                                std::string_view body) {
  constexpr auto kNone = std::string_view::npos;
  if (body.find('\r') != kNone) {
    const std::string lineFeeds = text::replacingAll(body, "\r\n", "\n");
    return contextLines(references, text::replacingAll(lineFeeds, "\r", "\n"));
  }
  std::map<std::string, ContextLine> lines;
  std::unordered_set<std::string_view> pending(references.begin(), references.end());
  int index = 0;
  size_t counted = 0;  // line feeds before it are in `index`
  for (size_t open = body.find("[["); open != kNone && !pending.empty();
       open = body.find("[[", counted)) {
    index += static_cast<int>(std::ranges::count(body.substr(counted, open - counted), '\n'));
    const size_t start = body.rfind('\n', open) + 1;
    const std::string_view line = body.substr(start, body.find('\n', open) - start);
    counted = start + line.size();
    forEachBracketed(line, [&](std::string_view reference) {
      if (pending.erase(reference) == 0) return;
      lines.emplace(reference, ContextLine{std::string(text::trimmed(line)), index});
    });
  }
  return lines;
}

}  // namespace lk::LKLinkRows
