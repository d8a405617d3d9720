#include "LarkspireCLI/Commands/TasksAddCommand.h"

namespace lk {

void TasksAddCommand::declare(ArgumentList& arguments) {
  arguments.positional("text", text, "Task text.");
  Argument& noteArgument = arguments.option(
      "--note", note,
      "Target note title. Omit to add the task to today's daily note (created if needed).");
  noteArgument.valueName = "title";
  noteArgument.completion = Completion::noteTitle;
  arguments.option("--due", due, "Due date (YYYY-MM-DD or natural language).").valueName = "date";
  arguments.option("--priority", priority, "Priority (high, medium, low).").choices = {
      "high", "medium", "low"};
  Argument& projectArgument = arguments.option("--project", project, "Project to assign.");
  projectArgument.valueName = "name";
  projectArgument.completion = Completion::project;
  Argument& contextsArgument =
      arguments.option("--context", contexts,
                       "Context(s) — repeat the flag or comma-separate for several (e.g. --context "
                       "errand --context phone).");
  contextsArgument.valueName = "name";
  contextsArgument.completion = Completion::context;
  arguments
      .option("--status", status,
              "Initial status (not-started, in-progress). Default: not-started.")
      .choices = {"not-started", "in-progress"};
}

void TasksAddCommand::run() {
  throwComesLater("tasks add");
}

}  // namespace lk
