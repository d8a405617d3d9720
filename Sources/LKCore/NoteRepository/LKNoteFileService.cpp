#include "LKCore/NoteRepository/LKNoteFileService.h"

#include <cerrno>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/Collections/LKCollectionStore.h"
#include "LKCore/NoteFiles/LKFileDates.h"
#include "LKCore/NoteFiles/LKFileWrite.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/NoteFiles/LKRank.h"
#include "LKCore/NoteFiles/LKSyncError.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/NoteRepository/LKNoteFileError.h"
#include "LKCore/NoteRepository/OpenCache.h"
#include "LKCore/Platform/Files.h"

namespace lk::LKNoteFileService {

namespace fs = std::filesystem;

namespace {

void assertWritable(const fs::path& url) {
  const auto record = LKCollectionStore::shared().collectionContaining(url);
  if (record && record->mode == LKCollectionMode::readOnly) throw LKNoteFileError::readOnly();
}

void assertEncodable(const std::string& text) {
  if (!text::isValidUTF8(text)) throw LKNoteFileError::encoding();
}

LKParsedDocument readDocument(const fs::path& file, const fs::path& url) {
  const std::string bytes = readFile(file);
  if (!text::isValidUTF8(bytes)) throw LKSyncError::invalidFrontMatter(url);
  try {
    return parseDocument(bytes);
  } catch (const LKSyncError&) {
    throw LKSyncError::invalidFrontMatter(url);  // now with the file's true name
  }
}

void applyProperties(std::map<std::string, std::string>& properties,
                     const std::map<std::string, std::optional<std::string>>& updates) {
  for (const auto& [key, value] : updates) {
    if (value) {
      properties[key] = *value;
    } else {
      properties.erase(key);
    }
  }
}

bool hasArchivedStatus(const LKFileFrontMatter& frontMatter) {
  const auto status = frontMatter.userProperties.find("status");
  return status != frontMatter.userProperties.end() &&
         text::lowercased(status->second) == "archived";
}

LKFileFrontMatter frontMatterFor(const NewNote& note, const std::string& baseName, UUID id,
                                 const std::string& body) {
  LKFileFrontMatter frontMatter;
  frontMatter.id = id;
  frontMatter.created = Instant::now();
  if (!LKNoteFilename::isUntitledIgnoringCopySuffix(baseName)) frontMatter.title = baseName;
  frontMatter.dailyDate = note.dailyDate;
  frontMatter.taskEntries = deriveTaskEntries(body, {});
  frontMatter.userProperties = note.userProperties;
  frontMatter.nameLocked = note.nameLocked;
  frontMatter.isFavourite = note.isFavourite;
  return frontMatter;
}

// Brings the block into line with the body and writes both.
void writeDocument(LKParsedDocument& document, const fs::path& url, const FileLock& lock) {
  LKFileFrontMatter& frontMatter = document.frontMatter;
  frontMatter.taskEntries = deriveTaskEntries(document.body, frontMatter.taskEntries);
  frontMatter.title = LKNoteFilename::displayName(url);
  const std::string file = serialize(frontMatter, document.body);
  assertEncodable(file);
  LKFileWrite::atomically(file, lock);
}

// Under the file's lock. Gives what was written.
LKParsedDocument applyChange(const fs::path& url, const NoteChange& change) {
  const FileLock lock = FileLock::forUpdate(url);
  LKParsedDocument document = readDocument(lock.path(), url);
  LKFileFrontMatter& frontMatter = document.frontMatter;
  std::string body = normaliseIndentation(document.body);
  if (change.documentTransform) change.documentTransform(body, frontMatter);
  // What comes in is brought to the form of what is there: reading would take CR LF for two ends.
  if (change.bodyTransform) body = normaliseIndentation(change.bodyTransform(std::move(body)));
  // Reading made a flag of the property; the flag goes with it.
  const bool wasArchived = hasArchivedStatus(frontMatter);
  applyProperties(frontMatter.userProperties, change.propertyUpdates);
  if (wasArchived && !hasArchivedStatus(frontMatter)) frontMatter.isArchived = false;
  if (change.isFavourite) frontMatter.isFavourite = *change.isFavourite;
  if (change.blockTransform) change.blockTransform(frontMatter);
  document.body = std::move(body);
  writeDocument(document, url, lock);
  return document;
}

fs::path create(const NewNote& note, FreeNames& names, Durability durability) {
  const fs::path& collectionRoot = names.folder();
  assertWritable(collectionRoot);
  const UUID id = note.noteID.value_or(UUID::random());
  const fs::path folder = note.dailyDate ? collectionRoot / ".daily" : collectionRoot;
  createFolders(folder);
  const std::string body = normaliseIndentation(note.body);
  const bool hasFixedName = note.dailyDate || note.untitled;
  const std::string title = note.dailyDate  ? LKDateOnly::dayKey(*note.dailyDate)
                            : note.untitled ? id.text()
                                            : sanitiseFilename(note.title);
  while (true) {
    const std::string name = hasFixedName ? title + ".md" : names.next(title, ".md");
    const std::string baseName = name.substr(0, name.size() - 3);
    const LKFileFrontMatter frontMatter = frontMatterFor(note, baseName, id, body);
    const std::string file = serialize(frontMatter, body);
    assertEncodable(file);
    fs::path url = folder / name;
    if (LKFileWrite::createAtomically(file, url, durability)) {
      updateTasksInCache(url, id, body, frontMatter.taskEntries);
      return url;
    }
    // Somebody took the name in between: a numbered name can move on, a fixed one cannot.
    if (hasFixedName) throw FileError(url, EEXIST);
  }
}

}  // namespace

void bringBack(LKFileFrontMatter& frontMatter) {
  frontMatter.isArchived = false;
  if (hasArchivedStatus(frontMatter)) frontMatter.userProperties.erase("status");
}

fs::path createNote(const NewNote& note, const fs::path& collectionRoot) {
  FreeNames names(collectionRoot);
  return create(note, names, Durability::now);
}

fs::path createNote(const NewNote& note, FreeNames& names) {
  return create(note, names, Durability::atFlush);
}

void updateNote(const fs::path& url, const NoteChange& change) {
  assertWritable(url);
  const LKParsedDocument written = retriedWhenChanged([&] { return applyChange(url, change); });
  updateTasksInCache(url, written.frontMatter.id, written.body, written.frontMatter.taskEntries);
}

bool updateBody(const fs::path& url,
                const std::function<std::string(const std::string&)>& transform) {
  assertWritable(url);
  LKParsedDocument document;
  const bool isChanged = retriedWhenChanged([&] {
    const FileLock lock = FileLock::forUpdate(url);
    document = readDocument(lock.path(), url);
    std::string body = transform(document.body);
    if (body == document.body) return false;
    document.body = std::move(body);
    writeDocument(document, url, lock);
    return true;
  });
  if (!isChanged) return false;
  updateTasksInCache(url, document.frontMatter.id, document.body, document.frontMatter.taskEntries);
  return true;
}

void setFrontMatter(const fs::path& url, ModificationTime time,
                    const std::function<void(LKFileFrontMatter&)>& transform) {
  assertWritable(url);
  LKParsedDocument document;
  std::string file;
  retriedWhenChanged([&] {
    const FileLock lock = FileLock::forUpdate(url);
    document = readDocument(lock.path(), url);
    transform(document.frontMatter);
    file = serialize(document.frontMatter, document.body);
    assertEncodable(file);
    const auto modified = lkContentModificationDate(lock.path());
    LKFileWrite::atomically(file, lock);
    if (time == ModificationTime::preserved && modified) {
      lkSetContentModificationDate(lock.path(), *modified);
    }
  });
  updateFlagsInCache(url, document.frontMatter, file);
}

void setTagRank(const fs::path& url, const std::string& tagPath,
                const std::optional<std::string>& rank, ModificationTime time) {
  setFrontMatter(url, time, [&](LKFileFrontMatter& frontMatter) {
    if (rank) {
      frontMatter.tagRanks[tagPath] = *rank;
    } else {
      frontMatter.tagRanks.erase(tagPath);
    }
  });
}

std::unordered_map<UUID, std::string> seedTagRanks(const std::vector<LKTagRankSeed>& notes,
                                                   const std::string& tagPath) {
  const std::vector<std::string> ranks = LKRank::spread(notes.size());
  std::unordered_map<UUID, std::string> ranksOfNotes;
  for (size_t i = 0; i < notes.size(); ++i) {
    setTagRank(notes[i].url, tagPath, ranks[i], ModificationTime::preserved);
    ranksOfNotes[notes[i].noteID] = ranks[i];
  }
  return ranksOfNotes;
}

void lockName(const fs::path& url) {
  setFrontMatter(url, ModificationTime::changes,
                 [](LKFileFrontMatter& frontMatter) { frontMatter.nameLocked = true; });
}

void moveNote(const fs::path& from, const fs::path& to) {
  assertWritable(from);
  assertWritable(to);
  // The lock waits for a change of the note that is under way; the name itself moves, so that a
  // note that is a symbolic link moves as a link.
  const FileLock lock = FileLock::forUpdate(from);
  if (!moveFile(from, to)) throw FileError(to, EEXIST);
}

void deleteNotePermanently(const fs::path& url) {
  assertWritable(url);
  // Waits for a change of the note that is under way, which would put the file there again.
  const FileLock lock = FileLock::forUpdate(url);
  removeFile(url);
}

std::string sanitiseFilename(std::string_view text) {
  return std::string(text::trimmedSpacesTabs(LKNoteFilename::stripIllegalCharacters(text)));
}

std::string uniqueFilename(const std::string& base, const fs::path& folder) {
  return FreeNames(folder).next(base, ".md");
}

std::string normaliseIndentation(std::string_view text) {
  constexpr size_t kSpacesPerTab = 4;
  std::string result;
  result.reserve(text.size());
  bool atLineStart = true;
  for (size_t i = 0; i < text.size();) {
    if (atLineStart) {
      const size_t first = std::min(text.find_first_not_of(' ', i), text.size());
      const size_t spaces = first - i;
      result.append(spaces / kSpacesPerTab, '\t').append(spaces % kSpacesPerTab, ' ');
      i = first;
      atLineStart = false;
      continue;
    }
    const char c = text[i++];
    if (c == '\r' && i < text.size() && text[i] == '\n') ++i;
    atLineStart = c == '\n' || c == '\r';
    result.push_back(atLineStart ? '\n' : c);
  }
  return result;
}

}  // namespace lk::LKNoteFileService
