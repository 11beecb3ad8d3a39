#include <gtest/gtest.h>

#include "tarnvik/platform/foundation.hpp"

namespace tarnvik {
namespace {

template <class F>
String exceptionName(F f) {
  try {
    f();
  } catch (const Exception& e) {
    return e.name();
  }
  return u"none";
}

TEST(Array, IndexesAndNilAreChecked) {
  Array a{u"a", u"b"};
  EXPECT_EQ(exceptionName([&] { (void)a.objectAtIndex(2); }).utf8(), "NSRangeException");
  EXPECT_EQ(exceptionName([&] { a.insertObject(u"c", 3); }).utf8(), "NSRangeException");
  EXPECT_EQ(exceptionName([&] { a.addObject(Value()); }).utf8(), "NSInvalidArgumentException");
  EXPECT_EQ(exceptionName([&] { Array::array().removeLastObject(); }).utf8(), "NSRangeException");
  EXPECT_EQ(exceptionName([&] { (void)a.subarrayWithRange({1, 2}); }).utf8(), "NSRangeException");
  EXPECT_TRUE(Array::array().lastObject().isNil());
  EXPECT_TRUE(Array().isNil());
  EXPECT_FALSE(Array::array().isNil());
}

TEST(Array, SearchByEqualityAndByIdentity) {
  const String first = u"clip", second = String(std::u16string(u"clip"));
  const Array a{first, u"x", second};
  EXPECT_EQ(a.indexOfObject(second), 0u);
  EXPECT_EQ(a.indexOfObjectIdenticalTo(second), 2u);
  EXPECT_EQ(a.indexOfObject(first, {1, 2}), 2u);
  EXPECT_EQ(a.indexOfObject(u"y"), NSNotFound);
  EXPECT_TRUE(a.containsObjectIdenticalTo(first));
  EXPECT_FALSE(a.containsObjectIdenticalTo(String(std::u16string(u"clip"))));
  Array b = a;
  b.removeObjectIdenticalTo(first);
  EXPECT_EQ(b.count(), 2u);
  b.removeObject(u"clip");
  EXPECT_EQ(b, (Array{u"x"}));
  EXPECT_EQ(a.count(), 3u);  // the copy changed alone
}

TEST(Array, SlicingJoiningAndSorting) {
  const Array a{3, 1, 2, 1};
  EXPECT_EQ(a.subarrayWithRange({1, 2}), (Array{1, 2}));
  EXPECT_EQ(a.componentsJoinedByString(u", ").utf8(), "3, 1, 2, 1");
  EXPECT_EQ(Array::array().componentsJoinedByString(u",").utf8(), "");
  const Array sorted =
      a.sortedArrayUsingComparator([](const Value& x, const Value& y) { return x.compare(y); });
  EXPECT_EQ(sorted, (Array{1, 1, 2, 3}));
  // Stable: equal keys keep their order.
  const Array pairs{Array{1, u"a"}, Array{0, u"b"}, Array{1, u"c"}};
  const Array byKey = pairs.sortedArrayUsingComparator(
      [](const Value& x, const Value& y) { return x.asArray()[0].compare(y.asArray()[0]); });
  EXPECT_EQ(byKey[1].asArray()[1].asString().utf8(), "a");
  EXPECT_EQ(byKey[2].asArray()[1].asString().utf8(), "c");
  Array self{1, 2};
  self.addObjectsFromArray(self);
  EXPECT_EQ(self, (Array{1, 2, 1, 2}));
}

TEST(Dictionary, KeepsInsertionOrderThroughReplaceAndRemove) {
  Dictionary d{{u"c", 1}, {u"a", 2}, {u"b", 3}};
  d.setObject(20, u"a");
  EXPECT_EQ(d.allKeys(), (Array{u"c", u"a", u"b"}));
  d.removeObjectForKey(u"c");
  EXPECT_EQ(d.allKeys(), (Array{u"a", u"b"}));
  EXPECT_EQ(d.objectForKey(u"b").intValue(), 3);  // lookups survive the shift
  d.setObject(4, u"c");
  EXPECT_EQ(d.allValues(), (Array{20, 3, 4}));
  d.setValue(Value(), u"a");
  EXPECT_TRUE(d.objectForKey(u"a").isNil());
  EXPECT_EQ(exceptionName([&] { d.setObject(Value(), u"k"); }).utf8(),
            "NSInvalidArgumentException");
}

TEST(Dictionary, AnyValueIsAKey) {
  Dictionary d = Dictionary::dictionary();
  d.setObject(u"one", 1);
  d.setObject(u"list", Array{1, 2});
  d.setObject(u"null", kNull);
  EXPECT_EQ(d.objectForKey(1.0).asString().utf8(), "one");
  EXPECT_EQ(d.objectForKey(Array{1.0, 2}).asString().utf8(), "list");
  EXPECT_EQ(d.objectForKey(kNull).asString().utf8(), "null");
  EXPECT_TRUE(d.objectForKey(Value()).isNil());
  EXPECT_EQ(Dictionary({{1, u"x"}, {2, u"y"}, {3, u"x"}}).allKeysForObject(u"x"), (Array{1, 3}));
}

TEST(Set, AlgebraAndMembership) {
  Set s{1, 2, 3};
  s.addObject(2.0);
  EXPECT_EQ(s.count(), 3u);
  Set u = s;
  u.unionSet(Set{3, 4});
  EXPECT_EQ(u, (Set{1, 2, 3, 4}));
  Set i = s;
  i.intersectSet(Set{3, 4, 1});
  EXPECT_EQ(i, (Set{1, 3}));
  Set m = s;
  m.minusSet(Set{1});
  EXPECT_EQ(m, (Set{2, 3}));
  EXPECT_EQ(s, (Set{1, 2, 3}));
  EXPECT_TRUE(Set({1}).isSubsetOfSet(s));
  EXPECT_EQ(s.member(2.0).kind(), Value::Kind::Int);  // the stored member answers
}

TEST(OrderedSet, AlgebraKeepsTheStatedOrders) {
  OrderedSet a{u"a", u"b", u"c"};
  OrderedSet u = a;
  u.unionOrderedSet(OrderedSet{u"d", u"a", u"e"});
  EXPECT_EQ(u, (OrderedSet{u"a", u"b", u"c", u"d", u"e"}));
  OrderedSet i = a;
  i.intersectOrderedSet(OrderedSet{u"c", u"a"});
  EXPECT_EQ(i, (OrderedSet{u"a", u"c"}));
  OrderedSet m = a;
  m.minusOrderedSet(OrderedSet{u"b"});
  EXPECT_EQ(m, (OrderedSet{u"a", u"c"}));
  EXPECT_EQ(m.indexOfObject(u"c"), 1u);
  m.insertObject(u"z", 0);
  EXPECT_EQ(m.indexOfObject(u"c"), 2u);
  m.removeObjectAtIndex(0);
  EXPECT_EQ(m.indexOfObject(u"a"), 0u);
  EXPECT_EQ(exceptionName([&] { (void)m.objectAtIndex(5); }).utf8(), "NSRangeException");
}

}  // namespace
}  // namespace tarnvik
