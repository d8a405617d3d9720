#include "LarkspireCLI/Commands/ProjectsCommands.h"

namespace lk {

void ProjectsRenameCommand::declare(ArgumentList& arguments) {
  Argument& oldNameArgument = arguments.positional("oldName", oldName, "Existing project name.");
  oldNameArgument.valueName = "old-name";
  oldNameArgument.completion = Completion::project;
  arguments.positional("newName", newName, "New project name.").valueName = "new-name";
  arguments.flag("--include-subtree", includeSubtree,
                 "Also rename sub-projects (e.g. old/sub → new/sub).");
}

void ProjectsRenameCommand::run() {
  throwComesLater("projects rename");
}

void ProjectsStripCommand::declare(ArgumentList& arguments) {
  arguments.positional("name", name, "Project name to strip.").completion = Completion::project;
}

void ProjectsStripCommand::run() {
  throwComesLater("projects strip");
}

}  // namespace lk
