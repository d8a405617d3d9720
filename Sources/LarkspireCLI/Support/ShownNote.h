#pragma once

// A note as commands show it to the user.

#include <filesystem>
#include <string>

#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/Platform/Files.h"

namespace lk {

struct ShownNote {
  LKParsedDocument document;
  std::string title;
  FileInfo info;  // of the file as it was read
};

// Reads the note. Throws CLIError: general when the file cannot be read, invalidFrontMatter with a
// hint when it is no note.
ShownNote loadNote(const std::filesystem::path& url, const std::string& title);

// The note's document for scripts.
std::string jsonOf(const ShownNote& note, bool withBody);

// Prints the body as it stands; a line feed only where it ends without one.
void printBody(const std::string& body);

// The note's tasks in the order of their lines, as OutputFormatter has them.
std::string formatTasksOf(const UUID& note, bool asJSON);

}  // namespace lk
