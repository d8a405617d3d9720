#pragma once

// What the commands over daily notes share: which day is meant, the note of that day, and its
// generated blocks brought up to date.
//
//     const Day day = DailyBlockWriter::targetDate(date);
//     const std::filesystem::path note = DailyBlockWriter::requireNote(day, collection);
//
// Everything here throws CLIError.

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "LKCore/Base/Time.h"

namespace lk::DailyBlockWriter {

// The day of a --date, today without one. One that cannot be read is a general failure.
Day targetDate(const std::optional<std::string>& text, Instant now = Instant::now());

// Fails with general, in words about daily notes, when the collection is read-only.
void requireWritableDailyNotes(const std::filesystem::path& collection);

// Runs a write of LKDailyNoteService, turning what it throws into failures of a command.
void writeDailyNote(const std::function<void()>& write);

// Makes the note of a day that has none, with the user's seed. Gives its file.
std::filesystem::path createNote(Day day, const std::filesystem::path& collection);

// The file of the day's note, made when there is none. Fails for a collection that is read-only
// and for a file whose block cannot be read.
std::filesystem::path requireNote(Day day, const std::filesystem::path& collection);

// What became of the task block.
enum class TaskBlock { none, removed, updated };

// Both change the note that requireNote gives, and write nothing when nothing changes. `sections`
// and `block` are of LKDailyNoteService's functions of these names.
TaskBlock refreshTaskBlock(const std::filesystem::path& note, const std::string& sections);
void refreshActivityBlock(const std::filesystem::path& note, const std::string& block);

}  // namespace lk::DailyBlockWriter
