// Managed objects and their identifiers. A managed object is an Object whose key-value coding
// reads and writes the attributes and relationships of its entity; setting a relationship
// keeps its inverse in step. Objects are created inserted into a context, which owns them
// while they are registered; relationships hold their targets weakly.
//
//   auto clip = EntityDescription::insertNewObjectForEntityForName(u"Clip", *context);
//   setValueForKey(Value(clip), Value(u"A001C003"), u"name");
//   setValueForKey(Value(clip), Value(project), u"project");  // project.clips now has clip
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_set>
#include <vector>

#include "tarnvik/platform/net/url.hpp"
#include "tarnvik/platform/store/model.hpp"

namespace tarnvik {

class PersistentStore;

// An object's identity in a store. Temporary while the object is new and unsaved; permanent
// (the store's identifier, the entity and a primary key) once obtained or saved. Identifiers
// are values: equal identifiers name the same object, and they serve as dictionary keys.
class ManagedObjectID : public Object {
 public:
  ManagedObjectID(std::shared_ptr<const EntityDescription> entity, String storeIdentifier,
                  std::int64_t key, bool temporary)
      : entity_(std::move(entity)),
        store_(std::move(storeIdentifier)),
        key_(key),
        temporary_(temporary) {}
  const EntityDescription& entity() const { return *entity_; }
  bool isTemporaryID() const { return temporary_; }
  // The primary key of a permanent identifier; a process-wide serial number of a temporary one.
  std::int64_t primaryKey() const { return key_; }
  const String& storeIdentifier() const { return store_; }
  // "x-coredata://<store>/<Entity>/p<key>" for a permanent identifier (it names the same
  // object after the store is reopened), "x-coredata:///<Entity>/t<serial>" for a temporary
  // one.
  URL URIRepresentation() const;
  bool isEqual(const Object& other) const override;
  std::size_t hash() const override;
  String description() const override;

 private:
  friend class ManagedObject;
  friend class ManagedObjectContext;
  std::shared_ptr<const EntityDescription> entity_;
  String store_;
  std::int64_t key_;
  bool temporary_;
  // A temporary identifier knows its object: only its context's change list holds new objects,
  // so they need no entry in the registry.
  std::weak_ptr<ManagedObject> object_;
  TARNVIK_CLASS(ManagedObjectID)
};

class ManagedObject : public Object {
 public:
  // initWithEntity:insertIntoManagedObjectContext:: a new object of the entity's class with the
  // entity's default values, inserted into the context (when there is one).
  static std::shared_ptr<ManagedObject> initWithEntity(const EntityDescription& entity,
                                                       ManagedObjectContext* context);

  const EntityDescription& entity() const { return *entity_; }
  std::shared_ptr<ManagedObjectID> objectID() const;
  // nullptr once the object was removed from its context or the context is gone.
  std::shared_ptr<ManagedObjectContext> managedObjectContext() const { return context_.lock(); }
  bool isInserted() const { return state_ == State::Inserted; }
  bool isUpdated() const { return state_ == State::Updated; }
  bool isDeleted() const { return state_ == State::Deleted || state_ == State::InsertedDeleted; }
  // Whether the object's values have not been read from its store yet.
  bool isFault() const { return fault_; }
  bool hasChanges() const { return state_ != State::Saved; }

  // Attributes by name, relationships as an object (to-one), a Set or an OrderedSet (to-many).
  std::optional<Value> valueForDynamicKey(const String& key) const override;
  bool setValueForDynamicKey(const String& key, const Value& value) override;
  String description() const override;

  // The fast paths key-value coding takes, by description.
  Value valueForAttribute(const AttributeDescription& attribute) const;
  void setValueForAttribute(const AttributeDescription& attribute, const Value& value);
  Value valueForRelationship(const RelationshipDescription& relationship) const;
  // Sets a relationship and keeps its inverse in step on every object involved.
  void setValueForRelationship(const RelationshipDescription& relationship, const Value& value);

 private:
  friend class ManagedObjectContext;
  enum class State { Saved, Inserted, Updated, Deleted, InsertedDeleted };
  struct Related {
    std::vector<std::weak_ptr<ManagedObject>> members;
    bool loaded = true;
    bool changed = false;
    // Member lookup for large to-many relationships, built on demand.
    std::unordered_set<const ManagedObject*> index;
  };

  void fire() const;
  const Related& related(const RelationshipDescription& r) const;
  Related& mutableRelated(const RelationshipDescription& r);
  void touch();
  std::vector<std::shared_ptr<ManagedObject>> members(const RelationshipDescription& r) const;
  void addMember(const RelationshipDescription& r, ManagedObject& member);
  void removeMember(const RelationshipDescription& r, const ManagedObject& member);
  void setMembers(const RelationshipDescription& r,
                  const std::vector<std::shared_ptr<ManagedObject>>& members);

  std::shared_ptr<const EntityDescription> entity_;
  std::weak_ptr<ManagedObjectContext> context_;
  // The identity: the primary key once permanent (the identifier object itself is made when
  // first asked for, as fetched objects rarely need it), else the temporary identifier.
  std::int64_t key_ = 0;
  bool temporary_ = true;
  String storeIdentifier_;
  mutable std::shared_ptr<ManagedObjectID> objectID_;
  mutable std::vector<Value> attributes_;
  mutable std::vector<Related> related_;
  mutable bool fault_ = false;
  State state_ = State::Saved;
  bool listed_ = false;  // in the context's list of changed objects
  TARNVIK_CLASS(ManagedObject)
};

}  // namespace tarnvik
