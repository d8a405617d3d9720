#include "LarkspireCLI/Commands/TasksSetCommand.h"

#include <filesystem>
#include <memory>

#include "LKCore/Terminology/LKProjectTerms.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/TaskArguments.h"
#include "LarkspireCLI/Support/TaskLineEdits.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

void refuseSetAndClear(bool isSet, bool isCleared, const std::string& name) {
  if (isSet && isCleared) {
    throw CLIError::general("Use either --" + name + " or --clear-" + name + ", not both.");
  }
}

std::string contextList(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ",") + name;
  return list;
}

// What the options ask of a task's line, read and judged once.
class TaskAmendment {
 public:
  explicit TaskAmendment(const TasksSetCommand& command) : command_(command) {
    const bool hasContexts = !command.contexts.empty();
    if (!command.due && !command.clearDue && !command.priority && !command.clearPriority &&
        !command.project && !command.clearProject && !hasContexts && !command.clearContext) {
      throw CLIError::general(
          "Nothing to set. Use --due/--priority/--project/--context (or --clear-*).");
    }
    refuseSetAndClear(command.due.has_value(), command.clearDue, "due");
    refuseSetAndClear(command.priority.has_value(), command.clearPriority, "priority");
    refuseSetAndClear(command.project.has_value(), command.clearProject, "project");
    refuseSetAndClear(hasContexts, command.clearContext, "context");
    if (command.due) due_ = LKDateOnly::text(dueArgument(*command.due));
    if (command.priority) priority_ = priorityArgument(*command.priority);
    if (command.project) project_ = projectArgument(*command.project);
    if (hasContexts) contexts_ = contextArguments(command.contexts);
  }

  const std::optional<std::string>& project() const { return project_; }
  const std::vector<std::string>& contexts() const { return contexts_; }

  std::string applied(std::string_view line) const {
    std::string changed(line);
    const auto replace = [&](const char* key, bool isCleared, const std::string& value) {
      if (isCleared) changed = TaskLineEdits::clearMetaToken(changed, key);
      if (!value.empty()) changed = TaskLineEdits::replaceMetaToken(changed, key, value);
    };
    replace("due", command_.clearDue, due_);
    replace("priority", command_.clearPriority, priority_);
    const std::vector<std::string>& keywords = terms_->metadataKeywords;
    if (project_ || command_.clearProject) {
      changed = TaskLineEdits::clearProjectTokens(changed, keywords);
    }
    if (project_) changed = TaskLineEdits::setMetaToken(changed, keywords.front(), *project_);
    const bool clearsContexts = command_.clearContext || !contexts_.empty();
    if (clearsContexts) changed = TaskLineEdits::clearMetaToken(changed, "contexts");
    replace("context", clearsContexts, contextList(contexts_));
    return changed;
  }

 private:
  const TasksSetCommand& command_;
  std::shared_ptr<const LKProjectTermsSnapshot> terms_ = LKProjectTerms::snapshot();
  std::string due_;       // empty where it stays or goes
  std::string priority_;  // likewise
  std::optional<std::string> project_;
  std::vector<std::string> contexts_;
};

}  // namespace

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
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const TaskAmendment amendment(*this);
  CacheReader cache(LKParts::tasks);
  warnOfNearNames(options, cache, amendment.contexts(), amendment.project());
  task.change(collection, options, cache, "Updated task in",
              [&](std::string_view line) { return amendment.applied(line); });
}

}  // namespace lk
