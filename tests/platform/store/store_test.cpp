#include <gtest/gtest.h>
#include <sqlite3.h>

#include <fstream>
#include <random>
#include <sstream>

#include "support/raised.hpp"
#include "support/store_model.hpp"
#include "support/temp_dir.hpp"
#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/date.hpp"
#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/base/key_value_coding.hpp"

namespace tarnvik {
namespace {

using testing::get;
using testing::insert;
using testing::mediaModel;
using testing::openContext;
using testing::set;

std::vector<std::string> names(const Array& objects) {
  std::vector<std::string> out;
  for (const Value& o : objects) out.push_back(valueForKey(o, u"name").asString().utf8());
  std::sort(out.begin(), out.end());
  return out;
}

Array fetch(ManagedObjectContext& context, const String& entity, const String& format = String(),
            std::vector<Value> arguments = {}) {
  FetchRequest request(entity);
  if (!format.isNil()) request.setPredicate(Predicate::predicateWithFormat(format, arguments));
  Error error;
  Array found = context.executeFetchRequest(request, &error);
  EXPECT_FALSE(found.isNil()) << error.description().utf8();
  return found;
}

std::string fileBytes(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

TEST(StoreTest, SavesReopensAndFindsObjectsByTheirURIs) {
  testing::TempDir dir;
  const auto file = dir.path() / "project.sqlite";
  String clipURI;
  {
    auto context = openContext(mediaModel(), file);
    auto project = insert(*context, u"Project", {{u"name", u"Feature"}});
    std::vector<std::shared_ptr<ManagedObject>> clips;
    for (const char16_t* name : {u"C003", u"C001", u"C002"})
      clips.push_back(insert(*context, u"Clip", {{u"name", name}}));
    set(clips[0], u"frames", 1234567890123LL);
    set(clips[0], u"rating", 4.5);
    set(clips[0], u"flagged", true);
    set(clips[0], u"created", Date{700000000.25});
    set(clips[0], u"thumbnail", Data::withString(std::string_view("\x00\x01png", 5)));
    set(project, u"clips", OrderedSet{Value(clips[0]), Value(clips[1]), Value(clips[2])});
    EXPECT_TRUE(clips[0]->objectID()->isTemporaryID());
    Error error;
    ASSERT_TRUE(context->save(&error)) << error.description().utf8();
    EXPECT_FALSE(clips[0]->objectID()->isTemporaryID());
    EXPECT_FALSE(context->hasChanges());
    clipURI = clips[0]->objectID()->URIRepresentation().absoluteString();
  }
  EXPECT_TRUE(clipURI.hasPrefix(u"x-coredata://")) << clipURI.utf8();

  auto context = openContext(mediaModel(), file);
  const auto coordinator = context->persistentStoreCoordinator();
  const auto id = coordinator->managedObjectIDForURIRepresentation(URL::URLWithString(clipURI));
  ASSERT_TRUE(id);
  Error error;
  const auto clip = context->existingObjectWithID(id, &error);
  ASSERT_TRUE(clip) << error.description().utf8();
  EXPECT_EQ(get(clip, u"name").asString().utf8(), "C003");
  EXPECT_EQ(get(clip, u"frames").longLongValue(), 1234567890123LL);
  EXPECT_EQ(get(clip, u"rating").doubleValue(), 4.5);
  EXPECT_EQ(get(clip, u"flagged").kind(), Value::Kind::Bool);
  EXPECT_EQ(get(clip, u"created").asDate().timeIntervalSinceReferenceDate, 700000000.25);
  EXPECT_EQ(get(clip, u"thumbnail").asData().length(), 5u);
  EXPECT_TRUE(std::dynamic_pointer_cast<testing::ClipObject>(clip));

  // The to-one is a fault until read; the ordered to-many keeps its order.
  const auto project = get(clip, u"project").asObject<ManagedObject>();
  ASSERT_TRUE(project);
  EXPECT_TRUE(project->isFault());
  const OrderedSet clips = get(project, u"clips").asOrderedSet();
  ASSERT_EQ(clips.count(), 3u);
  EXPECT_EQ(valueForKey(clips[1], u"name").asString().utf8(), "C001");
  EXPECT_TRUE(clips[0].asObject().get() == clip.get());  // uniqued by identifier

  // A temporary identifier's URI names nothing after the fact; another store's neither.
  EXPECT_FALSE(coordinator->managedObjectIDForURIRepresentation(
      URL::URLWithString(u"x-coredata:///Clip/t1")));
  EXPECT_FALSE(coordinator->managedObjectIDForURIRepresentation(
      URL::URLWithString(u"x-coredata://OTHER/Clip/p1")));
  auto missing =
      std::make_shared<ManagedObjectID>(clip->entity().shared(), id->storeIdentifier(), 999, false);
  EXPECT_FALSE(context->existingObjectWithID(missing, &error));
  EXPECT_EQ(error.code(), NSManagedObjectReferentialIntegrityError);
}

TEST(StoreTest, PermanentIdentifiersAreObtainedOnceAndStillFindTheObject) {
  auto context = openContext(mediaModel(), {});
  auto a = insert(*context, u"Clip");
  auto b = insert(*context, u"Clip");
  const auto temporary = a->objectID();
  EXPECT_EQ(temporary->URIRepresentation().absoluteString().utf8().rfind("x-coredata:///Clip/t", 0),
            0u);
  Error error;
  ASSERT_TRUE(context->obtainPermanentIDsForObjects(Array{Value(a), Value(b)}, &error));
  EXPECT_FALSE(a->objectID()->isTemporaryID());
  EXPECT_NE(a->objectID()->primaryKey(), b->objectID()->primaryKey());
  EXPECT_FALSE(a->objectID()->isEqual(*temporary));
  EXPECT_EQ(context->objectWithID(temporary), a);
  EXPECT_EQ(context->objectWithID(a->objectID()), a);
  const auto permanent = a->objectID();
  ASSERT_TRUE(context->save(&error));
  EXPECT_EQ(a->objectID(), permanent);  // saving keeps the obtained identifier
}

TEST(StoreTest, RelationshipsKeepTheirInversesInStep) {
  auto context = openContext(mediaModel(), {});
  auto p = insert(*context, u"Project");
  auto q = insert(*context, u"Project");
  auto clip = insert(*context, u"Clip");
  set(clip, u"project", p);
  EXPECT_TRUE(get(p, u"clips").asOrderedSet().containsObject(Value(clip)));
  set(clip, u"project", q);  // moves: a clip belongs to one project
  EXPECT_EQ(get(p, u"clips").asOrderedSet().count(), 0u);
  EXPECT_TRUE(get(q, u"clips").asOrderedSet().containsObject(Value(clip)));
  set(p, u"clips", OrderedSet{Value(clip)});  // taken from q through the to-many side
  EXPECT_EQ(get(clip, u"project").asObject().get(), p.get());
  EXPECT_EQ(get(q, u"clips").asOrderedSet().count(), 0u);
  set(clip, u"project", Value());
  EXPECT_EQ(get(p, u"clips").asOrderedSet().count(), 0u);

  auto tag = insert(*context, u"Tag");
  auto other = insert(*context, u"Clip");
  set(tag, u"clips", Set{Value(clip), Value(other)});
  EXPECT_TRUE(get(clip, u"tags").asSet().containsObject(Value(tag)));
  set(other, u"tags", Set());
  EXPECT_EQ(get(tag, u"clips").asSet().count(), 1u);

  EXPECT_EQ(testing::raised([&] {
              set(clip, u"project", Value(u"p"));
            }).rfind("NSInvalidArgumentException", 0),
            0u);
  EXPECT_EQ(
      testing::raised([&] { valueForKey(Value(clip), u"nope"); }).rfind("NSUnknownKeyException", 0),
      0u);
}

TEST(StoreTest, DeleteRulesNullifyCascadeAndDeny) {
  testing::TempDir dir;
  auto context = openContext(mediaModel(), dir.path() / "s.sqlite");
  auto project = insert(*context, u"Project", {{u"name", u"P"}});
  auto clip = insert(*context, u"Clip", {{u"name", u"C"}});
  auto take = insert(*context, u"Take", {{u"number", 1}});
  auto tag = insert(*context, u"Tag", {{u"name", u"T"}});
  set(clip, u"project", project);
  set(clip, u"takes", Set{Value(take)});
  set(clip, u"tags", Set{Value(tag)});
  Error error;
  ASSERT_TRUE(context->save(&error));

  context->deleteObject(clip);  // cascade to the take, nullify the project's side
  EXPECT_TRUE(take->isDeleted());
  EXPECT_EQ(get(project, u"clips").asOrderedSet().count(), 0u);
  EXPECT_EQ(context->deletedObjects().count(), 2u);
  ASSERT_TRUE(context->save(&error)) << error.description().utf8();
  EXPECT_EQ(fetch(*context, u"Take").count(), 0u);
  EXPECT_EQ(fetch(*context, u"Clip").count(), 0u);

  // A tag that still has clips cannot go; the failed save keeps the deletion pending.
  auto kept = insert(*context, u"Clip", {{u"name", u"K"}});
  set(kept, u"tags", Set{Value(tag)});
  ASSERT_TRUE(context->save(&error));
  context->deleteObject(tag);
  EXPECT_FALSE(context->save(&error));
  EXPECT_EQ(error.code(), NSValidationRelationshipDeniedDeleteError);
  EXPECT_EQ(error.errorName().utf8(), "NSValidationRelationshipDeniedDeleteError");
  EXPECT_TRUE(tag->isDeleted());
  EXPECT_EQ(fetch(*context, u"Tag").count(), 0u);  // the unsaved deletion is merged in

  // Two problems at once come as one error listing both.
  set(kept, u"frames", u"many");
  EXPECT_FALSE(context->save(&error));
  EXPECT_EQ(error.code(), NSValidationMultipleErrorsError);
  EXPECT_EQ(error.userInfo().objectForKey(NSDetailedErrorsKey).asArray().count(), 2u);
  const std::string text = error.description().utf8();
  EXPECT_NE(text.find("}\t errorName: NSValidationRelationshipDeniedDeleteError\n"),
            std::string::npos);
  EXPECT_NE(text.find("}\t errorName: NSManagedObjectValidationError\n"), std::string::npos);
  set(kept, u"frames", 12);
  context->deleteObject(kept);
  ASSERT_TRUE(context->save(&error)) << error.description().utf8();
}

TEST(StoreTest, AFailedSaveLosesNothing) {
  testing::TempDir dir;
  const auto file = dir.path() / "full.sqlite";
  auto context = openContext(mediaModel(), file);
  insert(*context, u"Project", {{u"name", u"kept"}});
  Error error;
  ASSERT_TRUE(context->save(&error));

  // SQLite's own "disk full": the database may not grow past its current pages.
  sqlite3* db = context->persistentStoreCoordinator()->sqliteHandle();
  ASSERT_EQ(sqlite3_exec(db, "PRAGMA wal_checkpoint(TRUNCATE)", nullptr, nullptr, nullptr),
            SQLITE_OK);
  sqlite3_stmt* pages = nullptr;
  sqlite3_prepare_v2(db, "PRAGMA page_count", -1, &pages, nullptr);
  sqlite3_step(pages);
  const std::string limit = "PRAGMA max_page_count=" + std::to_string(sqlite3_column_int(pages, 0));
  sqlite3_finalize(pages);
  ASSERT_EQ(sqlite3_exec(db, limit.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);

  const std::string padding(500, 'x');
  for (int i = 0; i < 2000; ++i)
    insert(*context, u"Clip", {{u"name", String(padding + std::to_string(i))}});
  EXPECT_FALSE(context->save(&error));
  EXPECT_EQ(error.code(), NSPersistentStoreSaveError);
  EXPECT_EQ(error.underlyingError().domain().utf8(), "NSSQLiteErrorDomain");
  EXPECT_EQ(error.underlyingError().code() & 0xff, SQLITE_FULL);
  EXPECT_EQ(error.userInfo().objectForKey(NSFilePathErrorKey).asString().utf8(), file.string());
  EXPECT_EQ(context->insertedObjects().count(), 2000u);
  EXPECT_EQ(fetch(*context, u"Clip").count(), 2000u);  // still there, unsaved
  {
    auto reader = openContext(mediaModel(), file);
    EXPECT_EQ(fetch(*reader, u"Clip").count(), 0u);
    EXPECT_EQ(fetch(*reader, u"Project").count(), 1u);
  }

  ASSERT_EQ(sqlite3_exec(db, "PRAGMA max_page_count=1000000", nullptr, nullptr, nullptr),
            SQLITE_OK);
  ASSERT_TRUE(context->save(&error)) << error.description().utf8();
  auto reader = openContext(mediaModel(), file);
  EXPECT_EQ(fetch(*reader, u"Clip").count(), 2000u);

  // A store opened for reading refuses to save, and keeps the changes as well.
  auto readOnly =
      openContext(mediaModel(), file, Dictionary{{NSReadOnlyPersistentStoreOption, true}});
  insert(*readOnly, u"Tag", {{u"name", u"new"}});
  EXPECT_FALSE(readOnly->save(&error));
  EXPECT_EQ(error.code(), NSPersistentStoreSaveError);
  EXPECT_EQ(readOnly->insertedObjects().count(), 1u);
}

TEST(StoreTest, AFileOfAnotherModelOrKindIsRefusedUntouched) {
  testing::TempDir dir;
  const auto file = dir.path() / "old.sqlite";
  {
    auto context = openContext(mediaModel(), file);
    insert(*context, u"Project", {{u"name", u"P"}});
    Error error;
    ASSERT_TRUE(context->save(&error));
  }
  const std::string before = fileBytes(file);
  const auto newer = ModelBuilder()
                         .entity(u"Project",
                                 [](EntityBuilder& e) {
                                   e.attribute(u"name", AttributeType::String).indexed();
                                   e.attribute(u"flags", AttributeType::Integer32);
                                   e.attribute(u"colour", AttributeType::String);
                                 })
                         .build();
  const auto open = [](const std::shared_ptr<const ManagedObjectModel>& model,
                       const std::filesystem::path& path) {
    PersistentStoreCoordinator coordinator(model);
    Error error;
    EXPECT_FALSE(coordinator.addPersistentStoreWithType(NSSQLiteStoreType, String(path.string()),
                                                        Dictionary(), &error));
    return error;
  };
  const Error refused = open(newer, file);
  EXPECT_EQ(refused.code(), NSPersistentStoreIncompatibleVersionHashError);
  EXPECT_EQ(refused.localizedDescription().utf8(),
            "The store \u201cold.sqlite\u201d was written with another model than the one used "
            "to open it.");
  EXPECT_EQ(fileBytes(file), before);

  const auto plain = dir.path() / "plain.sqlite";
  sqlite3* db = nullptr;
  sqlite3_open(plain.c_str(), &db);
  sqlite3_exec(db, "CREATE TABLE t (x)", nullptr, nullptr, nullptr);
  sqlite3_close(db);
  EXPECT_EQ(open(mediaModel(), plain).code(), NSPersistentStoreIncompatibleSchemaError);
  const Error notADatabase = open(mediaModel(), dir.write("notes.txt", std::string(4096, 'n')));
  EXPECT_EQ(notADatabase.code(), NSPersistentStoreOpenError);
  EXPECT_EQ(notADatabase.underlyingError().code(), SQLITE_NOTADB);
}

TEST(StoreTest, FetchesMergeUnsavedChangesSortAndLimit) {
  testing::TempDir dir;
  auto context = openContext(mediaModel(), dir.path() / "m.sqlite");
  std::vector<std::shared_ptr<ManagedObject>> clips;
  for (int i = 0; i < 6; ++i)
    clips.push_back(insert(*context, u"Clip",
                           {{u"name", String("C" + std::to_string(i))}, {u"frames", i * 10}}));
  Error error;
  ASSERT_TRUE(context->save(&error));
  set(clips[1], u"frames", 100);  // no longer matches
  set(clips[4], u"frames", 5);    // now matches
  context->deleteObject(clips[0]);
  insert(*context, u"Clip", {{u"name", u"new"}, {u"frames", 1}});
  EXPECT_EQ(names(fetch(*context, u"Clip", u"frames < 25")),
            (std::vector<std::string>{"C2", "C4", "new"}));

  FetchRequest request(u"Clip");
  request.setSortDescriptors({SortDescriptor(u"frames", false)});
  request.setFetchLimit(2);
  const Array top = context->executeFetchRequest(request, &error);
  ASSERT_EQ(top.count(), 2u);
  EXPECT_EQ(valueForKey(top[0], u"name").asString().utf8(), "C1");
  EXPECT_EQ(valueForKey(top[1], u"name").asString().utf8(), "C5");

  ASSERT_TRUE(context->save(&error));
  request.setSortDescriptors({});
  request.setPredicate(Predicate::predicateWithFormat(u"frames >= 20", {}));
  EXPECT_EQ(context->executeFetchRequest(request, &error).count(), 2u);  // limit in SQL
}

// Every predicate gives the same objects whether SQLite evaluates it or the objects do.
TEST(StoreTest, PredicatesTranslatedToSQLAgreeWithInMemoryEvaluation) {
  auto context = openContext(mediaModel(), {});
  std::mt19937 random(7);
  std::vector<std::shared_ptr<ManagedObject>> projects;
  for (int i = 0; i < 300; ++i) {
    auto p = insert(*context, u"Project");
    if (random() % 5)
      set(p, u"name", String(std::string(1, static_cast<char>('a' + random() % 4))));
    if (random() % 4)
      set(p, u"flags", static_cast<int>(random() % 16));
    else
      set(p, u"flags", Value());
    projects.push_back(p);
  }
  Error error;
  ASSERT_TRUE(context->save(&error));
  const std::vector<std::pair<const char16_t*, std::vector<Value>>> cases = {
      {u"name == 'a'", {}},
      {u"name != 'a'", {}},
      {u"name == nil", {}},
      {u"name != nil", {}},
      {u"NOT (name == 'b')", {}},
      {u"flags > 7", {}},
      {u"flags <= 3 OR name == 'c'", {}},
      {u"NOT flags < 8", {}},
      {u"(flags & %d) = %d", {Value(6), Value(6)}},
      {u"(flags & 1) != 1", {}},
      {u"flags IN {1, 2, 3.0}", {}},
      {u"name IN %@", {Value(Array{Value(u"a"), Value(u"d")})}},
      {u"NOT (name IN {'a'}) AND flags != 2", {}},
      {u"name BEGINSWITH[c] 'A' AND flags > 2", {}},  // half in SQL, half in memory
      {u"name < 'c'", {}},
      {u"flags == '3'", {}},
      {u"TRUEPREDICATE", {}},
  };
  for (const auto& [format, arguments] : cases) {
    const auto predicate = Predicate::predicateWithFormat(format, arguments);
    std::set<const void*> expected;
    for (const auto& p : projects)
      if (predicate->evaluateWithObject(Value(p))) expected.insert(p.get());
    std::set<const void*> found;
    for (const Value& v : fetch(*context, u"Project", format, arguments))
      found.insert(v.asObject().get());
    EXPECT_EQ(found, expected) << String(format).utf8();
  }
}

TEST(PredicateTest, ParsesEvaluatesAndDescribes) {
  const Dictionary clip{{u"name", u"A001\"x"},
                        {u"frames", 24},
                        {u"flags", 6},
                        {u"tags", Array{Value(u"day"), Value(u"ext")}}};
  const auto check = [&](const char16_t* format, std::vector<Value> arguments, bool expected,
                         const char* description) {
    const auto p = Predicate::predicateWithFormat(format, arguments);
    EXPECT_EQ(p->evaluateWithObject(Value(clip)), expected) << String(format).utf8();
    EXPECT_EQ(p->predicateFormat().utf8(), description);
    // The description reads back as an equal predicate.
    EXPECT_TRUE(Predicate::predicateWithFormat(p->predicateFormat(), {})->isEqual(*p))
        << description;
  };
  check(u"%K == %@", {u"name", u"A001\"x"}, true, "name == \"A001\\\"x\"");
  check(u"(%K & %d) = %d", {u"flags", 4, 4}, true, "(flags & 4) == 4");
  check(u"(%K & %d) = %d", {u"flags", 9, 9}, false, "(flags & 9) == 9");
  check(u"frames >= 24 && !(frames > 24)", {}, true, "frames >= 24 AND NOT frames > 24");
  check(u"name BEGINSWITH[c] 'a0' OR missing == nil", {}, true,
        "name BEGINSWITH[c] \"a0\" OR missing == nil");
  check(u"ANY tags == 'ext'", {}, true, "ANY tags == \"ext\"");
  check(u"'day' IN tags AND (frames < 10 OR frames > 20)", {}, true,
        "\"day\" IN tags AND (frames < 10 OR frames > 20)");
  check(u"frames IN {1, 24}", {}, true, "frames IN {1, 24}");

  EXPECT_EQ(testing::raised([] { Predicate::predicateWithFormat(u"name == ", {}); }),
            "NSInvalidArgumentException: Predicate::predicateWithFormat: unable to parse the "
            "format \"name == \" at position 8: expected an expression");
  EXPECT_EQ(testing::raised([] { Predicate::predicateWithFormat(u"%K == %@", {u"name"}); }),
            "NSInvalidArgumentException: Predicate::predicateWithFormat: unable to parse the "
            "format \"%K == %@\" at position 8: the format needs more arguments than were given");
  EXPECT_NE(testing::raised([] { Predicate::predicateWithFormat(u"(a == 1", {}); }), "nothing");
  EXPECT_NE(testing::raised([] { Predicate::predicateWithFormat(u"a ~ 1", {}); }), "nothing");
}

}  // namespace
}  // namespace tarnvik
