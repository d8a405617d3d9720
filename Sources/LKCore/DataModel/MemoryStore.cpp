#include "LKCore/DataModel/MemoryStore.h"

#include "LKCore/DataModel/FetchOrder.h"
#include "LKCore/DataModel/RowPool.h"
#include "LKCore/DataModel/RowRelations.h"

namespace lk {

namespace {

template <typename Row>
class MemoryTable final : public LKTable<Row> {
 public:
  explicit MemoryTable(LKContext& context) : context_(context) {}

  std::vector<Row*> fetch(const LKFetch<Row>& what) override {
    std::vector<Row*> rows;
    if (!what.where.test) rows.reserve(pool_.size());
    forEachMatch(what.where, [&](Row& row) { rows.push_back(&row); });
    orderAndCut(rows, what);
    return rows;
  }

  size_t count(const LKPredicate<Row>& where) override {
    if (!where.test) return pool_.size();
    size_t found = 0;
    forEachMatch(where, [&](const Row&) { ++found; });
    return found;
  }

  Row& insert(Row row) override { return pool_.add(std::move(row)); }

  void remove(Row& row) override {
    removeDependents(context_, row);
    detach(row);
    pool_.remove(static_cast<PoolNode<Row>&>(row));
  }

  void removeAll() override {
    pool_.forEach([&](Row& row) {
      removeDependents(context_, row);
      detachWithAll(row);
    });
    pool_.clear();
  }

  int64_t persistentID(const Row& row) override {
    return static_cast<int64_t>(static_cast<const PoolNode<Row>&>(row).sequence);
  }

  void forgetIDs() { pool_.forgetIDs(); }

 private:
  template <typename Visit>
  void forEachMatch(const LKPredicate<Row>& where, const Visit& visit) {
    const auto visitMatch = [&](Row& row) {
      if (!where.test || where.test(row)) visit(row);
    };
    if (where.ids) {
      pool_.forEachWithID(*where.ids, visitMatch);
    } else {
      pool_.forEach(visitMatch);
    }
  }

  LKContext& context_;
  RowPool<Row> pool_;
};

class MemoryStore final : public LKContext {
 public:
  LKTable<LKNote>& notes() override { return notes_; }
  LKTable<LKTask>& tasks() override { return tasks_; }
  LKTable<LKTag>& tags() override { return tags_; }
  LKTable<LKBackLink>& backLinks() override { return backLinks_; }
  LKTable<LKNoteVersion>& noteVersions() override { return noteVersions_; }
  LKTable<LKTaskVersion>& taskVersions() override { return taskVersions_; }

  // An id that was changed in place counts from now on, as it does in a file.
  void save() override {
    notes_.forgetIDs();
    tasks_.forgetIDs();
  }

 private:
  MemoryTable<LKNote> notes_{*this};
  MemoryTable<LKTask> tasks_{*this};
  MemoryTable<LKTag> tags_{*this};
  MemoryTable<LKBackLink> backLinks_{*this};
  MemoryTable<LKNoteVersion> noteVersions_{*this};
  MemoryTable<LKTaskVersion> taskVersions_{*this};
};

}  // namespace

std::unique_ptr<LKContext> makeMemoryStore() {
  return std::make_unique<MemoryStore>();
}

}  // namespace lk
