#include "LarkspireCLI/Commands/CreateCommand.h"

namespace lk {

void CreateCommand::declare(ArgumentList& arguments) {
  arguments.positional("title", title, "Note title.");
  arguments.option("--content", content, "Note body content.").valueName = "text";
  Argument& fromArgument = arguments.option("--from", from, "Import content from a file.");
  fromArgument.valueName = "file";
  fromArgument.completion = Completion::file;
  arguments.option("--property", properties, "Set a user property (key=value, repeatable).")
      .valueName = "key=value";
  arguments.option("--tag", tags, "Add a tag (inserted into body).").completion = Completion::tag;
  arguments
      .option("--template", templateName,
              "Create from a named template (overrides --content/--from).")
      .valueName = "name";
  arguments.option("--variable", variables, "Template variable (key=value, repeatable).")
      .valueName = "key=value";
  arguments.flag("--open", open, "Open in Larkspire after creating.");
  arguments.flag("--favourite", favourite, "Mark the new note as a favourite.");
}

void CreateCommand::run() {
  throwComesLater("create");
}

}  // namespace lk
