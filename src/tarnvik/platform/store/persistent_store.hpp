// Persistent stores and the coordinator that opens them for a model. A store keeps rows: one
// table per entity (attributes and to-one foreign keys), one join table per to-many
// relationship (owner, target, position). The SQLite store keeps them in a file; the
// in-memory store is the same engine on a private in-memory database, gone when the store is.
//
//   auto coordinator = std::make_shared<PersistentStoreCoordinator>(model);
//   Error error;
//   if (!coordinator->addPersistentStoreWithType(NSSQLiteStoreType, u"/tmp/clips.sqlite",
//                                                Dictionary(), &error)) { ... }
//
// Opening a file that was written with a different model fails (NSCocoaErrorDomain, 134100)
// and leaves the file as it was.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/sort_descriptor.hpp"
#include "tarnvik/platform/store/managed_object.hpp"
#include "tarnvik/platform/store/predicate.hpp"

struct sqlite3;

namespace tarnvik {

inline constexpr char16_t NSSQLiteStoreType[] = u"SQLite";
inline constexpr char16_t NSInMemoryStoreType[] = u"InMemory";
// An option: YES opens the store for reading only; saving then fails.
inline constexpr char16_t NSReadOnlyPersistentStoreOption[] = u"NSReadOnlyPersistentStoreOption";
// The domain of SQLite's own result codes, found under NSUnderlyingErrorKey.
inline constexpr char16_t NSSQLiteErrorDomain[] = u"NSSQLiteErrorDomain";
// Codes in NSCocoaErrorDomain.
inline constexpr Integer NSManagedObjectReferentialIntegrityError = 133000;
inline constexpr Integer NSPersistentStoreInvalidTypeError = 134000;
inline constexpr Integer NSPersistentStoreIncompatibleSchemaError = 134020;
inline constexpr Integer NSPersistentStoreSaveError = 134030;
inline constexpr Integer NSPersistentStoreOperationError = 134070;
inline constexpr Integer NSPersistentStoreOpenError = 134080;
inline constexpr Integer NSPersistentStoreIncompatibleVersionHashError = 134100;

// One row of an entity's table.
struct StoreRow {
  std::int64_t key = 0;
  std::vector<Value> attributes;    // by attribute index
  std::vector<std::int64_t> toOne;  // by relationship index; 0 for none and for to-many ones
};

// A row to write, with the to-many relationships whose members are (re)written. The
// attribute values are the object's own, not a copy; they must outlive the save.
struct StoreWrite {
  const EntityDescription* entity = nullptr;
  std::int64_t key = 0;
  const std::vector<Value>* attributes = nullptr;  // by attribute index
  std::vector<std::int64_t> toOne;                 // by relationship index; 0 for none
  std::vector<std::pair<const RelationshipDescription*, std::vector<std::int64_t>>> toMany;
};

struct StoreChanges {
  std::vector<StoreWrite> inserted;
  std::vector<StoreWrite> updated;
  std::vector<std::pair<const EntityDescription*, std::int64_t>> deleted;
};

struct StoreFetch {
  const EntityDescription* entity = nullptr;
  std::shared_ptr<const Predicate> predicate;  // nullptr: every row
  UInteger fetchLimit = 0;                     // 0: no limit; applied only to filtered rows
};

class PersistentStore {
 public:
  virtual ~PersistentStore() = default;
  virtual String type() const = 0;
  // A UUID made when the store was created; part of every permanent identifier's URI.
  virtual String identifier() const = 0;
  // The file's path (nil for an in-memory store).
  virtual String path() const = 0;
  virtual bool isReadOnly() const = 0;

  // The rows of the fetch's entity in primary-key order. `filtered` tells whether the store
  // applied the whole predicate; when false the caller must still evaluate it (the rows then
  // satisfy any part the store could apply) and no limit was applied.
  virtual bool fetchRows(const StoreFetch& fetch, std::vector<StoreRow>& rows, bool& filtered,
                         Error* error) = 0;
  // `found` is false when no row has the key.
  virtual bool loadRow(const EntityDescription& entity, std::int64_t key, StoreRow& row,
                       bool& found, Error* error) = 0;
  // The keys of the members of a to-many relationship, in position order.
  virtual bool loadToMany(const RelationshipDescription& relationship, std::int64_t key,
                          std::vector<std::int64_t>& members, Error* error) = 0;
  // Reserves `count` new primary keys of the entity and returns the first.
  virtual std::int64_t reservePrimaryKeys(const EntityDescription& entity, std::size_t count) = 0;
  // Writes everything in one transaction; on failure nothing of it is kept.
  virtual bool saveChanges(const StoreChanges& changes, Error* error) = 0;
};

class PersistentStoreCoordinator : public Object {
 public:
  explicit PersistentStoreCoordinator(std::shared_ptr<const ManagedObjectModel> model);
  ~PersistentStoreCoordinator() override;
  const std::shared_ptr<const ManagedObjectModel>& managedObjectModel() const { return model_; }

  // Opens the store at the path (created, with its schema, when missing), or an in-memory
  // store (the path is ignored). Options: NSReadOnlyPersistentStoreOption. A coordinator holds
  // one store; nullptr and the error on failure.
  std::shared_ptr<PersistentStore> addPersistentStoreWithType(const String& type,
                                                              const String& path,
                                                              const Dictionary& options,
                                                              Error* error);
  std::shared_ptr<PersistentStore> persistentStore() const { return store_; }
  // The permanent identifier a URI names, when it names an entity of this coordinator's store;
  // nullptr otherwise.
  std::shared_ptr<ManagedObjectID> managedObjectIDForURIRepresentation(const URL& uri) const;
  // The SQLite connection of an SQLite or in-memory store (for pragmas and inspection), or
  // nullptr.
  sqlite3* sqliteHandle() const;

 private:
  std::shared_ptr<const ManagedObjectModel> model_;
  std::shared_ptr<PersistentStore> store_;
  TARNVIK_CLASS(PersistentStoreCoordinator)
};

}  // namespace tarnvik
