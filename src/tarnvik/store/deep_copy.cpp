#include "tarnvik/store/deep_copy.hpp"

#include <vector>

#include "tarnvik/platform/base/key_value_coding.hpp"

namespace tarnvik {
namespace {

Value valueOf(const ManagedObjectRef& object, const String& key) {
  return valueForKey(Value(object), key);
}

// Copies are made in the source's context; an object without one cannot be copied.
std::shared_ptr<ManagedObjectContext> contextOf(const ManagedObjectRef& self,
                                                const char16_t* operation) {
  auto context = self ? self->managedObjectContext() : nullptr;
  if (!context) {
    throw Exception(NSInvalidArgumentException,
                    String(std::u16string(operation) +
                           (self ? u": the object is in no context" : u": nil object")));
  }
  return context;
}

}  // namespace

ManagedObjectRef copyDeepWithZone(const ManagedObjectRef& self, const void* zone, bool inverseToOne,
                                  MapTable* copiedObjects) {
  (void)zone;
  const auto context = contextOf(self, u"copyDeepWithZone");
  MapTable table(NSPointerFunctionsObjectPointerPersonality,
                 NSPointerFunctionsObjectPointerPersonality);
  const Dictionary copies = ownedRelationshipCopiesByObjectID(self);
  auto result = copies.objectForKey(Value(self->objectID())).asObject<ManagedObject>();
  for (const auto& [identifier, copyValue] : copies) {
    const auto member = context->objectWithID(identifier.asObject<ManagedObjectID>());
    const auto copy = copyValue.asObject<ManagedObject>();
    table.setObject(copyValue, Value(member));
    const Set skip = nonCopyableRelationshipsForObject(member);
    for (const auto& [name, description] : member->entity().relationshipsByName()) {
      (void)description;
      if (skip.containsObject(name)) continue;
      copyRelationshipWithName(member, name.asString(), copy, copies, inverseToOne);
    }
  }
  if (copiedObjects) *copiedObjects = table;
  return result;
}

ManagedObjectRef copyDeepWithZone(const ManagedObjectRef& self, const void* zone,
                                  bool inverseToOne) {
  return copyDeepWithZone(self, zone, inverseToOne, nullptr);
}

ManagedObjectRef copyShallowWithZone(const ManagedObjectRef& self, const void* zone,
                                     bool inverseToOne) {
  auto copy = copyAttributeWithZone(self, zone);
  copyAttributesToObject(self, copy);
  setRelationshipsToObject(self, copy, inverseToOne);
  return copy;
}

ManagedObjectRef copyAttributeWithZone(const ManagedObjectRef& self, const void* zone) {
  (void)zone;
  const auto context = contextOf(self, u"copyAttributeWithZone");
  auto copy = ManagedObject::initWithEntity(self->entity(), context.get());
  copyAttributesToObject(self, copy, Set(), false, true);
  return copy;
}

void copyAttributesToObject(const ManagedObjectRef& self, const ManagedObjectRef& target,
                            const Set& skippedAttributes, bool replaceNonNilValues,
                            bool replaceDefaultValues) {
  for (const auto& [nameValue, descriptionValue] : self->entity().attributesByName()) {
    const String name = nameValue.asString();
    if (!skippedAttributes.isNil() && skippedAttributes.containsObject(name)) continue;
    const Value targetValue = valueOf(target, name);
    const Value sourceValue = valueOf(self, name);
    const Value defaultValue = descriptionValue.asObject<AttributeDescription>()->defaultValue();
    const bool isDefault = !targetValue.isNil() && targetValue.isEqual(defaultValue);
    const bool replace =
        isDefault ? replaceDefaultValues : (targetValue.isNil() || replaceNonNilValues);
    if (replace) setValueForKey(Value(target), sourceValue, name);
  }
}

void copyAttributesToObject(const ManagedObjectRef& self, const ManagedObjectRef& target) {
  copyAttributesToObject(self, target, Set(), true, true);
}

void copyAttributesToObject(const ManagedObjectRef& self, const ManagedObjectRef& target,
                            const Set& skippedAttributes) {
  copyAttributesToObject(self, target, skippedAttributes, true, true);
}

void copyRelationshipWithName(const ManagedObjectRef& self, const String& name,
                              const ManagedObjectRef& target, const Dictionary& mapping,
                              bool inverseToOne) {
  const RelationshipDescription* relationship = relationshipWithName(self, name);
  const Value value = valueOf(self, name);
  bool flag = inverseToOne;
  if (relationship && relationship->isToMany()) {
    const auto add = [&](auto& collection, const Value& member) {
      const Value mapped =
          mapping.objectForKey(Value(member.template asObject<ManagedObject>()->objectID()));
      if (!mapped.isNil()) {
        collection.addObject(mapped);
        flag = true;
      } else {
        collection.addObject(member);
      }
    };
    if (relationship->isOrdered()) {
      OrderedSet collection = OrderedSet::orderedSet();
      for (const Value& member : value.asOrderedSet()) add(collection, member);
      setRelationshipWithName(self, name, target, collection, flag);
    } else {
      Set collection = Set::set();
      for (const Value& member : value.asSet()) add(collection, member);
      setRelationshipWithName(self, name, target, collection, flag);
    }
    return;
  }
  Value mapped;
  if (const auto object = value.asObject<ManagedObject>())
    mapped = mapping.objectForKey(Value(object->objectID()));
  if (!mapped.isNil())
    setRelationshipWithName(self, name, target, mapped, true);
  else
    setRelationshipWithName(self, name, target, value, flag);
}

void setRelationshipWithName(const ManagedObjectRef& self, const String& name,
                             const ManagedObjectRef& target, const Value& value,
                             bool inverseToOne) {
  const RelationshipDescription* relationship = relationshipWithName(self, name);
  const RelationshipDescription* inverse =
      relationship ? relationship->inverseRelationship() : nullptr;
  // Setting a relationship whose inverse is to-one takes its targets from their owner;
  // without the caller's consent that owner is the source, so it is left alone.
  if (inverse && !inverse->isToMany() && !inverseToOne) return;
  setValueForKey(Value(target), value, name);
}

void setRelationships(const ManagedObjectRef& self, const Array& names,
                      const ManagedObjectRef& target, bool inverseToOne) {
  const Array keys = names.isNil() ? self->entity().relationshipsByName().allKeys() : names;
  for (const Value& name : keys)
    setRelationshipWithName(self, name.asString(), target, valueOf(self, name.asString()),
                            inverseToOne);
}

void setRelationshipsToObject(const ManagedObjectRef& self, const ManagedObjectRef& target,
                              bool inverseToOne) {
  setRelationships(self, Array(), target, inverseToOne);
}

Dictionary ownedRelationshipCopiesByObjectID(const ManagedObjectRef& self) {
  Set members = Set::set();
  ownedRelationshipValues(self, members);
  members.addObject(Value(self));
  Dictionary copies = Dictionary::dictionary();
  for (const Value& member : members) {
    const auto object = member.asObject<ManagedObject>();
    copies.setObject(Value(copyAttributeWithZone(object, nullptr)), Value(object->objectID()));
  }
  return copies;
}

void ownedRelationshipValues(const ManagedObjectRef& self, Set& accumulator) {
  if (accumulator.isNil()) return;
  // Depth first, with a stack of its own so that a long cascade chain cannot exhaust the
  // call stack; the membership test before adding is what ends cycles.
  std::vector<ManagedObjectRef> pending{self};
  while (!pending.empty()) {
    const ManagedObjectRef object = std::move(pending.back());
    pending.pop_back();
    std::vector<ManagedObjectRef> found;
    for (const Value& relationshipValue : ownedRelationships(object)) {
      const auto relationship = relationshipValue.asObject<RelationshipDescription>();
      if (relationship->deleteRule() != NSCascadeDeleteRule) continue;
      const Value value = valueOf(object, relationship->name());
      const auto visit = [&](const Value& member) {
        if (member.isNil() || accumulator.containsObject(member)) return;
        accumulator.addObject(member);
        found.push_back(member.asObject<ManagedObject>());
      };
      if (!relationship->isToMany()) {
        visit(value);
      } else if (relationship->isOrdered()) {
        for (const Value& member : value.asOrderedSet()) visit(member);
      } else {
        for (const Value& member : value.asSet()) visit(member);
      }
    }
    pending.insert(pending.end(), found.rbegin(), found.rend());
  }
}

Set ownedRelationships(const ManagedObjectRef& self) {
  Set owned = Set::set();
  for (const auto& [name, description] : self->entity().relationshipsByName()) {
    (void)name;
    if (description.asObject<RelationshipDescription>()->deleteRule() == NSCascadeDeleteRule)
      owned.addObject(description);
  }
  return owned;
}

const RelationshipDescription* relationshipWithName(const ManagedObjectRef& self,
                                                    const String& name) {
  return self->entity()
      .relationshipsByName()
      .objectForKey(name)
      .asObject<RelationshipDescription>()
      .get();
}

Set nonCopyableRelationshipsForObject(const ManagedObjectRef& object) {
  const Value target(object);
  if (!respondsToSelector(target, u"nonCopyableRelationships")) return Set::set();
  const Set names = performSelector(target, u"nonCopyableRelationships").asSet();
  return names.isNil() ? Set::set() : names;
}

}  // namespace tarnvik
