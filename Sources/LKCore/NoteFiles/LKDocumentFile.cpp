#include "LKCore/NoteFiles/LKDocumentFile.h"

#include <asio/awaitable.hpp>
#include <asio/co_spawn.hpp>
#include <asio/thread_pool.hpp>
#include <asio/use_awaitable.hpp>
#include <cerrno>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKFileDates.h"
#include "LKCore/NoteFiles/LKFileWrite.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/NoteFiles/LKOwnFileWrites.h"
#include "LKCore/NoteFiles/LKSyncError.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/Platform/Executor.h"
#include "LKCore/Platform/Files.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

FileInfo infoOf(const fs::path& url) {
  try {
    if (const auto info = fileInfo(url)) return *info;
  } catch (const FileError&) {
    // The read that follows says what is wrong.
  }
  FileInfo unknown;
  unknown.modified = Instant::now();
  return unknown;
}

// The creation date of the note that is there; nothing when there is no readable one.
std::optional<Instant> createdOnDisk(const fs::path& url) {
  try {
    const std::string bytes = readFile(url);
    if (text::isValidUTF8(bytes)) return parseDocument(bytes).frontMatter.created;
  } catch (const FileError&) {
    return std::nullopt;
  } catch (const LKSyncError&) {
    return std::nullopt;
  }
  return std::nullopt;
}

std::string serialized(const LKDocumentFile& document, std::optional<Instant> created) {
  const LKFileFrontMatter frontMatter = {
      .id = document.id,
      .created = created ? *created : document.createdDate.value_or(Instant::now()),
      .title = document.title,
      .foldedIndices = document.foldedIndices,
      .cursorIndex = document.cursorIndex,
      .dailyDate = document.dailyDate,
      .taskEntries = deriveTaskEntries(document.text, document.taskEntries),
      .userProperties = document.userProperties,
      .nameLocked = document.nameLocked,
      .isFavourite = document.isFavourite,
      .isArchived = document.isArchived,
      .isBook = document.isBook,
      .contentHash = std::nullopt,
      .tagRanks = document.tagRanks,
  };
  std::string file = serialize(frontMatter, document.text);
  if (!text::isValidUTF8(file)) throw Error("LKDocumentFile error -1: the text is not UTF-8");
  return file;
}

std::optional<FileLock> lockIfThere(const fs::path& url) {
  try {
    return FileLock::forUpdate(url);
  } catch (const FileError& error) {
    if (error.code() == ENOENT) return std::nullopt;
    throw;
  }
}

void replaceNote(const LKDocumentFile& document, const fs::path& url, bool preserveMtime) {
  const std::string file = serialized(document, createdOnDisk(url));
  const auto modified = preserveMtime ? lkContentModificationDate(url) : std::nullopt;
  LKFileWrite::atomically(file, url);
  if (modified) lkSetContentModificationDate(url, *modified);
}

void writeNote(const LKDocumentFile& document, const fs::path& url, bool preserveMtime) {
  // Between finding no file and making one, another process may make it or take it away again.
  constexpr int kAttempts = 3;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    if (const auto lock = lockIfThere(url)) {
      replaceNote(document, lock->path(), preserveMtime);
      return;
    }
    if (LKFileWrite::createAtomically(serialized(document, std::nullopt), url)) return;
  }
  // The name is a link to nothing: replacing makes what it points to.
  LKFileWrite::atomically(serialized(document, std::nullopt), url);
}

}  // namespace

LKDocumentFile LKDocumentFile::parse(const fs::path& url) {
  const FileInfo info = infoOf(url);
  std::string bytes;
  try {
    bytes = readFile(url);
  } catch (const FileError& error) {
    throw LKSyncError::readFailed(url, error);
  }
  if (!text::isValidUTF8(bytes)) throw LKSyncError::invalidFrontMatter(url);
  try {
    auto [frontMatter, body] = parseDocument(bytes);
    return {
        .id = frontMatter.id,
        .title = LKNoteFilename::displayName(url),
        .text = std::move(body),
        .fileURL = url,
        .modifiedDate = info.modified,
        .fileSize = info.size,
        .foldedIndices = std::move(frontMatter.foldedIndices),
        .cursorIndex = frontMatter.cursorIndex,
        .dailyDate = frontMatter.dailyDate,
        .createdDate = frontMatter.created,
        .taskEntries = std::move(frontMatter.taskEntries),
        .userProperties = std::move(frontMatter.userProperties),
        .nameLocked = frontMatter.nameLocked,
        .isFavourite = frontMatter.isFavourite,
        .isArchived = frontMatter.isArchived,
        .isBook = frontMatter.isBook,
        .tagRanks = std::move(frontMatter.tagRanks),
    };
  } catch (const LKSyncError&) {
    throw LKSyncError::invalidFrontMatter(url);
  }
}

void LKDocumentFile::write(const fs::path& url, bool preserveMtime) const {
  try {
    if (url.has_parent_path()) createFolders(url.parent_path());
    const LKOwnFileWrites::Scope inFlight(url);
    writeNote(*this, url, preserveMtime);
  } catch (const Error& error) {
    throw LKSyncError::writeFailed(url, error);
  }
}

// The work of both is a named object with its own copies: it goes on when whoever awaits it is
// gone, and g++ 12 frees what a closure holds twice when the closure is a temporary of `co_await`.

asio::awaitable<LKDocumentFile> LKDocumentFile::parseAsync(fs::path url) {
  auto work = [url]() -> asio::awaitable<LKDocumentFile> { co_return parse(url); };
  co_return co_await asio::co_spawn(backgroundPool(), std::move(work), asio::use_awaitable);
}

asio::awaitable<void> LKDocumentFile::writeAsync(LKDocumentFile document, fs::path url,
                                                 bool preserveMtime) {
  auto work = [document = std::move(document), url = std::move(url),
               preserveMtime]() -> asio::awaitable<void> {
    document.write(url, preserveMtime);
    co_return;
  };
  co_await asio::co_spawn(backgroundPool(), std::move(work), asio::use_awaitable);
}

}  // namespace lk
