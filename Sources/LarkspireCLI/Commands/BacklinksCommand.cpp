#include "LarkspireCLI/Commands/BacklinksCommand.h"

namespace lk {

void BacklinksCommand::declare(ArgumentList& arguments) {
  arguments.positional("reference", reference, "Note title or UUID.").completion =
      Completion::noteTitle;
  arguments.flag("--context", context, "Show the paragraph containing the [[link]].");
}

void BacklinksCommand::run() {
  throwComesLater("backlinks");
}

}  // namespace lk
