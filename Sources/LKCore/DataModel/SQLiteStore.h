#pragma once

// The index of a collection in a file, an SQLite store in WAL mode with its companions "-wal" and
// "-shm" beside it. It may be used by several processes at a time, and a writer that is killed at
// any moment leaves what was saved before. A context keeps what it has read: a row that another
// process changes afterwards stays here as it was.
//
//     std::unique_ptr<LKContext> index = openStore(caches / "6F0C….store");

#include <filesystem>
#include <memory>

#include "LKCore/DataModel/LKContext.h"

namespace lk {

// Makes the store where there is none; its folder must be there. A store of another version, and a
// file that is none, is an LKStoreError and stays as it is. Waits up to 10 seconds for the lock of
// another writer, here and in `save`.
std::unique_ptr<LKContext> openStore(const std::filesystem::path& path);

// For reading only: neither the store nor anything beside it is written, and `save` throws. Works
// without the right to write there, and while another process writes: each fetch sees one saved
// state. When that cannot be promised, because the file is locked for more than 2 seconds or
// changed in a way that escapes SQLite's locks, the call throws LKStoreError. Meant for the stores
// of other programs: a process that writes a store itself reads it with `openStore`.
std::unique_ptr<LKContext> openStoreReadOnly(const std::filesystem::path& path);

}  // namespace lk
