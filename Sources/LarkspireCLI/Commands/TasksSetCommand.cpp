#include "LarkspireCLI/Commands/TasksSetCommand.h"

namespace lk {

void TasksSetCommand::declare(ArgumentList& arguments) {
  task.declare(arguments);
  arguments.option("--due", due, "Set due date (e.g. 2026-04-15, today, next monday).").valueName =
      "date";
  arguments.flag("--clear-due", clearDue, "Remove the due date.");
  arguments.option("--priority", priority, "Set priority (high, medium, low).").choices = {
      "high", "medium", "low"};
  arguments.flag("--clear-priority", clearPriority, "Remove the priority.");
  Argument& projectArgument = arguments.option("--project", project, "Set the project.");
  projectArgument.valueName = "name";
  projectArgument.completion = Completion::project;
  arguments.flag("--clear-project", clearProject, "Remove the project.");
  Argument& contextsArgument = arguments.option(
      "--context", contexts,
      "Set the context(s) — repeat or comma-separate for several. Replaces any existing contexts.");
  contextsArgument.valueName = "name";
  contextsArgument.completion = Completion::context;
  arguments.flag("--clear-context", clearContext, "Remove all contexts.");
}

void TasksSetCommand::run() {
  throwComesLater("tasks set");
}

}  // namespace lk
