#include "LarkspireCLI/Commands/ShowCommand.h"

namespace lk {

void ShowCommand::declare(ArgumentList& arguments) {
  note.declare(arguments);
  arguments.flag("--properties", properties, "Show only front matter / properties.");
  arguments.flag("--body", body, "Show only body (no front matter).");
  arguments.flag("--tasks", tasks, "Show tasks in the note.");
  arguments.flag("--backlinks", backlinks, "Show notes that link to this one.");
}

void ShowCommand::run() {
  throwComesLater("show");
}

}  // namespace lk
