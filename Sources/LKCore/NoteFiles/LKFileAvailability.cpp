#include "LKCore/NoteFiles/LKFileAvailability.h"

#include "LKCore/Platform/Files.h"

namespace lk::LKFileAvailability {

bool isSafeToReadNow(const std::filesystem::path& /*url*/) {
  return true;
}

std::optional<std::string> dataIfSafeToReadNow(const std::filesystem::path& url) {
  if (!isSafeToReadNow(url)) return std::nullopt;
  try {
    return readFile(url);
  } catch (const FileError&) {
    return std::nullopt;
  }
}

}  // namespace lk::LKFileAvailability
