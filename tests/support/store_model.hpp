// A small media-project model for the store tests: projects own clips (ordered, cascade),
// clips own takes (cascade) and share tags (many-to-many; a tag with clips cannot be
// deleted). Clips are ClipObjects, whose tags are not copied by a deep copy.
#pragma once

#include <filesystem>
#include <memory>

#include "tarnvik/platform/store/context.hpp"

namespace tarnvik::testing {

struct ClipObject : ManagedObject {
  Set nonCopyableRelationships() const { return Set{Value(u"tags")}; }
  TARNVIK_CLASS(ClipObject)
};

std::shared_ptr<const ManagedObjectModel> mediaModel();

// A context on a store at the path (an in-memory store for an empty path); fails the test
// when the store cannot be opened.
std::shared_ptr<ManagedObjectContext> openContext(
    const std::shared_ptr<const ManagedObjectModel>& model, const std::filesystem::path& path,
    const Dictionary& options = Dictionary());

inline std::shared_ptr<ManagedObject> insert(ManagedObjectContext& context, const String& entity,
                                             const Dictionary& values = Dictionary()) {
  auto object = EntityDescription::insertNewObjectForEntityForName(entity, context);
  if (!values.isNil())
    for (const auto& [key, value] : values) object->setValueForDynamicKey(key.asString(), value);
  return object;
}

inline Value get(const std::shared_ptr<ManagedObject>& object, const String& key) {
  return *object->valueForDynamicKey(key);
}

inline void set(const std::shared_ptr<ManagedObject>& object, const String& key,
                const Value& value) {
  object->setValueForDynamicKey(key, value);
}

}  // namespace tarnvik::testing
