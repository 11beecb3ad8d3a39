#include "tarnvik/platform/store/persistent_store.hpp"

#include <random>
#include <unordered_map>

#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/date.hpp"
#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/base/internal/message.hpp"
#include "tarnvik/platform/store/internal/sql_predicates.hpp"
#include "tarnvik/platform/store/internal/sqlite.hpp"

namespace tarnvik {

TARNVIK_DEFINE_CLASS(PersistentStoreCoordinator, Object, (void)c)

namespace {

using sqlite::columnName;
using sqlite::joinTableName;
using sqlite::tableName;

String newUUID() {
  std::random_device device;
  std::uint8_t bytes[16];
  for (std::size_t i = 0; i < sizeof bytes; i += 4) {
    const std::uint32_t r = device();
    for (std::size_t j = 0; j < 4; ++j) bytes[i + j] = static_cast<std::uint8_t>(r >> (8 * j));
  }
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0f) | 0x40);
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3f) | 0x80);
  static constexpr char digits[] = "0123456789ABCDEF";
  std::string text;
  for (std::size_t i = 0; i < 16; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text.push_back('-');
    text.push_back(digits[bytes[i] >> 4]);
    text.push_back(digits[bytes[i] & 15]);
  }
  return String(text);
}

const char* columnType(AttributeType type) {
  switch (type) {
    case AttributeType::Double:
    case AttributeType::Float:
    case AttributeType::Date:
      return "REAL";
    case AttributeType::String:
      return "TEXT";
    case AttributeType::Binary:
      return "BLOB";
    default:
      return "INTEGER";
  }
}

Value readColumn(sqlite3_stmt* s, int column, AttributeType type) {
  if (sqlite3_column_type(s, column) == SQLITE_NULL) return Value();
  switch (type) {
    case AttributeType::Boolean:
      return Value(sqlite3_column_int64(s, column) != 0);
    case AttributeType::Double:
    case AttributeType::Float:
      return Value(sqlite3_column_double(s, column));
    case AttributeType::Date:
      return Value(Date{sqlite3_column_double(s, column)});
    case AttributeType::String: {
      const auto* units = static_cast<const char16_t*>(sqlite3_column_text16(s, column));
      const int bytes = sqlite3_column_bytes16(s, column);
      return Value(String(std::u16string_view(units, static_cast<std::size_t>(bytes) / 2)));
    }
    case AttributeType::Binary:
      return Value(Data::withBytes(sqlite3_column_blob(s, column),
                                   static_cast<UInteger>(sqlite3_column_bytes(s, column))));
    default:
      return Value(static_cast<long long>(sqlite3_column_int64(s, column)));
  }
}

class SQLitePersistentStore : public PersistentStore {
 public:
  SQLitePersistentStore(std::shared_ptr<const ManagedObjectModel> model, String type, String path,
                        bool readOnly)
      : model_(std::move(model)),
        type_(std::move(type)),
        path_(std::move(path)),
        readOnly_(readOnly) {}

  String type() const override { return type_; }
  String identifier() const override { return identifier_; }
  String path() const override { return path_; }
  bool isReadOnly() const override { return readOnly_; }
  sqlite3* handle() const { return db_.get(); }

  bool open(Error* error) {
    const bool memory = path_.isNil();
    const int flags = memory      ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_MEMORY
                      : readOnly_ ? SQLITE_OPEN_READONLY
                                  : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    Error cause;
    if (!db_.open(memory ? ":memory:" : path_.utf8(), flags, &cause))
      return fail(error, NSPersistentStoreOpenError, u"could not be opened", cause);
    sqlite3_busy_timeout(db_.get(), 5000);
    auto* tables = db_.cached("SELECT count(*) FROM sqlite_master", &cause);
    if (!tables || tables->step() != SQLITE_ROW)
      return fail(error, NSPersistentStoreOpenError, u"could not be opened", db_.lastError());
    const std::int64_t count = sqlite3_column_int64(tables->get(), 0);
    tables->reset();
    if (count == 0) {
      if (readOnly_) {
        return fail(error, NSPersistentStoreOpenError, u"is empty and was opened for reading only",
                    Error());
      }
      if (!createSchema(&cause))
        return fail(error, NSPersistentStoreOpenError, u"could not be created", cause);
    } else if (!readMetadata(error)) {
      return false;
    }
    if (!memory && !readOnly_) {
      // Write-ahead logging: readers do not block the writer, and a save costs one sync.
      db_.execute("PRAGMA journal_mode=WAL", nullptr);
      db_.execute("PRAGMA synchronous=NORMAL", nullptr);
    }
    for (const auto& entity : model_->entities()) {
      auto* max = db_.cached("SELECT max(Z_PK) FROM " + tableName(*entity), &cause);
      if (!max || max->step() != SQLITE_ROW)
        return fail(error, NSPersistentStoreOpenError, u"could not be read", db_.lastError());
      nextKey_.push_back(sqlite3_column_int64(max->get(), 0) + 1);
      max->reset();
    }
    return true;
  }

  bool fetchRows(const StoreFetch& fetch, std::vector<StoreRow>& rows, bool& filtered,
                 Error* error) override {
    const EntityDescription& entity = *fetch.entity;
    std::string sql = selectList(entity);
    sqlite::Condition where;
    filtered = true;
    if (fetch.predicate) where = sqlite::translatableConditions(*fetch.predicate, entity, filtered);
    if (!where.sql.empty()) sql += " WHERE " + where.sql;
    sql += " ORDER BY Z_PK";
    if (filtered && fetch.fetchLimit) sql += " LIMIT " + std::to_string(fetch.fetchLimit);
    Error cause;
    sqlite::Statement* s = db_.cached(sql, &cause);
    if (!s) return fail(error, NSPersistentStoreOperationError, u"could not be read", cause);
    for (std::size_t i = 0; i < where.bindings.size(); ++i)
      s->bind(static_cast<int>(i + 1), where.bindings[i]);
    int rc;
    while ((rc = s->step()) == SQLITE_ROW) rows.push_back(readRow(entity, s->get()));
    s->reset();
    if (rc != SQLITE_DONE)
      return fail(error, NSPersistentStoreOperationError, u"could not be read", db_.lastError());
    return true;
  }

  bool loadRow(const EntityDescription& entity, std::int64_t key, StoreRow& row, bool& found,
               Error* error) override {
    Error cause;
    sqlite::Statement* s = db_.cached(selectList(entity) + " WHERE Z_PK = ?", &cause);
    if (!s) return fail(error, NSPersistentStoreOperationError, u"could not be read", cause);
    s->bind(1, key);
    const int rc = s->step();
    found = rc == SQLITE_ROW;
    if (found) row = readRow(entity, s->get());
    s->reset();
    if (rc != SQLITE_ROW && rc != SQLITE_DONE)
      return fail(error, NSPersistentStoreOperationError, u"could not be read", db_.lastError());
    return true;
  }

  bool loadToMany(const RelationshipDescription& r, std::int64_t key,
                  std::vector<std::int64_t>& members, Error* error) override {
    Error cause;
    sqlite::Statement* s = db_.cached(
        "SELECT Z_TARGET FROM " + joinTableName(r) + " WHERE Z_OWNER = ? ORDER BY Z_POS", &cause);
    if (!s) return fail(error, NSPersistentStoreOperationError, u"could not be read", cause);
    s->bind(1, key);
    int rc;
    while ((rc = s->step()) == SQLITE_ROW) members.push_back(sqlite3_column_int64(s->get(), 0));
    s->reset();
    if (rc != SQLITE_DONE)
      return fail(error, NSPersistentStoreOperationError, u"could not be read", db_.lastError());
    return true;
  }

  std::int64_t reservePrimaryKeys(const EntityDescription& entity, std::size_t count) override {
    std::int64_t& next = nextKey_[indexOf(entity)];
    const std::int64_t first = next;
    next += static_cast<std::int64_t>(count);
    return first;
  }

  bool saveChanges(const StoreChanges& changes, Error* error) override {
    if (!db_.execute("BEGIN IMMEDIATE", nullptr))
      return fail(error, NSPersistentStoreSaveError, u"could not be saved", db_.lastError());
    if (!writeChanges(changes) || !db_.execute("COMMIT", nullptr)) {
      const Error cause = db_.lastError();
      db_.execute("ROLLBACK", nullptr);
      return fail(error, NSPersistentStoreSaveError, u"could not be saved", cause);
    }
    return true;
  }

 private:
  std::size_t indexOf(const EntityDescription& entity) const {
    const auto& all = model_->entities();
    for (std::size_t i = 0; i < all.size(); ++i)
      if (all[i].get() == &entity) return i;
    throw Exception(NSInternalInconsistencyException,
                    message::build(u"PersistentStore: the entity ", entity.name(),
                                   u" is not in the store's model"));
  }

  bool fail(Error* error, Integer code, const char16_t* what, const Error& cause) const {
    if (!error) return false;
    const String name = path_.isNil() ? String(u"in-memory store") : path_.lastPathComponent();
    String text = message::build(u"The store \u201c", name, u"\u201d ", what, u".");
    if (!cause.isNil())
      text = message::build(u"The store \u201c", name, u"\u201d ", what, u": ",
                            cause.localizedDescription(), u".");
    Dictionary info{{NSLocalizedDescriptionKey, text}};
    if (!path_.isNil()) info.setObject(path_, NSFilePathErrorKey);
    if (!cause.isNil()) info.setObject(cause, NSUnderlyingErrorKey);
    *error = Error(NSCocoaErrorDomain, code, info);
    return false;
  }

  const std::string& selectList(const EntityDescription& entity) {
    std::string& sql = selectLists_[&entity];
    if (!sql.empty()) return sql;
    sql = "SELECT Z_PK";
    for (const auto& a : entity.attributes()) sql += ", " + columnName(*a);
    for (const auto& r : entity.relationships())
      if (!r->isToMany()) sql += ", " + columnName(*r);
    sql += " FROM " + tableName(entity);
    return sql;
  }

  StoreRow readRow(const EntityDescription& entity, sqlite3_stmt* s) const {
    StoreRow row;
    row.key = sqlite3_column_int64(s, 0);
    int column = 1;
    row.attributes.reserve(entity.attributes().size());
    for (const auto& a : entity.attributes())
      row.attributes.push_back(readColumn(s, column++, a->attributeType()));
    row.toOne.assign(entity.relationships().size(), 0);
    for (const auto& r : entity.relationships())
      if (!r->isToMany()) row.toOne[r->index()] = sqlite3_column_int64(s, column++);
    return row;
  }

  bool createSchema(Error* error) {
    std::string sql = "BEGIN;CREATE TABLE Z_METADATA (Z_KEY TEXT PRIMARY KEY, Z_VALUE TEXT);";
    for (const auto& entity : model_->entities()) {
      const std::string table = tableName(*entity);
      sql += "CREATE TABLE " + table + " (Z_PK INTEGER PRIMARY KEY";
      for (const auto& a : entity->attributes())
        sql += ", " + columnName(*a) + " " + columnType(a->attributeType());
      for (const auto& r : entity->relationships())
        if (!r->isToMany()) sql += ", " + columnName(*r) + " INTEGER";
      sql += ");";
      const auto index = [&](const PropertyDescription& p) {
        sql += "CREATE INDEX " +
               sqlite::quoted("Z" + entity->name().utf8() + "_" + p.name().utf8()) + " ON " +
               table + " (" + columnName(p) + ");";
      };
      for (const auto& a : entity->attributes())
        if (a->isIndexed()) index(*a);
      for (const auto& r : entity->relationships()) {
        if (!r->isToMany()) {
          index(*r);
          continue;
        }
        const std::string join = joinTableName(*r);
        sql += "CREATE TABLE " + join +
               " (Z_OWNER INTEGER NOT NULL, Z_TARGET INTEGER NOT NULL, Z_POS INTEGER NOT NULL);";
        sql += "CREATE INDEX " +
               sqlite::quoted("Z_" + entity->name().utf8() + "_" + r->name().utf8() + "_OWNER") +
               " ON " + join + " (Z_OWNER, Z_POS);";
      }
    }
    sql += "COMMIT;";
    identifier_ = newUUID();
    if (!db_.execute(sql, error)) {
      db_.execute("ROLLBACK", nullptr);
      return false;
    }
    auto* put = db_.cached("INSERT INTO Z_METADATA (Z_KEY, Z_VALUE) VALUES (?, ?)", error);
    if (!put) return false;
    for (const auto& [key, value] :
         {std::pair<const char*, String>{"identifier", identifier_},
          std::pair<const char*, String>{"modelHash", model_->versionHash()}}) {
      put->reset();
      put->bind(1, Value(key));
      put->bind(2, Value(value));
      if (put->step() != SQLITE_DONE) {
        if (error) *error = db_.lastError();
        return false;
      }
    }
    put->reset();
    return true;
  }

  bool readMetadata(Error* error) {
    Error cause;
    auto* s = db_.cached("SELECT Z_KEY, Z_VALUE FROM Z_METADATA", &cause);
    if (!s) {
      return fail(error, NSPersistentStoreIncompatibleSchemaError,
                  u"is an SQLite database but not an object store", cause);
    }
    String hash;
    while (s->step() == SQLITE_ROW) {
      const auto* key = reinterpret_cast<const char*>(sqlite3_column_text(s->get(), 0));
      const Value value = readColumn(s->get(), 1, AttributeType::String);
      if (key && std::string_view(key) == "identifier") identifier_ = value.asString();
      if (key && std::string_view(key) == "modelHash") hash = value.asString();
    }
    s->reset();
    if (identifier_.isNil() || hash.isNil()) {
      return fail(error, NSPersistentStoreIncompatibleSchemaError,
                  u"is an SQLite database but not an object store", Error());
    }
    if (hash != model_->versionHash()) {
      return fail(error, NSPersistentStoreIncompatibleVersionHashError,
                  u"was written with another model than the one used to open it", Error());
    }
    return true;
  }

  void bindRow(sqlite::Statement& s, const StoreWrite& w, int first) {
    int column = first;
    for (const Value& value : *w.attributes) s.bind(column++, value);
    for (const auto& r : w.entity->relationships()) {
      if (r->isToMany()) continue;
      if (const std::int64_t key = w.toOne[r->index()])
        s.bind(column++, key);
      else
        s.bindNull(column++);
    }
  }

  // The statements a save uses, by entity or relationship, prepared once per store.
  struct Statements {
    sqlite::Statement* insert = nullptr;
    sqlite::Statement* update = nullptr;
    sqlite::Statement* remove = nullptr;
  };
  struct JoinStatements {
    sqlite::Statement* clear = nullptr;
    sqlite::Statement* add = nullptr;
  };

  const Statements* statementsFor(const EntityDescription& entity) {
    auto& s = statements_[&entity];
    if (s.insert) return &s;
    const std::string table = tableName(entity);
    std::string columns = "Z_PK", values = "?", assignments = "Z_PK = Z_PK";
    const auto add = [&](const PropertyDescription& p) {
      columns += ", " + columnName(p);
      values += ", ?";
      assignments += ", " + columnName(p) + " = ?";
    };
    for (const auto& a : entity.attributes()) add(*a);
    for (const auto& r : entity.relationships())
      if (!r->isToMany()) add(*r);
    s.insert =
        db_.cached("INSERT INTO " + table + " (" + columns + ") VALUES (" + values + ")", nullptr);
    s.update = db_.cached("UPDATE " + table + " SET " + assignments + " WHERE Z_PK = ?", nullptr);
    s.remove = db_.cached("DELETE FROM " + table + " WHERE Z_PK = ?", nullptr);
    if (!s.insert || !s.update || !s.remove) {
      s = Statements{};
      return nullptr;
    }
    return &s;
  }

  const JoinStatements* statementsFor(const RelationshipDescription& r) {
    auto& s = joinStatements_[&r];
    if (s.add) return &s;
    const std::string join = joinTableName(r);
    s.clear = db_.cached("DELETE FROM " + join + " WHERE Z_OWNER = ?", nullptr);
    s.add =
        db_.cached("INSERT INTO " + join + " (Z_OWNER, Z_TARGET, Z_POS) VALUES (?, ?, ?)", nullptr);
    if (!s.clear || !s.add) {
      s = JoinStatements{};
      return nullptr;
    }
    return &s;
  }

  // Runs a statement once, leaving it reset for the next use.
  static bool run(sqlite::Statement& s) {
    const bool done = s.step() == SQLITE_DONE;
    s.reset();
    return done;
  }

  bool writeMembers(const StoreWrite& w, bool clearFirst) {
    for (const auto& [r, keys] : w.toMany) {
      const JoinStatements* s = statementsFor(*r);
      if (!s) return false;
      if (clearFirst) {
        s->clear->bind(1, w.key);
        if (!run(*s->clear)) return false;
      }
      std::int64_t position = 0;
      for (std::int64_t key : keys) {
        s->add->bind(1, w.key);
        s->add->bind(2, key);
        s->add->bind(3, position++);
        if (!run(*s->add)) return false;
      }
    }
    return true;
  }

  bool writeChanges(const StoreChanges& changes) {
    for (const StoreWrite& w : changes.inserted) {
      const Statements* s = statementsFor(*w.entity);
      if (!s) return false;
      s->insert->bind(1, w.key);
      bindRow(*s->insert, w, 2);
      if (!run(*s->insert) || !writeMembers(w, false)) return false;
    }
    for (const StoreWrite& w : changes.updated) {
      const Statements* s = statementsFor(*w.entity);
      if (!s) return false;
      bindRow(*s->update, w, 1);
      s->update->bind(sqlite3_bind_parameter_count(s->update->get()), w.key);
      if (!run(*s->update) || !writeMembers(w, true)) return false;
    }
    for (const auto& [entity, key] : changes.deleted) {
      const Statements* s = statementsFor(*entity);
      if (!s) return false;
      s->remove->bind(1, key);
      if (!run(*s->remove)) return false;
      for (const auto& r : entity->relationships()) {
        if (!r->isToMany()) continue;
        const JoinStatements* j = statementsFor(*r);
        if (!j) return false;
        j->clear->bind(1, key);
        if (!run(*j->clear)) return false;
      }
    }
    return true;
  }

  std::shared_ptr<const ManagedObjectModel> model_;
  String type_;
  String path_;
  bool readOnly_;
  String identifier_;
  sqlite::Database db_;
  std::vector<std::int64_t> nextKey_;
  std::unordered_map<const EntityDescription*, Statements> statements_;
  std::unordered_map<const EntityDescription*, std::string> selectLists_;
  std::unordered_map<const RelationshipDescription*, JoinStatements> joinStatements_;
};

}  // namespace

PersistentStoreCoordinator::PersistentStoreCoordinator(
    std::shared_ptr<const ManagedObjectModel> model)
    : model_(std::move(model)) {
  if (!model_) {
    throw Exception(NSInvalidArgumentException,
                    u"PersistentStoreCoordinator: a coordinator needs a model");
  }
}

PersistentStoreCoordinator::~PersistentStoreCoordinator() = default;

std::shared_ptr<PersistentStore> PersistentStoreCoordinator::addPersistentStoreWithType(
    const String& type, const String& path, const Dictionary& options, Error* error) {
  const auto refuse = [&](Integer code, const String& text) {
    if (error)
      *error = Error(NSCocoaErrorDomain, code, Dictionary{{NSLocalizedDescriptionKey, text}});
    return nullptr;
  };
  if (store_)
    return refuse(NSPersistentStoreOperationError, u"The coordinator already has a store.");
  const bool memory = type == String(NSInMemoryStoreType);
  if (!memory && type != String(NSSQLiteStoreType)) {
    return refuse(NSPersistentStoreInvalidTypeError,
                  message::build(u"Unknown store type \u201c", type, u"\u201d."));
  }
  if (!memory && (path.isNil() || path.length() == 0))
    return refuse(NSPersistentStoreOpenError, u"An SQLite store needs a file path.");
  const bool readOnly = options.objectForKey(NSReadOnlyPersistentStoreOption).boolValue();
  auto store = std::make_shared<SQLitePersistentStore>(model_, type, memory ? String() : path,
                                                       readOnly && !memory);
  if (!store->open(error)) return nullptr;
  store_ = store;
  return store_;
}

std::shared_ptr<ManagedObjectID> PersistentStoreCoordinator::managedObjectIDForURIRepresentation(
    const URL& uri) const {
  if (!store_ || uri.isNil()) return nullptr;
  const std::u16string_view text = uri.absoluteString().units();
  const std::u16string prefix =
      u"x-coredata://" + std::u16string(store_->identifier().units()) + u"/";
  if (text.substr(0, prefix.size()) != prefix) return nullptr;
  const std::u16string_view rest = text.substr(prefix.size());
  const std::size_t slash = rest.find(u"/p");
  if (slash == std::u16string_view::npos || slash + 2 >= rest.size()) return nullptr;
  const EntityDescription* entity = model_->entityNamed(String(rest.substr(0, slash)));
  if (!entity) return nullptr;
  std::int64_t key = 0;
  for (char16_t c : rest.substr(slash + 2)) {
    if (c < u'0' || c > u'9' || key > (INT64_MAX - 9) / 10) return nullptr;
    key = key * 10 + (c - u'0');
  }
  return std::make_shared<ManagedObjectID>(entity->shared(), store_->identifier(), key, false);
}

sqlite3* PersistentStoreCoordinator::sqliteHandle() const {
  const auto* sqlite = dynamic_cast<const SQLitePersistentStore*>(store_.get());
  return sqlite ? sqlite->handle() : nullptr;
}

}  // namespace tarnvik
