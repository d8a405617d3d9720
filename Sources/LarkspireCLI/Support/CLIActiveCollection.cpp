#include "LarkspireCLI/Support/CLIActiveCollection.h"

#include <array>
#include <cerrno>
#include <string>
#include <string_view>

#include "LKCore/Base/Text.h"
#include "LKCore/Collections/LKCollectionStore.h"
#include "LKCore/Platform/Directories.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/AppContainerRegistry.h"
#include "LarkspireCLI/Support/AppIndexAccess.h"

namespace lk::CLIActiveCollection {

namespace fs = std::filesystem;

namespace {

fs::path file() {
  return directories::applicationSupport() / "Larkspire" / "cli-active-collection";
}

// The file's text; nothing when there is no file.
std::optional<std::string> content() {
  try {
    return readFile(file());
  } catch (const FileError& error) {
    if (error.code() == ENOENT || error.code() == ENOTDIR) return std::nullopt;
    throw;
  }
}

bool isKnown(const UUID& id) {
  return AppContainerRegistry::collectionWithID(id) ||
         LKCollectionStore::shared().collectionWithID(id);
}

// True when both registries could be read whole, so that an id they do not hold is gone.
bool registriesWereReadable() {
  return AppIndexAccess::check() != AppIndexAccess::Access::denied &&
         LKCollectionStore::shared().warnings().empty();
}

}  // namespace

std::optional<UUID> get() {
  const auto text = content();
  if (!text) return std::nullopt;
  return UUID::parse(text::trimmed(std::string_view(*text).substr(0, text->find('\n'))));
}

void set(const UUID& id, const fs::path& path) {
  createFolders(file().parent_path());
  replaceFile(file(), id.text() + "\n" + path.string() + "\n");
}

void clear() {
  try {
    removeFile(file());
  } catch (const FileError& error) {
    if (error.code() != ENOENT && error.code() != ENOTDIR) throw;
  }
}

Resolution resolve() {
  const auto id = get();
  if (!id) return {};
  if (isKnown(*id) || !registriesWereReadable()) return {id, false};
  clear();
  return {std::nullopt, true};
}

std::optional<fs::path> rememberedPath() {
  const auto text = content();
  if (!text || text->find('\n') == std::string::npos) return std::nullopt;
  // A path may hold line feeds, and blanks at its ends.
  std::string_view rest = std::string_view(*text).substr(text->find('\n') + 1);
  if (rest.ends_with('\n')) rest.remove_suffix(1);
  const std::string_view secondLine = rest.substr(0, rest.find('\n'));
  for (const std::string_view path : {rest, text::trimmedSpacesTabs(secondLine)}) {
    if (!path.empty() && fileInfo(path)) return fs::path(path);
  }
  return std::nullopt;
}

}  // namespace lk::CLIActiveCollection
