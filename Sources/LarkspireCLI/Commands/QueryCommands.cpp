#include "LarkspireCLI/Commands/QueryCommands.h"

namespace lk {

void QueryListCommand::declare(ArgumentList& /*arguments*/) {}

void QueryListCommand::run() {
  throwComesLater("query list");
}

void QueryRunCommand::declare(ArgumentList& arguments) {
  arguments.positional("name", name, "Saved query name (or unambiguous prefix).").completion =
      Completion::query;
}

void QueryRunCommand::run() {
  throwComesLater("query run");
}

}  // namespace lk
