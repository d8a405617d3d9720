#pragma once

// Where the folders of the collection in use lie.

#include <filesystem>
#include <optional>

namespace lk::LKCollectionPath {

// The cloud folder under a home folder; there only where a sync program put it.
inline constexpr const char* kCloudDocumentsInHome =
    "Library/Mobile Documents/iCloud~com~larkspire/Documents";

// Set once by the command line for the run; it wins over the registry.
void setOverrideDocumentsDirectory(std::optional<std::filesystem::path> folder);
std::optional<std::filesystem::path> overrideDocumentsDirectory();

// The override, else the active record's folder, else the cloud container's Documents, else the
// user's Documents folder.
std::filesystem::path activeDocumentsDirectory();

// `.attachments` in the active documents directory.
std::filesystem::path activeAttachmentsDirectory();

// The folder of the default collection, registered or about to be.
std::filesystem::path defaultCollectionDocumentsDirectory();

}  // namespace lk::LKCollectionPath
