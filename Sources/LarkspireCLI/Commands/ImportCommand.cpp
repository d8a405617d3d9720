#include "LarkspireCLI/Commands/ImportCommand.h"

namespace lk {

void ImportCommand::declare(ArgumentList& arguments) {
  arguments.positional("directory", directory, "Source directory.").completion = Completion::folder;
  arguments.option("--tag", tags, "Tag to add to every imported note (repeatable).").completion =
      Completion::tag;
  arguments.flag("--recursive", recursive, "Recurse into subdirectories.");
  arguments.flag("--dry-run", dryRun, "List what would be imported without writing.");
}

void ImportCommand::run() {
  throwComesLater("import");
}

}  // namespace lk
