#include "LKCore/CacheSync/StoreTagCache.h"

#include <set>
#include <utility>

#include "LKCore/Backlinks/LKLinkRows.h"
#include "LKCore/Backlinks/LKTagLookup.h"
#include "LKCore/Base/Notices.h"
#include "LKCore/Base/Text.h"
#include "LKCore/CacheSync/LKTaskCacheSync.h"
#include "LKCore/DataModel/NoteRow.h"
#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/Tags/LKTagExtractor.h"

namespace lk {

namespace {

LKNote* wholeNote(const UUID& id, LKContext& context) {
  const auto notes = context.notes().fetch({.where = notesWithID(id), .limit = 1});
  return notes.empty() ? nullptr : notes.front();
}

// Without hashes, so that each id stays with its line.
std::vector<TaskEntry> entriesOfRows(const LKNote& note) {
  std::vector<TaskEntry> entries;
  for (const LKTask* task : note.tasks) {
    entries.push_back({task->paragraphIndex, task->id, std::nullopt});
  }
  return entries;
}

void setCounters(LKNote& note, ExtractionResult& found) {
  note.hasActiveTasks = found.hasActiveTasks;
  note.activeTaskCount = found.activeTaskCount;
  note.doneTaskCount = found.doneTaskCount;
  note.overdueTaskCount = found.overdueTaskCount;
  note.imageAttachments = std::move(found.imageAttachments);
}

}  // namespace

StoreTagCache::StoreTagCache(LKContext& context, const std::filesystem::path& collection)
    : context_(context), attachments_(collection / ".attachments"), icons_(collection) {}

std::optional<LKTagCache::Note> StoreTagCache::note(const UUID& id) {
  const LKNote* const row = wholeNote(id, context_);
  if (row == nullptr) return std::nullopt;
  Note note{row->text, {}, row->tagRanks};
  for (const LKTag* tag : row->tags) note.tags.insert(tag->text);
  return note;
}

void StoreTagCache::setNote(const UUID& id, const Note& note) {
  LKNote* const row = wholeNote(id, context_);
  if (row == nullptr) return;
  row->text = note.text;
  row->tagRanks = note.tagRanks;
  row->contentHash = computeContentHash(note.text);
  setTags(*row, note.tags);
  ExtractionResult found = LKTagExtractor::extract(note.text, attachments_);
  setCounters(*row, found);
  updateBodyDerivedCounters(*row, note.text);
  const auto links =
      LKLinkRows::sync(*row, note.text, found.dateRefs, found.backlinks, context_, false);
  const auto entries = deriveTaskEntries(note.text, entriesOfRows(*row));
  LKTaskCacheSync::syncTasks(id, note.text, entries, context_);  // saves
  if (links.change != LKLinkRows::Change::none) notices::post(kLinkRowsChanged);
}

std::vector<std::string> StoreTagCache::tags() {
  std::vector<std::string> texts;
  for (const LKTag* tag : context_.tags().fetch({.parts = LKParts::none})) {
    texts.push_back(tag->text);
  }
  return texts;
}

size_t StoreTagCache::noteCount(const std::string& tag) {
  const LKTag* const row = LKTagLookup::existingTag(tag, context_, LKParts::none);
  return row == nullptr ? 0 : row->notes.size();
}

void StoreTagCache::removeTag(const std::string& tag) {
  for (LKTag* row : context_.tags().fetch({.where = tagsWithText({tag})})) {
    context_.tags().remove(*row);
  }
  context_.save();
}

void StoreTagCache::setTags(LKNote& note, const std::set<std::string, std::less<>>& tags) {
  std::set<std::string> wanted;
  for (const std::string& tag : tags) wanted.insert(text::composed(tag));
  const std::vector<LKTag*> before = note.tags;
  for (LKTag* tag : before) {
    if (wanted.erase(text::composed(tag->text)) == 0) lk::removeTag(note, *tag);
  }
  for (const std::string& tag : tags) {
    if (wanted.contains(text::composed(tag))) addTag(note, tagNamed(tag));
  }
}

LKTag& StoreTagCache::tagNamed(const std::string& text) {
  if (LKTag* const tag = LKTagLookup::existingTag(text, context_)) return *tag;
  return context_.tags().insert(
      LKTagLookup::newTag(text, icons_.icon(text), UUID::random(), Instant::now()));
}

}  // namespace lk
