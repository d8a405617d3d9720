#pragma once

// The edits of one line: a task line with another status, date, priority, project or text, and the
// comment lines under a task. Nothing means that the edit is refused; a result equal to the line
// means that there was nothing to do. Lines are valid UTF-8 without a line feed; the carriage
// return of a CR LF file stays on its line, except where a word is added at the line's end.
//
//     taskline::settingDue("- [ ] Sow beans due:2026-03-20", Day{2026, 4, 1})
//         == "- [ ] Sow beans due:2026-04-01"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Time.h"

namespace lk::taskline {

// --- Task lines, for which isTaskLine holds ------------------------------------------------------

// Refuses a status outside 0 to 3, the status that the task has, and a mark that nobody writes.
// Becoming done adds `done:` and the day, unless the line has a `done:`; leaving it removes every
// done date. Being cancelled has no date.
std::optional<std::string> settingStatus(std::string_view line, int raw, Day today);

// Removes every due date, then adds the one given. Refuses a day that has no written form.
std::optional<std::string> settingDue(std::string_view line, std::optional<Day> due);

// Removes every priority, then adds that of 1 to 3; any other value adds none.
std::string settingPriority(std::string_view line, int raw);

// Removes every word of the keywords, in any case, then adds one with the first keyword, unless
// the name is missing or empty. Refuses when the keywords cannot be searched for.
std::optional<std::string> settingProject(std::string_view line,
                                          const std::optional<std::string>& name,
                                          const std::vector<std::string>& keywords);

// Replaces all that stands after the mark.
std::optional<std::string> settingText(std::string_view line, std::string_view remainder);

// --- Comments ------------------------------------------------------------------------------------

// True when the line, without outer blanks, is ">" or begins with "> ".
bool isComment(std::string_view line);

// What a comment line says: without indentation and mark.
std::string commentText(std::string_view line);

// A comment line with the indentation given, ended as `neighbour` is ended.
std::string comment(std::string_view indentation, std::string_view text,
                    std::string_view neighbour);

// How deep a line stands: its leading tabs plus a quarter of its leading spaces.
size_t tabLevel(std::string_view line);

// True for text that may become part of a line: valid UTF-8 without a newline scalar.
bool fitsInLine(std::string_view text);

}  // namespace lk::taskline
