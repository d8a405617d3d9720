#include "LarkspireCLI/Commands/ArchiveCommands.h"

namespace lk {

void ArchiveCommand::declare(ArgumentList& arguments) {
  note.declare(arguments);
}

void ArchiveCommand::run() {
  throwComesLater("archive");
}

void UnarchiveCommand::declare(ArgumentList& arguments) {
  note.declare(arguments);
}

void UnarchiveCommand::run() {
  throwComesLater("unarchive");
}

}  // namespace lk
