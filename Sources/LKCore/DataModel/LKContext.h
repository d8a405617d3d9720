#pragma once

// One user's view of an index: six tables of rows, changed in memory and saved together. A context
// is used on one thread. Two implementations answer alike: MemoryStore.h, whose rows are all there
// is, and SQLiteStore.h, a file. What was changed here counts for every fetch and count at once, saved
// or not.
//
//     LKNote& note = context.notes().insert(LKNote("Groceries", "- [ ] Milk"));
//     addTag(note, tag);
//     context.save();

#include <cstddef>
#include <cstdint>
#include <vector>

#include "LKCore/Base/Error.h"
#include "LKCore/DataModel/Entities.h"
#include "LKCore/DataModel/LKFetch.h"

namespace lk {

// A store that cannot be opened, read or written; the description names the file and the cause.
class LKStoreError : public Error {
 public:
  using Error::Error;
};

template <typename Row>
class LKTable {
 public:
  LKTable() = default;
  LKTable(const LKTable&) = delete;
  LKTable& operator=(const LKTable&) = delete;
  virtual ~LKTable() = default;

  // The pointers are never null. Throws LKStoreError.
  virtual std::vector<Row*> fetch(const LKFetch<Row>& what = {}) = 0;
  // Rows without their relations being read. Throws LKStoreError.
  virtual size_t count(const LKPredicate<Row>& where = {}) = 0;
  // `row` has no relations yet. An id that is changed later counts for predicates by id from the
  // next save on.
  virtual Row& insert(Row row) = 0;
  // Also takes the row out of its relations. Removing a note removes its tasks and links.
  virtual void remove(Row& row) = 0;
  virtual void removeAll() = 0;
  // Stays the same for the row's life, across processes for a store on disk, where a row that was
  // never saved has 0.
  virtual int64_t persistentID(const Row& row) = 0;
};

class LKContext {
 public:
  LKContext() = default;
  LKContext(const LKContext&) = delete;
  LKContext& operator=(const LKContext&) = delete;
  virtual ~LKContext() = default;

  virtual LKTable<LKNote>& notes() = 0;
  virtual LKTable<LKTask>& tasks() = 0;
  virtual LKTable<LKTag>& tags() = 0;
  virtual LKTable<LKBackLink>& backLinks() = 0;
  virtual LKTable<LKNoteVersion>& noteVersions() = 0;
  virtual LKTable<LKTaskVersion>& taskVersions() = 0;

  // All changes since the last save, or none of them. Throws LKStoreError.
  virtual void save() = 0;
};

}  // namespace lk
