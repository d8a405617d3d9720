#include <utility>

#include "LKCore/Backlinks/LKLinkRows.h"
#include "LKCore/Backlinks/LKTagLookup.h"
#include "LKCore/Backlinks/LKTitleIndex.h"
#include "LKCore/Base/Log.h"
#include "LKCore/Base/Notices.h"
#include "LKCore/Base/Text.h"
#include "LKCore/CacheSync/LKTaskCacheSync.h"
#include "LKCore/DataModel/NoteRow.h"
#include "LKCore/Import/LKImportActivity.h"
#include "LKCore/Import/LKImportEngine.h"
#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKFileWrite.h"
#include "LKCore/NoteFiles/LKNoteEdit.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Tags/LKTagExtractor.h"

namespace lk::LKImportEngine {

namespace fs = std::filesystem;

namespace {

// --- Rows ----------------------------------------------------------------------------------------

struct WrittenNote {
  LKFileFrontMatter frontMatter;
  std::string body;
  std::string file;  // all of its bytes
  fs::path url;
};

LKTag& tagRow(const std::string& tag, ImportContext& batch) {
  LKTag*& row = batch.tagsByText[text::composed(tag)];
  if (row != nullptr) return *row;
  row = LKTagLookup::existingTag(tag, *batch.context);
  if (row != nullptr) return *row;
  if (!batch.tagIcons) batch.tagIcons = LKTagIconStore(batch.destinationFolder).icons();
  const auto icon = batch.tagIcons->find(tag);
  const bool hasIcon = icon != batch.tagIcons->end();
  row = &batch.context->tags().insert(LKTagLookup::newTag(
      tag, hasIcon ? std::optional(icon->second) : std::nullopt, UUID::random(), Instant::now()));
  return *row;
}

void addTaskRows(LKNote& note, const std::vector<TaskEntry>& entries, const ExtractionResult& found,
                 LKContext& context) {
  const std::vector<std::string_view> tags(found.projectTags.begin(), found.projectTags.end());
  const auto inherited = LKTaskCacheSync::inheritableProject(tags);
  auto entry = entries.begin();  // both lists are in the order of the lines
  for (const TaskInfo& info : found.tasks) {
    while (entry != entries.end() && entry->paragraphIndex < info.paragraphIndex) ++entry;
    const bool isKnown = entry != entries.end() && entry->paragraphIndex == info.paragraphIndex;
    LKTask task;
    task.id = isKnown ? entry->id : UUID::random();
    LKTaskCacheSync::populate(task, info, inherited);
    setNote(context.tasks().insert(std::move(task)), &note);
  }
}

// Without targets: a note that comes later in the batch may be one.
void addLinkRows(LKNote& note, const ExtractionResult& found, LKContext& context) {
  const auto lines = LKLinkRows::contextLines(found.backlinks, note.text);
  for (const std::string& reference : found.backlinks) {
    LKBackLink link;
    link.id = UUID::random();
    link.targetNoteReference = reference;
    if (const auto line = lines.find(reference); line != lines.end()) {
      link.sourceParagraph = line->second.text;
      link.sourceParagraphIndex = line->second.index;
    }
    setNote(context.backLinks().insert(std::move(link)), &note);
  }
  for (const std::string& reference : found.dateRefs) {
    LKBackLink link;
    link.id = UUID::random();
    link.targetNoteReference = reference;
    setNote(context.backLinks().insert(std::move(link)), &note);
  }
}

void addRow(WrittenNote&& written, ImportContext& batch) {
  LKContext& context = *batch.context;
  LKNote row(LKNoteFilename::displayName(written.url), std::move(written.body));
  row.id = written.frontMatter.id;
  LKNote& note = context.notes().insert(std::move(row));
  const auto info = fileInfo(written.url);
  const Instant modified = info ? info->modified : Instant::now();
  const std::string body = note.text;
  syncProperties(note, written.url, note.title, modified, written.frontMatter, body,
                 batch.attachmentsDirectory);
  note.setModifiedDate(modified);
  note.contentHash = computeContentHash(body);
  note.fileDigest = computeRawDigest(written.file);
  const ExtractionResult found = LKTagExtractor::extract(body, batch.attachmentsDirectory);
  for (const std::string& tag : found.tags) addTag(note, tagRow(tag, batch));
  addTaskRows(note, written.frontMatter.taskEntries, found, context);
  addLinkRows(note, found, context);
  batch.importedNotes.push_back(&note);
}

// --- Files ---------------------------------------------------------------------------------------

fs::path urlFor(const std::string& fileName, const ImportContext& batch) {
  return batch.documentURLProvider ? batch.documentURLProvider(fileName)
                                   : batch.destinationFolder / fileName;
}

WrittenNote writeFile(const ImportedNote& note, ImportContext& batch) {
  WrittenNote written;
  written.body = LKNoteEdit::bodyInMemory(note.body);
  LKFileFrontMatter& frontMatter = written.frontMatter;
  frontMatter.id = UUID::random();
  frontMatter.created = note.createdDate.value_or(Instant::now());
  frontMatter.dailyDate = note.dailyNote;
  frontMatter.taskEntries = deriveTaskEntries(written.body, {});
  const std::string base = sanitizeFilename(note.baseName);
  createFolders(batch.destinationFolder);
  FreeNames& names = namesIn(batch.destinationFolder, batch);
  while (true) {
    const std::string name = nextAvailableImportName(base, names);
    written.url = urlFor(name, batch);
    frontMatter.title.reset();
    if (note.noteTitle != LKNoteFilename::displayName(written.url)) {
      frontMatter.title = note.noteTitle;
    }
    written.file = serialize(frontMatter, written.body);
    if (coordinatedWrite(written.file, written.url, note.modifiedDate)) return written;
  }
}

}  // namespace

fs::path writeImportedNote(const ImportedNote& note, ImportContext& importContext) {
  WrittenNote written = writeFile(note, importContext);
  fs::path url = written.url;
  if (importContext.context != nullptr) {
    try {
      addRow(std::move(written), importContext);
    } catch (const Error& error) {
      log::warning("the index did not take " + url.string() + ": " + error.description());
    }
  }
  return url;
}

void resolveBacklinkTargets(ImportContext& importContext) {
  if (importContext.context == nullptr || importContext.importedNotes.empty()) return;
  LKTitleIndex titles(*importContext.context);
  bool isChanged = false;
  for (const LKNote* note : importContext.importedNotes) {
    for (LKBackLink* link : note->backLinks) {
      if (link->targetNoteID) continue;
      const LKNote* const target = titles.noteForTitle(link->targetNoteReference);
      if (target == nullptr) continue;
      link->targetNoteID = target->id;
      isChanged = true;
    }
  }
  if (isChanged) notices::post(kLinkRowsChanged);
}

void finishImport(ImportContext& importContext) {
  if (importContext.context != nullptr) {
    try {
      resolveBacklinkTargets(importContext);
      importContext.context->save();
    } catch (const LKStoreError& error) {
      // The files are the truth, and the next look at them makes the rows.
      log::warning("the index did not take the imported notes: " + error.description());
    }
  }
  for (const auto& [folder, names] : importContext.names) flushFileSystem(folder);
}

std::string sanitizeFilename(std::string_view baseName) {
  std::string name = LKNoteFilename::sanitize(baseName);
  return name.empty() ? "Untitled" : name;
}

std::string nextAvailableImportName(const std::string& base, FreeNames& names) {
  return names.next(base, ".md");
}

bool coordinatedWrite(std::string_view data, const fs::path& url,
                      const std::optional<Instant>& modificationDate) {
  LKImportActivity::recordWritten(url);
  if (!LKFileWrite::createAtomically(data, url, Durability::atFlush)) {
    LKImportActivity::consumeImportEcho(url);  // the file that is there is somebody else's
    return false;
  }
  if (!modificationDate) return true;
  try {
    setModified(url, *modificationDate);
  } catch (const FileError& error) {
    log::debug("an imported note keeps the date of now: " + error.description());
  }
  return true;
}

std::optional<Instant> creationDate(const fs::path& url) {
  try {
    const auto info = fileInfo(url);
    if (!info) return std::nullopt;
    return info->created.value_or(info->modified);
  } catch (const FileError&) {
    return std::nullopt;
  }
}

FreeNames& namesIn(const fs::path& folder, ImportContext& importContext) {
  return importContext.names.try_emplace(folder, folder).first->second;
}

}  // namespace lk::LKImportEngine
