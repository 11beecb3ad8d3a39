// Copying managed objects into their own context: a shallow copy (attributes, and
// relationships pointing at the same targets) and a deep copy of everything the object owns
// through cascade relationships, with the relationships inside that subgraph re-pointed at
// the copies.
//
//   MapTable copied;
//   auto copy = copyDeepWithZone(project, nullptr, false, &copied);  // project and its clips
//
// inverseToOne NO protects the source: a relationship whose inverse is to-one is then only
// set on a copy when its targets are copies too, because setting it would take the targets
// away from the source.
#pragma once

#include <memory>

#include "tarnvik/platform/base/map_table.hpp"
#include "tarnvik/platform/store/context.hpp"

namespace tarnvik {

using ManagedObjectRef = std::shared_ptr<ManagedObject>;

// The deep copy. copiedObjects, when given, receives a table from each copied source object
// (by identity) to its copy.
ManagedObjectRef copyDeepWithZone(const ManagedObjectRef& self, const void* zone, bool inverseToOne,
                                  MapTable* copiedObjects);
ManagedObjectRef copyDeepWithZone(const ManagedObjectRef& self, const void* zone,
                                  bool inverseToOne);
ManagedObjectRef copyShallowWithZone(const ManagedObjectRef& self, const void* zone,
                                     bool inverseToOne);
// A new object of self's entity in self's context with self's attributes where the new
// object's own values are nil or the defaults.
ManagedObjectRef copyAttributeWithZone(const ManagedObjectRef& self, const void* zone);

// Writes self's attribute values into the target: always over nil, over a default value only
// with replaceDefaultValues, over any other value only with replaceNonNilValues. Skipped
// names (nil: none) are left alone.
void copyAttributesToObject(const ManagedObjectRef& self, const ManagedObjectRef& target,
                            const Set& skippedAttributes, bool replaceNonNilValues,
                            bool replaceDefaultValues);
void copyAttributesToObject(const ManagedObjectRef& self, const ManagedObjectRef& target);
void copyAttributesToObject(const ManagedObjectRef& self, const ManagedObjectRef& target,
                            const Set& skippedAttributes);

// Sets the target's relationship to self's targets, each replaced by its copy when the
// mapping (object identifier -> copy) has one.
void copyRelationshipWithName(const ManagedObjectRef& self, const String& name,
                              const ManagedObjectRef& target, const Dictionary& mapping,
                              bool inverseToOne);
// Sets the target's relationship to the value, unless its inverse is to-one and
// inverseToOne is NO.
void setRelationshipWithName(const ManagedObjectRef& self, const String& name,
                             const ManagedObjectRef& target, const Value& value, bool inverseToOne);
// For each name (nil: every relationship of self's entity), self's value set on the target.
void setRelationships(const ManagedObjectRef& self, const Array& names,
                      const ManagedObjectRef& target, bool inverseToOne);
void setRelationshipsToObject(const ManagedObjectRef& self, const ManagedObjectRef& target,
                              bool inverseToOne);

// A fresh copy (attributes only) of self and of every object it owns, keyed by the
// originals' object identifiers.
Dictionary ownedRelationshipCopiesByObjectID(const ManagedObjectRef& self);
// Adds every object reachable from self through cascade relationships (self only when a
// cascade leads back to it).
void ownedRelationshipValues(const ManagedObjectRef& self, Set& accumulator);
// The relationship descriptions of self's entity whose delete rule is cascade.
Set ownedRelationships(const ManagedObjectRef& self);
// nullptr when self's entity has no relationship of that name.
const RelationshipDescription* relationshipWithName(const ManagedObjectRef& self,
                                                    const String& name);
// The names the object's class declares with a "nonCopyableRelationships" method returning a
// Set; empty when it has none.
Set nonCopyableRelationshipsForObject(const ManagedObjectRef& object);

}  // namespace tarnvik
