#include "LKCore/DailyNotes/LKDailyNoteService.h"

#include <array>
#include <cerrno>
#include <string_view>

#include "LKCore/Base/DatePattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/NoteRepository/LKNoteFileError.h"
#include "LKCore/NoteRepository/LKNoteFileService.h"
#include "LKCore/Platform/Files.h"

namespace lk {

LKDailyNoteError LKDailyNoteError::readOnly() {
  return {Case::readOnly,
          "This collection is read-only. Daily notes cannot be created or modified."};
}

LKDailyNoteError LKDailyNoteError::encoding() {
  return {Case::encoding, "Could not encode daily note as UTF-8."};
}

namespace LKDailyNoteService {

namespace fs = std::filesystem;

namespace {

struct NearDay {
  int offset;  // from today
  const char* name;
};

constexpr std::array<NearDay, 3> kNearDays = {
    {{0, "today's daily note"}, {-1, "yesterday's daily note"}, {1, "tomorrow's daily note"}}};

// Runs a write of the note file service, whose refusals then speak of daily notes.
template <typename Write>
auto asDailyNote(const Write& write) {
  try {
    return write();
  } catch (const LKNoteFileError& error) {
    throw error.kind() == LKNoteFileError::Case::readOnly ? LKDailyNoteError::readOnly()
                                                          : LKDailyNoteError::encoding();
  }
}

std::string appended(std::string body, std::string_view text, bool separatedByBlankLine) {
  if (!body.empty() && !body.ends_with('\n')) body += '\n';
  if (separatedByBlankLine && !body.empty() && !body.ends_with("\n\n")) body += '\n';
  return body.append(text).append("\n");
}

// With line feeds alone, and none at the end.
std::string appendableText(const std::string& text) {
  std::string lines = text::replacingAll(text::replacingAll(text, "\r\n", "\n"), "\r", "\n");
  while (lines.ends_with('\n')) lines.pop_back();
  return lines;
}

}  // namespace

// --- Days and names ------------------------------------------------------------------------------

Day normalisedDailyDate(Instant date) {
  return Day::local(date);
}

Instant localDay(Day stored) {
  return stored.localStart();
}

std::string dayKeyForStored(Day stored) {
  return LKDateOnly::dayKey(stored);
}

std::string dayKeyForLocalDay(Instant localDay) {
  return LKDateOnly::localDayKey(localDay);
}

std::string filename(Day day) {
  return dayKeyForStored(day) + ".md";
}

fs::path dailyNoteURL(Day day, const fs::path& collection) {
  return collection / ".daily" / filename(day);
}

std::string spelledDay(Day day) {
  constexpr int64_t kHalfADay = 43'200;  // noon is this day, however the clocks change at its start
  std::string spelled =
      formatted({day.localStart().seconds + kHalfADay, 0}, "EEEE d MMMM yyyy", "");
  return spelled.empty() ? LKDateOnly::text(day) : spelled;
}

std::string spokenName(Day stored, Instant now) {
  const Day today = Day::local(now);
  for (const auto& [offset, name] : kNearDays) {
    if (stored == today.adding(offset)) return name;
  }
  return "the daily note for " + spelledDay(stored);
}

// --- Files ---------------------------------------------------------------------------------------

fs::path createIfNeeded(Day day, const fs::path& collection, const std::string& initialBody) {
  fs::path url = dailyNoteURL(day, collection);
  if (nameIsTaken(url)) return url;
  NewNote note;
  note.body = initialBody;
  note.dailyDate = day;
  try {
    return asDailyNote([&] { return LKNoteFileService::createNote(note, collection); });
  } catch (const FileError& error) {
    if (error.code() == EEXIST) return url;
    throw;
  }
}

fs::path appendText(const std::string& text, Day day, const fs::path& collection,
                    const std::string& seedBody, bool separatedByBlankLine) {
  if (!text::isValidUTF8(text)) throw LKDailyNoteError::encoding();
  fs::path url = createIfNeeded(day, collection, seedBody);
  const std::string added = appendableText(text);
  updateBody(url,
             [&](const std::string& body) { return appended(body, added, separatedByBlankLine); });
  return url;
}

bool updateBody(const fs::path& url,
                const std::function<std::string(const std::string& body)>& transform) {
  return asDailyNote([&] { return LKNoteFileService::updateBody(url, transform); });
}

}  // namespace LKDailyNoteService

}  // namespace lk
