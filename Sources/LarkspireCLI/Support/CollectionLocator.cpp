#include "LarkspireCLI/Support/CollectionLocator.h"

#include <array>

#include "LKCore/Collections/LKCollectionPath.h"
#include "LKCore/Collections/LKCollectionStore.h"
#include "LKCore/Platform/Directories.h"
#include "LKCore/Platform/Files.h"

namespace lk::CollectionLocator {

namespace fs = std::filesystem;

std::optional<fs::path> resolve(const std::optional<fs::path>& override) {
  if (override) return fileInfo(*override) ? override : std::nullopt;

  LKCollectionStore& store = LKCollectionStore::shared();
  store.ensureDefaultCollection();
  const auto active = store.activeCollection();
  if (active && fileInfo(active->path)) return active->path;

  const std::array<std::optional<fs::path>, 3> places = {
      directories::ubiquityDocuments(),
      directories::home() / LKCollectionPath::kCloudDocumentsInHome,
      directories::documents() / "Larkspire",
  };
  for (const auto& place : places) {
    if (place && fileInfo(*place)) return place;
  }
  return std::nullopt;
}

}  // namespace lk::CollectionLocator
