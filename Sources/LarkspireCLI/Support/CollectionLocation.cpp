#include "LarkspireCLI/Support/CollectionLocation.h"

#include <cerrno>
#include <cstdio>
#include <functional>

#include "LKCore/Collections/LKCollectionPath.h"
#include "LKCore/Collections/LKCollectionStore.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/AppContainerRegistry.h"
#include "LarkspireCLI/Support/AppIndexAccess.h"
#include "LarkspireCLI/Support/CLIActiveCollection.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CollectionLocator.h"
#include "LarkspireCLI/Support/CollectionResolver.h"
#include "LarkspireCLI/Support/DocumentationPage.h"
#include "LarkspireCLI/Support/LaunchingApp.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr const char* kHealedNote =
    "Note: the CLI's active collection no longer exists; using the default collection. "
    "(Run `lk collections` to see current collections.)\n";

void tell(const std::string& text, bool quiet) {
  if (!quiet) std::fputs(text.c_str(), stderr);
}

fs::path defaultFolder() {
  if (const auto folder = CollectionLocator::resolve()) return *folder;
  throw CLIError::collectionNotFound();
}

fs::path folderOfChoice(const UUID& id) {
  if (const auto row = AppContainerRegistry::collectionWithID(id)) return row->path;
  if (const auto record = LKCollectionStore::shared().collectionWithID(id)) return record->path;
  if (const auto path = CLIActiveCollection::rememberedPath()) return *path;
  throw CLIError::general(
      registryRefusedMessage("lk can't look up the collection chosen with `lk collection switch`"));
}

// What is at the path; a path that cannot exist has nothing there.
std::optional<FileInfo> whatIsAt(const fs::path& path) {
  try {
    return fileInfo(path);
  } catch (const FileError& error) {
    if (error.code() == ENOTDIR || error.code() == ENAMETOOLONG) return std::nullopt;
    throw;
  }
}

fs::path folderOfReference(const std::string& reference) {
  if (const auto row = AppContainerRegistry::resolve(reference)) return row->path;
  if (const auto record = CollectionResolver::resolve(reference)) return record->path;
  if (!reference.empty() && whatIsAt(reference)) return fs::absolute(reference);
  if (AppIndexAccess::check() == AppIndexAccess::Access::denied) {
    throw CLIError::general(
        registryRefusedMessage("lk can't look up the collection \"" + reference + "\" by name"));
  }
  throw CLIError::collectionNotFound();
}

// A folder that is gone must not be made anew by the first write, and a file is no collection.
void requireFolder(const fs::path& path) {
  const auto info = whatIsAt(path);
  if (!info) {
    throw CLIError::general("The collection's folder does not exist: " + path.string());
  }
  if (!info->isDirectory) {
    throw CLIError::general("The collection is not a folder: " + path.string());
  }
}

// Nothing on a machine on which nobody has registered or chosen a collection.
bool hasCollections() {
  return CLIActiveCollection::get() || !LKCollectionStore::shared().collections().empty();
}

fs::path plannedDefaultFolder() {
  fs::path folder = LKCollectionStore::shared().plannedDefaultCollection().path;
  if (!whatIsAt(folder)) throw CLIError::collectionNotFound();
  return folder;
}

// `locate` says where.
fs::path existingFolder(const std::function<fs::path()>& locate) {
  try {
    fs::path folder = locate().lexically_normal();
    if (!folder.has_filename() && folder.has_relative_path()) folder = folder.parent_path();
    requireFolder(folder);
    return folder;
  } catch (const FileError& error) {
    throw CLIError::general(error.description());
  }
}

// Makes the folder the one of this run.
fs::path adopted(const fs::path& folder, bool isExplicit, bool quiet) {
  tellRegistryWarnings(quiet);
  LKCollectionPath::setOverrideDocumentsDirectory(folder);
  collectionRun() = {folder, cachePolicy(folder, isExplicit), quiet};
  return folder;
}

}  // namespace

CollectionRun& collectionRun() {
  static CollectionRun run;
  return run;
}

fs::path resolvedCollection(const std::optional<std::string>& reference, bool quiet) {
  return adopted(existingFolder([&] { return resolveCollectionURL(reference, quiet); }),
                 reference.has_value(), quiet);
}

fs::path resolvedCollectionAsItStands(const std::optional<std::string>& reference, bool quiet) {
  const auto locate = [&] {
    return reference || hasCollections() ? resolveCollectionURL(reference, quiet)
                                         : plannedDefaultFolder();
  };
  return adopted(existingFolder(locate), reference.has_value(), quiet);
}

fs::path resolveCollectionURL(const std::optional<std::string>& reference, bool quiet) {
  if (reference) return folderOfReference(*reference);
  const CLIActiveCollection::Resolution choice = CLIActiveCollection::resolve();
  if (choice.healed) tell(kHealedNote, quiet);
  return choice.id ? folderOfChoice(*choice.id) : defaultFolder();
}

void tellRegistryWarnings(bool quiet) {
  for (const std::string& warning : LKCollectionStore::shared().warnings()) {
    tell("Warning: " + warning + "\n", quiet);
  }
}

CachePolicy cachePolicy(const fs::path& forDocumentsURL, bool isExplicit) {
  if (const auto row = AppContainerRegistry::collectionForDocumentsPath(forDocumentsURL)) {
    std::error_code ignored;
    fs::path store = AppContainerRegistry::cacheStoreURL(row->id);
    if (fs::exists(store, ignored)) return StorePolicy{std::move(store)};
  }
  if (isExplicit) return UnavailablePolicy{};
  return AutoPolicy{};
}

LKCollectionMode collectionMode(const fs::path& forFolder) {
  const fs::path folder = resolved(forFolder);
  for (const LKCollectionRecord& record : LKCollectionStore::shared().collections()) {
    if (resolved(record.path) == folder) return record.mode;
  }
  const auto row = AppContainerRegistry::collectionForDocumentsPath(folder);
  if (!row || !row->mode) return LKCollectionMode::larkspire;
  // A mode that a later version made is one in which this version had better not write.
  return parseMode(*row->mode).value_or(LKCollectionMode::readOnly);
}

std::string registryRefusedMessage(std::string_view subject) {
  const std::string app = LaunchingApp::name().value_or("the app you ran lk from");
  return std::string(subject) + ", because macOS doesn't allow " + app +
         " to open Larkspire' data.\n"
         "  Pass the collection's folder instead: --collection /path/to/folder\n"
         "  Or allow it: System Settings ▸ Privacy & Security ▸ Files & Folders ▸ " +
         app + " ▸ Larkspire. " + documentationPage(kPermissionsPage);
}

}  // namespace lk
