#pragma once

// What the task commands do to one line of a note, as functions of text alone. A line has no line
// feed in it; one that a function edits is a task line (isTaskLine) and stays one, whatever stands
// directly behind its mark. Text is UTF-8.
//
//     replaceMetaToken("- [ ] Sow due:2026-03-20", "due", "2026-04-01")
//         == "- [ ] Sow due:2026-04-01"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Time.h"
#include "LKCore/Tasks/TaskStatus.h"

namespace lk::TaskLineEdits {

// The line with "key:value" at its end, behind one blank.
std::string setMetaToken(std::string_view line, std::string_view key, std::string_view value);

// The same in place of every word that readers take for that key's. "overdue:x" and "(due:x)" are
// other words and stay.
std::string replaceMetaToken(std::string_view line, std::string_view key, std::string_view value);

// The line without any "key:value", in this case alone and also at the end of a longer word, and
// without the blanks before each.
std::string clearMetaToken(std::string_view line, std::string_view key);

// The same for every keyword.
std::string clearProjectTokens(std::string_view line, const std::vector<std::string>& keywords);

// The line with the mark of the status. Becoming done adds `done:` and the day, unless the line has
// a `done:`; any other status takes away the first done date.
std::string transitionLine(std::string_view line, TaskStatus to, Day today);

// The line with one item of its `context:` and `contexts:` words replaced, or taken out where `to`
// is nothing. Both names are normalised. In a word that has the item, repeats and empty items go;
// a word that is left empty goes with the blank before it. Every other word stays as it is. The line
// may also be one that only readers take for a task, "- [X] a": its contexts are listed too.
std::string replacingContext(std::string_view line, std::string_view from,
                             const std::optional<std::string>& to);

// The numbers of the task lines that contain the text in any case; mark and metadata count.
std::vector<size_t> matchingTaskLineIndices(std::string_view body, std::string_view substring);

// The line without indentation and mark, as a person knows the task.
std::string taskLineDisplay(std::string_view line);

// The contexts in the values, each a list between commas: normalised, without empty ones and
// repeats, in their order.
std::vector<std::string> normalizeContexts(const std::vector<std::string>& values);

}  // namespace lk::TaskLineEdits
