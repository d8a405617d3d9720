#include "LKCore/CacheSync/LKTaskIDWriteBack.h"

#include <optional>

#include "LKCore/Base/Log.h"
#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteFiles/LKFileDates.h"
#include "LKCore/NoteFiles/LKFileWrite.h"
#include "LKCore/NoteFiles/LKOwnFileWrites.h"
#include "LKCore/Platform/Files.h"

namespace lk::LKTaskIDWriteBack {

namespace fs = std::filesystem;

namespace {

// Throws FileError.
Outcome writeIfUnchanged(std::string_view data, const FileLock& lock,
                         std::string_view fingerprintBefore) {
  const fs::path& file = lock.path();
  const auto modified = lkContentModificationDate(file);
  // Bytes that are not UTF-8 have the fingerprint of no text.
  if (fingerprint(readFile(file)) != fingerprintBefore) {
    log::debug("task-id write-back skipped — " + file.string() + " changed since it was read");
    return Outcome::fileChanged;
  }
  const LKOwnFileWrites::Scope inFlight(file);
  LKFileWrite::atomically(data, lock);
  if (modified) lkSetContentModificationDate(file, *modified);
  return Outcome::written;
}

}  // namespace

std::string fingerprint(std::string_view text) {
  return computeRawDigest(text);
}

Outcome write(std::string_view data, const fs::path& url, std::string_view ifUnchangedSince) {
  std::optional<FileLock> lock;
  try {
    lock = FileLock::forUpdate(url);
  } catch (const FileError& error) {
    log::error("task-id write-back: coordinator error for " + url.string() + ": " +
               error.description());
    return Outcome::failed;
  }
  try {
    return writeIfUnchanged(data, *lock, ifUnchangedSince);
  } catch (const FileChanged&) {
    return Outcome::fileChanged;
  } catch (const FileError& error) {
    log::error("task-id write-back failed for " + url.string() + ": " + error.description());
    return Outcome::failed;
  }
}

}  // namespace lk::LKTaskIDWriteBack
