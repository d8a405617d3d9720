#include "LarkspireCLI/Commands/TagsCommands.h"

namespace lk {

void TagsListCommand::declare(ArgumentList& arguments) {
  arguments.positional("name", name, "Show notes for this tag.").completion = Completion::tag;
  arguments.option("--prefix", prefix, "Filter tags by prefix.");
}

void TagsListCommand::run() {
  throwComesLater("tags list");
}

void TagsRenameCommand::declare(ArgumentList& arguments) {
  Argument& oldPathArgument = arguments.positional(
      "oldPath", oldPath, "Existing tag path, e.g. work/clients (with or without #).");
  oldPathArgument.valueName = "old-path";
  oldPathArgument.completion = Completion::tag;
  arguments.positional("newPath", newPath, "New tag path, e.g. clients.").valueName = "new-path";
  arguments.flag("--merge", merge, "Allow merging into a tag that already exists.");
}

void TagsRenameCommand::run() {
  throwComesLater("tags rename");
}

}  // namespace lk
