#include "LarkspireCLI/Commands/CollectionCommands.h"

#include <filesystem>
#include <functional>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/Collections/CollectionRegistry.h"
#include "LKCore/Collections/FolderRejection.h"
#include "LKCore/Collections/LKCollectionStore.h"
#include "LKCore/Platform/Directories.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/CLIActiveCollection.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/CollectionResolver.h"
#include "LarkspireCLI/Support/CollectionRows.h"
#include "LarkspireCLI/Support/Output.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

std::string inQuotes(const std::string& text) {
  return "\"" + text + "\"";
}

CLIError notFound(const std::string& reference) {
  return CLIError::general("Collection " + inQuotes(reference) +
                           " not found.\n"
                           "  Hint: Use `lk collections` to list all registered collections.");
}

// Runs a change of the registry or of the tool's choice; one that could not be saved is the
// command's failure.
void save(const std::function<void()>& change) {
  try {
    change();
  } catch (const FileError& error) {
    throw CLIError::writeFailed(error.description());
  }
}

// Absolute and tidy, with a leading "~" for the home folder.
fs::path expanded(const std::string& path) {
  fs::path full = path == "~"              ? directories::home()
                  : path.starts_with("~/") ? directories::home() / path.substr(2)
                                           : fs::absolute(path);
  full = full.lexically_normal();
  return full.has_filename() || full == full.root_path() ? full : full.parent_path();
}

fs::path existingFolder(const std::string& path) {
  std::error_code ignored;
  if (!path.empty() && fs::is_directory(expanded(path), ignored)) return expanded(path);
  throw CLIError::general("Path does not exist or is not a directory: " + path);
}

void refuseRegistered(const fs::path& folder, const std::vector<LKCollectionRecord>& records) {
  for (const LKCollectionRecord& record : records) {
    if (resolved(record.path) != resolved(folder)) continue;
    throw CLIError::general("This folder is already registered as " + inQuotes(record.name) + ".");
  }
}

void refuseUnfit(const fs::path& folder) {
  const auto rejection = validateFolder(folder);
  if (!rejection) return;
  throw CLIError::general(rejectionMessage(*rejection) +
                          "\n  Hint: Use --force to skip validation.");
}

LKCollectionMode namedMode(const std::string& text) {
  if (const auto mode = parseMode(text)) return *mode;
  throw CLIError::general("Invalid mode " + inQuotes(text) + ". Use: larkspire or readOnly.");
}

// Naming a mode says that the user knows what the folder is.
LKCollectionMode modeWithoutName(const fs::path& folder) {
  if (detectObsidianVault(folder)) {
    throw CLIError::general(
        "This folder is an Obsidian vault. Opening it as a collection can cause file duplication. "
        "Import your notes using the Larkspire app (File > Import from Obsidian).");
  }
  if (detectLogseqGraph(folder)) {
    throw CLIError::general(
        "This folder is a Logseq graph. Opening it as a collection can cause file duplication. "
        "Import your notes using the Larkspire app instead.");
  }
  return LKCollectionMode::larkspire;
}

// The record that may be removed with this confirmation.
LKCollectionRecord removable(const std::string& reference,
                             const std::optional<std::string>& confirm) {
  const auto record = CollectionResolver::resolve(reference);
  if (!record) throw notFound(reference);
  if (record->isDefault) {
    throw CLIError::general("Cannot remove the default collection " + inQuotes(record->name) +
                            ". It is protected.");
  }
  if (!confirm) {
    throw CLIError::general("To remove the collection " + inQuotes(record->name) +
                            ", re-run with --confirm " + inQuotes(record->name) +
                            ".\n  This removes the collection from the registry only — files on "
                            "disk are not deleted.");
  }
  if (!text::equal(*confirm, record->name)) {
    throw CLIError::general("Confirmation name " + inQuotes(*confirm) + " does not match " +
                            inQuotes(record->name) + ". Removal cancelled.");
  }
  return *record;
}

}  // namespace

void CollectionSwitchCommand::declare(ArgumentList& arguments) {
  arguments
      .positional("reference", reference,
                  "Collection name, UUID, or path. Omit when using --clear.")
      .completion = Completion::collection;
  arguments.flag("--clear", clear,
                 "Clear the CLI's active-collection override (revert to the default collection).");
}

void CollectionSwitchCommand::run() {
  if (clear) {
    save([] { CLIActiveCollection::clear(); });
    printLine(options.json
                  ? printJson({{"cleared", true}})
                  : "Cleared the CLI active-collection override (using the default collection).");
    return;
  }
  if (!reference) throw CLIError::general("Provide a collection name, UUID, or path — or --clear.");
  auto row = findCollectionRow(*reference);
  tellRegistryWarnings(options.quiet);
  if (!row) throw notFound(*reference);
  save([&] { CLIActiveCollection::set(row->id, row->path); });
  row->isActive = true;
  printLine(options.json ? collectionRowJson(*row, "switched")
                         : "Switched the CLI's active collection to " + inQuotes(row->name) + " (" +
                               row->path.string() + ").");
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
  const fs::path folder = existingFolder(path);
  refuseRegistered(folder, LKCollectionStore::shared().collections());
  if (!force) refuseUnfit(folder);
  LKCollectionRegistration registration;
  registration.name = name.value_or(folder.filename().string());
  registration.path = folder;
  registration.mode = mode ? namedMode(*mode) : modeWithoutName(folder);
  registration.userAcceptedRisk = force;
  registration.check = [&](const auto& records) { refuseRegistered(folder, records); };

  LKCollectionStore& store = LKCollectionStore::shared();
  LKCollectionRecord record;
  save([&] {
    record = store.registerCollection(registration);
    if (activate) store.setActive(record.id);
  });
  tellRegistryWarnings(options.quiet);
  record = store.collectionWithID(record.id).value_or(record);
  if (options.json) {
    Json result = recordJson(record);
    result["added"] = true;
    printLine(printJson(result));
    return;
  }
  printLine("Added collection " + inQuotes(record.name) + " (" + record.path.string() + ").");
  if (activate) printLine("Switched active collection to " + inQuotes(record.name));
}

void CollectionRemoveCommand::declare(ArgumentList& arguments) {
  arguments.positional("reference", reference, "Collection name, UUID, or path to remove.")
      .completion = Completion::collection;
  arguments.option("--confirm", confirm, "Type the collection name to confirm removal.").valueName =
      "name";
}

void CollectionRemoveCommand::run() {
  const LKCollectionRecord record = removable(reference, confirm);
  LKCollectionStore& store = LKCollectionStore::shared();
  const bool wasActive = store.activeCollectionID() == record.id;
  save([&] { store.remove(record.id); });
  tellRegistryWarnings(options.quiet);
  const auto next = wasActive ? store.activeCollection() : std::nullopt;
  if (options.json) {
    Json result = {{"removed", true}, {"id", record.id.text()}, {"name", record.name}};
    if (next) result["switchedTo"] = next->name;
    printLine(printJson(result));
    return;
  }
  printLine("Removed " + inQuotes(record.name) +
            " from the registry. Files on disk are unchanged.");
  if (next) printLine("Switched active collection to " + inQuotes(next->name));
}

}  // namespace lk
