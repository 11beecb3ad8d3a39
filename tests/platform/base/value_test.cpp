#include "tarnvik/platform/base/value.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/raised.hpp"
#include "tarnvik/platform/foundation.hpp"

namespace tarnvik {
namespace {

struct EqualNumbers {
  const char* name;
  Value a;
  Value b;
};

void PrintTo(const EqualNumbers& c, std::ostream* out) { *out << c.name; }

class NumbersAcrossKinds : public ::testing::TestWithParam<EqualNumbers> {};

TEST_P(NumbersAcrossKinds, AreEqualWithEqualHashes) {
  const auto& c = GetParam();
  EXPECT_TRUE(c.a.isEqual(c.b));
  EXPECT_TRUE(c.b.isEqual(c.a));
  EXPECT_EQ(c.a.hash(), c.b.hash());
  EXPECT_EQ(c.a.compare(c.b), NSOrderedSame);
}

INSTANTIATE_TEST_SUITE_P(
    Pairs, NumbersAcrossKinds,
    ::testing::Values(EqualNumbers{"int_double", 3, 3.0}, EqualNumbers{"bool_int", true, 1},
                      EqualNumbers{"unsigned_int", 7u, std::int64_t{7}},
                      EqualNumbers{"negative_zero", -0.0, 0},
                      EqualNumbers{"two_to_63", std::uint64_t{1} << 63, 9223372036854775808.0},
                      EqualNumbers{"int_min", INT64_MIN, -9223372036854775808.0},
                      EqualNumbers{"nan_nan", std::nan(""), std::nan("")}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Value, NumbersThatDifferAreNotEqual) {
  EXPECT_FALSE(Value(INT64_MAX).isEqual(Value(9223372036854775808.0)));
  EXPECT_FALSE(Value(-1).isEqual(Value(UINT64_MAX)));
  EXPECT_FALSE(Value(0).isEqual(Value(0.5)));
  EXPECT_FALSE(Value(2).isEqual(Value(u"2")));
  EXPECT_EQ(Value(-1).compare(Value(UINT64_MAX)), NSOrderedAscending);
  EXPECT_EQ(Value(INT64_MAX).compare(Value(9223372036854775808.0)), NSOrderedAscending);
  EXPECT_EQ(Value(2).compare(Value(1.5)), NSOrderedDescending);
  EXPECT_EQ(Value(-2).compare(Value(-1.5)), NSOrderedAscending);
  EXPECT_EQ(Value(std::nan("")).compare(Value(-1e300)), NSOrderedAscending);
}

TEST(Value, NilNullAndEmptyAreDistinct) {
  const Value nil, null = kNull, empty = String(u"");
  EXPECT_TRUE(nil.isNil());
  EXPECT_TRUE(null.isNull());
  EXPECT_FALSE(nil.isEqual(null));
  EXPECT_FALSE(null.isEqual(empty));
  EXPECT_TRUE(nil.isEqual(Value()));
  EXPECT_TRUE(Value(String()).isNil());  // a nil handle makes a nil value
  EXPECT_TRUE(Value(Array()).isNil());
  EXPECT_EQ(nil.description().utf8(), "(null)");
  EXPECT_EQ(null.description().utf8(), "<null>");
}

TEST(Value, CompareRefusesMixedKinds) {
  EXPECT_EQ(testing::raised([] { Value(1).compare(Value(u"1")); }),
            "NSInvalidArgumentException: Value::compare: cannot compare NSNumber with NSString");
  EXPECT_EQ(Value(u"a").compare(Value(u"b")), NSOrderedAscending);
  EXPECT_EQ(Value(Date{5}).compare(Value(Date{1})), NSOrderedDescending);
}

TEST(Value, CollectionsCompareByContent) {
  EXPECT_TRUE(Value(Array{1, u"a"}).isEqual(Value(Array{1.0, u"a"})));
  EXPECT_FALSE(Value(Array{1, 2}).isEqual(Value(Array{2, 1})));
  const Dictionary d1{{u"a", 1}, {u"b", 2}}, d2{{u"b", 2.0}, {u"a", true}};
  EXPECT_TRUE(Value(d1).isEqual(Value(d2)));
  EXPECT_EQ(Value(d1).hash(), Value(d2).hash());
  EXPECT_EQ(Value(Set{1, 2, 3}).hash(), Value(Set{3, 2, 1}).hash());
  EXPECT_TRUE(Value(Set{1, 2}).isEqual(Value(Set{2, 1})));
  EXPECT_FALSE(Value(OrderedSet{1, 2}).isEqual(Value(OrderedSet{2, 1})));
  EXPECT_FALSE(Value(Array{1}).isEqual(Value(Set{1})));
}

TEST(Value, IdentityFollowsStorage) {
  const String s = u"clip";
  const Value a = s, b = a;
  EXPECT_TRUE(a.isIdenticalTo(b));
  EXPECT_TRUE(a.asString().isIdenticalTo(s));
  const Value copy = a.copy();
  EXPECT_TRUE(copy.isEqual(a));
  EXPECT_FALSE(copy.isIdenticalTo(a));
  EXPECT_TRUE(Value(5).isIdenticalTo(Value(5)));
  EXPECT_FALSE(Value(5).isIdenticalTo(Value(5.0)));
}

TEST(Value, NumericReadingsConvertAndSaturate) {
  EXPECT_EQ(Value(1e300).integerValue(), INT64_MAX);
  EXPECT_EQ(Value(-1e300).intValue(), INT32_MIN);
  EXPECT_EQ(Value(UINT64_MAX).integerValue(), INT64_MAX);
  EXPECT_EQ(Value(UINT64_MAX).unsignedIntegerValue(), UINT64_MAX);
  EXPECT_EQ(Value(std::nan("")).integerValue(), 0);
  EXPECT_EQ(Value(u" 12x").integerValue(), 12);
  EXPECT_TRUE(Value(u"yes").boolValue());
  EXPECT_EQ(Value(Array{1}).integerValue(), 0);
  EXPECT_DOUBLE_EQ(Value(-2.75).doubleValue(), -2.75);
}

TEST(Value, ClassNamesAndKinds) {
  EXPECT_EQ(Value(1).className().utf8(), "NSNumber");
  EXPECT_EQ(Value(Dictionary::dictionary()).className().utf8(), "NSDictionary");
  EXPECT_TRUE(Value(u"x").isKindOfClass(u"NSString"));
  EXPECT_TRUE(Value(u"x").isKindOfClass(u"NSMutableString"));
  EXPECT_TRUE(Value(Array::array()).isKindOfClass(u"NSObject"));
  EXPECT_FALSE(Value(Array::array()).isKindOfClass(u"NSDictionary"));
  EXPECT_FALSE(Value().isKindOfClass(u"NSObject"));
}

struct NumberedClip : Object {
  explicit NumberedClip(int n) : number(n) {}
  TARNVIK_CLASS(NumberedClip)
  bool isEqual(const Object& other) const override {
    const auto* clip = dynamic_cast<const NumberedClip*>(&other);
    return clip && clip->number == number;
  }
  std::size_t hash() const override { return static_cast<std::size_t>(number); }
  int number;
};
TARNVIK_DEFINE_CLASS(NumberedClip, Object, c.property(u"number", &NumberedClip::number))

TEST(Value, ObjectsUseTheirOwnEquality) {
  const Value a = std::make_shared<NumberedClip>(1), b = std::make_shared<NumberedClip>(1);
  EXPECT_TRUE(a.isEqual(b));
  EXPECT_FALSE(a.isIdenticalTo(b));
  EXPECT_EQ(a.asObject<NumberedClip>()->number, 1);
  EXPECT_TRUE(a.isKindOfClass(u"NumberedClip"));
  EXPECT_TRUE(a.description().hasPrefix(u"<NumberedClip: 0x"));
  EXPECT_TRUE(Set({a, b}).count() == 1);
}

}  // namespace
}  // namespace tarnvik
