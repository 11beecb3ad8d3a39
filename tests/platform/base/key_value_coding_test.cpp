#include "tarnvik/platform/base/key_value_coding.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/domain.hpp"
#include "support/raised.hpp"
#include "tarnvik/platform/foundation.hpp"

namespace tarnvik {
namespace {

using testing::Clip;
using testing::clip;

TEST(KeyValueCoding, ObjectsDictionariesAndArrays) {
  const Value a = clip(u"A001", 24, true);
  EXPECT_EQ(valueForKey(a, u"name").asString().utf8(), "A001");
  EXPECT_EQ(valueForKey(a, u"frames").integerValue(), 24);
  EXPECT_EQ(valueForKey(a, u"title").asString().utf8(), "A001");  // a method answers too
  setValueForKey(a, Value(48), u"frames");
  EXPECT_EQ(a.asObject<Clip>()->frames, 48);
  const Dictionary d{{u"reel", u"R1"}, {u"clip", a}};
  EXPECT_EQ(valueForKey(d, u"reel").asString().utf8(), "R1");
  EXPECT_TRUE(valueForKey(d, u"missing").isNil());
  EXPECT_EQ(valueForKeyPath(d, u"clip.name").asString().utf8(), "A001");
  EXPECT_TRUE(valueForKeyPath(d, u"missing.name").isNil());
  const Array clips{a, clip(u"B", 1), Dictionary{{u"name", u"dict"}}, Dictionary::dictionary()};
  EXPECT_EQ(valueForKey(clips, u"name"), (Array{u"A001", u"B", u"dict", kNull}));
  EXPECT_EQ(valueForKey(Value(u"abc"), u"length").integerValue(), 3);
  EXPECT_THROW(valueForKey(Array{1, 2}, u"count"), Exception);  // an array asks its elements
  Dictionary editable;
  setValueForKey(editable, Value(u"v"), u"k");
  EXPECT_EQ(editable.count(), 1u);
}

TEST(KeyValueCoding, UnknownKeysRaise) {
  for (const Value& target : {clip(u"A", 1), Value(u"text"), Value(3)}) {
    EXPECT_THAT(testing::raised([&] { valueForKey(target, u"colour"); }),
                ::testing::AllOf(::testing::StartsWith("NSUnknownKeyException: "),
                                 ::testing::EndsWith("this class is not key value "
                                                     "coding-compliant for the key colour.")));
  }
  EXPECT_THROW(setValueForKey(clip(u"A", 1), Value(1), u"title"), Exception);  // read-only
  EXPECT_TRUE(valueForKey(Value(), u"anything").isNil());
}

TEST(KeyValueCoding, MethodsByNameAndClasses) {
  const Value a = clip(u"A", 1, true);
  EXPECT_TRUE(respondsToSelector(a, u"isSelected"));
  EXPECT_EQ(methodNamed(a, u"isSelected")->returns, ReturnKind::Bool);
  EXPECT_FALSE(respondsToSelector(a, u"fly"));
  EXPECT_THROW(performSelector(a, u"fly"), Exception);
  const Value still = Value(std::make_shared<testing::StillClip>(String(u"S"), 1, false));
  EXPECT_TRUE(still.isKindOfClass(u"Clip"));
  EXPECT_TRUE(still.isKindOfClass(u"NSObject"));
  EXPECT_FALSE(a.isKindOfClass(u"StillClip"));
  EXPECT_EQ(valueForKey(still, u"name").asString().utf8(), "S");  // inherited property
  EXPECT_NE(ClassRegistry::classNamed(u"StillClip"), nullptr);
  EXPECT_EQ(ClassRegistry::classNamed(u"StillClip")->superclass(),
            ClassRegistry::classNamed(u"Clip"));
}

TEST(IndexSet, RangesMergeAndSplit) {
  IndexSet s;
  s.addIndex(5);
  s.addIndexesInRange({1, 3});
  s.addIndex(4);  // joins 1-3 and 5
  EXPECT_EQ(s.ranges().size(), 1u);
  EXPECT_EQ(s.count(), 5u);
  s.removeIndex(3);
  EXPECT_EQ(s.indexes(), (std::vector<UInteger>{1, 2, 4, 5}));
  EXPECT_TRUE(s.containsIndex(4));
  EXPECT_FALSE(s.containsIndex(3));
  EXPECT_EQ(s.firstIndex(), 1u);
  EXPECT_EQ(s.lastIndex(), 5u);
  EXPECT_EQ(IndexSet().firstIndex(), NSNotFound);
}

TEST(SortDescriptors, StableByKeyWithNilFirst) {
  const Array clips{clip(u"b", 2), clip(u"a", 2), clip(u"c", 1), Dictionary{{u"x", 1}}};
  const Array byFrames = sortedArrayUsingDescriptors(clips, {SortDescriptor(u"frames", true)});
  EXPECT_EQ(valueForKey(byFrames, u"name"), (Array{kNull, u"c", u"b", u"a"}));
  const Array descending = sortedArrayUsingDescriptors(
      clips, {SortDescriptor(u"frames", false), SortDescriptor(u"name", true)});
  EXPECT_EQ(valueForKey(descending, u"name"), (Array{u"a", u"b", u"c", kNull}));
}

}  // namespace
}  // namespace tarnvik
