// A small RAII wrapper over SQLite's C API: a connection, prepared statements that reset
// themselves, and SQLite's errors as Errors in NSSQLiteErrorDomain.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>
#include <unordered_map>

#include "tarnvik/platform/base/error.hpp"

namespace tarnvik::sqlite {

class Statement {
 public:
  explicit Statement(sqlite3_stmt* statement) : statement_(statement) {}
  ~Statement() { sqlite3_finalize(statement_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  sqlite3_stmt* get() const { return statement_; }
  // Ready for new bindings.
  void reset() {
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
  }
  void bind(int index, std::int64_t value) { sqlite3_bind_int64(statement_, index, value); }
  void bindNull(int index) { sqlite3_bind_null(statement_, index); }
  // Binds nil as NULL, numbers, strings, dates (seconds since the reference date) and data.
  void bind(int index, const Value& value);
  // SQLITE_ROW, SQLITE_DONE or an error code.
  int step() { return sqlite3_step(statement_); }

 private:
  sqlite3_stmt* statement_;
};

class Database {
 public:
  Database() = default;
  ~Database() { sqlite3_close_v2(db_); }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  bool open(const std::string& path, int flags, Error* error);
  sqlite3* get() const { return db_; }
  bool execute(const std::string& sql, Error* error);
  // A statement prepared once and kept for the life of the connection; nullptr and the
  // error when SQLite refuses the text.
  Statement* cached(const std::string& sql, Error* error);
  // The connection's last error, as an Error in NSSQLiteErrorDomain.
  Error lastError() const;

 private:
  sqlite3* db_ = nullptr;
  std::unordered_map<std::string, std::unique_ptr<Statement>> statements_;
};

// A double-quoted SQL identifier.
std::string quoted(const std::string& name);

}  // namespace tarnvik::sqlite
