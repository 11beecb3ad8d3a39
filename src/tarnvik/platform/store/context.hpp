// The managed-object context: the objects a program works with, their unsaved changes, and
// the door to the coordinator's store.
//
//   auto context = ManagedObjectContext::create(coordinator);
//   auto clip = EntityDescription::insertNewObjectForEntityForName(u"Clip", *context);
//   ...
//   Error error;
//   if (!context->save(&error)) ...;  // the changes are still there; nothing is lost
//
//   FetchRequest request(u"Clip");
//   request.setPredicate(Predicate::predicateWithFormat(u"%K == %@", {u"name", u"A001"}));
//   Array clips = context->executeFetchRequest(request, &error);
#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "tarnvik/platform/base/set.hpp"
#include "tarnvik/platform/base/sort_descriptor.hpp"
#include "tarnvik/platform/store/persistent_store.hpp"

namespace tarnvik {

// What a validation error of a save names: the object, the key and the refused value.
inline constexpr char16_t NSValidationObjectErrorKey[] = u"NSValidationErrorObject";
inline constexpr char16_t NSValidationKeyErrorKey[] = u"NSValidationErrorKey";
inline constexpr char16_t NSValidationValueErrorKey[] = u"NSValidationErrorValue";

class FetchRequest {
 public:
  FetchRequest() = default;
  explicit FetchRequest(String entityName) : entityName_(std::move(entityName)) {}
  static FetchRequest fetchRequestWithEntityName(const String& name) { return FetchRequest(name); }

  void setEntity(std::shared_ptr<const EntityDescription> entity);
  const std::shared_ptr<const EntityDescription>& entity() const { return entity_; }
  const String& entityName() const { return entityName_; }
  void setPredicate(std::shared_ptr<const Predicate> predicate) {
    predicate_ = std::move(predicate);
  }
  const std::shared_ptr<const Predicate>& predicate() const { return predicate_; }
  void setSortDescriptors(std::vector<SortDescriptor> d) { sortDescriptors_ = std::move(d); }
  const std::vector<SortDescriptor>& sortDescriptors() const { return sortDescriptors_; }
  // 0: no limit.
  void setFetchLimit(UInteger limit) { fetchLimit_ = limit; }
  UInteger fetchLimit() const { return fetchLimit_; }

 private:
  String entityName_;
  std::shared_ptr<const EntityDescription> entity_;
  std::shared_ptr<const Predicate> predicate_;
  std::vector<SortDescriptor> sortDescriptors_;
  UInteger fetchLimit_ = 0;
};

class ManagedObjectContext : public Object {
 public:
  // Contexts are always shared: their objects point back at them weakly.
  static std::shared_ptr<ManagedObjectContext> create(
      std::shared_ptr<PersistentStoreCoordinator> coordinator);
  explicit ManagedObjectContext(std::shared_ptr<PersistentStoreCoordinator> coordinator);
  ~ManagedObjectContext() override;

  const std::shared_ptr<PersistentStoreCoordinator>& persistentStoreCoordinator() const {
    return coordinator_;
  }

  // Inserts an object made without a context (ManagedObject::initWithEntity(entity, nullptr)).
  void insertObject(const std::shared_ptr<ManagedObject>& object);
  // Marks the object deleted and applies its relationships' delete rules: nullify takes it
  // out of its targets' inverses, cascade deletes the targets too, deny makes the save fail
  // while targets remain, no-action leaves the targets as they are.
  void deleteObject(const std::shared_ptr<ManagedObject>& object);

  // The registered object, or a fault for it that reads its row when first used (no check
  // that the row exists).
  std::shared_ptr<ManagedObject> objectWithID(const std::shared_ptr<ManagedObjectID>& objectID);
  // The object, read from the store when needed; nullptr and an error (NSCocoaErrorDomain
  // 133000) when there is no such object.
  std::shared_ptr<ManagedObject> existingObjectWithID(
      const std::shared_ptr<ManagedObjectID>& objectID, Error* error);
  // Gives each object of the array (managed objects) a permanent identifier.
  bool obtainPermanentIDsForObjects(const Array& objects, Error* error);

  Set insertedObjects() const;
  Set updatedObjects() const;
  Set deletedObjects() const;
  bool hasChanges() const { return !changed_.empty(); }
  // The objects the context knows: those with permanent identifiers and the new ones.
  std::size_t registeredObjectCount() const;

  // Validates (deny rules, attribute types), then writes every change in one transaction. On
  // failure the store is as it was, the error says why (NSCocoaErrorDomain: 1560 with
  // NSDetailedErrorsKey, 1600, 1550, or 134030 with SQLite's error under
  // NSUnderlyingErrorKey), and the context keeps all its changes.
  bool save(Error* error);
  // The objects of the request's entity that match its predicate, with this context's unsaved
  // changes merged in (inserted objects that match, deleted ones left out, updated ones judged
  // by their new values), sorted by the descriptors and cut to the fetch limit. nil and the
  // error when the store fails.
  Array executeFetchRequest(const FetchRequest& request, Error* error);
  // Forgets every registered object and every unsaved change.
  void reset();

 private:
  friend class ManagedObject;
  struct Key {
    const EntityDescription* entity;
    std::int64_t key;
    bool temporary;
    bool operator==(const Key&) const = default;
  };
  struct KeyHash {
    std::size_t operator()(const Key& k) const {
      return std::hash<std::int64_t>()(k.key) ^ (std::hash<const void*>()(k.entity) << 1) ^
             (k.temporary ? 0x5bd1e995 : 0);
    }
  };
  static Key keyOf(const ManagedObjectID& id) {
    return {&id.entity(), id.primaryKey(), id.isTemporaryID()};
  }
  static Key keyOf(const ManagedObject& object) {
    return {&object.entity(), object.key_, object.temporary_};
  }
  void registerObject(const std::shared_ptr<ManagedObject>& object);
  void noteChanged(ManagedObject& object);
  std::shared_ptr<ManagedObject> faultFor(const EntityDescription& entity, std::int64_t key);
  void fill(ManagedObject& object, StoreRow&& row);
  void fireFault(const ManagedObject& object);
  void loadToMany(const ManagedObject& object, const RelationshipDescription& relationship);
  bool validateForSave(Error* error) const;
  std::shared_ptr<PersistentStore> store(Error* error) const;

  std::shared_ptr<PersistentStoreCoordinator> coordinator_;
  std::unordered_map<Key, std::shared_ptr<ManagedObject>, KeyHash> registered_;
  std::vector<std::shared_ptr<ManagedObject>> changed_;
  TARNVIK_CLASS(ManagedObjectContext)
};

}  // namespace tarnvik
