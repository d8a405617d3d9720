#pragma once

// SQLite as the store on disk uses it; nothing above this folder includes it.

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "LKCore/DataModel/LKFetch.h"

struct sqlite3;
struct sqlite3_stmt;

namespace lk {

class Connection;

// A prepared statement in use. It goes back to its connection, reset, at the end of its life; one
// text is in use once at a time.
class Statement {
 public:
  Statement(Connection& connection, sqlite3_stmt* statement)
      : connection_(connection), statement_(statement) {}
  ~Statement();
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  // Binds the next "?".
  void bind(std::nullptr_t);
  void bind(int64_t value);
  void bind(double value);
  void bind(const std::string& text);
  void bind(const std::array<uint8_t, 16>& bytes);
  void bind(const std::vector<LKSqlValue>& values);

  // True when there is a row. Throws LKStoreError.
  bool step();
  // The same for a statement without rows.
  void run() { step(); }

  sqlite3_stmt* get() const { return statement_; }

 private:
  void check(int code);

  Connection& connection_;
  sqlite3_stmt* statement_;
  int bound_ = 0;
};

// A connection to one file. Every failure is an LKStoreError that names the file.
class Connection {
 public:
  struct Options {
    std::string uriParameters;  // e.g. "mode=ro"
    bool isReadOnly = false;
    int patience = 0;                    // milliseconds to wait for another process's lock
    std::filesystem::path shownAs = {};  // the path in messages, when that is another
  };

  Connection(const std::filesystem::path& path, const Options& options);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // As messages name it.
  const std::filesystem::path& path() const { return path_; }

  // Kept for the next time that the same text is asked for.
  Statement prepared(const std::string& sql);
  // Statements without rows and values.
  void execute(const std::string& sql);
  int64_t integer(const std::string& sql);
  int64_t lastInsertedKey() const;
  bool isReadOnlyFile() const;
  bool isInTransaction() const;

  // The error of the last call.
  [[noreturn]] void fail() const;

 private:
  void addFunctions();

  struct Closing {
    void operator()(sqlite3* handle) const;
  };
  struct Finalizing {
    void operator()(sqlite3_stmt* statement) const;
  };

  std::filesystem::path path_;
  std::unique_ptr<sqlite3, Closing> handle_;
  std::unordered_map<std::string, std::unique_ptr<sqlite3_stmt, Finalizing>> statements_;
};

// A transaction that is undone unless it is committed.
class Transaction {
 public:
  enum class Kind { read, write };

  Transaction(Connection& connection, Kind kind);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  void commit();

 private:
  Connection& connection_;
  bool isOpen_ = true;
};

}  // namespace lk
