// A project database: clips saved into an SQLite file, found again after reopening, and a
// reel deep-copied with everything it owns. Run as a test; the README quotes it.
//
// usage: tarnvik_project_store FOLDER
#include <iostream>

#include "tarnvik/tarnvik.hpp"

using namespace tarnvik;

std::shared_ptr<const ManagedObjectModel> projectModel() {
  return ModelBuilder()
      .entity(
          u"Reel",
          [](EntityBuilder& e) {
            e.attribute(u"name", AttributeType::String).indexed();
            e.toMany(u"clips", u"Clip").inverse(u"reel").ordered().deleteRule(NSCascadeDeleteRule);
          })
      .entity(u"Clip",
              [](EntityBuilder& e) {
                e.attribute(u"name", AttributeType::String).indexed();
                e.attribute(u"frames", AttributeType::Integer64).defaultValue(0);
                e.toOne(u"reel", u"Reel");
              })
      .build();
}

std::shared_ptr<ManagedObjectContext> openProject(const String& path, Error* error) {
  auto coordinator = std::make_shared<PersistentStoreCoordinator>(projectModel());
  if (!coordinator->addPersistentStoreWithType(NSSQLiteStoreType, path, Dictionary(), error))
    return nullptr;
  return ManagedObjectContext::create(coordinator);
}

int main(int argc, char** argv) {
  const String path = String(std::string(argc > 1 ? argv[1] : ".") + "/project.sqlite");
  Error error;
  {
    auto context = openProject(path, &error);
    if (!context) return 1;
    auto reel = EntityDescription::insertNewObjectForEntityForName(u"Reel", *context);
    setValueForKey(Value(reel), Value(u"A001"), u"name");
    OrderedSet clips = OrderedSet::orderedSet();
    for (int i = 1; i <= 3; ++i) {
      auto clip = EntityDescription::insertNewObjectForEntityForName(u"Clip", *context);
      setValueForKey(Value(clip), Value("A001C00" + std::to_string(i)), u"name");
      setValueForKey(Value(clip), Value(i * 240), u"frames");
      clips.addObject(Value(clip));
    }
    setValueForKey(Value(reel), clips, u"clips");                // each clip's reel is set too
    if (!context->save(&error)) {                                // one transaction; on failure the
      std::cerr << error.localizedDescription().utf8() << "\n";  // changes stay in the context
      return 1;
    }
  }

  auto context = openProject(path, &error);
  if (!context) return 1;
  const Array named = objectsForEntityNamedMatchingAnyValuesForKey(
      *context, u"Clip", Array{Value(u"A001C002"), Value(u"A001C003")}, u"name");
  std::cout << "found " << named.count() << " clips\n";

  auto reel = anyObjectForEntityNamed(*context, u"Reel", u"name", u"A001");
  auto copy = copyDeepWithZone(reel, nullptr, false);  // the reel and its three clips
  setValueForKey(Value(copy), Value(u"A001 copy"), u"name");
  const OrderedSet copiedClips = valueForKey(Value(copy), u"clips").asOrderedSet();
  std::cout << "copied " << valueForKey(Value(copy), u"name").asString().utf8() << " with "
            << copiedClips.count() << " clips, first "
            << valueForKey(copiedClips[0], u"name").asString().utf8() << "\n";
  return context->save(&error) ? 0 : 1;
}
