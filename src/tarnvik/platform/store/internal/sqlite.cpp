#include "tarnvik/platform/store/internal/sqlite.hpp"

#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/date.hpp"
#include "tarnvik/platform/store/persistent_store.hpp"

namespace tarnvik::sqlite {

void Statement::bind(int index, const Value& value) {
  switch (value.kind()) {
    case Value::Kind::Nil:
    case Value::Kind::Null:
      sqlite3_bind_null(statement_, index);
      break;
    case Value::Kind::Bool:
    case Value::Kind::Int:
    case Value::Kind::UInt:
      sqlite3_bind_int64(statement_, index, value.longLongValue());
      break;
    case Value::Kind::Double:
      sqlite3_bind_double(statement_, index, value.doubleValue());
      break;
    case Value::Kind::String: {
      const std::u16string_view units = value.asString().units();
      sqlite3_bind_text16(statement_, index, units.data(),
                          static_cast<int>(units.size() * sizeof(char16_t)), SQLITE_TRANSIENT);
      break;
    }
    case Value::Kind::Date:
      sqlite3_bind_double(statement_, index, value.asDate().timeIntervalSinceReferenceDate);
      break;
    case Value::Kind::Data: {
      const Data data = value.asData();
      sqlite3_bind_blob64(statement_, index, data.bytes(), data.length(), SQLITE_TRANSIENT);
      break;
    }
    default: {
      const std::u16string_view units = value.description().units();
      sqlite3_bind_text16(statement_, index, units.data(),
                          static_cast<int>(units.size() * sizeof(char16_t)), SQLITE_TRANSIENT);
      break;
    }
  }
}

bool Database::open(const std::string& path, int flags, Error* error) {
  const int rc = sqlite3_open_v2(path.c_str(), &db_, flags, nullptr);
  if (rc != SQLITE_OK) {
    if (error) *error = lastError();
    return false;
  }
  sqlite3_extended_result_codes(db_, 1);
  return true;
}

bool Database::execute(const std::string& sql, Error* error) {
  if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK) return true;
  if (error) *error = lastError();
  return false;
}

Statement* Database::cached(const std::string& sql, Error* error) {
  auto found = statements_.find(sql);
  if (found != statements_.end()) {
    found->second->reset();
    return found->second.get();
  }
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v3(db_, sql.c_str(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                         &statement, nullptr) != SQLITE_OK) {
    if (error) *error = lastError();
    return nullptr;
  }
  return statements_.emplace(sql, std::make_unique<Statement>(statement)).first->second.get();
}

Error Database::lastError() const {
  const int code = db_ ? sqlite3_extended_errcode(db_) : SQLITE_NOMEM;
  const char* message = db_ ? sqlite3_errmsg(db_) : sqlite3_errstr(code);
  return Error(NSSQLiteErrorDomain, code,
               Dictionary{{NSLocalizedDescriptionKey, String(std::string_view(message))}});
}

std::string quoted(const std::string& name) {
  std::string out = "\"";
  for (char c : name) {
    if (c == '"') out.push_back('"');
    out.push_back(c);
  }
  out.push_back('"');
  return out;
}

}  // namespace tarnvik::sqlite
