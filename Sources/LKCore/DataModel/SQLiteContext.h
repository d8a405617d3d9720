#pragma once

// A context on one connection. SQLiteStore.cpp opens the connection; nothing else includes this.

#include <memory>

#include "LKCore/DataModel/LKContext.h"
#include "LKCore/DataModel/SQLite.h"

namespace lk {

// A file that is read without SQLite's locks: where it lies, and whether it is still what it was.
class UnlockedFile {
 public:
  UnlockedFile() = default;
  UnlockedFile(const UnlockedFile&) = delete;
  UnlockedFile& operator=(const UnlockedFile&) = delete;
  virtual ~UnlockedFile() = default;

  // Throws LKStoreError when it was changed, so that what was just read may be a mixture.
  virtual void verify() const = 0;
};

// `unlocked` is for stores that are read without locks, else null; it outlives the connection.
std::unique_ptr<LKContext> makeSQLiteContext(std::unique_ptr<Connection> connection,
                                             bool isReadOnly,
                                             std::unique_ptr<UnlockedFile> unlocked);

}  // namespace lk
