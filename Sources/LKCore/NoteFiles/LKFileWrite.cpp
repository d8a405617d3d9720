#include "LKCore/NoteFiles/LKFileWrite.h"

#include "LKCore/NoteFiles/LKOwnFileContent.h"

namespace lk::LKFileWrite {

void atomically(std::string_view data, const std::filesystem::path& url) {
  LKOwnFileContent::record(data, url);
  replaceFile(url, data);
}

void atomically(std::string_view data, const FileLock& lock) {
  LKOwnFileContent::record(data, lock.path());
  replaceFile(lock, data);
}

bool createAtomically(std::string_view data, const std::filesystem::path& url,
                      Durability durability) {
  LKOwnFileContent::record(data, url);
  return createFile(url, data, durability);
}

void preservingAttributes(const std::filesystem::path& url, const std::function<void()>& body) {
  const FileAttributes attributes = readAttributes(url);
  body();
  writeAttributes(url, attributes);
}

}  // namespace lk::LKFileWrite
