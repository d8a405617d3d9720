#pragma once

// How the rows stand in the file: one list of columns a table, from which the schema and every
// statement are made. A UUID is a blob of 16 bytes, an instant two integers (seconds, nanoseconds),
// a day the integer yyyymmdd, a list or dictionary JSON. What does not decode reads as empty.

#include <sqlite3.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "LKCore/DataModel/Entities.h"
#include "LKCore/DataModel/SQLite.h"

namespace lk {

// The columns of a statement's row, left to right.
class RowReader {
 public:
  explicit RowReader(const Statement& statement) : statement_(statement.get()) {}

  int64_t integer();
  void take(int64_t& value) { value = integer(); }
  void take(int& value);
  void take(bool& value) { value = integer() != 0; }
  void take(std::string& value);
  void take(UUID& value);
  void take(Instant& value);
  void take(std::vector<std::string>& value);
  void take(LKNote::Properties& value);

  void take(std::optional<std::string>& value);
  void take(std::optional<UUID>& value);
  void take(std::optional<Day>& value);
  void take(std::optional<std::filesystem::path>& value);

 private:
  bool takeNull();

  sqlite3_stmt* statement_;
  int next_ = 0;
};

// The same values into the "?" of a statement, left to right.
class RowBinder {
 public:
  explicit RowBinder(Statement& statement) : statement_(statement) {}

  void put(int64_t value) { statement_.bind(value); }
  void put(int value) { statement_.bind(int64_t{value}); }
  void put(bool value) { statement_.bind(int64_t{value ? 1 : 0}); }
  void put(const std::string& value) { statement_.bind(value); }
  void put(const UUID& value) { statement_.bind(value.bytes()); }
  void put(const Instant& value);
  void put(const std::vector<std::string>& value);
  void put(const LKNote::Properties& value);
  void put(const std::optional<Day>& value);
  void put(const std::optional<std::filesystem::path>& value);
  template <typename Value>
  void put(const std::optional<Value>& value) {
    if (value) return put(*value);
    statement_.bind(nullptr);
  }

 private:
  Statement& statement_;
};

template <typename Row>
struct Column {
  std::string names;  // one, or two with a comma
  LKParts part;       // that it belongs to
  void (*take)(RowReader&, Row&);
  void (*put)(RowBinder&, const Row&);
  bool (*same)(const Row&, const Row&);
  void (*assign)(Row& to, const Row& from);
};

// A table of the file. It begins with the columns "pk" and, where rows have an owner, `owner`,
// which holds the owner's pk or 0.
template <typename Row>
struct TableShape {
  std::string name;
  std::string owner;  // empty for none
  std::vector<Column<Row>> columns;
};

// The shape of a row's table; `LKNote::text` stands in a table of its own, "body", so that lists do
// not read past it.
template <typename Row>
const TableShape<Row>& shapeOf();

template <>
const TableShape<LKNote>& shapeOf<LKNote>();
template <>
const TableShape<LKTask>& shapeOf<LKTask>();
template <>
const TableShape<LKTag>& shapeOf<LKTag>();
template <>
const TableShape<LKBackLink>& shapeOf<LKBackLink>();
template <>
const TableShape<LKNoteVersion>& shapeOf<LKNoteVersion>();
template <>
const TableShape<LKTaskVersion>& shapeOf<LKTaskVersion>();

// Every CREATE statement of the store, as the file keeps them.
const std::vector<std::string>& storeSchema();

// A list of keys as one bound value, for json_each.
std::string keyList(const std::vector<int64_t>& keys);

// "?" as often as there are columns, with commas.
std::string placeholders(const std::string& names);

}  // namespace lk
