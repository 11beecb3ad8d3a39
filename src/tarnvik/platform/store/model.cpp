#include "tarnvik/platform/store/model.hpp"

#include <algorithm>

#include "tarnvik/platform/base/internal/message.hpp"
#include "tarnvik/platform/store/context.hpp"
#include "tarnvik/platform/store/managed_object.hpp"

namespace tarnvik {

TARNVIK_DEFINE_CLASS(PropertyDescription, Object, c.method(u"name", &PropertyDescription::name))
TARNVIK_DEFINE_CLASS(AttributeDescription, PropertyDescription,
                     c.method(u"defaultValue", &AttributeDescription::defaultValue))
TARNVIK_DEFINE_CLASS(RelationshipDescription, PropertyDescription,
                     c.method(u"isToMany", &RelationshipDescription::isToMany)
                         .method(u"isOrdered", &RelationshipDescription::isOrdered)
                         .method(u"deleteRule", &RelationshipDescription::deleteRule))
TARNVIK_DEFINE_CLASS(EntityDescription, Object,
                     c.method(u"name", &EntityDescription::name)
                         .method(u"managedObjectClassName",
                                 &EntityDescription::managedObjectClassName)
                         .method(u"attributesByName", &EntityDescription::attributesByName)
                         .method(u"relationshipsByName", &EntityDescription::relationshipsByName))
TARNVIK_DEFINE_CLASS(ManagedObjectModel, Object,
                     c.method(u"entitiesByName", &ManagedObjectModel::entitiesByName))

namespace {

const char16_t* typeName(AttributeType type) {
  switch (type) {
    case AttributeType::Integer16:
      return u"Integer16";
    case AttributeType::Integer32:
      return u"Integer32";
    case AttributeType::Integer64:
      return u"Integer64";
    case AttributeType::Double:
      return u"Double";
    case AttributeType::Float:
      return u"Float";
    case AttributeType::Boolean:
      return u"Boolean";
    case AttributeType::String:
      return u"String";
    case AttributeType::Date:
      return u"Date";
    case AttributeType::Binary:
      return u"Binary";
  }
  return u"?";
}

[[noreturn]] void raiseModel(const String& reason) {
  throw Exception(NSInvalidArgumentException, message::build(u"ModelBuilder: ", reason));
}

// Descriptions handed out as values share ownership of the whole model, so that none of them
// outlives the entities it points at.
template <class T>
Value sharedValue(const ManagedObjectModel& model, const T* description) {
  auto owner = std::const_pointer_cast<Object>(model.shared_from_this());
  return Value(std::shared_ptr<Object>(owner, const_cast<T*>(description)));
}

}  // namespace

bool AttributeDescription::acceptsValue(const Value& value) const {
  if (value.isNil()) return true;
  switch (type_) {
    case AttributeType::String:
      return value.isString();
    case AttributeType::Date:
      return value.kind() == Value::Kind::Date;
    case AttributeType::Binary:
      return value.kind() == Value::Kind::Data;
    default:
      return value.isNumber();
  }
}

String AttributeDescription::description() const {
  return message::build(u"(<AttributeDescription ", name(), u">, ", typeName(type_),
                        indexed_ ? u", indexed" : u"", u", default ", defaultValue_.description(),
                        u")");
}

String RelationshipDescription::description() const {
  return message::build(u"(<RelationshipDescription ", name(), u">, ",
                        toMany_ ? (ordered_ ? u"ordered to-many " : u"to-many ") : u"to-one ",
                        destinationName_, u", inverse ",
                        inverseName_.isNil() ? String(u"none") : inverseName_, u", delete rule ",
                        deleteRule_, u")");
}

Dictionary EntityDescription::attributesByName() const {
  Dictionary byName = Dictionary::dictionary();
  for (const auto& a : attributes_) byName.setObject(sharedValue(*model_, a.get()), a->name());
  return byName;
}

Dictionary EntityDescription::relationshipsByName() const {
  Dictionary byName = Dictionary::dictionary();
  for (const auto& r : relationships_) byName.setObject(sharedValue(*model_, r.get()), r->name());
  return byName;
}

const AttributeDescription* EntityDescription::attributeNamed(const String& name) const {
  for (const auto& a : attributes_)
    if (a->name() == name) return a.get();
  return nullptr;
}

const RelationshipDescription* EntityDescription::relationshipNamed(const String& name) const {
  for (const auto& r : relationships_)
    if (r->name() == name) return r.get();
  return nullptr;
}

std::shared_ptr<const EntityDescription> EntityDescription::shared() const {
  return std::shared_ptr<const EntityDescription>(model_->shared_from_this(), this);
}

String EntityDescription::description() const {
  return message::build(u"(<EntityDescription ", name_, u">) class ", className_, u", ",
                        attributes_.size(), u" attributes, ", relationships_.size(),
                        u" relationships");
}

std::shared_ptr<const EntityDescription> EntityDescription::entityForName(
    const String& name, const ManagedObjectContext& context) {
  const auto coordinator = context.persistentStoreCoordinator();
  if (!coordinator) return nullptr;
  const EntityDescription* entity = coordinator->managedObjectModel()->entityNamed(name);
  return entity ? entity->shared() : nullptr;
}

std::shared_ptr<ManagedObject> EntityDescription::insertNewObjectForEntityForName(
    const String& name, ManagedObjectContext& context) {
  const auto entity = entityForName(name, context);
  if (!entity) {
    throw Exception(NSInvalidArgumentException,
                    message::build(u"EntityDescription::insertNewObjectForEntityForName: no "
                                   u"entity named '",
                                   name, u"' in the context's model"));
  }
  return ManagedObject::initWithEntity(*entity, &context);
}

Dictionary ManagedObjectModel::entitiesByName() const {
  Dictionary byName = Dictionary::dictionary();
  for (const auto& e : entities_) byName.setObject(sharedValue(*this, e.get()), e->name());
  return byName;
}

const EntityDescription* ManagedObjectModel::entityNamed(const String& name) const {
  for (const auto& e : entities_)
    if (e->name() == name) return e.get();
  return nullptr;
}

AttributeBuilder& AttributeBuilder::defaultValue(const Value& value) {
  a_.defaultValue_ = value;
  return *this;
}

AttributeBuilder& AttributeBuilder::indexed(bool indexed) {
  a_.indexed_ = indexed;
  return *this;
}

RelationshipBuilder& RelationshipBuilder::inverse(const String& name) {
  r_.inverseName_ = name;
  return *this;
}

RelationshipBuilder& RelationshipBuilder::deleteRule(DeleteRule rule) {
  if (rule > NSDenyDeleteRule) raiseModel(message::build(u"unknown delete rule ", rule));
  r_.deleteRule_ = rule;
  return *this;
}

RelationshipBuilder& RelationshipBuilder::ordered(bool ordered) {
  r_.ordered_ = ordered && r_.toMany_;
  return *this;
}

AttributeBuilder EntityBuilder::attribute(const String& name, AttributeType type) {
  if (e_.attributeNamed(name) || e_.relationshipNamed(name))
    raiseModel(message::build(u"entity ", e_.name_, u" already has a property named ", name));
  e_.attributes_.push_back(
      std::make_unique<AttributeDescription>(name, &e_, e_.attributes_.size(), type));
  return AttributeBuilder(*e_.attributes_.back());
}

RelationshipBuilder EntityBuilder::toOne(const String& name, const String& destination) {
  if (e_.attributeNamed(name) || e_.relationshipNamed(name))
    raiseModel(message::build(u"entity ", e_.name_, u" already has a property named ", name));
  e_.relationships_.push_back(
      std::make_unique<RelationshipDescription>(name, &e_, e_.relationships_.size(), false));
  e_.relationships_.back()->destinationName_ = destination;
  return RelationshipBuilder(*e_.relationships_.back());
}

RelationshipBuilder EntityBuilder::toMany(const String& name, const String& destination) {
  RelationshipBuilder builder = toOne(name, destination);
  e_.relationships_.back()->toMany_ = true;
  return builder;
}

EntityBuilder& EntityBuilder::objectClass(const String& className,
                                          std::function<std::shared_ptr<ManagedObject>()> factory) {
  e_.className_ = className;
  e_.factory_ = std::move(factory);
  return *this;
}

ModelBuilder::ModelBuilder() : model_(std::make_shared<ManagedObjectModel>()) {}

ModelBuilder& ModelBuilder::entity(const String& name,
                                   const std::function<void(EntityBuilder&)>& define) {
  if (!model_) raiseModel(u"the model was already built");
  if (name.isNil() || name.length() == 0) raiseModel(u"an entity needs a name");
  if (model_->entityNamed(name)) raiseModel(message::build(u"duplicate entity ", name));
  auto entity = std::make_unique<EntityDescription>();
  entity->name_ = name;
  entity->model_ = model_.get();
  entity->factory_ = [] { return std::make_shared<ManagedObject>(); };
  EntityBuilder builder(*entity);
  if (define) define(builder);
  model_->entities_.push_back(std::move(entity));
  return *this;
}

std::shared_ptr<const ManagedObjectModel> ModelBuilder::build() {
  if (!model_) raiseModel(u"the model was already built");
  std::u16string hash;
  for (const auto& entity : model_->entities_) {
    message::append(hash, entity->name_);
    message::append(hash, u"{");
    for (const auto& a : entity->attributes_) {
      message::append(hash, a->name());
      message::append(hash, u":");
      message::append(hash, typeName(a->attributeType()));
      message::append(hash, a->isIndexed() ? u"+i;" : u";");
    }
    for (auto& r : entity->relationships_) {
      r->destination_ = model_->entityNamed(r->destinationName_);
      if (!r->destination_) {
        raiseModel(message::build(u"relationship ", entity->name_, u".", r->name(),
                                  u" points at unknown entity ", r->destinationName_));
      }
      if (!r->inverseName_.isNil()) {
        r->inverse_ = r->destination_->relationshipNamed(r->inverseName_);
        if (!r->inverse_) {
          raiseModel(message::build(u"relationship ", entity->name_, u".", r->name(),
                                    u" names unknown inverse ", r->destinationName_, u".",
                                    r->inverseName_));
        }
        if (r->inverse_->destinationName_ != entity->name_) {
          raiseModel(message::build(u"the inverse of ", entity->name_, u".", r->name(),
                                    u" does not point back at ", entity->name_));
        }
      }
      message::append(hash, r->name());
      message::append(hash, r->toMany_ ? (r->ordered_ ? u"->>o " : u"->> ") : u"-> ");
      message::append(hash, r->destinationName_);
      message::append(hash, u";");
    }
    message::append(hash, u"}");
  }
  // Inverses named on one side only are completed here, so that either side may declare them.
  for (const auto& entity : model_->entities_) {
    for (auto& r : entity->relationships_) {
      if (!r->inverse_) continue;
      auto* inverse = const_cast<RelationshipDescription*>(r->inverse_);
      if (!inverse->inverse_) {
        inverse->inverse_ = r.get();
        inverse->inverseName_ = r->name();
      } else if (inverse->inverse_ != r.get()) {
        raiseModel(message::build(u"the inverse of ", entity->name_, u".", r->name(),
                                  u" has another inverse"));
      }
    }
  }
  model_->versionHash_ = String(std::move(hash));
  std::shared_ptr<const ManagedObjectModel> built = std::move(model_);
  return built;
}

}  // namespace tarnvik
