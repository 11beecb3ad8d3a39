// Short-hand queries against a context by entity name and key/value equality, conversions
// between managed objects and their permanent identifiers, and predicate builders for such
// queries.
//
//   auto clip = anyObjectForEntityNamed(*context, u"Clip", u"name", u"A001C003");
//   Array takes = objectsForEntityNamedMatchingAnyValuesForKey(*context, u"Take",
//                                                              Array{1, 2}, u"number");
//
// Fetch errors are written to the console ("ADCoreData: ...") and give nil.
#pragma once

#include <cstdint>

#include "tarnvik/platform/store/context.hpp"

namespace tarnvik {

// Some object of the entity whose key equals the value (any object when key is nil); nil
// when there is none.
std::shared_ptr<ManagedObject> anyObjectForEntityNamed(ManagedObjectContext& context,
                                                       const String& entityName, const String& key,
                                                       const Value& value);
// Objects whose keys[i] equals values[i] for every i (type 1), or whose keys[0] equals any of
// the values (type 2); every object of the entity when values or keys is nil.
Array objectsForEntityNamedMatchingValuesForKeysPredicateType(ManagedObjectContext& context,
                                                              const String& entityName,
                                                              const Array& values,
                                                              const Array& keys,
                                                              UInteger predicateType);
// Type 1; NSInvalidArgumentException when the counts differ.
Array objectsForEntityNamedMatchingAllValuesForKeys(ManagedObjectContext& context,
                                                    const String& entityName, const Array& values,
                                                    const Array& keys);
// Type 2 over one key.
Array objectsForEntityNamedMatchingAnyValuesForKey(ManagedObjectContext& context,
                                                   const String& entityName, const Array& values,
                                                   const String& key);
// The entity of the context's model whose objects are of the class; nil when none.
String entityNameForClass(const ManagedObjectContext& context, const ClassInfo& objectClass);

// The object's identifier, made permanent first when it is temporary; nil (and an error log
// line) when that fails.
std::shared_ptr<ManagedObjectID> permanentObjectID(const std::shared_ptr<ManagedObject>& object);
// The permanent identifiers of an array of managed objects.
Array arrayWithObjectIDsFromManagedObjects(const Array& objects);
// The objects of an array of identifiers; nil when any of them does not exist.
Array arrayWithManagedObjectsFromObjectIDsInContext(const Array& objectIDs,
                                                    ManagedObjectContext& context);

// "(keyPath & flags) = flags": every given bit set.
std::shared_ptr<Predicate> ke_hasFlags(std::int32_t flags, const String& keyPath);
// The predicate with every comparison against the empty string also matching nil (==) or
// excluding nil (!=), at any depth of compounds.
std::shared_ptr<Predicate> ke_predicateByExtendingEmptyStringWithNilComparison(
    const std::shared_ptr<const Predicate>& predicate);
// The step for one comparison; a copy of any other predicate.
std::shared_ptr<Predicate> _ke_emptyOrNilStringPredicate(
    const std::shared_ptr<const Predicate>& predicate);

}  // namespace tarnvik
