#pragma once

// Daily notes: ordinary notes with a day, kept in the collection's `.daily` folder and named
// after it, e.g. `.daily/20260314.md`.

#include <filesystem>
#include <string>

#include "LKCore/Base/Time.h"

namespace lk::LKDailyNoteService {

// "20260314.md".
std::string filename(Day day);

std::filesystem::path dailyNoteURL(Day day, const std::filesystem::path& collection);

// The note of the day, made with `initialBody` when there is none. When another process makes it
// at the same moment, that one is the note. Throws what LKNoteFileService::createNote throws; for
// a read-only collection the error has daily notes in its words.
std::filesystem::path createIfNeeded(Day day, const std::filesystem::path& collection,
                                     const std::string& initialBody);

// Adds the text at the end of the day's note, after a line feed or a blank line, and makes the
// note with `seedBody` first when there is none. Gives the note's file. The body then ends in one
// line feed. Throws what createIfNeeded and LKNoteFileService::updateNote throw.
std::filesystem::path appendText(const std::string& text, Day day,
                                 const std::filesystem::path& collection,
                                 const std::string& seedBody, bool separatedByBlankLine);

}  // namespace lk::LKDailyNoteService
