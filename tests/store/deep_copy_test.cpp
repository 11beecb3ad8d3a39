#include "tarnvik/store/deep_copy.hpp"

#include <gtest/gtest.h>

#include "support/raised.hpp"
#include "support/store_model.hpp"
#include "tarnvik/platform/base/key_value_coding.hpp"

namespace tarnvik {
namespace {

using testing::get;
using testing::insert;
using testing::set;

// Folders own their subfolders (cascade, to-one inverse), an ordered list of items (cascade)
// and a link to a folder they do not own (nullify, to-one inverse); a folder's "next" chain
// is cascade both ways, so it can close into a cycle.
std::shared_ptr<const ManagedObjectModel> treeModel() {
  static const auto model =
      ModelBuilder()
          .entity(
              u"Folder",
              [](EntityBuilder& e) {
                e.attribute(u"name", AttributeType::String);
                e.attribute(u"size", AttributeType::Integer64).defaultValue(7);
                e.toMany(u"children", u"Folder").inverse(u"parent").deleteRule(NSCascadeDeleteRule);
                e.toOne(u"parent", u"Folder");
                e.toMany(u"items", u"Item")
                    .inverse(u"folder")
                    .ordered()
                    .deleteRule(NSCascadeDeleteRule);
                e.toOne(u"favourite", u"Item").inverse(u"favouriteOf");
                e.toOne(u"next", u"Folder").deleteRule(NSCascadeDeleteRule);
                e.toMany(u"watchers", u"Watcher").inverse(u"watching");
              })
          .entity(u"Item",
                  [](EntityBuilder& e) {
                    e.attribute(u"name", AttributeType::String);
                    e.toOne(u"folder", u"Folder");
                    e.toOne(u"favouriteOf", u"Folder");
                  })
          .entity(u"Watcher",
                  [](EntityBuilder& e) {
                    e.attribute(u"name", AttributeType::String);
                    e.toMany(u"watching", u"Folder");
                  })
          .build();
  return model;
}

std::string nameOf(const Value& object) { return valueForKey(object, u"name").asString().utf8(); }

class DeepCopyTest : public ::testing::Test {
 protected:
  std::shared_ptr<ManagedObjectContext> context = testing::openContext(treeModel(), {});
  std::shared_ptr<ManagedObject> folder(const char* name) {
    return insert(*context, u"Folder", {{u"name", name}});
  }
};

TEST_F(DeepCopyTest, CopiesTheOwnedTreeAndRepointsItsRelationships) {
  auto root = folder("root");
  auto a = folder("a");
  auto b = folder("b");
  auto a1 = folder("a1");
  set(root, u"children", Set{Value(a), Value(b)});
  set(a, u"children", Set{Value(a1)});
  std::vector<std::shared_ptr<ManagedObject>> items;
  OrderedSet ordered = OrderedSet::orderedSet();
  for (const char* name : {"i3", "i1", "i2"}) {
    items.push_back(insert(*context, u"Item", {{u"name", name}}));
    ordered.addObject(Value(items.back()));
  }
  set(a, u"items", ordered);
  auto outsideItem = insert(*context, u"Item", {{u"name", "outside"}});
  set(a1, u"favourite", items[1]);    // inside the closure: re-pointed
  set(b, u"favourite", outsideItem);  // outside, inverse to-one: kept only with inverseToOne
  auto watcher = insert(*context, u"Watcher", {{u"name", "w"}});
  set(watcher, u"watching", Set{Value(a)});  // outside, inverse to-many: always kept
  const std::size_t before = context->registeredObjectCount();

  MapTable copied = MapTable::strongToStrongObjectsMapTable();
  const auto copy = copyDeepWithZone(root, nullptr, false, &copied);
  EXPECT_EQ(context->registeredObjectCount(), before + 7);
  EXPECT_EQ(copied.count(), 7u);
  EXPECT_EQ(copied.objectForKey(Value(root)).asObject(), copy);
  EXPECT_NE(copy, root);

  // The source keeps everything it had.
  EXPECT_EQ(get(root, u"children").asSet().count(), 2u);
  EXPECT_EQ(get(b, u"favourite").asObject(), outsideItem);
  EXPECT_EQ(get(a, u"items").asOrderedSet().count(), 3u);

  const Set children = get(copy, u"children").asSet();
  ASSERT_EQ(children.count(), 2u);
  for (const Value& child : children) {
    const auto c = child.asObject<ManagedObject>();
    EXPECT_NE(c, a);
    EXPECT_NE(c, b);
    EXPECT_EQ(get(c, u"parent").asObject(), copy);
    if (nameOf(child) == "a") {
      EXPECT_EQ(copied.objectForKey(Value(a)).asObject(), c);
      const OrderedSet copiedItems = get(c, u"items").asOrderedSet();
      ASSERT_EQ(copiedItems.count(), 3u);
      EXPECT_EQ(nameOf(copiedItems[0]), "i3");
      EXPECT_EQ(nameOf(copiedItems[2]), "i2");
      EXPECT_NE(copiedItems[0].asObject(), items[0]);
      EXPECT_TRUE(get(c, u"watchers").asSet().containsObject(Value(watcher)));
      const auto a1Copy = get(c, u"children").asSet().anyObject().asObject<ManagedObject>();
      EXPECT_EQ(get(a1Copy, u"favourite").asObject(), copiedItems[1].asObject());
    } else {
      EXPECT_TRUE(get(c, u"favourite").isNil());  // would have stripped the source
    }
  }
  EXPECT_EQ(get(watcher, u"watching").asSet().count(), 2u);

  const auto taking = copyDeepWithZone(b, nullptr, true);
  EXPECT_EQ(get(taking, u"favourite").asObject(), outsideItem);
  EXPECT_TRUE(get(b, u"favourite").isNil());  // what inverseToOne YES does to the source
}

TEST_F(DeepCopyTest, CascadeCyclesEndAndAnObjectWithoutOwnershipCopiesAlone) {
  auto x = folder("x");
  auto y = folder("y");
  auto z = folder("z");
  set(x, u"next", y);
  set(y, u"next", z);
  set(z, u"next", x);
  Set closure = Set::set();
  ownedRelationshipValues(x, closure);
  EXPECT_EQ(closure.count(), 3u);  // the walk comes back to x through z
  MapTable copied = MapTable::strongToStrongObjectsMapTable();
  const auto copy = copyDeepWithZone(x, nullptr, false, &copied);
  EXPECT_EQ(copied.count(), 3u);
  auto step = copy;
  for (const char* name : {"y", "z", "x"}) {
    step = get(step, u"next").asObject<ManagedObject>();
    EXPECT_EQ(nameOf(Value(step)), name);
    EXPECT_EQ(copied.objectForKey(Value(step)).isNil(), true);  // a copy, not a source
  }
  EXPECT_EQ(step, copy);

  auto alone = insert(*context, u"Item", {{u"name", "alone"}});
  set(alone, u"folder", x);
  const std::size_t before = context->registeredObjectCount();
  const auto copyOfAlone = copyDeepWithZone(alone, nullptr, false);
  EXPECT_EQ(context->registeredObjectCount(), before + 1);
  EXPECT_EQ(get(copyOfAlone, u"folder").asObject(), x);  // its inverse is to-many
  EXPECT_TRUE(get(copyOfAlone, u"favouriteOf").isNil());
}

TEST_F(DeepCopyTest, AttributeCopyRulesAndShallowCopies) {
  auto source = folder("source");
  set(source, u"size", 42);
  const auto target = [&](const Value& name, const Value& size) {
    auto t = insert(*context, u"Folder");
    set(t, u"name", name);
    set(t, u"size", size);
    return t;
  };
  auto t1 = target(Value(), 7);  // nil name, default size
  copyAttributesToObject(source, t1, Set(), false, false);
  EXPECT_EQ(nameOf(Value(t1)), "source");
  EXPECT_EQ(get(t1, u"size").integerValue(), 7);
  auto t2 = target(u"mine", 7);
  copyAttributesToObject(source, t2, Set(), false, true);
  EXPECT_EQ(nameOf(Value(t2)), "mine");
  EXPECT_EQ(get(t2, u"size").integerValue(), 42);
  auto t3 = target(u"mine", 8);
  copyAttributesToObject(source, t3, Set{Value(u"size")});
  EXPECT_EQ(nameOf(Value(t3)), "source");
  EXPECT_EQ(get(t3, u"size").integerValue(), 8);
  set(source, u"name", Value());
  auto t4 = target(Value(), 1);
  copyAttributesToObject(source, t4, Set(), false, false);  // nil over nil: still written
  EXPECT_TRUE(get(t4, u"name").isNil());

  auto parent = folder("parent");
  auto child = folder("child");
  set(child, u"parent", parent);
  const auto shallow = copyShallowWithZone(child, nullptr, false);
  EXPECT_EQ(get(shallow, u"size").integerValue(), 7);
  EXPECT_EQ(get(shallow, u"parent").asObject(), parent);  // the inverse is to-many
  EXPECT_EQ(get(parent, u"children").asSet().count(), 2u);
  EXPECT_EQ(relationshipWithName(child, u"nope"), nullptr);
  EXPECT_EQ(ownedRelationships(child).count(), 3u);
  context->reset();
  EXPECT_EQ(testing::raised([&] { copyDeepWithZone(child, nullptr, false); }),
            "NSInvalidArgumentException: copyDeepWithZone: the object is in no context");
}

TEST(DeepCopyClassTest, NonCopyableRelationshipsStayUnsetOnThatObjectsCopy) {
  auto context = testing::openContext(testing::mediaModel(), {});
  auto project = insert(*context, u"Project", {{u"name", u"P"}});
  auto clip = insert(*context, u"Clip", {{u"name", u"C"}});
  auto take = insert(*context, u"Take", {{u"number", 3}});
  auto tag = insert(*context, u"Tag", {{u"name", u"night"}});
  set(project, u"clips", OrderedSet{Value(clip)});
  set(clip, u"takes", Set{Value(take)});
  set(clip, u"tags", Set{Value(tag)});
  EXPECT_EQ(nonCopyableRelationshipsForObject(clip), Set{Value(u"tags")});
  EXPECT_EQ(nonCopyableRelationshipsForObject(project).count(), 0u);

  const auto copy = copyDeepWithZone(project, nullptr, false);
  const auto clipCopy = get(copy, u"clips").asOrderedSet()[0].asObject<ManagedObject>();
  EXPECT_NE(clipCopy, clip);
  EXPECT_TRUE(std::dynamic_pointer_cast<testing::ClipObject>(clipCopy));
  EXPECT_EQ(get(clipCopy, u"takes").asSet().count(), 1u);
  EXPECT_EQ(get(clipCopy, u"tags").asSet().count(), 0u);
  EXPECT_EQ(get(tag, u"clips").asSet().count(), 1u);
  Error error;
  EXPECT_TRUE(context->save(&error)) << error.description().utf8();
}

}  // namespace
}  // namespace tarnvik
