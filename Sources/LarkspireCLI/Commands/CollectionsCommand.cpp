#include "LarkspireCLI/Commands/CollectionsCommand.h"

#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/CollectionRows.h"
#include "LarkspireCLI/Support/Output.h"

namespace lk {

void CollectionsCommand::declare(ArgumentList& /*arguments*/) {}

void CollectionsCommand::run() {
  const std::vector<CollectionRow> rows = collectionRows();
  tellRegistryWarnings(options.quiet);
  if (options.json) {
    printLine(collectionRowsJson(rows));
    return;
  }
  if (rows.empty()) printLine("No collections registered.");
  for (const CollectionRow& row : rows) {
    printLine((row.isActive ? "* " : "  ") + row.name + "  " + row.path.string() +
              (row.cacheAvailable ? "" : " (cache unavailable)"));
  }
}

}  // namespace lk
