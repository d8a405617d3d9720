#include "LarkspireCLI/Support/DeepLink.h"

#include "LKCore/Collections/LKCollectionStore.h"
#include "LKCore/Platform/Opener.h"
#include "LarkspireCLI/Support/CLIError.h"

namespace lk {

std::string deepLink(const UUID& note, const std::optional<UUID>& collection) {
  std::string link = "larkspire://open?id=" + note.text();
  if (collection) link += "&collection=" + collection->text();
  return link;
}

void openDeepLink(const UUID& note, const std::optional<UUID>& collection) {
  try {
    openURL(deepLink(note, collection));
  } catch (const Error& error) {
    throw CLIError::general(error.description());
  }
}

void openNoteIn(const std::filesystem::path& collection, const UUID& note) {
  const auto record = LKCollectionStore::shared().collectionContaining(collection);
  openDeepLink(note, record ? std::optional(record->id) : std::nullopt);
}

}  // namespace lk
