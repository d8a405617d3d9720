#include "LKCore/DailyNotes/LKDailyNoteService.h"

#include <cerrno>

#include "LKCore/Base/Error.h"
#include "LKCore/NoteRepository/LKNoteFileError.h"
#include "LKCore/NoteRepository/LKNoteFileService.h"
#include "LKCore/Platform/Files.h"

namespace lk::LKDailyNoteService {

namespace fs = std::filesystem;

std::string filename(Day day) {
  return LKDateOnly::dayKey(day) + ".md";
}

fs::path dailyNoteURL(Day day, const fs::path& collection) {
  return collection / ".daily" / filename(day);
}

fs::path createIfNeeded(Day day, const fs::path& collection, const std::string& initialBody) {
  fs::path url = dailyNoteURL(day, collection);
  if (nameIsTaken(url)) return url;
  NewNote note;
  note.body = initialBody;
  note.dailyDate = day;
  try {
    return LKNoteFileService::createNote(note, collection);
  } catch (const FileError& error) {
    if (error.code() == EEXIST) return url;
    throw;
  } catch (const LKNoteFileError& error) {
    if (error.kind() != LKNoteFileError::Case::readOnly) throw;
    throw Error("This collection is read-only. Daily notes cannot be created or modified.");
  }
}

}  // namespace lk::LKDailyNoteService
