#include "LarkspireCLI/Commands/TasksListCommand.h"

#include <algorithm>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteRepository/LKNoteFilters.h"
#include "LKCore/Tasks/LKTaskPriority.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/OutputFormatter.h"
#include "LarkspireCLI/Support/TaskArguments.h"
#include "LarkspireCLI/Support/TaskSelector.h"

namespace lk {

namespace {

// What the options ask of a task, days apart, read once.
class TaskListFilter {
 public:
  explicit TaskListFilter(const TasksListCommand& command) : command_(command) {
    if (command.days && *command.days < 1) throw CLIError::general("--days must be 1 or more.");
    if (command.status) status_ = parseStatus(*command.status);
    if (command.priority) {
      priority_ = LKTaskPriority::rawValue(priorityArgument(*command.priority));
    }
    if (command.note) noteKey_ = text::caseInsensitiveKey(*command.note);
  }

  bool passes(const LKTask& task) const {
    return hasStatus(task) && hasNote(task) && hasProject(task) && hasContext(task) &&
           (!priority_ || task.priority == *priority_);
  }

 private:
  bool hasStatus(const LKTask& task) const {
    const auto status = taskStatus(task.statusRaw);
    if (status_) return status == status_;
    return command_.all || (status && !isComplete(*status));
  }

  bool hasNote(const LKTask& task) const {
    return !noteKey_ ||
           (task.note != nullptr &&
            text::caseInsensitiveKey(task.note->title).find(*noteKey_) != std::string::npos);
  }

  bool hasProject(const LKTask& task) const {
    const std::string project = task.project.value_or("");
    if (project.empty()) return !command_.project;  // whatever the option's value
    if (command_.noProject) return false;
    return !command_.project || text::equalIgnoringCase(project, *command_.project);
  }

  bool hasContext(const LKTask& task) const {
    if (command_.noContext && !task.contexts.empty()) return false;
    return !command_.context || std::ranges::any_of(task.contexts, [&](const std::string& each) {
      return text::equalIgnoringCase(each, *command_.context);
    });
  }

  const TasksListCommand& command_;
  std::optional<TaskStatus> status_;
  std::optional<int> priority_;
  std::optional<std::string> noteKey_;
};

// Those that the options name; a task passes all of them.
std::vector<LKNoteFilters::DueWindow> dueWindows(const TasksListCommand& command) {
  constexpr int kDaysInWeek = 7;
  std::vector<LKNoteFilters::DueWindow> windows;
  const auto add = [&](LKNoteFilters::DueWindow::Kind kind, int days = 0) {
    windows.push_back({kind, days});
  };
  if (command.overdue) add(LKNoteFilters::DueWindow::Kind::overdue);
  if (command.dueToday) add(LKNoteFilters::DueWindow::Kind::today);
  if (command.dueTomorrow) add(LKNoteFilters::DueWindow::Kind::tomorrow);
  if (command.dueThisWeek) add(LKNoteFilters::DueWindow::Kind::nextDays, kDaysInWeek);
  if (command.days) add(LKNoteFilters::DueWindow::Kind::nextDays, *command.days);
  return windows;
}

}  // namespace

void TasksListCommand::declare(ArgumentList& arguments) {
  arguments.flag("--overdue", overdue, "Show only overdue tasks.");
  arguments.flag("--due-today", dueToday, "Show tasks due today.");
  arguments.flag("--due-tomorrow", dueTomorrow, "Show tasks due tomorrow.");
  arguments.flag("--due-this-week", dueThisWeek,
                 "Show tasks due this week (today and the next six days).");
  arguments.option("--days", days, "Show tasks due in the next N days, counting today.").valueName =
      "N";
  arguments.option("--priority", priority, "Filter by priority (high, medium, low).").choices = {
      "high", "medium", "low"};
  Argument& noteArgument = arguments.option("--note", note, "Filter by note title.");
  noteArgument.valueName = "title";
  noteArgument.completion = Completion::noteTitle;
  arguments
      .option("--status", status, "Filter by status (not-started, in-progress, done, cancelled).")
      .choices = {"not-started", "in-progress", "done", "cancelled"};
  Argument& projectArgument = arguments.option("--project", project, "Filter by project name.");
  projectArgument.valueName = "name";
  projectArgument.completion = Completion::project;
  Argument& contextArgument = arguments.option(
      "--context", context, "Filter by context (matches tasks carrying this context).");
  contextArgument.valueName = "name";
  contextArgument.completion = Completion::context;
  arguments.flag("--no-project", noProject,
                 "Only tasks with no project assigned (inline or inherited).");
  arguments.flag("--no-context", noContext, "Only tasks with no context assigned.");
  arguments.flag("--all", all, "Include done and cancelled tasks.");
}

void TasksListCommand::run() {
  resolvedCollection(options.collection, options.quiet);
  const TaskListFilter filter(*this);
  CacheReader cache(options.json ? LKParts::tasks : LKParts::taskLines);  // only JSON tells ids
  if (cache.container() == nullptr) {
    throw CLIError::general(
        "Task queries need an index, and lk couldn't build one from the note files.");
  }
  std::vector<LKTask*> tasks = liveTasks(cache);
  std::erase_if(tasks, [&](const LKTask* task) { return !filter.passes(*task); });
  const Instant now = Instant::now();
  for (const LKNoteFilters::DueWindow& window : dueWindows(*this)) {
    tasks = LKNoteFilters::tasks(tasks, window, now);
  }
  printLine(OutputFormatter::formatTaskList(tasks, options.json, Terminal::ofStandardOutput()));
}

}  // namespace lk
