#include "LarkspireCLI/Support/FileScan.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKDocumentFile.h"
#include "LKCore/NoteFiles/LKSyncError.h"
#include "LKCore/NoteRepository/LKFileIndex.h"
#include "LKCore/Platform/Files.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

LKNote transientNote(LKDocumentFile&& document, bool isTrashed) {
  LKNote note;
  note.id = document.id;
  note.title = std::move(document.title);
  note.creationDate = document.createdDate.value_or(document.modifiedDate);
  note.setModifiedDate(document.modifiedDate);
  note.isFavourite = document.isFavourite;
  note.isTrashed = isTrashed;
  note.isBook = document.isBook;
  note.dailyDate = document.dailyDate;
  note.size = static_cast<int64_t>(document.text.size());
  note.userProperties = std::move(document.userProperties);
  note.tagRanks = std::move(document.tagRanks);
  const auto status = note.userProperties.find("status");
  if (status != note.userProperties.end()) note.status = status->second;
  if (document.isArchived) note.status = "archived";
  note.fileURL = std::move(document.fileURL);
  return note;
}

std::set<std::string> tagWords(const std::string& text) {
  static const Pattern tag(R"((?<=\s|^)#([\w/]+))");
  std::set<std::string> words;
  for (const Pattern::Match& match : tag.findAll(text)) {
    if (match[1]) words.emplace(match[1]->of(text));
  }
  return words;
}

}  // namespace

bool isInTrash(const fs::path& file, const fs::path& collection) {
  const fs::path inside = file.lexically_relative(collection);
  return std::find(inside.begin(), inside.end(), ".trash") != inside.end();
}

std::deque<LKNote> scanNotesFromFiles(const fs::path& collection) {
  std::deque<LKNote> notes;
  for (const fs::path& file : LKFileIndex::noteFiles(collection)) {
    try {
      notes.push_back(transientNote(LKDocumentFile::parse(file), isInTrash(file, collection)));
    } catch (const LKSyncError&) {
      continue;  // no note, or not to be read
    }
  }
  return notes;
}

std::vector<TagRow> scanTagsFromFiles(const fs::path& collection) {
  std::map<std::string, int64_t> counts;
  for (const fs::path& file : LKFileIndex::noteFiles(collection)) {
    if (isInTrash(file, collection)) continue;
    try {
      const std::string text = readFile(file);
      if (!text::isValidUTF8(text)) continue;
      for (const std::string& tag : tagWords(text)) ++counts[tag];
    } catch (const FileError&) {
      continue;
    }
  }
  std::vector<TagRow> rows;
  for (const auto& [tag, count] : counts) rows.push_back({tag, count});
  return rows;
}

}  // namespace lk
