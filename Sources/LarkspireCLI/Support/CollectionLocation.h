#pragma once

// Which folder this run works on, and what the run remembers of it. Every command that touches a
// collection begins with `resolvedCollection`.
//
//     const std::filesystem::path folder = resolvedCollection(options.collection, options.quiet);

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "LKCore/Collections/LKCollectionRecord.h"
#include "LarkspireCLI/Support/CachePolicy.h"

namespace lk {

// What the rest of the tool reads of the run; set once by resolvedCollection.
struct CollectionRun {
  std::filesystem::path collectionRoot;
  CachePolicy cachePolicy = AutoPolicy{};
  bool quiet = false;
};

CollectionRun& collectionRun();

// The collection's folder, absolute; it exists. `reference` is the value of --collection. Sets the
// override of LKCollectionPath and `collectionRun()`. Notes and warnings go to standard error
// unless `quiet`. Throws CLIError.
std::filesystem::path resolvedCollection(const std::optional<std::string>& reference, bool quiet);

// The same for a command that only looks: on a machine without a registered collection it does not
// make the default one, so that without its folder none is found.
std::filesystem::path resolvedCollectionAsItStands(const std::optional<std::string>& reference,
                                                   bool quiet);

// The folder alone, there or not, without setting anything. Throws CLIError and FileError.
std::filesystem::path resolveCollectionURL(const std::optional<std::string>& reference, bool quiet);

// Says on standard error, unless `quiet`, what was wrong with the registry file.
void tellRegistryWarnings(bool quiet);

// The index that may be read for the folder. One that was named explicitly never reads another
// folder's index.
CachePolicy cachePolicy(const std::filesystem::path& forDocumentsURL, bool isExplicit);

// The mode of the collection whose folder this is, symbolic links resolved, active or not:
// as the tool's registry says, else the application's, else `larkspire`.
LKCollectionMode collectionMode(const std::filesystem::path& forFolder);

// The words for a lookup that the application's data had to answer and was not allowed to.
std::string registryRefusedMessage(std::string_view subject);

}  // namespace lk
