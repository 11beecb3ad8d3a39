#include "tarnvik/platform/store/context.hpp"

#include <algorithm>

#include "tarnvik/platform/base/internal/message.hpp"
#include "tarnvik/platform/base/key_value_coding.hpp"

namespace tarnvik {

TARNVIK_DEFINE_CLASS(ManagedObjectContext, Object, (void)c)

namespace {

void setError(Error* error, const Error& value) {
  if (error) *error = value;
}

}  // namespace

void FetchRequest::setEntity(std::shared_ptr<const EntityDescription> entity) {
  entityName_ = entity ? entity->name() : String();
  entity_ = std::move(entity);
}

std::shared_ptr<ManagedObjectContext> ManagedObjectContext::create(
    std::shared_ptr<PersistentStoreCoordinator> coordinator) {
  return std::make_shared<ManagedObjectContext>(std::move(coordinator));
}

ManagedObjectContext::ManagedObjectContext(std::shared_ptr<PersistentStoreCoordinator> coordinator)
    : coordinator_(std::move(coordinator)) {}

ManagedObjectContext::~ManagedObjectContext() = default;

std::shared_ptr<PersistentStore> ManagedObjectContext::store(Error* error) const {
  auto store = coordinator_ ? coordinator_->persistentStore() : nullptr;
  if (!store) {
    setError(error,
             Error(NSCocoaErrorDomain, NSPersistentStoreOperationError,
                   Dictionary{{NSLocalizedDescriptionKey,
                               u"The context\u2019s coordinator has no persistent store."}}));
  }
  return store;
}

void ManagedObjectContext::registerObject(const std::shared_ptr<ManagedObject>& object) {
  registered_[keyOf(*object)] = object;
}

void ManagedObjectContext::noteChanged(ManagedObject& object) {
  if (object.listed_) return;
  object.listed_ = true;
  changed_.push_back(std::static_pointer_cast<ManagedObject>(object.shared_from_this()));
}

void ManagedObjectContext::insertObject(const std::shared_ptr<ManagedObject>& object) {
  if (!object) return;
  const auto owner = object->context_.lock();
  if (owner.get() == this) return;
  if (owner) {
    throw Exception(NSInvalidArgumentException,
                    u"ManagedObjectContext::insertObject: the object belongs to another context");
  }
  object->context_ = std::static_pointer_cast<ManagedObjectContext>(shared_from_this());
  object->state_ = ManagedObject::State::Inserted;
  if (!object->temporary_) registerObject(object);
  noteChanged(*object);
}

void ManagedObjectContext::deleteObject(const std::shared_ptr<ManagedObject>& object) {
  if (!object || object->isDeleted() || object->context_.lock().get() != this) return;
  object->fire();
  object->state_ = object->state_ == ManagedObject::State::Inserted
                       ? ManagedObject::State::InsertedDeleted
                       : ManagedObject::State::Deleted;
  noteChanged(*object);
  for (const auto& r : object->entity().relationships()) {
    const DeleteRule rule = r->deleteRule();
    if (rule != NSNullifyDeleteRule && rule != NSCascadeDeleteRule) continue;
    const auto members = object->members(*r);
    const RelationshipDescription* inverse = r->inverseRelationship();
    for (const auto& member : members) {
      if (inverse) {
        if (inverse->isToMany()) {
          member->removeMember(*inverse, *object);
        } else {
          const auto owners = member->members(*inverse);
          if (!owners.empty() && owners.front() == object) member->setMembers(*inverse, {});
        }
      }
      if (rule == NSCascadeDeleteRule) deleteObject(member);
    }
  }
}

std::shared_ptr<ManagedObject> ManagedObjectContext::faultFor(const EntityDescription& entity,
                                                              std::int64_t key) {
  auto [slot, added] = registered_.try_emplace(Key{&entity, key, false});
  if (!added) return slot->second;
  auto store = coordinator_ ? coordinator_->persistentStore() : nullptr;
  std::shared_ptr<ManagedObject> object = entity.instantiate();
  object->entity_ = entity.shared();
  object->key_ = key;
  object->temporary_ = false;
  if (store) object->storeIdentifier_ = store->identifier();
  object->attributes_.resize(entity.attributes().size());
  object->related_.resize(entity.relationships().size());
  object->fault_ = true;
  object->context_ = std::static_pointer_cast<ManagedObjectContext>(shared_from_this());
  slot->second = object;
  return object;
}

void ManagedObjectContext::fill(ManagedObject& object, StoreRow&& row) {
  const EntityDescription& entity = object.entity();
  object.attributes_ = std::move(row.attributes);
  for (const auto& r : entity.relationships()) {
    ManagedObject::Related& related = object.related_[r->index()];
    related.members.clear();
    related.index.clear();
    related.changed = false;
    if (r->isToMany()) {
      related.loaded = false;
    } else {
      related.loaded = true;
      if (const std::int64_t key = row.toOne[r->index()])
        related.members.push_back(faultFor(r->destinationEntity(), key));
    }
  }
  object.fault_ = false;
}

void ManagedObjectContext::fireFault(const ManagedObject& object) {
  Error error;
  StoreRow row;
  bool found = false;
  auto store = this->store(&error);
  if (store && store->loadRow(object.entity(), object.key_, row, found, &error) && found) {
    fill(const_cast<ManagedObject&>(object), std::move(row));
    return;
  }
  throw Exception(
      u"NSObjectInaccessibleException",
      message::build(u"ManagedObjectContext: could not fulfil a fault for ",
                     object.objectID()->URIRepresentation().absoluteString(),
                     found || error.isNil() ? String(u": no such row")
                                            : message::build(u": ", error.localizedDescription())));
}

void ManagedObjectContext::loadToMany(const ManagedObject& object,
                                      const RelationshipDescription& relationship) {
  if (object.temporary_) return;
  Error error;
  std::vector<std::int64_t> keys;
  auto store = this->store(&error);
  if (!store || !store->loadToMany(relationship, object.key_, keys, &error)) {
    throw Exception(u"NSObjectInaccessibleException",
                    message::build(u"ManagedObjectContext: could not read the relationship '",
                                   relationship.name(), u"' of ",
                                   object.objectID()->URIRepresentation().absoluteString(), u": ",
                                   error.localizedDescription()));
  }
  object.related_[relationship.index()].index.clear();
  auto& members = object.related_[relationship.index()].members;
  members.clear();
  members.reserve(keys.size());
  for (std::int64_t key : keys) members.push_back(faultFor(relationship.destinationEntity(), key));
}

std::shared_ptr<ManagedObject> ManagedObjectContext::objectWithID(
    const std::shared_ptr<ManagedObjectID>& objectID) {
  if (!objectID) return nullptr;
  if (objectID->isTemporaryID()) {
    auto object = objectID->object_.lock();
    return object && object->context_.lock().get() == this ? object : nullptr;
  }
  const auto found = registered_.find(keyOf(*objectID));
  if (found != registered_.end()) return found->second;
  const auto store = coordinator_ ? coordinator_->persistentStore() : nullptr;
  if (!store || objectID->storeIdentifier() != store->identifier()) return nullptr;
  const EntityDescription* entity =
      coordinator_->managedObjectModel()->entityNamed(objectID->entity().name());
  return entity ? faultFor(*entity, objectID->primaryKey()) : nullptr;
}

std::shared_ptr<ManagedObject> ManagedObjectContext::existingObjectWithID(
    const std::shared_ptr<ManagedObjectID>& objectID, Error* error) {
  auto object = objectWithID(objectID);
  if (object && object->isFault()) {
    StoreRow row;
    bool found = false;
    auto store = this->store(error);
    if (!store || !store->loadRow(object->entity(), objectID->primaryKey(), row, found, error)) {
      return nullptr;
    }
    if (found) {
      fill(*object, std::move(row));
    } else {
      registered_.erase(keyOf(*objectID));
      object = nullptr;
    }
  }
  if (!object) {
    setError(
        error,
        Error(NSCocoaErrorDomain, NSManagedObjectReferentialIntegrityError,
              Dictionary{{NSLocalizedDescriptionKey,
                          message::build(u"No object with the identifier ",
                                         objectID ? objectID->URIRepresentation().absoluteString()
                                                  : String(u"nil"),
                                         u" exists.")}}));
  }
  return object;
}

bool ManagedObjectContext::obtainPermanentIDsForObjects(const Array& objects, Error* error) {
  std::vector<std::shared_ptr<ManagedObject>> pending;
  for (const Value& element : objects) {
    auto object = std::dynamic_pointer_cast<ManagedObject>(element.asObject());
    if (object && object->temporary_) pending.push_back(std::move(object));
  }
  if (pending.empty()) return true;
  auto store = this->store(error);
  if (!store) return false;
  registered_.reserve(registered_.size() + pending.size());
  // One run of keys per entity.
  std::stable_sort(pending.begin(), pending.end(),
                   [](const auto& a, const auto& b) { return &a->entity() < &b->entity(); });
  for (std::size_t i = 0; i < pending.size();) {
    std::size_t j = i;
    while (j < pending.size() && &pending[j]->entity() == &pending[i]->entity()) ++j;
    std::int64_t key = store->reservePrimaryKeys(pending[i]->entity(), j - i);
    for (; i < j; ++i) {
      ManagedObject& object = *pending[i];
      object.key_ = key++;
      object.temporary_ = false;
      object.storeIdentifier_ = store->identifier();
      object.objectID_.reset();  // the permanent identifier is made when asked for
      registerObject(pending[i]);
    }
  }
  return true;
}

std::size_t ManagedObjectContext::registeredObjectCount() const {
  std::size_t count = registered_.size();
  for (const auto& o : changed_)
    if (o->temporary_) ++count;
  return count;
}

Set ManagedObjectContext::insertedObjects() const {
  Set set = Set::set();
  for (const auto& o : changed_)
    if (o->state_ == ManagedObject::State::Inserted) set.addObject(Value(o));
  return set;
}

Set ManagedObjectContext::updatedObjects() const {
  Set set = Set::set();
  for (const auto& o : changed_)
    if (o->state_ == ManagedObject::State::Updated) set.addObject(Value(o));
  return set;
}

Set ManagedObjectContext::deletedObjects() const {
  Set set = Set::set();
  for (const auto& o : changed_)
    if (o->state_ == ManagedObject::State::Deleted) set.addObject(Value(o));
  return set;
}

bool ManagedObjectContext::validateForSave(Error* error) const {
  Array errors = Array::array();
  for (const auto& object : changed_) {
    const EntityDescription& entity = object->entity();
    if (object->state_ == ManagedObject::State::Deleted) {
      for (const auto& r : entity.relationships()) {
        if (r->deleteRule() != NSDenyDeleteRule) continue;
        const auto members = object->members(*r);
        if (std::none_of(members.begin(), members.end(),
                         [](const auto& m) { return !m->isDeleted(); }))
          continue;
        errors.addObject(Error(
            NSCocoaErrorDomain, NSValidationRelationshipDeniedDeleteError,
            Dictionary{{NSValidationObjectErrorKey, Value(object)},
                       {NSValidationKeyErrorKey, r->name()},
                       {NSLocalizedDescriptionKey,
                        message::build(u"The ", entity.name(),
                                       u" could not be deleted because its relationship \u201c",
                                       r->name(), u"\u201d is not empty.")}}));
      }
    } else if (object->state_ != ManagedObject::State::InsertedDeleted) {
      for (const auto& a : entity.attributes()) {
        const Value& value = object->attributes_[a->index()];
        if (a->acceptsValue(value)) continue;
        errors.addObject(
            Error(NSCocoaErrorDomain, NSManagedObjectValidationError,
                  Dictionary{{NSValidationObjectErrorKey, Value(object)},
                             {NSValidationKeyErrorKey, a->name()},
                             {NSValidationValueErrorKey, value},
                             {NSLocalizedDescriptionKey,
                              message::build(u"The value of \u201c", a->name(), u"\u201d of the ",
                                             entity.name(), u" is a ", value.className(),
                                             u", which does not fit the attribute.")}}));
      }
    }
  }
  if (errors.count() == 0) return true;
  if (errors.count() == 1) {
    setError(error, errors.objectAtIndex(0).asError());
  } else {
    setError(
        error,
        Error(NSCocoaErrorDomain, NSValidationMultipleErrorsError,
              Dictionary{{NSDetailedErrorsKey, errors},
                         {NSLocalizedDescriptionKey, u"Multiple validation errors occurred."}}));
  }
  return false;
}

bool ManagedObjectContext::save(Error* error) {
  if (changed_.empty()) return true;
  auto store = this->store(error);
  if (!store || !validateForSave(error)) return false;

  Array needKeys = Array::array();
  for (const auto& o : changed_)
    if (o->state_ == ManagedObject::State::Inserted) needKeys.addObject(Value(o));
  if (!obtainPermanentIDsForObjects(needKeys, error)) return false;

  StoreChanges changes;
  const auto write = [](const ManagedObject& object, bool all) {
    const EntityDescription& entity = object.entity();
    StoreWrite w{&entity, object.key_, &object.attributes_, {}, {}};
    w.toOne.assign(entity.relationships().size(), 0);
    for (const auto& r : entity.relationships()) {
      const ManagedObject::Related& related = object.related_[r->index()];
      if (!r->isToMany()) {
        if (auto target = related.members.empty() ? nullptr : related.members.front().lock())
          w.toOne[r->index()] = target->key_;
        continue;
      }
      if (!all && !related.changed) continue;
      std::vector<std::int64_t> keys;
      keys.reserve(related.members.size());
      for (const auto& weak : related.members)
        if (auto m = weak.lock(); m && !m->temporary_) keys.push_back(m->key_);
      w.toMany.emplace_back(r.get(), std::move(keys));
    }
    return w;
  };
  for (const auto& o : changed_) {
    switch (o->state_) {
      case ManagedObject::State::Inserted:
        changes.inserted.push_back(write(*o, true));
        break;
      case ManagedObject::State::Updated:
        if (!o->fault_) changes.updated.push_back(write(*o, false));
        break;
      case ManagedObject::State::Deleted:
        changes.deleted.emplace_back(&o->entity(), o->key_);
        break;
      default:
        break;
    }
  }
  if (!store->saveChanges(changes, error)) return false;

  for (const auto& o : changed_) {
    o->listed_ = false;
    if (o->isDeleted()) {
      registered_.erase(keyOf(*o));
      o->context_.reset();
      continue;
    }
    o->state_ = ManagedObject::State::Saved;
    for (auto& related : o->related_) related.changed = false;
  }
  changed_.clear();
  return true;
}

Array ManagedObjectContext::executeFetchRequest(const FetchRequest& request, Error* error) {
  std::shared_ptr<const EntityDescription> entity = request.entity();
  if (!entity) entity = EntityDescription::entityForName(request.entityName(), *this);
  if (!entity) {
    throw Exception(NSInvalidArgumentException,
                    message::build(u"ManagedObjectContext::executeFetchRequest: no entity named '",
                                   request.entityName(), u"'"));
  }
  auto store = this->store(error);
  if (!store) return Array();
  const auto& predicate = request.predicate();
  bool pending = false;
  for (const auto& o : changed_) {
    if (&o->entity() == entity.get()) {
      pending = true;
      break;
    }
  }
  StoreFetch fetch{entity.get(), predicate,
                   pending || !request.sortDescriptors().empty() ? 0 : request.fetchLimit()};
  std::vector<StoreRow> rows;
  bool filtered = false;
  if (!store->fetchRows(fetch, rows, filtered, error)) return Array();

  const auto matches = [&](const std::shared_ptr<ManagedObject>& o) {
    return !predicate || predicate->evaluateWithObject(Value(o));
  };
  std::vector<Value> results;
  results.reserve(rows.size());
  for (StoreRow& row : rows) {
    auto object = faultFor(*entity, row.key);
    if (object->fault_) fill(*object, std::move(row));
    if (object->hasChanges()) continue;  // judged below by its unsaved values
    if (filtered || matches(object)) results.emplace_back(std::move(object));
  }
  if (pending) {
    for (const auto& o : changed_) {
      if (&o->entity() != entity.get() || o->isDeleted()) continue;
      if (matches(o)) results.emplace_back(o);
    }
  }
  Array found(std::move(results));
  if (!request.sortDescriptors().empty())
    found = sortedArrayUsingDescriptors(found, request.sortDescriptors());
  if (request.fetchLimit() && found.count() > request.fetchLimit())
    found = found.subarrayWithRange(Range{0, request.fetchLimit()});
  return found;
}

void ManagedObjectContext::reset() {
  for (auto& [key, object] : registered_) object->context_.reset();
  for (auto& object : changed_) object->context_.reset();
  registered_.clear();
  for (auto& o : changed_) o->listed_ = false;
  changed_.clear();
}

}  // namespace tarnvik
