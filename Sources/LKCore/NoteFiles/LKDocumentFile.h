#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "LKCore/Base/Time.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"

// Asio's headers cost seconds of compile time; whoever awaits includes <asio/awaitable.hpp>.
namespace asio {
class any_io_executor;
template <typename Result, typename Executor>
class awaitable;
}  // namespace asio

namespace lk {

// A note read from disk.
//
//     LKDocumentFile note = LKDocumentFile::parse(url);
//     note.text += "\n- [ ] Order seeds";
//     note.write(url);
struct LKDocumentFile {
  UUID id;
  std::string title;  // the file's display name, not the block's copy of it
  std::string text;   // the body
  std::filesystem::path fileURL;
  Instant modifiedDate;
  uint64_t fileSize = 0;  // bytes
  std::vector<int> foldedIndices;
  int cursorIndex = 0;
  std::optional<Day> dailyDate;
  std::optional<Instant> createdDate;
  std::vector<TaskEntry> taskEntries;
  std::map<std::string, std::string> userProperties;
  bool nameLocked = false;
  bool isFavourite = false;
  bool isArchived = false;
  bool isBook = false;
  std::map<std::string, std::string> tagRanks;

  bool operator==(const LKDocumentFile&) const = default;

  // Reads the note. The dates and the size are those from just before the reading, so a change in
  // between shows as a newer date at the next look. Throws LKSyncError: readFailed, or
  // invalidFrontMatter also for bytes that are not UTF-8.
  static LKDocumentFile parse(const std::filesystem::path& url);

  // Writes the note to `url`, whole or not at all, making missing folders. The task entries are
  // derived anew from the text. The creation date of a readable note that is there wins over
  // `createdDate`; with neither it is now. `preserveMtime` keeps the modification date of the file
  // that is there. Throws LKSyncError::writeFailed.
  void write(const std::filesystem::path& url, bool preserveMtime = false) const;

  // The same two, done on the system's threads while the caller's executor goes on. They resume,
  // or throw, on the executor that awaits them.
  static asio::awaitable<LKDocumentFile, asio::any_io_executor> parseAsync(
      std::filesystem::path url);
  static asio::awaitable<void, asio::any_io_executor> writeAsync(LKDocumentFile document,
                                                                 std::filesystem::path url,
                                                                 bool preserveMtime = false);
};

}  // namespace lk
