#include "tarnvik/collections/dictionaries.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "support/domain.hpp"
#include "tarnvik/platform/base/error.hpp"

namespace tarnvik {
namespace {

TEST(DictionaryTransforms, NullsMergesAndInversions) {
  const Dictionary d{{u"a", kNull}, {u"b", 0}, {u"c", u""}};
  EXPECT_EQ(dictionaryWithoutNullValues(d), (Dictionary{{u"b", 0}, {u"c", u""}}));
  const Dictionary nested{{u"a", Dictionary{{u"x", 1}, {u"y", 2}}}};
  EXPECT_EQ(dictionaryByAddingDictionary(nested, Dictionary{{u"a", Dictionary{{u"y", 3}}}}),
            (Dictionary{{u"a", Dictionary{{u"x", 1}, {u"y", 3}}}}));
  EXPECT_EQ(dictionaryByAddingDictionary(nested, Dictionary{{u"a", 5}}), (Dictionary{{u"a", 5}}));
  EXPECT_EQ(
      dictionaryByAddingDictionary(Dictionary{{u"l", Array{1}}}, Dictionary{{u"l", Array{2}}}),
      (Dictionary{{u"l", Array{2}}}));  // arrays are replaced, not merged
  EXPECT_EQ(dictionaryByAddingDictionaries(Array{Dictionary{{u"a", Dictionary{{u"x", 1}}}},
                                                 Dictionary{{u"a", Dictionary{{u"y", 2}}}}}),
            (Dictionary{{u"a", Dictionary{{u"y", 2}}}}));  // flat
  EXPECT_EQ(arrayBySeparatingEntries(Dictionary{{u"a", 1}, {u"b", 2}}),
            (Array{Dictionary{{u"a", 1}}, Dictionary{{u"b", 2}}}));
  EXPECT_EQ(reversedDictionary(Dictionary{{u"a", 1}, {u"b", 2}}),
            (Dictionary{{1, u"a"}, {2, u"b"}}));
  EXPECT_EQ(mapValuesWithBlock(Dictionary{{u"a", 1}, {u"b", 2}},
                               [](const Value& v) { return v.intValue() == 1 ? Value() : v; }),
            (Dictionary{{u"b", 2}}));
  EXPECT_EQ(dictionaryWithKeys(Array{u"x", u"y", u"x"},
                               [](UInteger i, const Value&) { return Value(i); }),
            (Dictionary{{u"x", 2}, {u"y", 1}}));
}

TEST(DictionaryTransforms, IdentityAgainstEquality) {
  const String s = u"v", equal = String(std::u16string(u"v"));
  const Dictionary d{{u"k", s}};
  EXPECT_EQ(allKeysForObjectsIdenticalTo(d, s), (Array{u"k"}));
  EXPECT_TRUE(allKeysForObjectsIdenticalTo(d, equal).isNil());
  const Dictionary copy = mutableDeepCopy(Dictionary{{u"k", Array{1}}});
  EXPECT_EQ(copy, (Dictionary{{u"k", Array{1}}}));
}

TEST(DictionaryTransforms, FormEncoding) {
  EXPECT_EQ(urlEncodedParameters(Dictionary{{u"q", u"a b&c"}}).utf8(), "q=a%20b%26c");
  EXPECT_EQ(urlEncodedParameters(Dictionary{{u"a&b=c", u"Grüße é"}, {u"x y", u"1"}}).utf8(),
            "a&b=c=Grüße%20é&x%20y=1");
  EXPECT_EQ(urlEncodedParameters(Dictionary{{u"ké", u"v"}}).utf8(), "(null)=v");
  EXPECT_EQ(urlEncodedParameters(Dictionary::dictionary()).utf8(), "");
  EXPECT_THROW(urlEncodedParameters(Dictionary{{u"n", 1}}), Exception);
}

TEST(DictionaryConveniences, NilHandlingWhenSetting) {
  Dictionary d{{u"k", 1}};
  setObjectForKeyIgnoringNil(d, Value(), u"k", true);
  EXPECT_EQ(d.count(), 1u);
  setObjectForKeyIgnoringNil(d, Value(), u"k", false);
  EXPECT_EQ(d.count(), 0u);
  setObjectForKeyDefaultForNil(d, Value(), u"k", Value(u"default"));
  EXPECT_EQ(d.objectForKey(u"k"), Value(u"default"));
  setObjectFromDictionary(d, Dictionary{{u"s", 9}}, u"missing", u"t");
  EXPECT_TRUE(d.objectForKey(u"t").isNil());
  setObjectFromDictionary(d, Dictionary{{u"s", 9}}, u"s", u"t");
  EXPECT_EQ(d.objectForKey(u"t").intValue(), 9);
}

TEST(TypedValues, SizesAndPointsRoundTrip) {
  Dictionary d = Dictionary::dictionary();
  const Size sizes[] = {{1920, 1080}, {0.1, 1e300}, {-2.5, 1.0 / 3}, {0, 0}};
  for (const Size size : sizes) {
    setNSSize(d, size, u"size");
    EXPECT_EQ(NSSizeForKey(d, u"size"), size);
  }
  setCGSize(d, {1920, 1080}, u"size");
  EXPECT_EQ(d.objectForKey(u"size").asString().utf8(), "{1920, 1080}");
  setNSPoint(d, {0.5, -2}, u"p");
  EXPECT_EQ(d.objectForKey(u"p").asString().utf8(), "{0.5, -2}");
  EXPECT_EQ(NSPointForKey(d, u"p"), (Point{0.5, -2}));
  EXPECT_EQ(NSSizeForKey(d, u"missing"), Size{});
  // Forms written by earlier versions.
  EXPECT_EQ(NSSizeFromString(u"{640,480}"), (Size{640, 480}));
  EXPECT_EQ(NSSizeFromString(u"{1.5e2, 3}"), (Size{150, 3}));
  EXPECT_EQ(NSPointFromString(u"{12}"), (Point{12, 0}));
}

TEST(TypedValues, NumbersStringsAndTolerantReadings) {
  Dictionary d = Dictionary::dictionary();
  setBOOL(d, true, u"b");
  setInteger(d, -7, u"i");
  setLong(d, 9, u"l");
  d.setObject(u"12.7", u"s");
  d.setObject(Date{5}, u"date");
  EXPECT_TRUE(boolForKey(d, u"b"));
  EXPECT_EQ(integerForKey(d, u"i"), -7);
  EXPECT_EQ(longForKey(d, u"l"), 9);
  EXPECT_EQ(integerForKey(d, u"s"), 12);
  EXPECT_EQ(integerForKey(d, u"missing"), static_cast<Integer>(NSNotFound));
  EXPECT_TRUE(numberForKey(d, u"date").isNil());
  EXPECT_EQ(numberForKey(d, u"s").kind(), Value::Kind::Double);
  EXPECT_DOUBLE_EQ(numberForKey(Dictionary{{u"x", u"abc"}}, u"x").doubleValue(), 0.0);
  EXPECT_EQ(stringForKey(d, u"i").utf8(), "-7");
  EXPECT_TRUE(stringForKey(d, u"missing").isNil());
  EXPECT_FALSE(boolForKey(d, u"missing"));
}

TEST(TypedValues, IndexSetsThroughThirtyTwoBits) {
  Dictionary d = Dictionary::dictionary();
  setIndexSet(d, std::nullopt, u"none");
  EXPECT_EQ(d.objectForKey(u"none"), Array::array());
  EXPECT_EQ(indexSetForKey(d, u"none"), IndexSet());
  EXPECT_FALSE(indexSetForKey(d, u"missing").has_value());
  IndexSet indexes = IndexSet::indexSetWithIndexesInRange({2, 3});
  indexes.addIndex(2147483647);
  indexes.addIndex(2147483648u);
  setIndexSet(d, indexes, u"set");
  const IndexSet back = *indexSetForKey(d, u"set");
  EXPECT_TRUE(back.containsIndex(2147483647));
  EXPECT_FALSE(back.containsIndex(2147483648u));  // came back sign-extended
  EXPECT_TRUE(back.containsIndex(static_cast<UInteger>(-2147483648LL)));
  d.setObject(Array{1, u"x", 3}, u"mixed");
  EXPECT_EQ(indexSetForKey(d, u"mixed")->indexes(), (std::vector<UInteger>{1, 3}));
}

TEST(TypedValues, AStoredMinusOneSurvivesTheRoundTrip) {
  Dictionary d{{u"selection", Array{-1, 2}}};
  const IndexSet read = *indexSetForKey(d, u"selection");
  EXPECT_EQ(read.count(), 2u);
  EXPECT_EQ(read.indexes(), (std::vector<UInteger>{2, ~UInteger{0}}));
  setIndexSet(d, read, u"again");
  EXPECT_EQ(*indexSetForKey(d, u"again"), read);
  d.setObject(Array{4294967295u}, u"unsigned");  // -1 read back as a 32-bit unsigned number
  EXPECT_EQ(indexSetForKey(d, u"unsigned")->indexes(), (std::vector<UInteger>{~UInteger{0}}));
}

TEST(MapTables, IdentityWeaknessAndMarkers) {
  MapTable byIdentity(NSPointerFunctionsObjectPointerPersonality, NSPointerFunctionsStrongMemory);
  const String key = u"k", equal = String(std::u16string(u"k"));
  byIdentity.setObject(u"v", key);
  EXPECT_EQ(byIdentity.objectForKey(key), Value(u"v"));
  EXPECT_TRUE(byIdentity.objectForKey(equal).isNil());
  EXPECT_EQ(objectsForKeys(byIdentity, Array{key, u"other"}, Value(u"-")), (Array{u"v", u"-"}));
  EXPECT_THROW(objectsForKeys(byIdentity, Array{key}, Value()), Exception);
  MapTable weak = MapTable::weakToStrongObjectsMapTable();
  {
    const Value held = testing::clip(u"A", 1);
    weak.setObject(u"meta", held);
    EXPECT_EQ(weak.count(), 1u);
  }
  EXPECT_EQ(weak.count(), 0u);  // the key went away
  MapTable merged = MapTable::strongToStrongObjectsMapTable();
  merged.setObject(1, u"a");
  MapTable other = MapTable::strongToStrongObjectsMapTable();
  other.setObject(2, u"a");
  other.setObject(3, u"b");
  setValuesForKeysWithMapTable(merged, other);
  EXPECT_EQ(merged.dictionaryRepresentation(), (Dictionary{{u"a", 2}, {u"b", 3}}));
}

struct Owner : Object {
  String name = u"Ann";
  TARNVIK_CLASS(Owner)
};
struct Shot : Object {
  String title = u"Wide";
  Value owner;
  Value missing;
  TARNVIK_CLASS(Shot)
};
TARNVIK_DEFINE_CLASS(Owner, Object, c.property(u"name", &Owner::name))
TARNVIK_DEFINE_CLASS(Shot, Object,
                     c.property(u"title", &Shot::title)
                         .property(u"owner", &Shot::owner)
                         .property(u"missing", &Shot::missing))

TEST(ObjectProperties, NestedRegisteredClassesBecomeDictionaries) {
  auto shot = std::make_shared<Shot>();
  shot->owner = Value(std::make_shared<Owner>());
  EXPECT_EQ(dictionaryWithPropertiesOfObject(Value(shot)),
            (Dictionary{{u"title", u"Wide"}, {u"owner", Dictionary{{u"name", u"Ann"}}}}));
  shot->owner = Value();
  EXPECT_EQ(dictionaryWithPropertiesOfObject(Value(shot)).objectForKey(u"owner"),
            Dictionary::dictionary());
}

}  // namespace
}  // namespace tarnvik
