#include "LarkspireCLI/Commands/OpenCommand.h"

namespace lk {

void OpenCommand::declare(ArgumentList& arguments) {
  note.declare(arguments);
  arguments.flag("--daily", daily, "Open today's daily note.");
}

void OpenCommand::run() {
  throwComesLater("open");
}

}  // namespace lk
