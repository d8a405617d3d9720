#pragma once

// The manual: lk(1), a page for each command of the root, lk-tasks(1) with all its subcommands, and
// the pages of other sections. What a command takes comes from the command tree; what only a person
// can tell comes from a folder of additions:
//
//     lk-tasks.man        sections of roff for lk-tasks(1), each under its ".SH" line. The text
//                         under DESCRIPTION follows what the tree says, SEE ALSO joins the common
//                         references, all others stand in the order of the file. What stands
//                         between .EX and .EE is plain text, not roff
//     lk-note-format.5    a page of its own, taken as it is
//
// The build asks for it with a command line of its own, which is no part of the command tree:
//
//     lk __manual Documentation/man build/release/man

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Error.h"

namespace lk {

// The first word of such a command line.
inline constexpr std::string_view manualWord = "__manual";

// An addition that has no page, or a section out of place.
class ManualError : public Error {
 public:
  using Error::Error;
};

struct ManualPage {
  std::string name;  // of its file: "lk-tasks.1"
  std::string text;  // roff in ASCII
};

// Every page, lk.1 first. The same additions always give the same bytes. Throws ManualError, and
// FileError for a folder or file that cannot be read.
std::vector<ManualPage> manualPages(const std::filesystem::path& additions);

// Writes the pages into a folder, made when missing; `words` are those after `manualWord`. Throws
// what `manualPages` throws, ManualError for other than two words, FileError.
void writeManual(const std::vector<std::string>& words);

}  // namespace lk
