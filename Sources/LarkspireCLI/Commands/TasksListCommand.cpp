#include "LarkspireCLI/Commands/TasksListCommand.h"

namespace lk {

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
  throwComesLater("tasks list");
}

}  // namespace lk
