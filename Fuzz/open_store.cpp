// Bytes as a store: opening and reading it, or beginning it anew, never crashes and never hangs; what
// opens can be read in full or says why not.

#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "LKCore/DataModel/LKModelContainer.h"
#include "LKCore/DataModel/SQLiteStore.h"

namespace {

namespace fs = std::filesystem;

void require(bool holds) {
  if (!holds) std::abort();
}

// One store a process, where writing costs no disk.
fs::path storePath() {
  const fs::path memory = "/dev/shm";
  const fs::path folder = access(memory.c_str(), W_OK) == 0 ? memory : fs::temp_directory_path();
  return folder / ("larkspire-fuzz-" + std::to_string(getpid()) + ".store");
}

void write(const fs::path& path, const uint8_t* data, size_t size) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

void removeStore(const fs::path& path) {
  std::error_code ignored;
  for (const char* suffix : {"", "-wal", "-shm"})
    fs::remove(fs::path(path).concat(suffix), ignored);
}

void readAll(lk::LKContext& store) {
  for (const lk::LKNote* note : store.notes().fetch()) {
    for (const lk::LKTask* task : note->tasks) require(task->note == note);
  }
  store.tags().fetch();
  store.backLinks().fetch();
  store.taskVersions().fetch();
  store.notes().fetch({.where = lk::notesWithTitleLike("a"), .parts = lk::LKParts::none});
}

template <typename Step>
void allowStoreErrors(const Step& step) {
  try {
    step();
  } catch (const lk::LKStoreError&) {
    return;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const fs::path path = storePath();
  removeStore(path);
  write(path, data, size);
  // As a file that has long been there: a fresh one would be waited for.
  fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(1));
  allowStoreErrors([] { readAll(*lk::openStoreReadOnly(path)); });
  allowStoreErrors([] {
    const auto store = lk::openStore(path);
    readAll(*store);
    store->notes().insert(lk::LKNote("a", "b"));
    store->save();
  });
  lk::openOrRebuildStore(path);
  removeStore(path);
  return 0;
}
