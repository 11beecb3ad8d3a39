#include "support/store_model.hpp"

#include <gtest/gtest.h>

namespace tarnvik::testing {

TARNVIK_DEFINE_CLASS(ClipObject, ManagedObject,
                     c.method(u"nonCopyableRelationships", &ClipObject::nonCopyableRelationships))

std::shared_ptr<const ManagedObjectModel> mediaModel() {
  static const auto model =
      ModelBuilder()
          .entity(u"Project",
                  [](EntityBuilder& e) {
                    e.attribute(u"name", AttributeType::String).indexed();
                    e.attribute(u"flags", AttributeType::Integer32).defaultValue(0);
                    e.toMany(u"clips", u"Clip")
                        .inverse(u"project")
                        .ordered()
                        .deleteRule(NSCascadeDeleteRule);
                  })
          .entity(u"Clip",
                  [](EntityBuilder& e) {
                    e.objectClass<ClipObject>();
                    e.attribute(u"name", AttributeType::String).indexed();
                    e.attribute(u"frames", AttributeType::Integer64).defaultValue(0);
                    e.attribute(u"rating", AttributeType::Double);
                    e.attribute(u"flagged", AttributeType::Boolean).defaultValue(false);
                    e.attribute(u"created", AttributeType::Date);
                    e.attribute(u"thumbnail", AttributeType::Binary);
                    e.toOne(u"project", u"Project").deleteRule(NSNullifyDeleteRule);
                    e.toMany(u"takes", u"Take").inverse(u"clip").deleteRule(NSCascadeDeleteRule);
                    e.toMany(u"tags", u"Tag").inverse(u"clips");
                  })
          .entity(u"Take",
                  [](EntityBuilder& e) {
                    e.attribute(u"number", AttributeType::Integer32).indexed();
                    e.toOne(u"clip", u"Clip");
                  })
          .entity(u"Tag",
                  [](EntityBuilder& e) {
                    e.attribute(u"name", AttributeType::String);
                    e.toMany(u"clips", u"Clip").deleteRule(NSDenyDeleteRule);
                  })
          .build();
  return model;
}

std::shared_ptr<ManagedObjectContext> openContext(
    const std::shared_ptr<const ManagedObjectModel>& model, const std::filesystem::path& path,
    const Dictionary& options) {
  auto coordinator = std::make_shared<PersistentStoreCoordinator>(model);
  Error error;
  const bool memory = path.empty();
  const auto store = coordinator->addPersistentStoreWithType(
      memory ? NSInMemoryStoreType : NSSQLiteStoreType, memory ? String() : String(path.string()),
      options, &error);
  EXPECT_TRUE(store) << error.localizedDescription().utf8();
  return ManagedObjectContext::create(coordinator);
}

}  // namespace tarnvik::testing
