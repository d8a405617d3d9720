#include "LarkspireCLI/Commands/DeleteCommand.h"

namespace lk {

void DeleteCommand::declare(ArgumentList& arguments) {
  note.declare(arguments);
  arguments.flag("--permanent", permanent, "Permanently delete (skip trash).");
  arguments.flag("--empty-trash", emptyTrash, "Empty the trash directory.");
}

void DeleteCommand::run() {
  throwComesLater("delete");
}

}  // namespace lk
