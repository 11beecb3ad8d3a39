#include "tarnvik/store/fetch_helpers.hpp"

#include "tarnvik/core/logging.hpp"

namespace tarnvik {
namespace {

std::shared_ptr<Predicate> equality(const Value& key, const Value& value) {
  return Predicate::predicateWithFormat(u"%K == %@", {key, value});
}

std::shared_ptr<Predicate> nilComparison(const ComparisonPredicate& p, PredicateOperatorType type) {
  return std::make_shared<ComparisonPredicate>(p.leftExpression(),
                                               Expression::expressionForConstantValue(Value()),
                                               ComparisonPredicateModifier::Direct, type, 0);
}

}  // namespace

std::shared_ptr<ManagedObject> anyObjectForEntityNamed(ManagedObjectContext& context,
                                                       const String& entityName, const String& key,
                                                       const Value& value) {
  FetchRequest request(entityName);
  request.setFetchLimit(1);
  if (!key.isNil()) request.setPredicate(equality(key, value));
  Error error;
  const Array results = context.executeFetchRequest(request, &error);
  if (results.isNil()) {
    consoleLog(
        u"ADCoreData: Error fetching Objects for Entity %@ with key %@ and value %@ from "
        u"core data: %@",
        entityName, key, value, error);
    return nullptr;
  }
  return results.lastObject().asObject<ManagedObject>();
}

Array objectsForEntityNamedMatchingValuesForKeysPredicateType(ManagedObjectContext& context,
                                                              const String& entityName,
                                                              const Array& values,
                                                              const Array& keys,
                                                              UInteger predicateType) {
  FetchRequest request(entityName);
  if (!values.isNil() && !keys.isNil()) {
    std::vector<std::shared_ptr<Predicate>> parts;
    parts.reserve(values.count());
    for (UInteger i = 0; i < values.count(); ++i) {
      const Value& key = predicateType == 2 ? keys.objectAtIndex(0) : keys.objectAtIndex(i);
      parts.push_back(equality(key, values.objectAtIndex(i)));
    }
    request.setPredicate(std::make_shared<CompoundPredicate>(
        static_cast<CompoundPredicateType>(predicateType), std::move(parts)));
  }
  Error error;
  const Array results = context.executeFetchRequest(request, &error);
  if (results.isNil()) {
    consoleLog(
        u"ADCoreData: Error fetching Objects for Entity %@ with keys %@ for values %@ "
        u"from core data: %@",
        entityName, keys, values, error);
  }
  return results;
}

Array objectsForEntityNamedMatchingAllValuesForKeys(ManagedObjectContext& context,
                                                    const String& entityName, const Array& values,
                                                    const Array& keys) {
  if (!values.isNil() && values.count() != keys.count())
    throw Exception(NSInvalidArgumentException, u"key count does not match value count");
  return objectsForEntityNamedMatchingValuesForKeysPredicateType(context, entityName, values, keys,
                                                                 1);
}

Array objectsForEntityNamedMatchingAnyValuesForKey(ManagedObjectContext& context,
                                                   const String& entityName, const Array& values,
                                                   const String& key) {
  return objectsForEntityNamedMatchingValuesForKeysPredicateType(
      context, entityName, values, key.isNil() ? Array() : Array{Value(key)}, 2);
}

String entityNameForClass(const ManagedObjectContext& context, const ClassInfo& objectClass) {
  const auto& coordinator = context.persistentStoreCoordinator();
  if (!coordinator) return String();
  for (const auto& [name, entity] : coordinator->managedObjectModel()->entitiesByName()) {
    if (entity.asObject<EntityDescription>()->managedObjectClassName() == objectClass.name())
      return name.asString();
  }
  return String();
}

std::shared_ptr<ManagedObjectID> permanentObjectID(const std::shared_ptr<ManagedObject>& object) {
  if (!object) return nullptr;
  if (!object->objectID()->isTemporaryID()) return object->objectID();
  Error error;
  const auto context = object->managedObjectContext();
  if (!context) {
    error = Error(NSCocoaErrorDomain, NSPersistentStoreOperationError,
                  Dictionary{{NSLocalizedDescriptionKey, u"The object has no context."}});
  }
  if (!context || !context->obtainPermanentIDsForObjects(Array{Value(object)}, &error)) {
    KU_LOG_ERROR(u"-[NSManagedObject(KUPermanentObjectID) permanentObjectID]",
                 u"Could not obtain permanent ID for object %@ because of error %@", object, error);
    return nullptr;
  }
  return object->objectID();
}

Array arrayWithObjectIDsFromManagedObjects(const Array& objects) {
  Array identifiers = Array::array();
  for (const Value& element : objects) {
    const auto object = std::dynamic_pointer_cast<ManagedObject>(element.asObject());
    if (!object) {
      throw Exception(NSInvalidArgumentException,
                      u"Some array objects are not of kind NSManagedObject");
    }
    // A nil identifier cannot be added: the array raises, as it does for any nil.
    const auto identifier = permanentObjectID(object);
    identifiers.addObject(identifier ? Value(identifier) : Value());
  }
  return identifiers;
}

Array arrayWithManagedObjectsFromObjectIDsInContext(const Array& objectIDs,
                                                    ManagedObjectContext& context) {
  Array objects = Array::array();
  for (const Value& element : objectIDs) {
    const auto identifier = std::dynamic_pointer_cast<ManagedObjectID>(element.asObject());
    if (!identifier) {
      throw Exception(NSInvalidArgumentException,
                      u"Some array objects are not of kind NSManagedObjectID");
    }
    Error error;
    const auto object = context.existingObjectWithID(identifier, &error);
    if (!object) {
      KU_LOG_ERROR(u"-[NSArray(KUManagedObjectIDs) arrayWithManagedObjectsFromObjectIDsInContext:]",
                   u"Could not find object with id %@ in context %@, error: %@", identifier,
                   context.description(), error);
      return Array();
    }
    objects.addObject(Value(object));
  }
  return objects;
}

std::shared_ptr<Predicate> ke_hasFlags(std::int32_t flags, const String& keyPath) {
  return Predicate::predicateWithFormat(u"(%K & %d) = %d", {keyPath, flags, flags});
}

std::shared_ptr<Predicate> _ke_emptyOrNilStringPredicate(
    const std::shared_ptr<const Predicate>& predicate) {
  const auto* comparison = dynamic_cast<const ComparisonPredicate*>(predicate.get());
  if (comparison) {
    const Value constant = comparison->rightExpression()->constantValue();
    const bool empty = constant.isString() && constant.asString() == String(u"");
    const PredicateOperatorType type = comparison->predicateOperatorType();
    if (empty && type == PredicateOperatorType::EqualTo) {
      return CompoundPredicate::orPredicateWithSubpredicates(
          {comparison->copy(), nilComparison(*comparison, PredicateOperatorType::EqualTo)});
    }
    if (empty && type == PredicateOperatorType::NotEqualTo) {
      return CompoundPredicate::andPredicateWithSubpredicates(
          {comparison->copy(), nilComparison(*comparison, PredicateOperatorType::NotEqualTo)});
    }
  }
  return predicate ? predicate->copy() : nullptr;
}

std::shared_ptr<Predicate> ke_predicateByExtendingEmptyStringWithNilComparison(
    const std::shared_ptr<const Predicate>& predicate) {
  const auto* compound = dynamic_cast<const CompoundPredicate*>(predicate.get());
  if (!compound) return _ke_emptyOrNilStringPredicate(predicate);
  std::vector<std::shared_ptr<Predicate>> parts;
  parts.reserve(compound->subpredicates().size());
  for (const auto& part : compound->subpredicates())
    parts.push_back(ke_predicateByExtendingEmptyStringWithNilComparison(part));
  return std::make_shared<CompoundPredicate>(compound->compoundPredicateType(), std::move(parts));
}

}  // namespace tarnvik
