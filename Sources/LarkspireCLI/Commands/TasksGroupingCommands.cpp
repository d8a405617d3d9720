#include "LarkspireCLI/Commands/TasksGroupingCommands.h"

#include "LKCore/Navigation/LKTaskContextStore.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/TaskGroups.h"
#include "LarkspireCLI/Support/TaskSelector.h"

namespace lk {

namespace {

using GroupNames = std::vector<std::string>;

GroupNames projectGroups(const LKTask& task) {
  return task.project && !task.project->empty() ? GroupNames{*task.project} : GroupNames{};
}

GroupNames contextGroups(const LKTask& task) {
  GroupNames names;
  for (const std::string& context : task.contexts) {
    names.push_back(LKTaskContextStore::normalised(context));
  }
  return names;
}

// `subject` as in "Project queries need an index ...".
std::vector<LKTask*> tasksToGroup(const GlobalOptions& options, CacheReader& cache,
                                  const std::string& subject) {
  resolvedCollection(options.collection, options.quiet);
  if (cache.container() == nullptr) {
    throw CLIError::general(
        subject + " queries need an index, and lk couldn't build one from the note files.");
  }
  return liveTasks(cache);
}

}  // namespace

void TasksProjectsCommand::declare(ArgumentList& /*arguments*/) {}

void TasksProjectsCommand::run() {
  CacheReader cache(LKParts::taskLines);
  const auto tasks = tasksToGroup(options, cache, "Project");
  printLine(formatTaskGroups(taskGroups(tasks, projectGroups, Instant::now()), "project",
                             "No projects found.", options.json, Terminal::ofStandardOutput()));
}

void TasksContextsCommand::declare(ArgumentList& /*arguments*/) {}

void TasksContextsCommand::run() {
  CacheReader cache(LKParts::taskLines);
  const auto tasks = tasksToGroup(options, cache, "Context");
  printLine(formatTaskGroups(taskGroups(tasks, contextGroups, Instant::now()), "context",
                             "No contexts found.", options.json, Terminal::ofStandardOutput()));
}

}  // namespace lk
