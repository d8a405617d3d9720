#include "LKCore/NoteFiles/LKFileDates.h"

#include "LKCore/Platform/Files.h"

namespace lk {

std::optional<Instant> lkContentModificationDate(const std::filesystem::path& url) {
  try {
    const std::optional<FileInfo> info = fileInfo(url);
    return info ? std::optional(info->modified) : std::nullopt;
  } catch (const FileError&) {
    return std::nullopt;
  }
}

void lkSetContentModificationDate(const std::filesystem::path& url, Instant date) {
  setModified(url, date);
}

}  // namespace lk
