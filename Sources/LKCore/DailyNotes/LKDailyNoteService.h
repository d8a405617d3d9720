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

}  // namespace lk::LKDailyNoteService
