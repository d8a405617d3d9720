#include "LarkspireCLI/Commands/PropertiesCommands.h"

namespace lk {

void PropertiesListCommand::declare(ArgumentList& /*arguments*/) {}

void PropertiesListCommand::run() {
  throwComesLater("properties list");
}

void PropertiesShowCommand::declare(ArgumentList& arguments) {
  arguments.positional("name", name, "Property name.").completion = Completion::property;
}

void PropertiesShowCommand::run() {
  throwComesLater("properties show");
}

void PropertiesAddCommand::declare(ArgumentList& arguments) {
  arguments.positional("name", name, "Property name.");
  Argument& typeArgument =
      arguments.option("--type", type,
                       "Property type (text, number, date, dateTime, checkbox, singleSelect, "
                       "multiSelect, url, email, phone, rating).");
  typeArgument.choices = {"text",        "number", "date",  "dateTime", "checkbox", "singleSelect",
                          "multiSelect", "url",    "email", "phone",    "rating"};
  typeArgument.required = true;
  arguments
      .option("--property-options", propertyOptions,
              "Comma-separated options (required for singleSelect/multiSelect).")
      .valueName = "list";
  arguments.flag("--required", required, "Mark this property as required.");
}

void PropertiesAddCommand::run() {
  throwComesLater("properties add");
}

void PropertiesDeleteCommand::declare(ArgumentList& arguments) {
  arguments.positional("name", name, "Property name.").completion = Completion::property;
  arguments.flag("--force", force, "Skip confirmation prompt.");
}

void PropertiesDeleteCommand::run() {
  throwComesLater("properties delete");
}

void PropertiesOrphansCommand::declare(ArgumentList& /*arguments*/) {}

void PropertiesOrphansCommand::run() {
  throwComesLater("properties orphans");
}

void PropertiesNotesCommand::declare(ArgumentList& arguments) {
  arguments.positional("name", name, "Property name.").completion = Completion::property;
  arguments.option("--value", value, "Filter by property value (case-insensitive).");
}

void PropertiesNotesCommand::run() {
  throwComesLater("properties notes");
}

}  // namespace lk
