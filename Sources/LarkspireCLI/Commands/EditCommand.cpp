#include "LarkspireCLI/Commands/EditCommand.h"

namespace lk {

void EditCommand::declare(ArgumentList& arguments) {
  arguments.positional("reference", reference, "Note title or UUID.").completion =
      Completion::noteTitle;
  arguments.option("--content", content, "Replace entire body content.").valueName = "text";
  arguments.option("--append", append, "Append text to the end of the note.").valueName = "text";
  arguments
      .option("--prepend-after-heading", prependAfterHeading,
              "Prepend text after the first heading.")
      .valueName = "text";
  arguments.option("--set-property", setProperties, "Set a user property (key=value).").valueName =
      "key=value";
  Argument& removePropertiesArgument =
      arguments.option("--remove-property", removeProperties, "Remove a user property.");
  removePropertiesArgument.valueName = "key";
  removePropertiesArgument.completion = Completion::property;
  arguments.flag("--favourite", favourite, "Mark as favourite.");
  arguments.flag("--unfavourite", unfavourite, "Remove favourite.");
  arguments.flag("--archive", archive, "Archive this note.");
  arguments.flag("--unarchive", unarchive, "Unarchive this note.");
  arguments.flag("--force", force, "Bypass property schema validation.");
}

void EditCommand::run() {
  throwComesLater("edit");
}

}  // namespace lk
