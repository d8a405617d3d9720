#include "LarkspireCLI/Commands/TasksTransitionCommands.h"

#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/OutputFormatter.h"
#include "LarkspireCLI/Support/TaskLineEdits.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

void transition(const TaskChoice& task, const GlobalOptions& options, TaskStatus to,
                const std::string& deed) {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const Day today = Day::local(Instant::now());
  CacheReader cache(LKParts::tasks);
  task.change(collection, options, cache, deed, [&](std::string_view line) {
    return TaskLineEdits::transitionLine(line, to, today);
  });
}

}  // namespace

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

void TaskChoice::change(const fs::path& collection, const GlobalOptions& options,
                        CacheReader& cache, const std::string& deed,
                        const LineTransform& transform) const {
  const TaskSelector selector = makeSelector(text, id);
  requireWritable(collection);
  const ResolvedNote found = resolveTaskNote(note, selector, collection, options, cache);
  const UUID task = transformSelectedTask(found, selector, transform);
  printLine(OutputFormatter::formatTaskResult(deed + " " + found.title, task, options.json));
}

void TasksCompleteCommand::run() {
  transition(task, options, TaskStatus::done, "Completed task in");
}

void TasksCancelCommand::run() {
  transition(task, options, TaskStatus::cancelled, "Cancelled task in");
}

void TasksProgressCommand::run() {
  transition(task, options, TaskStatus::inProgress, "Set in-progress in");
}

void TasksResetCommand::run() {
  transition(task, options, TaskStatus::notStarted, "Reset task in");
}

void TasksRemoveCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const TaskSelector selector = makeSelector(task.text, task.id);
  requireWritable(collection);
  CacheReader cache(LKParts::tasks);
  const ResolvedNote found = resolveTaskNote(task.note, selector, collection, options, cache);
  const UUID removed = removeSelectedTask(found, selector);
  printLine(
      OutputFormatter::formatTaskResult("Removed task from " + found.title, removed, options.json));
}

}  // namespace lk
