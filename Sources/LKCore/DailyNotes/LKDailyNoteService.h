#pragma once

// Daily notes: ordinary notes with a day, kept in the collection's `.daily` folder and named
// after it, e.g. `.daily/20260314.md`.
//
//     const Day day = LKDailyNoteService::normalisedDailyDate(Instant::now());
//     LKDailyNoteService::appendText("Frost in the night.", day, collection,
//                                    LKDailyNoteService::defaultInitialBody(day, tasks), false);
//
// The day is stored without a zone, so a note made at 23:30 belongs to that day wherever it is
// read. What a daily note begins with and its generated blocks are in DailyNoteBlocks.h.

#include <filesystem>
#include <functional>
#include <string>
#include <utility>

#include "LKCore/Base/Error.h"
#include "LKCore/Base/Time.h"

namespace lk {

// A refusal that says nothing about the disk.
class LKDailyNoteError : public Error {
 public:
  enum class Case { readOnly, encoding };

  static LKDailyNoteError readOnly();
  static LKDailyNoteError encoding();

  Case kind() const noexcept { return case_; }

 private:
  LKDailyNoteError(Case which, std::string message) : Error(std::move(message)), case_(which) {}

  Case case_;
};

namespace LKDailyNoteService {

// --- Days and names ------------------------------------------------------------------------------

// The day of the instant in the current time zone: what is stored of it.
Day normalisedDailyDate(Instant date);
// The first moment of a stored day in the current time zone.
Instant localDay(Day stored);

// "20260314".
std::string dayKeyForStored(Day stored);
std::string dayKeyForLocalDay(Instant localDay);

// "20260314.md".
std::string filename(Day day);

std::filesystem::path dailyNoteURL(Day day, const std::filesystem::path& collection);

// "Saturday 14 March 2026", with the user's names of days and months.
std::string spelledDay(Day day);

// "today's daily note", and so for yesterday and tomorrow as seen from `now`; else "the daily note
// for " and the day spelled.
std::string spokenName(Day stored, Instant now);

// --- Files ---------------------------------------------------------------------------------------
//
// What these throw: LKDailyNoteError for a read-only collection and for text that is not UTF-8,
// otherwise what LKNoteFileService throws.

// The note of the day, made with `initialBody` when there is none. When another process makes it
// at the same moment, that one is the note.
std::filesystem::path createIfNeeded(Day day, const std::filesystem::path& collection,
                                     const std::string& initialBody);

// Adds the text at the end of the day's note, after a line feed or a blank line, and makes the
// note with `seedBody` first when there is none. Gives the note's file. Line ends of the text
// become line feeds, and the body then ends in one.
std::filesystem::path appendText(const std::string& text, Day day,
                                 const std::filesystem::path& collection,
                                 const std::string& seedBody, bool separatedByBlankLine);

// Changes the body and tells whether it did: a body that comes back as it was is not written.
bool updateBody(const std::filesystem::path& url,
                const std::function<std::string(const std::string& body)>& transform);

}  // namespace LKDailyNoteService

}  // namespace lk
