#pragma once

// One table of a store on disk and what this context has read of it: one object a row. Reading adds
// to what is there and never touches a value that somebody changed; writing compares each row with
// what the file has. Relations are the context's (SQLiteStore.cpp).

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "LKCore/DataModel/FetchOrder.h"
#include "LKCore/DataModel/RowPool.h"
#include "LKCore/DataModel/StoreColumns.h"

namespace lk {

template <typename Row>
struct StoredRow : PoolNode<Row> {
  int64_t pk = 0;                        // 0 until the row is saved
  int64_t savedOwner = 0;                // the owner's pk in the file, 0 for none
  LKParts readParts = LKParts::none;     // of a note: the columns that are here
  LKParts linkedParts = LKParts::none;   // of a note: the relations that are here
  std::unique_ptr<Row> saved = nullptr;  // the columns in the file; none in one that is only read
  std::vector<int64_t> savedTags = {};   // of a note: tags that it is known to have in the file
};

constexpr LKParts kColumnParts = LKParts::text | LKParts::tags | LKParts::words | LKParts::hashes;

// A part of a table: a condition with its values, empty for all of it.
struct TableScope {
  std::string where = {};
  std::vector<LKSqlValue> values = {};
  std::string orderAndLimit = {};

  static TableScope withKeys(const std::string& column, const std::vector<int64_t>& keys) {
    return {.where = column + " IN (SELECT value FROM json_each(?))", .values = {keyList(keys)}};
  }
};

template <typename Row>
class StoredRows {
 public:
  using Stored = StoredRow<Row>;

  // `ownerKey` gives the pk of a row's owner as it is now, `ownerIsGone` tells owners removed since
  // the last save; both are empty for rows without an owner.
  struct Owners {
    std::function<int64_t(const Row&)> key = {};
    std::function<bool(int64_t)> isGone = {};
  };

  StoredRows(Connection& connection, bool isReadOnly, Owners owners = {})
      : connection_(connection), isReadOnly_(isReadOnly), owners_(std::move(owners)) {}

  static Stored& of(Row& row) { return static_cast<Stored&>(row); }
  static const Stored& of(const Row& row) { return static_cast<const Stored&>(row); }

  // --- Reading -----------------------------------------------------------------------------------

  // Rows as they are now, in memory where they have been changed, else in the file.
  std::vector<Stored*> fetch(const LKFetch<Row>& what) {
    std::vector<Stored*> rows;
    if (isReadOnly_) {
      rows = read(scopeOf(what, 0), what.parts);
    } else {
      rows = matching(what.where);
      const uint64_t newest = pool_.newest();
      for (Stored* row : read(scopeOf(what, pool_.size() + removed_.size()), what.parts)) {
        if (row->sequence > newest) rows.push_back(row);
      }
      fill(rows, what.parts);
      std::ranges::sort(rows, isInsertedBefore);
    }
    orderAndCut(rows, what);
    return rows;
  }

  size_t count(const LKPredicate<Row>& where) {
    const std::string table = " FROM " + shape_.name + whereClause(where.sql);
    if (isReadOnly_) {
      Statement statement = connection_.prepared("SELECT count(*)" + table);
      statement.bind(where.values);
      statement.step();
      return static_cast<size_t>(RowReader(statement).integer());
    }
    size_t found = matching(where).size();
    Statement statement = connection_.prepared("SELECT " + keyColumns() + table);
    statement.bind(where.values);
    while (statement.step()) {
      RowReader reader(statement);
      const int64_t pk = reader.integer();
      const int64_t owner = shape_.owner.empty() ? 0 : reader.integer();
      if (!byPK_.contains(pk) && !isGone(pk) && !ownerIsGone(owner)) ++found;
    }
    return found;
  }

  // The rows of the scope that are in the file and not removed here. New objects come without
  // relations and are also listed in `takeUnlinked`.
  std::vector<Stored*> read(const TableScope& scope, LKParts parts) {
    Statement statement = connection_.prepared(selectSQL(scope, parts));
    statement.bind(scope.values);
    std::vector<Stored*> rows;
    while (statement.step()) {
      RowReader reader(statement);
      const int64_t pk = reader.integer();
      const int64_t owner = shape_.owner.empty() ? 0 : reader.integer();
      if (isGone(pk) || ownerIsGone(owner)) continue;
      Stored* known = find(pk);
      if (known == nullptr) {
        known = &adopt(reader, pk, owner, parts);
      } else if (!hasParts(known->readParts, columnParts(parts))) {
        complete(*known, reader, parts);
      }
      rows.push_back(known);
    }
    return rows;
  }

  // Reads what these rows lack of the parts.
  void fill(const std::vector<Stored*>& rows, LKParts parts) {
    std::vector<int64_t> lacking;
    for (const Stored* row : rows) {
      const bool isWhole = hasParts(row->readParts, columnParts(parts));
      if (row->pk != 0 && !isWhole) lacking.push_back(row->pk);
    }
    if (!lacking.empty()) read(TableScope::withKeys("pk", lacking), parts);
  }

  // The objects with an owner that `read` made since the last call, in the order of insertion.
  std::vector<Stored*> takeUnlinked() {
    std::ranges::sort(unlinked_, {}, &Stored::pk);
    return std::exchange(unlinked_, {});
  }
  const std::vector<Stored*>& unlinked() const { return unlinked_; }

  // Null when it was not read or was removed.
  Stored* find(int64_t pk) const {
    const auto found = byPK_.find(pk);
    return found == byPK_.end() ? nullptr : found->second;
  }

  bool isGone(int64_t pk) const { return pk <= removedUpTo_ || removed_.contains(pk); }

  template <typename Visit>
  void forEach(const Visit& visit) {
    pool_.forEach(visit);
  }

  // --- Changing ----------------------------------------------------------------------------------

  Stored& insert(Row row) {
    Stored& stored = pool_.add(std::move(row));
    stored.readParts = LKParts::all;
    stored.linkedParts = LKParts::all;
    return stored;
  }

  // The row has no relations any more.
  void remove(Stored& row) {
    if (row.pk != 0) {
      byPK_.erase(row.pk);
      removed_.insert(row.pk);
    }
    pool_.remove(row);
  }

  void removeAll() {
    removedUpTo_ =
        std::max(removedUpTo_, connection_.integer("SELECT max(pk) FROM " + shape_.name));
    byPK_.clear();
    pool_.clear();
  }

  // --- Saving: write, removeFromFile, then afterCommit or afterFailure ---------------------------

  void write() {
    pool_.forEach([&](Stored& row) {
      if (row.pk == 0) {
        writeNew(row);
      } else {
        writeChanges(row);
      }
    });
  }

  // Deletes the removed rows, and what belongs to them: columns of other tables that hold their pk.
  void removeFromFile(const std::vector<std::pair<std::string, std::string>>& dependents) {
    const auto removeFrom = [&](const std::string& table, const std::string& column) {
      const std::string sql = "DELETE FROM " + table + " WHERE " + column;
      if (removedUpTo_ > 0) deleteWhere(sql + " BETWEEN 1 AND ?", removedUpTo_);
      for (const int64_t pk : removed_) deleteWhere(sql + " = ?", pk);
    };
    for (const auto& [table, column] : dependents) removeFrom(table, column);
    removeFrom(shape_.name, "pk");
  }

  void afterCommit() {
    for (Stored* row : written_) {
      byPK_[row->pk] = row;
      if (!row->saved) row->saved = std::make_unique<Row>();
      for (const Column<Row>& column : shape_.columns) column.assign(*row->saved, *row);
      row->savedOwner = ownerKey(*row);
    }
    written_.clear();
    inserted_.clear();
    removed_.clear();
    removedUpTo_ = 0;
    pool_.forgetIDs();
  }

  void afterFailure() {
    for (Stored* row : inserted_) row->pk = 0;
    written_.clear();
    inserted_.clear();
  }

 private:
  // Only notes come in parts.
  static LKParts columnParts(LKParts parts) {
    if (!std::is_same_v<Row, LKNote>) return LKParts::none;
    return static_cast<LKParts>(static_cast<uint32_t>(parts) & static_cast<uint32_t>(kColumnParts));
  }

  static bool isInsertedBefore(const Stored* a, const Stored* b) {
    if ((a->pk == 0) != (b->pk == 0)) return b->pk == 0;
    return a->pk == 0 ? a->sequence < b->sequence : a->pk < b->pk;
  }

  static std::string whereClause(const std::string& condition) {
    return condition.empty() ? "" : " WHERE " + condition;
  }

  std::string keyColumns() const { return shape_.owner.empty() ? "pk" : "pk, " + shape_.owner; }

  int64_t ownerKey(const Row& row) const { return owners_.key ? owners_.key(row) : 0; }
  bool ownerIsGone(int64_t owner) const {
    return owner != 0 && owners_.isGone && owners_.isGone(owner);
  }

  // A limit is left to the file as far as the rows in memory, `reserve` many, cannot disturb it.
  TableScope scopeOf(const LKFetch<Row>& what, size_t reserve) const {
    TableScope scope{.where = what.where.sql, .values = what.where.values};
    if (!what.limit || removedUpTo_ > 0) {
      if (isReadOnly_) scope.orderAndLimit = " ORDER BY pk";
      return scope;
    }
    for (const LKSort<Row>& sort : what.order) {
      const char* direction = sort.order == LKOrder::ascending ? " ASC, " : " DESC, ";
      scope.orderAndLimit += sort.sql + direction;
    }
    scope.orderAndLimit =
        " ORDER BY " + scope.orderAndLimit + "pk LIMIT " + std::to_string(*what.limit + reserve);
    return scope;
  }

  std::string selectSQL(const TableScope& scope, LKParts parts) const {
    std::string sql = "SELECT " + keyColumns();
    for (const Column<Row>& column : shape_.columns) {
      if (hasParts(parts, column.part)) sql += ", " + column.names;
    }
    sql += " FROM " + shape_.name;
    if (std::is_same_v<Row, LKNote> && hasParts(parts, LKParts::text)) {
      sql += " LEFT JOIN body ON body.note = pk";
    }
    return sql + whereClause(scope.where) + scope.orderAndLimit;
  }

  // Loaded and new rows that pass.
  std::vector<Stored*> matching(const LKPredicate<Row>& where) {
    std::vector<Stored*> rows;
    const auto visit = [&](Stored& row) {
      if (!where.test || where.test(row)) rows.push_back(&row);
    };
    if (where.ids) {
      pool_.forEachWithID(*where.ids, visit);
    } else {
      pool_.forEach(visit);
    }
    return rows;
  }

  void takeColumns(RowReader& reader, Row& row, LKParts parts) const {
    for (const Column<Row>& column : shape_.columns) {
      if (hasParts(parts, column.part)) column.take(reader, row);
    }
  }

  Stored& adopt(RowReader& reader, int64_t pk, int64_t owner, LKParts parts) {
    Row row;
    takeColumns(reader, row, parts);
    auto asInFile = isReadOnly_ ? nullptr : std::make_unique<Row>(row);
    Stored& stored = pool_.add(std::move(row));
    stored.pk = pk;
    stored.savedOwner = owner;
    stored.readParts = columnParts(parts);
    stored.saved = std::move(asInFile);
    byPK_.emplace(pk, &stored);
    if (!shape_.owner.empty()) unlinked_.push_back(&stored);
    return stored;
  }

  // Adds the parts that were not read yet, but for values that were set meanwhile.
  void complete(Stored& stored, RowReader& reader, LKParts parts) {
    static const Row blank;
    Row fresh;
    takeColumns(reader, fresh, parts);
    for (const Column<Row>& column : shape_.columns) {
      if (!hasParts(parts, column.part) || hasParts(stored.readParts, column.part)) continue;
      if (column.same(stored, blank)) column.assign(stored, fresh);
      if (stored.saved) column.assign(*stored.saved, fresh);
    }
    stored.readParts = stored.readParts | columnParts(parts);
  }

  void writeNew(Stored& row) {
    std::string names = shape_.owner.empty() ? "" : shape_.owner;
    for (const Column<Row>& column : shape_.columns) {
      if (column.part == LKParts::text) continue;
      if (!names.empty()) names += ", ";
      names += column.names;
    }
    {
      Statement statement = connection_.prepared("INSERT INTO " + shape_.name + " (" + names +
                                                 ") VALUES (" + placeholders(names) + ")");
      RowBinder binder(statement);
      if (!shape_.owner.empty()) binder.put(ownerKey(row));
      for (const Column<Row>& column : shape_.columns) {
        if (column.part != LKParts::text) column.put(binder, row);
      }
      statement.run();
    }
    row.pk = connection_.lastInsertedKey();
    inserted_.push_back(&row);
    written_.push_back(&row);
    writeBody(row, nullptr);
  }

  void writeChanges(Stored& row) {
    const bool ownerChanged = ownerKey(row) != row.savedOwner;
    std::string names = ownerChanged ? shape_.owner : "";
    std::vector<const Column<Row>*> changed;
    bool bodyChanged = false;
    for (const Column<Row>& column : shape_.columns) {
      if (column.same(row, *row.saved)) continue;
      if (column.part == LKParts::text) {
        bodyChanged = true;
        continue;
      }
      changed.push_back(&column);
      names += (names.empty() ? "" : ", ") + column.names;
    }
    if (names.empty() && !bodyChanged) return;
    written_.push_back(&row);
    if (bodyChanged) writeBody(row, row.saved.get());
    if (names.empty()) return;
    Statement statement = connection_.prepared("UPDATE " + shape_.name + " SET (" + names +
                                               ") = (" + placeholders(names) + ") WHERE pk = ?");
    RowBinder binder(statement);
    if (ownerChanged) binder.put(ownerKey(row));
    for (const Column<Row>* column : changed) column->put(binder, row);
    binder.put(row.pk);
    statement.run();
  }

  // The columns that stand in the table "body".
  void writeBody(Stored& row, const Row* before) {
    static const Row blank;
    for (const Column<Row>& column : shape_.columns) {
      if (column.part != LKParts::text) continue;
      if (column.same(row, before == nullptr ? blank : *before)) continue;
      Statement statement =
          connection_.prepared("INSERT OR REPLACE INTO body (note, text) VALUES (?, ?)");
      RowBinder binder(statement);
      binder.put(row.pk);
      column.put(binder, row);
      statement.run();
    }
  }

  void deleteWhere(const std::string& sql, int64_t value) {
    Statement statement = connection_.prepared(sql);
    statement.bind(value);
    statement.run();
  }

  Connection& connection_;
  const TableShape<Row>& shape_ = shapeOf<Row>();
  bool isReadOnly_;
  Owners owners_;
  RowPool<Row, Stored> pool_;
  std::unordered_map<int64_t, Stored*> byPK_;
  std::vector<Stored*> unlinked_;
  std::unordered_set<int64_t> removed_;
  int64_t removedUpTo_ = 0;  // rows up to this pk are removed
  std::vector<Stored*> inserted_;
  std::vector<Stored*> written_;
};

}  // namespace lk
