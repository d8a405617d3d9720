#include "LarkspireCLI/Support/GlobalOptions.h"

#include "LarkspireCLI/Support/ArgumentList.h"

namespace lk {

void GlobalOptions::declare(ArgumentList& arguments) {
  Argument& folder =
      arguments.option("--collection", collection,
                       "Override collection location (default: auto-detect iCloud/local).");
  folder.valueName = "path";
  folder.completion = Completion::collectionOrFolder;
  folder.global = true;
  arguments.flag("--json", json, "Output as JSON instead of human-readable text.").global = true;
  arguments.flag("--quiet", quiet, "Suppress non-essential output.").global = true;
}

}  // namespace lk
