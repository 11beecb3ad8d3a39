#include "tarnvik/platform/store/managed_object.hpp"

#include <algorithm>
#include <atomic>

#include "tarnvik/platform/base/internal/message.hpp"
#include "tarnvik/platform/base/set.hpp"
#include "tarnvik/platform/store/context.hpp"

namespace tarnvik {

TARNVIK_DEFINE_CLASS(ManagedObjectID, Object,
                     c.method(u"isTemporaryID", &ManagedObjectID::isTemporaryID))
TARNVIK_DEFINE_CLASS(ManagedObject, Object,
                     c.method(u"isInserted", &ManagedObject::isInserted)
                         .method(u"isUpdated", &ManagedObject::isUpdated)
                         .method(u"isDeleted", &ManagedObject::isDeleted)
                         .method(u"isFault", &ManagedObject::isFault))

namespace {

// Above this many members a to-many relationship keeps a hash index for membership tests.
constexpr std::size_t kIndexedMembers = 16;

std::atomic<std::int64_t> temporarySerial{0};

std::shared_ptr<ManagedObject> managedObjectOf(const Value& value, const char16_t* operation) {
  if (value.isNil() || value.isNull()) return nullptr;
  auto object = std::dynamic_pointer_cast<ManagedObject>(value.asObject());
  if (!object) {
    throw Exception(NSInvalidArgumentException,
                    message::build(operation, u": a relationship takes managed objects, not ",
                                   value.className()));
  }
  return object;
}

}  // namespace

URL ManagedObjectID::URIRepresentation() const {
  if (temporary_) {
    return URL::URLWithString(message::build(u"x-coredata:///", entity_->name(), u"/t", key_));
  }
  return URL::URLWithString(
      message::build(u"x-coredata://", store_, u"/", entity_->name(), u"/p", key_));
}

bool ManagedObjectID::isEqual(const Object& other) const {
  if (this == &other) return true;
  const auto* id = dynamic_cast<const ManagedObjectID*>(&other);
  return id && id->key_ == key_ && id->temporary_ == temporary_ &&
         (id->entity_.get() == entity_.get() || id->entity_->name() == entity_->name()) &&
         id->store_ == store_;
}

std::size_t ManagedObjectID::hash() const {
  return std::hash<std::int64_t>()(key_) * 31 + entity_->name().hash() + (temporary_ ? 1 : 0);
}

String ManagedObjectID::description() const {
  return message::build(u"<ManagedObjectID: ", message::Pointer{this}, u"> <",
                        URIRepresentation().absoluteString(), u">");
}

std::shared_ptr<ManagedObject> ManagedObject::initWithEntity(const EntityDescription& entity,
                                                             ManagedObjectContext* context) {
  std::shared_ptr<ManagedObject> object = entity.instantiate();
  object->entity_ = entity.shared();
  object->attributes_.reserve(entity.attributes().size());
  for (const auto& a : entity.attributes()) object->attributes_.push_back(a->defaultValue());
  object->related_.resize(entity.relationships().size());
  object->objectID_ =
      std::make_shared<ManagedObjectID>(object->entity_, String(), ++temporarySerial, true);
  object->objectID_->object_ = object;
  object->key_ = object->objectID_->primaryKey();
  if (context) context->insertObject(object);
  return object;
}

std::shared_ptr<ManagedObjectID> ManagedObject::objectID() const {
  if (!objectID_ && entity_)
    objectID_ = std::make_shared<ManagedObjectID>(entity_, storeIdentifier_, key_, temporary_);
  return objectID_;
}

void ManagedObject::fire() const {
  if (!fault_) return;
  auto context = context_.lock();
  if (!context) {
    throw Exception(u"NSObjectInaccessibleException",
                    message::build(u"ManagedObject: the context of the fault ",
                                   objectID()->description(), u" is gone"));
  }
  context->fireFault(*this);
}

const ManagedObject::Related& ManagedObject::related(const RelationshipDescription& r) const {
  fire();
  Related& related = related_[r.index()];
  if (!related.loaded) {
    auto context = context_.lock();
    if (context) context->loadToMany(*this, r);
    related.loaded = true;
  }
  return related;
}

ManagedObject::Related& ManagedObject::mutableRelated(const RelationshipDescription& r) {
  related(r);
  return related_[r.index()];
}

void ManagedObject::touch() {
  if (state_ == State::Saved) state_ = State::Updated;
  if (listed_) return;
  if (auto context = context_.lock()) context->noteChanged(*this);
}

std::vector<std::shared_ptr<ManagedObject>> ManagedObject::members(
    const RelationshipDescription& r) const {
  std::vector<std::shared_ptr<ManagedObject>> alive;
  const Related& rel = related(r);
  alive.reserve(rel.members.size());
  for (const auto& weak : rel.members)
    if (auto member = weak.lock()) alive.push_back(std::move(member));
  return alive;
}

void ManagedObject::addMember(const RelationshipDescription& r, ManagedObject& member) {
  Related& rel = mutableRelated(r);
  if (!r.isToMany()) {
    rel.members.assign(1, std::static_pointer_cast<ManagedObject>(member.shared_from_this()));
  } else {
    if (rel.index.empty() && rel.members.size() >= kIndexedMembers) {
      for (const auto& weak : rel.members)
        if (auto m = weak.lock()) rel.index.insert(m.get());
    }
    if (!rel.index.empty()) {
      if (!rel.index.insert(&member).second) return;
    } else {
      for (const auto& weak : rel.members)
        if (weak.lock().get() == &member) return;
    }
    rel.members.push_back(std::static_pointer_cast<ManagedObject>(member.shared_from_this()));
  }
  rel.changed = true;
  touch();
}

void ManagedObject::removeMember(const RelationshipDescription& r, const ManagedObject& member) {
  Related& rel = mutableRelated(r);
  const auto at = std::find_if(rel.members.begin(), rel.members.end(),
                               [&](const auto& weak) { return weak.lock().get() == &member; });
  if (at == rel.members.end()) return;
  rel.members.erase(at);
  rel.index.erase(&member);
  rel.changed = true;
  touch();
}

void ManagedObject::setMembers(const RelationshipDescription& r,
                               const std::vector<std::shared_ptr<ManagedObject>>& members) {
  Related& rel = mutableRelated(r);
  rel.members.assign(members.begin(), members.end());
  rel.index.clear();
  rel.changed = true;
  touch();
}

Value ManagedObject::valueForAttribute(const AttributeDescription& attribute) const {
  fire();
  return attributes_[attribute.index()];
}

void ManagedObject::setValueForAttribute(const AttributeDescription& attribute,
                                         const Value& value) {
  fire();
  attributes_[attribute.index()] = value.isNull() ? Value() : value;
  touch();
}

Value ManagedObject::valueForRelationship(const RelationshipDescription& r) const {
  const Related& rel = related(r);
  if (!r.isToMany()) return rel.members.empty() ? Value() : Value(rel.members.front().lock());
  if (r.isOrdered()) {
    OrderedSet set = OrderedSet::orderedSetWithCapacity(rel.members.size());
    for (const auto& weak : rel.members)
      if (auto m = weak.lock()) set.addObject(Value(std::move(m)));
    return set;
  }
  Set set = Set::setWithCapacity(rel.members.size());
  for (const auto& weak : rel.members)
    if (auto m = weak.lock()) set.addObject(Value(std::move(m)));
  return set;
}

void ManagedObject::setValueForRelationship(const RelationshipDescription& r, const Value& value) {
  static constexpr char16_t kOperation[] = u"ManagedObject::setValueForKey";
  const RelationshipDescription* inverse = r.inverseRelationship();
  auto context = context_.lock();
  const auto checkContext = [&](const ManagedObject& other) {
    if (other.context_.lock() != context) {
      throw Exception(NSInvalidArgumentException,
                      message::build(kOperation, u": illegal attempt to establish a relationship '",
                                     r.name(), u"' between objects in different contexts"));
    }
  };
  // Takes `member` away from whatever points at it through the inverse of r, when that is a
  // to-one relationship: a member can belong to one owner only.
  const auto detachFromPreviousOwner = [&](ManagedObject& member) {
    if (!inverse || inverse->isToMany()) return;
    for (const auto& owner : member.members(*inverse)) {
      if (owner.get() == this) continue;
      if (r.isToMany())
        owner->removeMember(r, member);
      else
        owner->setMembers(r, {});
    }
  };
  const auto unlinkInverse = [&](ManagedObject& member) {
    if (!inverse) return;
    if (inverse->isToMany()) {
      member.removeMember(*inverse, *this);
    } else {
      const auto owners = member.members(*inverse);
      if (!owners.empty() && owners.front().get() == this) member.setMembers(*inverse, {});
    }
  };
  const auto linkInverse = [&](ManagedObject& member) {
    if (!inverse) return;
    detachFromPreviousOwner(member);
    member.addMember(*inverse, *this);
  };

  if (!r.isToMany()) {
    const auto target = managedObjectOf(value, kOperation);
    if (target) checkContext(*target);
    const auto current = members(r);
    const auto old = current.empty() ? nullptr : current.front();
    if (old == target) return;
    if (old) unlinkInverse(*old);
    setMembers(r, target ? std::vector{target} : std::vector<std::shared_ptr<ManagedObject>>{});
    if (target) linkInverse(*target);
    return;
  }

  std::vector<std::shared_ptr<ManagedObject>> wanted;
  std::unordered_set<const ManagedObject*> wantedSet;
  const auto want = [&](const Value& element) {
    auto member = managedObjectOf(element, kOperation);
    if (!member) return;
    checkContext(*member);
    if (wantedSet.insert(member.get()).second) wanted.push_back(std::move(member));
  };
  switch (value.kind()) {
    case Value::Kind::Nil:
    case Value::Kind::Null:
      break;
    case Value::Kind::Set:
      for (const Value& e : value.asSet()) want(e);
      break;
    case Value::Kind::OrderedSet:
      for (const Value& e : value.asOrderedSet()) want(e);
      break;
    case Value::Kind::Array:
      for (const Value& e : value.asArray()) want(e);
      break;
    default:
      throw Exception(
          NSInvalidArgumentException,
          message::build(kOperation, u": the to-many relationship '", r.name(),
                         u"' takes a set, an ordered set or an array, not ", value.className()));
  }
  const auto current = members(r);
  std::unordered_set<const ManagedObject*> currentSet;
  for (const auto& m : current) currentSet.insert(m.get());
  setMembers(r, wanted);
  for (const auto& m : current)
    if (!wantedSet.count(m.get())) unlinkInverse(*m);
  for (const auto& m : wanted)
    if (!currentSet.count(m.get())) linkInverse(*m);
}

std::optional<Value> ManagedObject::valueForDynamicKey(const String& key) const {
  if (!entity_) return std::nullopt;
  if (const AttributeDescription* a = entity_->attributeNamed(key)) return valueForAttribute(*a);
  if (const RelationshipDescription* r = entity_->relationshipNamed(key))
    return valueForRelationship(*r);
  return std::nullopt;
}

bool ManagedObject::setValueForDynamicKey(const String& key, const Value& value) {
  if (!entity_) return false;
  if (const AttributeDescription* a = entity_->attributeNamed(key)) {
    setValueForAttribute(*a, value);
    return true;
  }
  if (const RelationshipDescription* r = entity_->relationshipNamed(key)) {
    setValueForRelationship(*r, value);
    return true;
  }
  return false;
}

String ManagedObject::description() const {
  return message::build(u"<", className(), u": ", message::Pointer{this}, u"> (entity: ",
                        entity_ ? entity_->name() : String(u"none"), u"; id: ",
                        entity_ ? objectID()->URIRepresentation().absoluteString() : String(),
                        fault_ ? u"; data: <fault>)" : u")");
}

}  // namespace tarnvik
