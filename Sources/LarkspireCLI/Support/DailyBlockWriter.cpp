#include "LarkspireCLI/Support/DailyBlockWriter.h"

#include "LKCore/DailyNotes/DailyNoteBlocks.h"
#include "LKCore/DailyNotes/LKDailyNoteService.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/DailyNoteSeed.h"
#include "LarkspireCLI/Support/DateParser.h"
#include "LarkspireCLI/Support/NoteWriting.h"

namespace lk::DailyBlockWriter {

namespace fs = std::filesystem;

Day targetDate(const std::optional<std::string>& text, Instant now) {
  const Day today = Day::local(now);
  if (!text) return today;
  const auto day = DateParser::parse(*text, today);
  if (!day) {
    throw CLIError::general("\"" + *text +
                            "\" is no date. Use e.g. 2026-03-14 or \"last friday\".");
  }
  return *day;
}

void requireWritableDailyNotes(const fs::path& collection) {
  requireWritable(collection, LKDailyNoteError::readOnly().description());
}

void writeDailyNote(const std::function<void()>& write) {
  try {
    writeNotes(write);
  } catch (const LKDailyNoteError& error) {
    throw CLIError::general(error.description());
  }
}

fs::path createNote(Day day, const fs::path& collection) {
  requireWritableDailyNotes(collection);
  const std::string seed = dailyNoteSeedBody(day);
  fs::path note;
  writeDailyNote([&] { note = LKDailyNoteService::createIfNeeded(day, collection, seed); });
  return note;
}

fs::path requireNote(Day day, const fs::path& collection) {
  fs::path note = LKDailyNoteService::dailyNoteURL(day, collection);
  if (!nameIsTaken(note)) return createNote(day, collection);
  requireWritableDailyNotes(collection);
  requireReadableBlock(note);
  return note;
}

TaskBlock refreshTaskBlock(const fs::path& note, const std::string& sections) {
  bool hadBlock = false;
  writeDailyNote([&] {
    LKDailyNoteService::updateBody(note, [&](const std::string& body) {
      hadBlock =
          LKDailyNoteService::generatedBlockRange(body, LKDailyNoteService::taskBlockHeadings)
              .has_value();
      return LKDailyNoteService::withTaskBlock(body, sections);
    });
  });
  if (!sections.empty()) return TaskBlock::updated;
  return hadBlock ? TaskBlock::removed : TaskBlock::none;
}

void refreshActivityBlock(const fs::path& note, const std::string& block) {
  writeDailyNote([&] {
    LKDailyNoteService::updateBody(note, [&](const std::string& body) {
      return LKDailyNoteService::withActivityBlock(body, block);
    });
  });
}

}  // namespace lk::DailyBlockWriter
