#pragma once

// What the system writes into a daily note: the list of tasks that are due and the list of notes
// that changed, each in a region of its own that no index reads (LKNoIndexRegion.h), and the body
// that a new note begins with.
//
//     <!--lk:noindex-->
//     ## Overdue
//
//     - [ ] Pay rent due:2026-03-01 — [[Home]]
//
//     ## Due Today
//
//     - [ ] Call Sam due:2026-03-14 — [[Work]]
//
//     <!--/lk:noindex-->
//
// A block is found again by its marker and the heading right below it. Refreshing replaces it
// whole; a block that somebody left without its closing marker is text like any other.

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/TextRange.h"
#include "LKCore/Base/Time.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/DailyNotes/DailySeed.h"
#include "LKCore/DataModel/Entities.h"

namespace lk::LKDailyNoteService {

inline constexpr std::array<std::string_view, 2> taskBlockHeadings = {"## Overdue", "## Due Today"};
inline constexpr std::string_view activityBlockHeading = "## Activity";

// What the rows of tasks must come with.
inline constexpr LKParts taskSectionParts = LKParts::text | LKParts::taskLines;

// --- Texts ---------------------------------------------------------------------------------------

// The block of what is due on the day or was due before it, of those of the tasks that are open
// and stand in a note that is neither trashed nor archived nor the day's own; in their order. The
// rows come with `taskSectionParts`. Two line feeds end it; empty when nothing is due.
std::string taskSections(Day date, const std::vector<LKTask*>& activeTasks);

// The block of the notes that were created on the day, and those that were modified on it, sorted
// by title. Trashed, archived and daily notes and the note `excluding` don't count. `now` is
// when the block says that it was made. One line feed ends it.
std::string activityBlock(Day forDay, const std::vector<LKNote*>& notes,
                          const std::optional<UUID>& excluding, Instant now);

// "# Saturday 14 March 2026", a blank line and the task block, if there is one.
std::string defaultInitialBody(Day date, const std::vector<LKTask*>& activeTasks);

// The body of a new note: for `blank` its heading and `blankSuffix`, else the default body, with
// overdueTasksAndActivity followed by the activity of the day before.
std::string startingBody(Day date, DailySeed seed, const std::vector<LKTask*>& activeTasks,
                         const std::vector<LKNote*>& notes, std::string_view blankSuffix,
                         Instant now = Instant::now());

// --- Places --------------------------------------------------------------------------------------

// From the opening marker with the heading right below it to the end of the closing marker; nothing
// when there is none, or another region opens before it closes.
std::optional<TextRange> noIndexBlockRange(std::string_view text, std::string_view heading);
// The same for the first of the headings that has one.
std::optional<TextRange> generatedBlockRange(std::string_view text,
                                             std::span<const std::string_view> headings);

// The range with as many of the line feeds around it that one blank line stays between its
// neighbours, and one line feed at the end of the text.
TextRange removalRange(TextRange range, std::string_view text);

// --- Bodies --------------------------------------------------------------------------------------

// The body with `sections` as its task block: in place of the one that it has, or else after the
// first line with a blank line around it. No sections take the block away.
std::string withTaskBlock(std::string_view body, std::string_view sections);

// The body with the block in place of the activity block that it has, or else at its end behind a
// blank line.
std::string withActivityBlock(std::string_view body, std::string_view block);

}  // namespace lk::LKDailyNoteService
