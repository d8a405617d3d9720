#include "LKCore/Platform/SharedFile.h"

#include <algorithm>
#include <cerrno>
#include <optional>

#include "LKCore/Base/Log.h"
#include "LKCore/Base/Text.h"
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

// Nothing for a damaged file, which is kept aside first when there is anything in it.
std::optional<Json> objectOrKeptAside(const fs::path& path, const std::string& bytes, Instant now) {
  if (text::trimmed(bytes).empty()) return std::nullopt;
  try {
    return objectIn(bytes);
  } catch (const JsonError& error) {
    const fs::path kept = keepDamagedFile(path, bytes, now);
    log::warning(path.string() + " was damaged and is kept as " + kept.string() + ": " +
                 error.description());
    return std::nullopt;
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
  retriedWhenChanged([&] {
    const FileLock lock = FileLock::forUpdate(path);
    const std::string before = readFile(lock.path());
    const std::string after = change(before);
    if (after != before) replaceFile(lock, after);
  });
}

fs::path keepDamagedFile(const fs::path& path, std::string_view bytes, Instant now) {
  std::string stamp = formatISO8601(now);
  std::erase_if(stamp, [](char c) { return c == '-' || c == ':'; });
  const fs::path start = path.parent_path() / (path.stem().string() + ".damaged-" + stamp);
  fs::path kept = start;
  kept += path.extension();
  for (int n = 2; !createFile(kept, bytes); ++n) {
    kept = start;
    kept += "-" + std::to_string(n);
    kept += path.extension();
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
    const std::optional<Json> old = objectOrKeptAside(path, before, now);
    result.object = old.value_or(Json::object());
    change(result.object);
    result.isChanged = !old || result.object != *old;
    return result.isChanged ? fileText(result.object) : before;
  });
  return result;
}

}  // namespace lk
