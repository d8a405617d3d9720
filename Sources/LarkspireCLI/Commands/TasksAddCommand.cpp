#include "LarkspireCLI/Commands/TasksAddCommand.h"

#include <algorithm>
#include <filesystem>

#include "LKCore/Base/Text.h"
#include "LKCore/DailyNotes/LKDailyNoteService.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Tasks/TaskLine.h"
#include "LKCore/Terminology/LKProjectTerms.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/DailyBlockWriter.h"
#include "LarkspireCLI/Support/DailyNoteSeed.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/OutputFormatter.h"
#include "LarkspireCLI/Support/RequiredNote.h"
#include "LarkspireCLI/Support/TaskArguments.h"
#include "LarkspireCLI/Support/TaskSelector.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

// The line that the options ask for, judged before anything is written.
struct NewTask {
  std::string line;
  std::optional<std::string> project;
  std::vector<std::string> contexts;

  explicit NewTask(const TasksAddCommand& command) {
    const std::string_view words = text::trimmed(command.text);
    if (words.empty()) throw CLIError::general("Task text cannot be empty.");
    if (!taskline::fitsInLine(words)) throw CLIError::general("A task is one line of UTF-8 text.");
    line = std::string("- [") + markOf(initialStatus(command)) + "] ";
    line += words;
    if (command.due) line += " due:" + LKDateOnly::text(dueArgument(*command.due));
    if (command.priority) line += " priority:" + priorityArgument(*command.priority);
    if (command.project) {
      project = projectArgument(*command.project);
      line += " " + LKProjectTerms::snapshot()->metadataKeywords.front() + ":" + *project;
    }
    if (command.contexts.empty()) return;
    contexts = contextArguments(command.contexts);
    for (size_t i = 0; i < contexts.size(); ++i) line += (i == 0 ? " context:" : ",") + contexts[i];
  }

 private:
  static TaskStatus initialStatus(const TasksAddCommand& command) {
    const TaskStatus status =
        command.status ? parseStatus(*command.status) : TaskStatus::notStarted;
    if (!isComplete(status)) return status;
    throw CLIError::general("\"" + *command.status +
                            "\" is no status to begin with. Use not-started or in-progress.");
  }
};

// The last task of the file that says what the line says.
std::optional<UUID> idOfLastTask(const fs::path& url, const std::string& line) {
  const auto document = parseDocumentIfValid(readFile(url));
  if (!document) return std::nullopt;
  const std::vector<TaskEntry>& entries = document->frontMatter.taskEntries;
  const std::string hash = taskHash(line);
  const auto found = std::find_if(entries.rbegin(), entries.rend(),
                                  [&](const TaskEntry& entry) { return entry.hash == hash; });
  return found == entries.rend() ? std::nullopt : std::optional(found->id);
}

std::optional<UUID> addToToday(const fs::path& collection, const std::string& line) {
  const Day today = Day::local(Instant::now());
  const std::string seed = dailyNoteSeedBodyIfMissing(today, collection);
  std::optional<UUID> id;
  DailyBlockWriter::writeDailyNote([&] {
    id = idOfLastTask(LKDailyNoteService::appendText(line, today, collection, seed, true), line);
  });
  return id;
}

}  // namespace

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
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const NewTask task(*this);
  requireWritable(collection);
  std::optional<ResolvedNote> target;
  if (note) target = requireNoteIn(collection, options, *note);
  CacheReader cache(LKParts::tasks);
  warnOfNearNames(options, cache, task.contexts, task.project);
  const auto id = target ? appendTask(*target, task.line) : addToToday(collection, task.line);
  const std::string where = target ? target->title : "today's daily note";
  printLine(OutputFormatter::formatTaskResult("Added task to " + where, id, options.json));
}

}  // namespace lk
