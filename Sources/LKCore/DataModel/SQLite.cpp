#include "LKCore/DataModel/SQLite.h"

#include <sqlite3.h>

#include <string_view>
#include <variant>

#include "LKCore/Base/UUID.h"
#include "LKCore/DataModel/LKContext.h"
#include "LKCore/Platform/Files.h"

namespace lk {

namespace {

std::string_view textArgument(sqlite3_value* value) {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(value));
  if (bytes == nullptr) return {};
  return {bytes, static_cast<size_t>(sqlite3_value_bytes(value))};
}

// lk_uuid(text): the 16 bytes as the file has them; null for anything else.
void uuidFunction(sqlite3_context* context, int /*count*/, sqlite3_value** arguments) {
  const std::optional<UUID> uuid = UUID::parse(textArgument(arguments[0]));
  if (!uuid) return sqlite3_result_null(context);
  sqlite3_result_blob(context, uuid->bytes().data(), static_cast<int>(uuid->bytes().size()),
                      SQLITE_TRANSIENT);
}

// lk_folded_contains(text, folded part): see foldedContains.
void foldedContainsFunction(sqlite3_context* context, int /*count*/, sqlite3_value** arguments) {
  try {
    const bool contains = foldedContains(textArgument(arguments[0]), textArgument(arguments[1]));
    sqlite3_result_int(context, contains ? 1 : 0);
  } catch (const std::exception& error) {  // an exception may not pass through the C library
    sqlite3_result_error(context, error.what(), -1);
  }
}

}  // namespace

// --- Statement -----------------------------------------------------------------------------------

Statement::~Statement() {
  sqlite3_reset(statement_);  // repeats the error of the last step, which was thrown
  sqlite3_clear_bindings(statement_);
}

void Statement::check(int code) {
  if (code != SQLITE_OK) connection_.fail();
}

void Statement::bind(std::nullptr_t) {
  check(sqlite3_bind_null(statement_, ++bound_));
}

void Statement::bind(int64_t value) {
  check(sqlite3_bind_int64(statement_, ++bound_, value));
}

void Statement::bind(double value) {
  check(sqlite3_bind_double(statement_, ++bound_, value));
}

void Statement::bind(const std::string& text) {
  check(sqlite3_bind_text64(statement_, ++bound_, text.data(), text.size(), SQLITE_TRANSIENT,
                            SQLITE_UTF8));
}

void Statement::bind(const std::array<uint8_t, 16>& bytes) {
  check(sqlite3_bind_blob64(statement_, ++bound_, bytes.data(), bytes.size(), SQLITE_TRANSIENT));
}

void Statement::bind(const std::vector<LKSqlValue>& values) {
  for (const LKSqlValue& value : values) {
    std::visit([&](const auto& held) { bind(held); }, value);
  }
}

bool Statement::step() {
  const int code = sqlite3_step(statement_);
  if (code == SQLITE_ROW) return true;
  if (code != SQLITE_DONE) connection_.fail();
  return false;
}

// --- Connection ----------------------------------------------------------------------------------

void Connection::Closing::operator()(sqlite3* handle) const {
  sqlite3_close_v2(handle);
}

void Connection::Finalizing::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

Connection::Connection(const std::filesystem::path& path, const Options& options)
    : path_(options.shownAs.empty() ? path : options.shownAs) {
  const int access =
      options.isReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  sqlite3* handle = nullptr;
  const std::string uri = fileURL(path) + "?" + options.uriParameters;
  const int code = sqlite3_open_v2(uri.c_str(), &handle,
                                   access | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX, nullptr);
  handle_.reset(handle);
  if (code != SQLITE_OK) fail();
  sqlite3_extended_result_codes(handle, 1);
  sqlite3_busy_timeout(handle, options.patience);
  // The file may come from anywhere: nothing in its schema may do more than describe tables.
  sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  if (options.isReadOnly) sqlite3_db_config(handle, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  addFunctions();
}

Connection::~Connection() = default;

void Connection::addFunctions() {
  static constexpr int kFlags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY;
  const auto add = [&](const char* name, int count, auto function) {
    if (sqlite3_create_function(handle_.get(), name, count, kFlags, nullptr, function, nullptr,
                                nullptr) != SQLITE_OK) {
      fail();
    }
  };
  add("lk_uuid", 1, uuidFunction);
  add("lk_folded_contains", 2, foldedContainsFunction);
}

Statement Connection::prepared(const std::string& sql) {
  auto& kept = statements_[sql];
  if (!kept) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v3(handle_.get(), sql.c_str(), static_cast<int>(sql.size()),
                           SQLITE_PREPARE_PERSISTENT, &statement, nullptr) != SQLITE_OK) {
      fail();
    }
    kept.reset(statement);
  }
  return {*this, kept.get()};
}

void Connection::execute(const std::string& sql) {
  if (sqlite3_exec(handle_.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) fail();
}

int64_t Connection::integer(const std::string& sql) {
  Statement statement = prepared(sql);
  return statement.step() ? sqlite3_column_int64(statement.get(), 0) : 0;
}

int64_t Connection::lastInsertedKey() const {
  return sqlite3_last_insert_rowid(handle_.get());
}

bool Connection::isReadOnlyFile() const {
  return sqlite3_db_readonly(handle_.get(), "main") == 1;
}

bool Connection::isInTransaction() const {
  return sqlite3_get_autocommit(handle_.get()) == 0;
}

void Connection::fail() const {
  // Without memory for a handle there is nobody to ask.
  const char* cause = handle_ ? sqlite3_errmsg(handle_.get()) : "out of memory";
  throw LKStoreError(path_.string() + ": " + cause);
}

// --- Transaction ---------------------------------------------------------------------------------

Transaction::Transaction(Connection& connection, Kind kind) : connection_(connection) {
  connection_.execute(kind == Kind::read ? "BEGIN" : "BEGIN IMMEDIATE");
}

Transaction::~Transaction() {
  // Some failures have undone it by themselves.
  if (!isOpen_ || !connection_.isInTransaction()) return;
  try {
    connection_.execute("ROLLBACK");
  } catch (const LKStoreError&) {
    return;  // the connection's end undoes it too
  }
}

void Transaction::commit() {
  connection_.execute("COMMIT");
  isOpen_ = false;
}

}  // namespace lk
