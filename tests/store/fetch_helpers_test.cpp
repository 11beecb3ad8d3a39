#include "tarnvik/store/fetch_helpers.hpp"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "support/captured_logs.hpp"
#include "support/raised.hpp"
#include "support/store_model.hpp"
#include "support/temp_dir.hpp"
#include "tarnvik/platform/base/key_value_coding.hpp"

namespace tarnvik {
namespace {

using testing::get;
using testing::insert;
using testing::openContext;

std::vector<std::string> names(const Array& objects) {
  std::vector<std::string> out;
  for (const Value& o : objects) out.push_back(valueForKey(o, u"name").asString().utf8());
  std::sort(out.begin(), out.end());
  return out;
}

// Clips saved into a real file, then read back through a fresh coordinator.
class FetchHelpersTest : public ::testing::Test {
 protected:
  void SetUp() override {
    auto writer = openContext(testing::mediaModel(), file);
    int frames = 0;
    for (const char* name : {"A001", "A002", "B001", "B002"})
      insert(*writer, u"Clip", {{u"name", name}, {u"frames", frames += 24}});
    insert(*writer, u"Take", {{u"number", 1}});
    Error error;
    ASSERT_TRUE(writer->save(&error));
    context = openContext(testing::mediaModel(), file);
  }
  testing::TempDir dir;
  std::filesystem::path file = dir.path() / "clips.sqlite";
  std::shared_ptr<ManagedObjectContext> context;
};

TEST_F(FetchHelpersTest, FetchesByKeysAndValues) {
  const auto clip = anyObjectForEntityNamed(*context, u"Clip", u"name", u"B001");
  ASSERT_TRUE(clip);
  EXPECT_EQ(get(clip, u"frames").integerValue(), 72);
  EXPECT_TRUE(anyObjectForEntityNamed(*context, u"Clip", String(), Value()));
  EXPECT_FALSE(anyObjectForEntityNamed(*context, u"Clip", u"name", u"Z999"));
  EXPECT_FALSE(anyObjectForEntityNamed(*context, u"Tag", String(), Value()));  // empty store

  EXPECT_EQ(names(objectsForEntityNamedMatchingAnyValuesForKey(
                *context, u"Clip", Array{Value(u"A002"), Value(u"B002")}, u"name")),
            (std::vector<std::string>{"A002", "B002"}));
  EXPECT_EQ(names(objectsForEntityNamedMatchingAllValuesForKeys(
                *context, u"Clip", Array{Value(u"A001"), Value(24)},
                Array{Value(u"name"), Value(u"frames")})),
            (std::vector<std::string>{"A001"}));
  EXPECT_EQ(objectsForEntityNamedMatchingAllValuesForKeys(*context, u"Clip", Array::array(),
                                                          Array::array())
                .count(),
            4u);  // AND of nothing matches everything
  EXPECT_EQ(objectsForEntityNamedMatchingValuesForKeysPredicateType(
                *context, u"Clip", Array::array(), Array::array(), 2)
                .count(),
            0u);  // OR of nothing matches nothing
  EXPECT_EQ(objectsForEntityNamedMatchingAnyValuesForKey(*context, u"Clip", Array{Value(u"A001")},
                                                         String())
                .count(),
            4u);  // no keys: no predicate
  EXPECT_EQ(testing::raised([&] {
              objectsForEntityNamedMatchingAllValuesForKeys(
                  *context, u"Clip", Array{Value(u"A001")}, Array{Value(u"name"), Value(u"x")});
            }),
            "NSInvalidArgumentException: key count does not match value count");

  EXPECT_EQ(entityNameForClass(*context, testing::ClipObject::staticClassInfo()).utf8(), "Clip");
  EXPECT_EQ(entityNameForClass(*context, ManagedObject::staticClassInfo()).utf8(), "Project");
  EXPECT_TRUE(entityNameForClass(*context, Object::staticClassInfo()).isNil());
}

TEST_F(FetchHelpersTest, AFetchErrorIsAConsoleLineAndNil) {
  sqlite3_exec(context->persistentStoreCoordinator()->sqliteHandle(), "DROP TABLE \"ZClip\"",
               nullptr, nullptr, nullptr);
  testing::CapturedLogs logs;
  EXPECT_FALSE(anyObjectForEntityNamed(*context, u"Clip", u"name", u"A001"));
  EXPECT_TRUE(objectsForEntityNamedMatchingAnyValuesForKey(*context, u"Clip", Array{Value(u"A001")},
                                                           u"name")
                  .isNil());
  ASSERT_EQ(logs.console.size(), 2u);
  EXPECT_EQ(logs.console[0].rfind("ADCoreData: Error fetching Objects for Entity Clip with key "
                                  "name and value A001 from core data: <NSError 0x",
                                  0),
            0u)
      << logs.console[0];
  EXPECT_NE(logs.console[0].find("no such table"), std::string::npos);
  EXPECT_EQ(
      logs.console[1].rfind("ADCoreData: Error fetching Objects for Entity Clip with keys (", 0),
      0u)
      << logs.console[1];
}

TEST_F(FetchHelpersTest, IdentifiersAndObjectsConvertBothWays) {
  auto fresh = insert(*context, u"Clip", {{u"name", u"new"}});
  const auto saved = anyObjectForEntityNamed(*context, u"Clip", u"name", u"A001");
  const auto savedID = saved->objectID();
  EXPECT_EQ(permanentObjectID(saved), savedID);  // already permanent: unchanged
  const Array ids = arrayWithObjectIDsFromManagedObjects(Array{Value(saved), Value(fresh)});
  ASSERT_EQ(ids.count(), 2u);
  EXPECT_FALSE(ids[1].asObject<ManagedObjectID>()->isTemporaryID());
  EXPECT_EQ(ids[1].asObject(), fresh->objectID());
  EXPECT_EQ(testing::raised([] { arrayWithObjectIDsFromManagedObjects(Array{Value(u"x")}); }),
            "NSInvalidArgumentException: Some array objects are not of kind NSManagedObject");

  Error error;
  ASSERT_TRUE(context->save(&error));
  auto reader = openContext(testing::mediaModel(), file);
  const Array objects = arrayWithManagedObjectsFromObjectIDsInContext(ids, *reader);
  EXPECT_EQ(names(objects), (std::vector<std::string>{"A001", "new"}));

  testing::CapturedLogs logs;
  const auto unknown = std::make_shared<ManagedObjectID>(
      fresh->entity().shared(), ids[0].asObject<ManagedObjectID>()->storeIdentifier(), 4242, false);
  EXPECT_TRUE(arrayWithManagedObjectsFromObjectIDsInContext(Array{ids[0], Value(unknown)}, *reader)
                  .isNil());
  ASSERT_EQ(logs.lines().size(), 1u);
  EXPECT_EQ(logs.lines()[0].rfind("Could not find object with id <ManagedObjectID: ", 0), 0u);
  EXPECT_EQ(logs.messages()[0].function.utf8(),
            "-[NSArray(KUManagedObjectIDs) arrayWithManagedObjectsFromObjectIDsInContext:]");
  EXPECT_EQ(testing::raised([&] {
              arrayWithManagedObjectsFromObjectIDsInContext(Array{Value(saved)}, *reader);
            }),
            "NSInvalidArgumentException: Some array objects are not of kind NSManagedObjectID");
}

TEST(PredicateHelpersTest, FlagsAndEmptyStringsAtEveryDepth) {
  const auto flags = ke_hasFlags(0x5, u"options");
  EXPECT_EQ(flags->predicateFormat().utf8(), "(options & 5) == 5");
  EXPECT_TRUE(flags->evaluateWithObject(Value(Dictionary{{u"options", 0x7}})));
  EXPECT_FALSE(flags->evaluateWithObject(Value(Dictionary{{u"options", 0x6}})));

  const auto p = Predicate::predicateWithFormat(
      u"name == '' AND (note != '' OR NOT (title == '' OR frames == 0)) AND take == 'x'", {});
  const auto extended = ke_predicateByExtendingEmptyStringWithNilComparison(p);
  EXPECT_EQ(extended->predicateFormat().utf8(),
            "(name == \"\" OR name == nil) AND ((note != \"\" AND note != nil) OR NOT "
            "((title == \"\" OR title == nil) OR frames == 0)) AND take == \"x\"");
  const Dictionary nothing{{u"take", u"x"}, {u"note", u"n"}, {u"frames", 1}};
  EXPECT_FALSE(p->evaluateWithObject(Value(nothing)));
  EXPECT_TRUE(extended->evaluateWithObject(Value(nothing)));

  for (const char16_t* unchanged :
       {u"name == 'a'", u"frames == 0", u"name BEGINSWITH ''", u"name < ''", u"'' == name"}) {
    const auto q = Predicate::predicateWithFormat(unchanged, {});
    const auto r = _ke_emptyOrNilStringPredicate(q);
    EXPECT_TRUE(r->isEqual(*q)) << String(unchanged).utf8();
    EXPECT_NE(r, q);  // a copy
  }
}

}  // namespace
}  // namespace tarnvik
