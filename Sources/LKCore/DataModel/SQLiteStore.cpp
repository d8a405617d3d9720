#include "LKCore/DataModel/SQLiteStore.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "LKCore/DataModel/SQLiteContext.h"
#include "LKCore/DataModel/StoreColumns.h"
#include "LKCore/Platform/Directories.h"
#include "LKCore/Platform/Files.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr int64_t kStoreApplication = 0x4C4B7374;  // "LKst"
constexpr int64_t kStoreVersion = 1'00'00;         // 1.0.0
constexpr int kWriterPatience = 10'000;            // milliseconds
constexpr int kReaderPatience = 2'000;
constexpr int kStoreAttempts = 3;

fs::path companionOf(const fs::path& store, const char* suffix) {
  return fs::path(store).concat(suffix);
}

// Nothing when there is nothing at the path. A folder would be an odd store, a FIFO would block.
std::optional<FileInfo> regularFileInfo(const fs::path& path) {
  std::optional<FileInfo> info;
  try {
    info = fileInfo(path);
  } catch (const FileError& error) {
    throw LKStoreError(error.description());
  }
  if (info && !info->isRegular) throw LKStoreError(path.string() + ": not a regular file");
  return info;
}

// --- Schema --------------------------------------------------------------------------------------

std::vector<std::string> schemaOf(Connection& connection) {
  Statement statement =
      connection.prepared("SELECT sql FROM sqlite_master WHERE substr(name, 1, 7) <> 'sqlite_'");
  std::vector<std::string> schema;
  while (statement.step()) RowReader(statement).take(schema.emplace_back());
  return schema;
}

bool isFresh(Connection& connection) {
  return connection.integer("PRAGMA application_id") == 0 &&
         connection.integer("PRAGMA user_version") == 0 && schemaOf(connection).empty();
}

// The schema must be ours to the letter: a view or a trigger of somebody else's is code.
void requireSchema(Connection& connection) {
  std::vector<std::string> found = schemaOf(connection);
  std::vector<std::string> wanted = storeSchema();
  std::ranges::sort(found);
  std::ranges::sort(wanted);
  const bool fits = connection.integer("PRAGMA application_id") == kStoreApplication &&
                    connection.integer("PRAGMA user_version") == kStoreVersion && found == wanted;
  if (!fits) throw LKStoreError(connection.path().string() + ": not a store of version 1.0.0");
}

void createSchema(Connection& connection) {
  connection.execute("PRAGMA journal_mode = WAL");
  Transaction creating(connection, Transaction::Kind::write);
  if (!isFresh(connection)) return;  // another process was faster
  for (const std::string& statement : storeSchema()) connection.execute(statement);
  connection.execute("PRAGMA application_id = " + std::to_string(kStoreApplication));
  connection.execute("PRAGMA user_version = " + std::to_string(kStoreVersion));
  creating.commit();
}

// --- Reading without a trace -----------------------------------------------------------------------

// A store without a log beside it holds all there is, and SQLite reads it without locks and
// companions. Should a writer come meanwhile, it writes to a new log first; the store itself changes
// only when that log is moved into it, and then what was read may be a mixture.
class ResidingStore final : public UnlockedFile {
 public:
  explicit ResidingStore(fs::path path) : path_(std::move(path)), stamp_(regularFileInfo(path_)) {
    for (int attempt = 0; isYoung(); ++attempt) {
      if (attempt == kStoreAttempts) throw LKStoreError(path_.string() + ": changes all the time");
      usleep(kSteadyMicroseconds);
      stamp_ = regularFileInfo(path_);
    }
    // Only now: a log that was there when the stamp was taken could be on its way into the store.
    const auto log = regularFileInfo(companionOf(path_, "-wal"));
    if (log && log->size > 0) throw LKStoreError(path_.string() + ": a writer has come");
  }

  void verify() const override {
    if (regularFileInfo(path_) != stamp_) {
      throw LKStoreError(path_.string() + ": changed while it was read");
    }
  }

 private:
  static constexpr useconds_t kSteadyMicroseconds = 20'000;

  // File times move in steps of some milliseconds. A later change must show in them.
  bool isYoung() const {
    if (!stamp_) return false;
    const Instant now = Instant::now();
    const int64_t age = (now.seconds - stamp_->modified.seconds) * 1'000'000 +
                        (now.nanoseconds - stamp_->modified.nanoseconds) / 1000;
    return age >= 0 && age < kSteadyMicroseconds;
  }

  fs::path path_;
  std::optional<FileInfo> stamp_;
};

// A copy of a store and its log in a private folder, for a log that cannot be read in place.
class CopiedStore final : public UnlockedFile {
 public:
  explicit CopiedStore(const fs::path& path) {
    std::string pattern = (directories::scratch() / "larkspire-store-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw LKStoreError(FileError(pattern, errno).what());
    folder_ = pattern;
    try {
      copyBoth(path);
    } catch (...) {
      removeFolder();
      throw;
    }
  }
  CopiedStore(const CopiedStore&) = delete;
  CopiedStore& operator=(const CopiedStore&) = delete;
  ~CopiedStore() override { removeFolder(); }

  fs::path path() const { return folder_ / "copy"; }
  void verify() const override {}

 private:
  void copyBoth(const fs::path& path) const {
    const fs::path log = companionOf(path, "-wal");
    for (int attempt = 0; attempt < kStoreAttempts; ++attempt) {
      const auto storeBefore = regularFileInfo(path);
      const auto logBefore = regularFileInfo(log);
      copyOne(path, this->path());
      copyOne(log, companionOf(this->path(), "-wal"));
      if (regularFileInfo(path) == storeBefore && regularFileInfo(log) == logBefore) return;
    }
    throw LKStoreError(path.string() + ": changes all the time");
  }

  static void copyOne(const fs::path& from, const fs::path& to) {
    std::error_code error;
    fs::copy_file(from, to, fs::copy_options::overwrite_existing, error);
    if (!error) fs::permissions(to, fs::perms::owner_read | fs::perms::owner_write, error);
    if (error) throw LKStoreError(from.string() + ": " + error.message());
  }

  void removeFolder() const noexcept {
    std::error_code ignored;  // what stays lies in the scratch folder
    fs::remove_all(folder_, ignored);
  }

  fs::path folder_;
};

bool isReadable(const fs::path& path) {
  return access(path.c_str(), R_OK) == 0;
}

std::unique_ptr<LKContext> openForReading(const fs::path& path, const std::string& parameters,
                                          const fs::path& shownAs,
                                          std::unique_ptr<UnlockedFile> unlocked) {
  auto connection = std::make_unique<Connection>(
      path, Connection::Options{.uriParameters = "mode=ro" + parameters,
                                .isReadOnly = true,
                                .patience = kReaderPatience,
                                .shownAs = shownAs});
  connection->execute("PRAGMA temp_store = MEMORY");
  requireSchema(*connection);
  if (unlocked) unlocked->verify();
  return makeSQLiteContext(std::move(connection), true, std::move(unlocked));
}

std::unique_ptr<LKContext> openAsItLies(const fs::path& path) {
  const fs::path log = companionOf(path, "-wal");
  const fs::path index = companionOf(path, "-shm");
  const auto logInfo = regularFileInfo(log);
  // Left to itself, SQLite would make the two where they are missing and leave them behind.
  if (logInfo && regularFileInfo(index) && isReadable(log) && isReadable(index)) {
    return openForReading(path, "&readonly_shm=1", path, nullptr);
  }
  if (!logInfo || logInfo->size == 0) {
    auto residing = std::make_unique<ResidingStore>(path);
    return openForReading(path, "&immutable=1", path, std::move(residing));
  }
  auto copied = std::make_unique<CopiedStore>(path);
  const fs::path copy = copied->path();
  return openForReading(copy, "", path, std::move(copied));
}

}  // namespace

std::unique_ptr<LKContext> openStore(const fs::path& path) {
  regularFileInfo(path);
  auto connection = std::make_unique<Connection>(
      path, Connection::Options{.uriParameters = "mode=rwc", .patience = kWriterPatience});
  // Without the right to write, SQLite opens for reading and says nothing.
  if (connection->isReadOnlyFile()) throw LKStoreError(path.string() + ": Permission denied");
  if (isFresh(*connection)) createSchema(*connection);
  requireSchema(*connection);
  connection->execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL");
  return makeSQLiteContext(std::move(connection), false, nullptr);
}

std::unique_ptr<LKContext> openStoreReadOnly(const fs::path& path) {
  if (!regularFileInfo(path)) throw LKStoreError(path.string() + ": No such file or directory");
  const auto state = [&] {
    return std::pair(regularFileInfo(path), regularFileInfo(companionOf(path, "-wal")));
  };
  for (int attempt = 1;; ++attempt) {
    const auto before = state();
    try {
      return openAsItLies(path);
    } catch (const LKStoreError&) {
      // A writer that came or went meanwhile has changed which way is the right one.
      if (attempt == kStoreAttempts || state() == before) throw;
    }
  }
}

}  // namespace lk
