#include "tarnvik/collections/sets.hpp"

#include <gtest/gtest.h>

#include "support/domain.hpp"
#include "tarnvik/platform/base/key_value_coding.hpp"

namespace tarnvik {
namespace {

using testing::clip;

TEST(SetSelection, NilForValuesEmptyForClasses) {
  const Value a = clip(u"A", 24, true), b = clip(u"B", 25);
  const Set clips{a, b, u"text"};
  EXPECT_EQ(objectsWithValueForKey(Set{a, b}, Value(24), u"frames"), (Set{a}));
  EXPECT_TRUE(objectsWithValueForKey(Set{a, b}, Value(7), u"frames").isNil());
  EXPECT_TRUE(containsObjectWithValue(Set{a, b}, Value(u"B"), u"name"));
  EXPECT_EQ(objectsWithKindOfClass(clips, u"NSNumber"), Set::set());
  EXPECT_FALSE(objectsWithKindOfClass(clips, u"NSNumber").isNil());
  EXPECT_EQ(objectsWithBOOL(clips, true, u"isSelected"), (Set{a}));
  EXPECT_TRUE(objectsWithBOOL(clips, true, u"nope").isNil());
  EXPECT_EQ(valueForKey(sortedArrayUsingKey(Set{b, a}, u"name", false), u"name"),
            (Array{u"B", u"A"}));
}

TEST(SetTransforms, MapsCollapseAndOrderedSetsKeepOrder) {
  EXPECT_EQ(mapWithBlock(Set{1, 2, 3}, [](const Value& v) { return Value(v.intValue() % 2); }),
            (Set{0, 1}));
  EXPECT_EQ(filterWithBlock(Set{1, 2, 3}, [](const Value& v) { return v.intValue() > 1; }),
            (Set{2, 3}));
  EXPECT_EQ(setByRemovingObjectsFromSet(Set{1, 2, 3}, Set{2}), (Set{1, 3}));
  const OrderedSet ordered{3, 1, 2, u"x"};
  const Array numbers = objectsWithKindOfClass(ordered, u"NSNumber");
  EXPECT_EQ(numbers, (Array{3, 1, 2}));  // an array, in order
  EXPECT_EQ(firstObjectWithKindOfClass(ordered, u"NSString"), Value(u"x"));
  EXPECT_EQ(filterWithBlock(ordered, [](const Value& v) { return v.isNumber(); }),
            (OrderedSet{3, 1, 2}));
  EXPECT_EQ(
      mapWithBlock(ordered,
                   [](const Value& v) { return v.isNumber() ? Value(v.intValue() % 2) : Value(); }),
      (OrderedSet{1, 0}));
  const Set nested{Array{1}};
  const Set copy = mutableDeepCopy(nested);
  EXPECT_EQ(copy, nested);
  EXPECT_FALSE(copy.anyObject().isIdenticalTo(nested.anyObject()));
}

TEST(SetAlgebra, NaryAndDisjunctiveUnions) {
  EXPECT_EQ(setWithIntersectionOf({Set{1, 2}}), (Set{1, 2}));
  EXPECT_EQ(setWithIntersectionOf(std::span<const Set>()), Set::set());
  EXPECT_EQ(setWithUnionOf({Set{1}, Set{2}, Set{1, 3}}), (Set{1, 2, 3}));
  EXPECT_EQ(setWithIntersectionOf({Set{1, 2, 3}, Set{2, 3}, Set{3, 4}}), (Set{3}));
  EXPECT_EQ(setWithDisjunctiveUnionOf({Set{1, 2, 3}, Set{3, 4}}), (Set{1, 2, 4}));
  EXPECT_EQ(orderedSetWithUnionOf({OrderedSet{1, 2}, OrderedSet{3, 1, 4}}),
            (OrderedSet{1, 2, 3, 4}));
  EXPECT_EQ(orderedSetWithIntersectionOf({OrderedSet{3, 1, 2}, OrderedSet{2, 3}}),
            (OrderedSet{3, 2}));
  EXPECT_EQ(orderedSetWithDisjunctiveUnionOf({OrderedSet{1, 2, 3}, OrderedSet{3, 4}}),
            (OrderedSet{1, 2, 3, 4}));
  OrderedSet s{u"a", u"b", u"c"};
  disjunctiveUnionOrderedSet(s, OrderedSet{u"c", u"d", u"a"});
  EXPECT_EQ(s, (OrderedSet{u"b", u"c", u"d", u"a"}));
  Set plain{1, 2, 3};
  disjunctiveUnionSet(plain, Set{3, 4});
  EXPECT_EQ(plain, (Set{1, 2, 4}));
  const Set first{1};
  const Set result = setWithUnionOf({first});
  EXPECT_FALSE(result.isIdenticalTo(first));  // a copy, never the argument itself
}

}  // namespace
}  // namespace tarnvik
