#include "LarkspireCLI/Commands/ContextsCommands.h"

namespace lk {

void ContextsRenameCommand::declare(ArgumentList& arguments) {
  Argument& oldNameArgument = arguments.positional("oldName", oldName, "Existing context name.");
  oldNameArgument.valueName = "old-name";
  oldNameArgument.completion = Completion::context;
  arguments.positional("newName", newName, "New context name.").valueName = "new-name";
}

void ContextsRenameCommand::run() {
  throwComesLater("contexts rename");
}

void ContextsStripCommand::declare(ArgumentList& arguments) {
  arguments.positional("name", name, "Context name to strip.").completion = Completion::context;
}

void ContextsStripCommand::run() {
  throwComesLater("contexts strip");
}

}  // namespace lk
