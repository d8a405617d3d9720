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

struct ChosenTask {
  ResolvedNote note;
  TaskSelector selector;
};

ChosenTask chosenTask(const TaskChoice& choice, const fs::path& collection,
                      const GlobalOptions& options, CacheReader& cache) {
  const TaskSelector selector = makeSelector(choice.text, choice.id);
  requireWritable(collection);
  return {resolveTaskNote(choice.note, selector, collection, options, cache), selector};
}

void reportTask(const GlobalOptions& options, const std::string& deed, const ChosenTask& chosen,
                const UUID& task) {
  printLine(OutputFormatter::formatTaskResult(deed + " " + chosen.note.title, task, options.json));
}

void transitionTask(const TaskChoice& task, const GlobalOptions& options, TaskStatus to,
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
  const ChosenTask chosen = chosenTask(*this, collection, options, cache);
  const UUID changed = transformSelectedTask(chosen.note, chosen.selector, transform);
  reportTask(options, deed, chosen, changed);
}

void TasksCompleteCommand::run() {
  transitionTask(task, options, TaskStatus::done, "Completed task in");
}

void TasksCancelCommand::run() {
  transitionTask(task, options, TaskStatus::cancelled, "Cancelled task in");
}

void TasksProgressCommand::run() {
  transitionTask(task, options, TaskStatus::inProgress, "Set in-progress in");
}

void TasksResetCommand::run() {
  transitionTask(task, options, TaskStatus::notStarted, "Reset task in");
}

void TasksRemoveCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  CacheReader cache(LKParts::tasks);
  const ChosenTask chosen = chosenTask(task, collection, options, cache);
  reportTask(options, "Removed task from", chosen,
             removeSelectedTask(chosen.note, chosen.selector));
}

}  // namespace lk
