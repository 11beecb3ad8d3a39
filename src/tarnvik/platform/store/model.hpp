// The object-graph store's model: entities with typed attributes and relationships, built in
// code. A model is shared (std::shared_ptr) and immutable once built; its descriptions are
// Objects, so they live in dictionaries and sets like any other value.
//
//   auto model = ModelBuilder()
//       .entity(u"Project", [](EntityBuilder& e) {
//         e.attribute(u"name", AttributeType::String).indexed();
//         e.toMany(u"clips", u"Clip").inverse(u"project").deleteRule(NSCascadeDeleteRule);
//       })
//       .entity(u"Clip", [](EntityBuilder& e) {
//         e.objectClass<ClipObject>();
//         e.attribute(u"name", AttributeType::String);
//         e.attribute(u"frames", AttributeType::Integer64).defaultValue(0);
//         e.toOne(u"project", u"Project").inverse(u"clips");
//       })
//       .build();
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "tarnvik/platform/base/object.hpp"

namespace tarnvik {

class EntityDescription;
class ManagedObject;
class ManagedObjectContext;
class ManagedObjectModel;

enum class AttributeType {
  Integer16,
  Integer32,
  Integer64,
  Double,
  Float,
  Boolean,
  String,
  Date,
  Binary
};

// What happens to a relationship's targets when its source is deleted.
using DeleteRule = UInteger;
inline constexpr DeleteRule NSNoActionDeleteRule = 0;
inline constexpr DeleteRule NSNullifyDeleteRule = 1;
inline constexpr DeleteRule NSCascadeDeleteRule = 2;
inline constexpr DeleteRule NSDenyDeleteRule = 3;

// An attribute or a relationship of an entity.
class PropertyDescription : public Object {
 public:
  const String& name() const { return name_; }
  // The entity the property belongs to.
  const EntityDescription& entity() const { return *entity_; }
  // The property's position among its entity's attributes (or relationships).
  std::size_t index() const { return index_; }

 protected:
  PropertyDescription(String name, const EntityDescription* entity, std::size_t index)
      : name_(std::move(name)), entity_(entity), index_(index) {}

 private:
  String name_;
  const EntityDescription* entity_;
  std::size_t index_;
  TARNVIK_CLASS(PropertyDescription)
};

class AttributeDescription : public PropertyDescription {
 public:
  AttributeDescription(String name, const EntityDescription* entity, std::size_t index,
                       AttributeType type)
      : PropertyDescription(std::move(name), entity, index), type_(type) {}
  AttributeType attributeType() const { return type_; }
  // The value a newly inserted object starts with (nil when none was given).
  const Value& defaultValue() const { return defaultValue_; }
  // Whether the persistent store keeps an index on the attribute.
  bool isIndexed() const { return indexed_; }
  // Whether the value may be stored in the attribute: nil, or a value of the attribute's kind
  // (any number for the integer, floating-point and Boolean types).
  bool acceptsValue(const Value& value) const;
  String description() const override;

 private:
  friend class AttributeBuilder;
  AttributeType type_;
  Value defaultValue_;
  bool indexed_ = false;
  TARNVIK_CLASS(AttributeDescription)
};

class RelationshipDescription : public PropertyDescription {
 public:
  RelationshipDescription(String name, const EntityDescription* entity, std::size_t index,
                          bool toMany)
      : PropertyDescription(std::move(name), entity, index), toMany_(toMany) {}
  bool isToMany() const { return toMany_; }
  // A to-many relationship that keeps its members in order (an OrderedSet, not a Set).
  bool isOrdered() const { return ordered_; }
  DeleteRule deleteRule() const { return deleteRule_; }
  const EntityDescription& destinationEntity() const { return *destination_; }
  // nullptr when the relationship has no inverse.
  const RelationshipDescription* inverseRelationship() const { return inverse_; }
  String description() const override;

 private:
  friend class RelationshipBuilder;
  friend class EntityBuilder;
  friend class ModelBuilder;
  bool toMany_;
  bool ordered_ = false;
  DeleteRule deleteRule_ = NSNullifyDeleteRule;
  String destinationName_;
  String inverseName_;
  const EntityDescription* destination_ = nullptr;
  const RelationshipDescription* inverse_ = nullptr;
  TARNVIK_CLASS(RelationshipDescription)
};

class EntityDescription : public Object {
 public:
  const String& name() const { return name_; }
  // The registered class of the entity's objects ("ManagedObject" unless the model names a
  // subclass).
  const String& managedObjectClassName() const { return className_; }
  // Name -> AttributeDescription, and name -> RelationshipDescription, in declaration order.
  Dictionary attributesByName() const;
  Dictionary relationshipsByName() const;
  const std::vector<std::unique_ptr<AttributeDescription>>& attributes() const {
    return attributes_;
  }
  const std::vector<std::unique_ptr<RelationshipDescription>>& relationships() const {
    return relationships_;
  }
  const AttributeDescription* attributeNamed(const String& name) const;
  const RelationshipDescription* relationshipNamed(const String& name) const;
  const ManagedObjectModel& managedObjectModel() const { return *model_; }
  // The entity as a shared pointer that keeps its whole model alive.
  std::shared_ptr<const EntityDescription> shared() const;
  String description() const override;

  // The entity of the context's model with the name; nullptr when there is none.
  static std::shared_ptr<const EntityDescription> entityForName(
      const String& name, const ManagedObjectContext& context);
  // A new object of the entity, inserted into the context.
  static std::shared_ptr<ManagedObject> insertNewObjectForEntityForName(
      const String& name, ManagedObjectContext& context);

  // A new, uninserted object of the entity's class.
  std::shared_ptr<ManagedObject> instantiate() const { return factory_(); }

 private:
  friend class EntityBuilder;
  friend class ModelBuilder;
  String name_;
  String className_ = u"ManagedObject";
  std::function<std::shared_ptr<ManagedObject>()> factory_;
  std::vector<std::unique_ptr<AttributeDescription>> attributes_;
  std::vector<std::unique_ptr<RelationshipDescription>> relationships_;
  const ManagedObjectModel* model_ = nullptr;
  TARNVIK_CLASS(EntityDescription)
};

class ManagedObjectModel : public Object {
 public:
  // Name -> EntityDescription, in declaration order.
  Dictionary entitiesByName() const;
  const std::vector<std::unique_ptr<EntityDescription>>& entities() const { return entities_; }
  const EntityDescription* entityNamed(const String& name) const;
  // A text that changes whenever anything a store's schema depends on changes (entity,
  // attribute and relationship names, types, indexes, cardinalities, order).
  const String& versionHash() const { return versionHash_; }

 private:
  friend class ModelBuilder;
  std::vector<std::unique_ptr<EntityDescription>> entities_;
  String versionHash_;
  TARNVIK_CLASS(ManagedObjectModel)
};

class AttributeBuilder {
 public:
  explicit AttributeBuilder(AttributeDescription& a) : a_(a) {}
  AttributeBuilder& defaultValue(const Value& value);
  AttributeBuilder& indexed(bool indexed = true);

 private:
  AttributeDescription& a_;
};

class RelationshipBuilder {
 public:
  explicit RelationshipBuilder(RelationshipDescription& r) : r_(r) {}
  RelationshipBuilder& inverse(const String& name);
  RelationshipBuilder& deleteRule(DeleteRule rule);
  RelationshipBuilder& ordered(bool ordered = true);

 private:
  RelationshipDescription& r_;
};

class EntityBuilder {
 public:
  explicit EntityBuilder(EntityDescription& e) : e_(e) {}
  AttributeBuilder attribute(const String& name, AttributeType type);
  RelationshipBuilder toOne(const String& name, const String& destination);
  RelationshipBuilder toMany(const String& name, const String& destination);
  // The entity's objects are Cs: a registered subclass of ManagedObject.
  template <class C>
  EntityBuilder& objectClass() {
    static_assert(std::is_base_of_v<ManagedObject, C>);
    return objectClass(C::staticClassInfo().name(), [] { return std::make_shared<C>(); });
  }
  EntityBuilder& objectClass(const String& className,
                             std::function<std::shared_ptr<ManagedObject>()> factory);

 private:
  EntityDescription& e_;
};

// Builds a model. build() resolves destinations and inverses and raises
// NSInvalidArgumentException for a duplicate or unknown name or an inverse that does not point
// back.
class ModelBuilder {
 public:
  ModelBuilder();
  ModelBuilder& entity(const String& name, const std::function<void(EntityBuilder&)>& define);
  std::shared_ptr<const ManagedObjectModel> build();

 private:
  std::shared_ptr<ManagedObjectModel> model_;
};

}  // namespace tarnvik
