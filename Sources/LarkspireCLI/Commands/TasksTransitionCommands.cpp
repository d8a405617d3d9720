#include "LarkspireCLI/Commands/TasksTransitionCommands.h"

namespace lk {

void TaskChoice::declare(ArgumentList& arguments) {
  arguments.positional("text", text, "Task text to match (substring). Omit when using --id.");
  Argument& title = arguments.option(
      "--note", note,
      "Note title containing the task. Optional: without it the task is found across all notes, "
      "and an ambiguous match is refused.");
  title.valueName = "title";
  title.completion = Completion::noteTitle;
  arguments
      .option("--id", id,
              "Exact task UUID (from `tasks list --json`). Alternative to matching by text.")
      .valueName = "uuid";
}

void TasksCompleteCommand::run() {
  throwComesLater("tasks complete");
}

void TasksCancelCommand::run() {
  throwComesLater("tasks cancel");
}

void TasksProgressCommand::run() {
  throwComesLater("tasks progress");
}

void TasksResetCommand::run() {
  throwComesLater("tasks reset");
}

void TasksRemoveCommand::run() {
  throwComesLater("tasks remove");
}

}  // namespace lk
