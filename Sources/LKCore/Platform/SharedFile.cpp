#include "LKCore/Platform/SharedFile.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "LKCore/Base/Log.h"
#include "LKCore/Platform/Files.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

Json objectIn(const std::string& bytes) {
  Json object = parseJson(bytes);
  if (!object.is_object()) throw JsonError("The file is not an object.");
  return object;
}

std::string fileText(const Json& object) {
  return printJson(object) + "\n";
}

Json objectOrKeptAside(const fs::path& path, const std::string& bytes, Instant now) {
  try {
    return objectIn(bytes);
  } catch (const JsonError& error) {
    const fs::path kept = keepDamagedFile(path, bytes, now);
    log::warning(path.string() + " was damaged and is kept as " + kept.string() + ": " +
                 error.description());
    return Json::object();
  }
}

}  // namespace

void changeSharedFile(const fs::path& path, const std::string& initial,
                      const SharedFileChange& change) {
  if (!nameIsTaken(path)) {
    const std::string made = change(initial);
    if (made == initial) return;
    createFolders(path.parent_path());
    if (createFile(path, made)) return;
  }
  const FileLock lock = FileLock::forUpdate(path);
  const std::string before = readFile(lock.path());
  const std::string after = change(before);
  if (after != before) replaceFile(lock.path(), after);
}

fs::path keepDamagedFile(const fs::path& path, std::string_view bytes, Instant now) {
  std::string stamp = formatISO8601(now);
  std::erase_if(stamp, [](char c) { return c == '-' || c == ':'; });
  const std::string start = path.stem().string() + ".damaged-" + stamp;
  const std::string extension = path.extension().string();
  fs::path kept = path.parent_path() / (start + extension);
  for (int n = 2; !createFile(kept, bytes); ++n) {
    kept = path.parent_path() / (start + "-" + std::to_string(n) + extension);
  }
  return kept;
}

Json readSharedObject(const fs::path& path) {
  try {
    return objectIn(readFile(path));
  } catch (const FileError& error) {
    if (error.code() != ENOENT && error.code() != ENOTDIR) throw;
    return Json::object();
  }
}

SharedObject changeSharedObject(const fs::path& path, Instant now,
                                const std::function<void(Json&)>& change) {
  SharedObject result;
  changeSharedFile(path, fileText(Json::object()), [&](const std::string& before) {
    const Json old = objectOrKeptAside(path, before, now);
    result.object = old;
    change(result.object);
    result.isChanged = result.object != old;
    return result.isChanged ? fileText(result.object) : before;
  });
  return result;
}

}  // namespace lk
