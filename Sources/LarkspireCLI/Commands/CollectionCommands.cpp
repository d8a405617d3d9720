#include "LarkspireCLI/Commands/CollectionCommands.h"

namespace lk {

void CollectionInfoCommand::declare(ArgumentList& arguments) {
  arguments.flag("--finder", finder, "Open collection in Finder.");
}

void CollectionInfoCommand::run() {
  throwComesLater("collection info");
}

void CollectionSwitchCommand::declare(ArgumentList& arguments) {
  arguments
      .positional("reference", reference,
                  "Collection name, UUID, or path. Omit when using --clear.")
      .completion = Completion::collection;
  arguments.flag("--clear", clear,
                 "Clear the CLI's active-collection override (revert to the default collection).");
}

void CollectionSwitchCommand::run() {
  throwComesLater("collection switch");
}

void CollectionAddCommand::declare(ArgumentList& arguments) {
  arguments.positional("path", path, "Path to the collection folder.").completion =
      Completion::folder;
  arguments.option("--name", name, "Display name for the collection.");
  arguments.option("--mode", mode, "Collection mode: larkspire, compatible, or readOnly.")
      .choices = {"larkspire", "compatible", "readOnly"};
  arguments.flag("--force", force, "Skip folder safety validation.");
  arguments.flag("--activate", activate, "Set as the active collection after adding.");
}

void CollectionAddCommand::run() {
  throwComesLater("collection add");
}

void CollectionRemoveCommand::declare(ArgumentList& arguments) {
  arguments.positional("reference", reference, "Collection name, UUID, or path to remove.")
      .completion = Completion::collection;
  arguments.option("--confirm", confirm, "Type the collection name to confirm removal.").valueName =
      "name";
}

void CollectionRemoveCommand::run() {
  throwComesLater("collection remove");
}

void CollectionDoctorCommand::declare(ArgumentList& /*arguments*/) {}

void CollectionDoctorCommand::run() {
  throwComesLater("collection doctor");
}

}  // namespace lk
