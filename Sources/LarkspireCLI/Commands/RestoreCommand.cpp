#include "LarkspireCLI/Commands/RestoreCommand.h"

namespace lk {

void RestoreCommand::declare(ArgumentList& arguments) {
  arguments.positional("reference", reference, "Trashed note title.");
  arguments.option("--id", id, "Look up the trashed note by UUID.").valueName = "uuid";
}

void RestoreCommand::run() {
  throwComesLater("restore");
}

}  // namespace lk
