// Any file and any edit of a task in it: it ends, and no byte changes but the task's line or its
// comments and the two lines of the block that say where tasks are.
//
// An input is a byte that chooses the edit, a byte for its number, a line of text for it, and the
// file.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/Tasks/LKTaskLiveChange.h"
#include "LKCore/Tasks/TaskEdit.h"

namespace {

const std::vector<std::string> kWordsForProjects = {"client", "\u00E9t\u00E9", "project"};

void require(bool holds) {
  if (!holds) std::abort();
}

lk::TaskEdit editOf(uint8_t choice, uint8_t number, const std::string& text) {
  const int raw = number % 6 - 1;
  const lk::Day day{2026, 3, 1 + number % 28};
  switch (choice % 8) {
    case 0:
      return lk::SetTaskStatus{raw, day};
    case 1:
      return number % 4 == 0 ? lk::SetTaskDue{} : lk::SetTaskDue{day};
    case 2:
      return lk::SetTaskPriority{raw};
    case 3:
      return lk::SetTaskProject{text, kWordsForProjects};
    case 4:
      return lk::SetTaskText{text};
    case 5:
      return lk::AddTaskComment{text};
    case 6:
      return lk::SetTaskComment{number % size_t{4}, text};
    default:
      return lk::SetTaskComments{std::vector<std::string>(number % size_t{4}, text)};
  }
}

// Which lines an edit may touch, in the file before and after it.
void requireOtherLines(const lk::FileMap& before, const lk::FileMap& after, size_t taskLine,
                       bool isOfComments) {
  require(after.bodyStart == before.bodyStart && after.lkTasksLine == before.lkTasksLine);
  for (size_t i = 0; i < taskLine; ++i) {
    const bool mayChange = i == before.lkTasksLine || i == before.lkFoldedLine;
    require(mayChange || after.lines[i] == before.lines[i]);
  }
  require(!isOfComments || after.lines[taskLine] == before.lines[taskLine]);
  size_t i = isOfComments ? before.commentRange(taskLine).end : taskLine + 1;
  size_t j = isOfComments ? after.commentRange(taskLine).end : taskLine + 1;
  require(before.lines.size() - i == after.lines.size() - j);
  for (; i < before.lines.size(); ++i, ++j) require(before.lines[i] == after.lines[j]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  const std::string_view input(reinterpret_cast<const char*>(data) + 2, size - 2);
  const size_t lineEnd = std::min(input.find('\n'), input.size());
  const std::string text(input.substr(0, lineEnd));
  const std::string_view content = input.substr(std::min(lineEnd + 1, input.size()));
  lk::LKTaskDiscreteState::parse(content);
  if (!lk::text::isValidUTF8(content)) {
    require(!lk::editTask(content, lk::UUID(), 0, lk::SetTaskPriority{1}));
    return 0;
  }
  const lk::FileMap before(content);
  require(before.joined() == content);
  require(before.locateAll().size() <= before.entries.size());
  const lk::UUID task = before.entries.empty() ? lk::UUID() : before.entries.front().id;
  const int fallback = data[1] % 8;
  const auto edited = lk::editTask(content, task, fallback, editOf(data[0], data[1], text));
  if (!edited) return 0;
  const auto taskLine = before.locateTask(task, fallback);
  require(taskLine && edited->text != content && lk::text::isValidUTF8(edited->text));
  const lk::FileMap after(edited->text);
  requireOtherLines(before, after, *taskLine, data[0] % 8 >= 5);
  require(after.lines[*taskLine] == edited->line);
  if (!before.entries.empty()) require(after.locateTask(task, -1) == taskLine);
  return 0;
}
