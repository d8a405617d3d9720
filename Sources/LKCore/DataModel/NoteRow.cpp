#include "LKCore/DataModel/NoteRow.h"

#include <algorithm>

#include "LKCore/Base/Log.h"
#include "LKCore/Base/Words.h"
#include "LKCore/Tags/LKTagExtractor.h"

namespace lk {

namespace {

namespace fs = std::filesystem;

// Collects whether anything differed.
class FieldUpdate {
 public:
  template <typename Value, typename New>
  bool set(Value& field, const New& value) {
    if (field == value) return false;
    field = value;
    isChanged_ = true;
    return true;
  }

  void add(bool changed) { isChanged_ = isChanged_ || changed; }
  bool isChanged() const { return isChanged_; }

 private:
  bool isChanged_ = false;
};

bool isInTrash(const fs::path& url) {
  return std::find(url.begin(), url.end(), fs::path(".trash")) != url.end();
}

void syncFrontMatter(LKNote& note, const LKFileFrontMatter& frontMatter, FieldUpdate& update,
                     LKNoteSyncChanges& changes) {
  update.set(note.isFavourite, frontMatter.isFavourite);
  update.set(note.isBook, frontMatter.isBook);
  if (update.set(note.status, blockStatus(frontMatter))) {
    changes.statusBecameArchived = note.isArchived();
  }
  update.set(note.userProperties, frontMatter.userProperties);
  update.set(note.tagRanks, frontMatter.tagRanks);
  update.set(note.dailyDate, frontMatter.dailyDate);
  update.set(note.creationDate, frontMatter.created);
  if (frontMatter.contentHash) update.set(note.contentHash, *frontMatter.contentHash);
}

void syncCounters(LKNote& note, const std::string& bodyText,
                  const std::optional<fs::path>& attachmentsDirectory, Instant now,
                  FieldUpdate& update) {
  const ExtractionResult found = LKTagExtractor::extract(bodyText, attachmentsDirectory, now);
  update.set(note.activeTaskCount, found.activeTaskCount);
  update.set(note.doneTaskCount, found.doneTaskCount);
  update.set(note.overdueTaskCount, found.overdueTaskCount);
  update.set(note.hasActiveTasks, found.hasActiveTasks);
  update.set(note.imageAttachments, found.imageAttachments);
  update.add(updateBodyDerivedCounters(note, bodyText));
}

}  // namespace

LKNoteSyncChanges syncProperties(LKNote& note, const fs::path& fileURL, const std::string& title,
                                 Instant modifiedDate, const LKFileFrontMatter& frontMatter,
                                 const std::string& bodyText,
                                 const std::optional<fs::path>& attachmentsDirectory, Instant now) {
  LKNoteSyncChanges changes;
  FieldUpdate update;
  update.set(note.title, title);
  update.set(note.fileURL, fileURL);
  const bool hadText = !note.text.empty();
  const bool bodyChanged = update.set(note.text, bodyText) && hadText;
  if (update.set(note.isTrashed, isInTrash(fileURL))) {
    changes.trashedChanged = true;
    changes.newTrashedValue = note.isTrashed;
  }
  syncFrontMatter(note, frontMatter, update, changes);
  syncCounters(note, bodyText, attachmentsDirectory, now, update);
  if (bodyChanged && modifiedDate <= note.modifiedDate) {
    log::error("MTIME-WEDGE: body changed but mtime did not advance — note " + note.id.text() +
               " incoming " + formatISO8601(modifiedDate) + " cached " +
               formatISO8601(note.modifiedDate));
  }
  changes.anyChanged = update.isChanged();
  const bool isLater = modifiedDate > note.modifiedDate;
  if (modifiedDate != note.modifiedDate && (update.isChanged() || isLater)) {
    note.setModifiedDate(modifiedDate);
    changes.anyChanged = true;
  }
  return changes;
}

bool updateBodyDerivedCounters(LKNote& note, std::string_view bodyText) {
  FieldUpdate update;
  update.set(note.lineCount, static_cast<int>(wordCount(bodyText)));
  update.set(note.size, static_cast<int64_t>(bodyText.size()));
  return update.isChanged();
}

bool matchesOnLaunch(const LKNote& note, Instant modifiedDate, const std::optional<fs::path>& url,
                     std::string_view contentDigest) {
  if (modifiedDate != note.modifiedDate || url != note.fileURL) return false;
  return !note.fileDigest || contentDigest.empty() || *note.fileDigest == contentDigest;
}

}  // namespace lk
