#include "LarkspireCLI/Commands/RenameCommand.h"

namespace lk {

void RenameCommand::declare(ArgumentList& arguments) {
  arguments.positional("reference", reference, "Current note title or UUID.").completion =
      Completion::noteTitle;
  arguments.positional("newTitle", newTitle, "New title.").valueName = "new-title";
}

void RenameCommand::run() {
  throwComesLater("rename");
}

}  // namespace lk
