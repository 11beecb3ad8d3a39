#include "tarnvik/collections/arrays.hpp"

#include <gtest/gtest.h>

#include "support/domain.hpp"
#include "support/raised.hpp"
#include "tarnvik/platform/foundation.hpp"

namespace tarnvik {
namespace {

using testing::clip;

using testing::raised;

TEST(ArrayAccess, SafeIndexingNeverRaises) {
  const Array one{u"a"};
  EXPECT_TRUE(secondObject(one).isNil());
  EXPECT_EQ(secondObject(Array{1, 2}).intValue(), 2);
  EXPECT_TRUE(thirdObject(Array{1, 2}).isNil());
  EXPECT_TRUE(existingObjectAtIndex(one, 1).isNil());
  EXPECT_EQ(firstObjectWithKindOfClass(Array{1, u"x", u"y"}, u"NSString").asString().utf8(), "x");
  const String s = u"clip", equal = String(std::u16string(u"clip"));
  EXPECT_TRUE(containsObjectIdenticalTo(Array{s}, s));
  EXPECT_FALSE(containsObjectIdenticalTo(Array{s}, equal));
}

TEST(ArraySelection, NilWhenNothingMatchesForValues) {
  const Value a = clip(u"A", 24, true), b = clip(u"B", 25), c = clip(u"C", 24);
  const Array clips{a, b, c};
  EXPECT_EQ(objectsWithValueForKey(clips, Value(24), u"frames"), (Array{a, c}));
  EXPECT_TRUE(objectsWithValueForKey(clips, Value(99), u"frames").isNil());
  const Array dicts{Dictionary{{u"k", 1}}, Dictionary::dictionary(), Dictionary{{u"k", 2}}};
  EXPECT_EQ(objectsWithValueForKey(dicts, Value(), u"k"), (Array{Dictionary::dictionary()}));
  EXPECT_TRUE(containsObjectWithValue(clips, Value(u"B"), u"name"));
  EXPECT_FALSE(containsObjectWithValue(clips, Value(u"Z"), u"name"));
  EXPECT_EQ(objectsWithKindOfClass(clips, u"NSString"), Array::array());  // empty, not nil
  EXPECT_FALSE(objectsWithKindOfClass(clips, u"NSString").isNil());
}

TEST(ArraySelection, KeyPathNilTestUsesTheWholePath) {
  const Dictionary withOwner{{u"owner", Dictionary{{u"name", u"Ann"}}}};
  const Dictionary flat{{u"owner.name", u"flat"}};
  const Dictionary empty = Dictionary::dictionary();
  EXPECT_EQ(objectsWithValueForKeyPath(Array{withOwner, flat}, Value(u"Ann"), u"owner.name"),
            (Array{withOwner}));
  // For nil the whole dotted text is one key: withOwner has no key "owner.name", empty neither.
  EXPECT_EQ(objectsWithValueForKeyPath(Array{withOwner, flat, empty}, Value(), u"owner.name"),
            (Array{withOwner, empty}));
  // A non-dictionary element meets the undefined-key error there.
  EXPECT_THROW(objectsWithValueForKeyPath(Array{clip(u"A", 1)}, Value(), u"owner.name"), Exception);
}

TEST(ArraySelection, DifferentToValuesKeepsEverything) {
  const Array dicts{Dictionary{{u"k", 1}}, Dictionary::dictionary(), Dictionary{{u"k", 2}}};
  EXPECT_EQ(objectsWithValueDifferentToValues(dicts, Array{1, 2}, u"k"), dicts);
  EXPECT_EQ(objectsWithValueDifferentToValues(dicts, Array(), u"k"), (Array{dicts[0], dicts[2]}));
  EXPECT_TRUE(
      objectsWithValueDifferentToValues(Array{Dictionary::dictionary()}, Array(), u"k").isNil());
}

TEST(ArraySelection, BOOLMethodsByName) {
  const Value a = clip(u"A", 1, true), b = clip(u"B", 1, false);
  const Array mixed{a, b, u"text", 5};
  EXPECT_EQ(objectsWithBOOL(mixed, true, u"isSelected"), (Array{a}));
  EXPECT_EQ(objectsWithBOOL(mixed, false, u"isSelected"), (Array{b}));
  EXPECT_TRUE(objectsWithBOOL(mixed, true, u"noSuchMethod").isNil());
  EXPECT_EQ(objectsWithBOOL(Array{1, 0, 256}, true, u"integerValue"),
            (Array{1}));  // the low byte counts
}

TEST(ArraySelection, BOOLComparesTheFirstByteOfTheResultInMemory) {
  // 1.0 as a double is 00 00 00 00 00 00 F0 3F: its first byte is 0, so it counts as NO.
  const Value one = clip(u"One", 25), none = clip(u"None", 0);
  EXPECT_EQ(objectsWithBOOL(Array{one, none}, false, u"seconds"), (Array{one, none}));
  EXPECT_TRUE(objectsWithBOOL(Array{one, none}, true, u"seconds").isNil());
  EXPECT_EQ(objectsWithBOOL(Array{1.0}, false, u"doubleValue"), (Array{1.0}));
  // A float of 1.0 is 00 00 80 3F; the integer 257 is 01 01 00 00.
  const Value single = clip(u"Single", 1);
  EXPECT_TRUE(objectsWithBOOL(Array{single}, true, u"ratio").isNil());
  EXPECT_EQ(objectsWithBOOL(Array{single, none}, true, u"takes"), (Array{single}));
  // A BOOL property read as a method, and an object result: nil is all zeros.
  const Value picked = clip(u"Picked", 1, true);
  EXPECT_EQ(objectsWithBOOL(Array{picked, none}, true, u"selected"), (Array{picked}));
  EXPECT_EQ(objectsWithBOOL(Array{picked}, false, u"nothing"), (Array{picked}));
}

TEST(ArrayTransforms, BlocksAndSelectors) {
  EXPECT_EQ(mapWithBlock(Array::array(), [](const Value& v) { return v; }), Array::array());
  EXPECT_EQ(mapWithBlock(Array{1, 2, 3},
                         [](const Value& v) {
                           return v.intValue() == 2 ? Value() : Value(v.intValue() * 10);
                         }),
            (Array{10, 30}));
  EXPECT_EQ(filterWithBlock(Array{1, 2, 3}, [](const Value& v) { return v.intValue() > 1; }),
            (Array{2, 3}));
  EXPECT_EQ(arrayByPerformingSelector(Array{clip(u"a", 1), clip(u"b", 2)}, u"title"),
            (Array{u"A", u"B"}));
  EXPECT_EQ(
      raised([] { arrayByPerformingSelector(Array{clip(u"a", 1)}, u"nothing"); }).substr(0, 26),
      "NSInvalidArgumentException");
  EXPECT_EQ(valueForKey(sortedArrayUsingKey(Array{clip(u"b", 2), clip(u"a", 1)}, u"frames", true),
                        u"name"),
            (Array{u"a", u"b"}));
  EXPECT_EQ(reversedArray(Array{1, 2, 3}), (Array{3, 2, 1}));
}

TEST(ArraySlices, RangeChecksWithTheirTexts) {
  const Array a{1, 2, 3};
  EXPECT_EQ(subarrayToIndex(a, 2), a);
  EXPECT_EQ(subarrayFromIndex(a, 0), a);
  EXPECT_EQ(subarrayWithLastElements(a, 3), a);
  EXPECT_EQ(subarrayWithLastElements(a, 0), Array::array());
  EXPECT_EQ(raised([&] { subarrayWithLastElements(a, 4); }),
            "NSRangeException: Requested element count 4 is larger than array count 3");
  EXPECT_EQ(raised([&] { subarrayFromIndex(a, 3); }),
            "NSRangeException: Requested startingIndex 3 is >= than array count 3");
  EXPECT_EQ(raised([&] { subarrayToIndex(a, 3); }),
            "NSRangeException: Requested lastIndex 3 is >= than array count 3");
  EXPECT_EQ(arrayOfLastObjects(a, 3), a);
  EXPECT_FALSE(arrayOfLastObjects(a, 3).isIdenticalTo(a));
  EXPECT_EQ(arrayOfLastObjects(a, 2), (Array{2, 3}));
  EXPECT_EQ(arrayByRemovingFirstObjects(a, 1), (Array{2, 3}));
  EXPECT_EQ(arrayByRemovingFirstObjects(a, 5), Array::array());
  EXPECT_EQ(arrayByRemovingLastObjects(a, 1), (Array{1, 2}));
  EXPECT_EQ(arrayWithoutLastElement(Array::array()), Array::array());
}

TEST(ArrayReordering, MovesRemovalsAndIndexes) {
  const Array abcd{u"a", u"b", u"c", u"d"};
  EXPECT_EQ(arrayByMovingObjectAtIndex(abcd, 0, 3), (Array{u"b", u"c", u"a", u"d"}));
  EXPECT_EQ(arrayByMovingObjectAtIndex(abcd, 3, 0), (Array{u"d", u"a", u"b", u"c"}));
  EXPECT_EQ(arrayByMovingObjectAtIndex(abcd, 1, 1), abcd);
  EXPECT_EQ(arrayByMovingObjectAtIndex(abcd, 0, 4), (Array{u"b", u"c", u"d", u"a"}));
  EXPECT_THROW(arrayByMovingObjectAtIndex(abcd, 0, 5), Exception);
  EXPECT_EQ(arrayByRemovingObject(Array{1, 2, 1.0}, Value(1)), (Array{2}));
  EXPECT_EQ(arrayByRemovingObjectsFromArray(Array{1, 2, 3, 2}, Array{2, 3}), (Array{1}));
  EXPECT_EQ(indexesOfObject(Array{1, 2, 1, 1}, Value(1)).indexes(),
            (std::vector<UInteger>{0, 2, 3}));
  EXPECT_TRUE(indexesOfObject(Array{1}, Value(5)).isEmpty());
  EXPECT_EQ(indexesOfObjectsInSet(Array{1, 2, 3}, Set{3, 1}).indexes(),
            (std::vector<UInteger>{0, 2}));
  const String s = u"x", equal = String(std::u16string(u"x"));
  Array mixed{s, equal, u"y"};
  removeIdenticalObjectsInArray(mixed, Array{s});
  EXPECT_EQ(mixed.count(), 2u);
  EXPECT_TRUE(mixed[0].isIdenticalTo(Value(equal)));
}

TEST(ArrayGrouping, GroupsFlattenAndUnflatten) {
  const Dictionary groups =
      groupElementsIgnoringNilWithFunction(Array{1, 2, 3, 4, 5}, [](const Value& v) {
        return v.intValue() == 5 ? Value() : Value(v.intValue() % 2 ? u"odd" : u"even");
      });
  EXPECT_EQ(groups, (Dictionary{{u"odd", Array{1, 3}}, {u"even", Array{2, 4}}}));
  EXPECT_EQ(groups.allKeys(), (Array{u"odd", u"even"}));
  EXPECT_EQ(flatten(Array{Array{1, 2}, Array::array(), Array{Array{3}}}), (Array{1, 2, Array{3}}));
  EXPECT_EQ(raised([] {
              flatten(Array{Array{1}, 2});
            }),
            "NSInternalInconsistencyException: array does contain elements that are not arrays, "
            "but NSNumber");
  EXPECT_EQ(unflattenWithGroupLength(Array{1, 2, 3, 4}, 2), (Array{Array{1, 2}, Array{3, 4}}));
  EXPECT_EQ(unflattenWithGroupLength(Array::array(), 3), Array::array());
  EXPECT_EQ(
      raised([] {
        unflattenWithGroupLength(Array{1, 2, 3}, 2);
      }),
      "NSInternalInconsistencyException: array length 3 is not a multple of give group length 2");
  EXPECT_THROW(unflattenWithGroupLength(Array{1}, 0), Exception);
}

TEST(ArrayText, HumanReadableListsAndComparison) {
  const String file = u"file", files = u"files";
  EXPECT_EQ(objectsJoinedAsHumanReadableStringWithSingular(Array{u"a"}, file, files).utf8(),
            "file a");
  EXPECT_EQ(objectsJoinedAsHumanReadableStringWithSingular(Array{u"a", u"b"}, file, files).utf8(),
            "files a and b");
  EXPECT_EQ(
      objectsJoinedAsHumanReadableStringWithSingular(Array{u"a", u"b", u"c"}, file, files).utf8(),
      "files a, b and c");
  EXPECT_EQ(objectsJoinedAsHumanReadableStringWithSingular(Array::array(), file, files).utf8(),
            "file ");
  EXPECT_EQ(compareLexicographicallyToArray(Array{1, 2}, Array{1, 2, 3}), NSOrderedAscending);
  EXPECT_EQ(compareLexicographicallyToArray(Array{1, 3}, Array{1, 2, 3}), NSOrderedDescending);
  EXPECT_EQ(compareLexicographicallyToArray(Array::array(), Array::array()), NSOrderedSame);
}

TEST(ArrayCopies, DeepCopiesAndConversions) {
  const Array inner{u"x"};
  const Array outer{inner, Dictionary{{u"k", Array{1}}}, u"s"};
  const Array copy = mutableDeepCopy(outer);
  EXPECT_EQ(copy, outer);
  EXPECT_FALSE(copy[0].isIdenticalTo(outer[0]));
  EXPECT_FALSE(copy[1].asDictionary().objectForKey(u"k").isIdenticalTo(
      outer[1].asDictionary().objectForKey(u"k")));
  EXPECT_EQ(orderedSet(Array{2, 1, 2}), (OrderedSet{2, 1}));
  EXPECT_EQ(set(Array{2, 1, 2}), (Set{1, 2}));
}

}  // namespace
}  // namespace tarnvik
