#pragma once

#include <filesystem>
#include <optional>

// Where the folders of the collection in use lie.
namespace lk::LKCollectionPath {

// Set once by the command line for the run; it wins over the registry.
void setOverrideDocumentsDirectory(std::optional<std::filesystem::path> folder);
std::optional<std::filesystem::path> overrideDocumentsDirectory();

// The override, else the active record's folder, else the cloud container's Documents, else the
// user's Documents folder.
std::filesystem::path activeDocumentsDirectory();

// `.attachments` in the active documents directory.
std::filesystem::path activeAttachmentsDirectory();

}  // namespace lk::LKCollectionPath
