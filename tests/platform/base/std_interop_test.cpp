// The handles meet the standard library without conversion code.
#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <map>
#include <ranges>
#include <string>
#include <string_view>
#include <vector>

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/dictionary.hpp"
#include "tarnvik/platform/base/set.hpp"

namespace tarnvik {
namespace {

static_assert(std::ranges::random_access_range<Array>);
static_assert(std::ranges::sized_range<Array>);
static_assert(std::ranges::random_access_range<Set>);
static_assert(std::ranges::sized_range<Dictionary>);

TEST(StdInterop, StringsFromAndToStandardText) {
  const std::string_view utf8 = "Grüße A001C009.mov";
  EXPECT_EQ(String(utf8).length(), 18u);
  EXPECT_EQ(String(utf8).toStdString(), utf8);
  EXPECT_EQ(String(std::u16string_view(u"clip")).toStdString(), "clip");
  EXPECT_EQ(String(std::string_view("bad \xFF byte")).toStdString(), "bad \uFFFD byte");
}

TEST(StdInterop, StringsOrderByTheirUnits) {
  // Literal UTF-16 order: upper case before lower case, "B" before "a", shorter first.
  std::vector<String> names{u"b", u"a", u"B", u"ab", u"", String()};
  std::sort(names.begin(), names.end());
  EXPECT_TRUE(names[0].isNil()) << "nil before empty, as == keeps them apart";
  EXPECT_FALSE(names[1].isNil());
  EXPECT_TRUE(names[1].isEmpty());
  EXPECT_EQ(names[2], String(u"B"));
  EXPECT_EQ(names[3], String(u"a"));
  EXPECT_EQ(names[4], String(u"ab"));
  EXPECT_EQ(names[5], String(u"b"));
  EXPECT_EQ(String() <=> String(), std::strong_ordering::equal);
  EXPECT_EQ(String(u"x") <=> String(u"x"), std::strong_ordering::equal);

  std::map<String, int> takes{{u"A001C009", 3}, {u"A001C002", 1}};
  EXPECT_EQ(takes.begin()->first, String(u"A001C002"));
}

TEST(StdInterop, ValuesFromStandardTypes) {
  const std::string text = "reel";
  EXPECT_EQ(Value(text).asString(), String(u"reel"));
  EXPECT_EQ(Value(std::string_view("reel")).asString(), String(u"reel"));
  EXPECT_EQ(Value(std::u16string(u"reel")).asString(), String(u"reel"));
  EXPECT_EQ(Value(static_cast<short>(-3)).integerValue(), -3);
  EXPECT_EQ(Value(static_cast<unsigned char>(200)).integerValue(), 200);
  EXPECT_EQ(Value(25.0L).doubleValue(), 25.0);
  EXPECT_TRUE(Value(2).isEqual(Value(2.0)));
}

TEST(StdInterop, CollectionsFromRangesAndBack) {
  const std::vector<std::string> files{"A001C002.mov", "A001C001.mov", "A001C002.mov"};
  const Array array(files);
  EXPECT_EQ(array, (Array{u"A001C002.mov", u"A001C001.mov", u"A001C002.mov"}));
  EXPECT_EQ(array.toVector<std::string>(), files);
  EXPECT_EQ(Set(files).count(), 2u);
  EXPECT_EQ(OrderedSet(std::list<int>{3, 1, 3}), (OrderedSet{3, 1}));
  EXPECT_EQ(Array(std::views::iota(1, 4)).toVector<int>(), (std::vector<int>{1, 2, 3}));
  EXPECT_EQ((Array{1.5, 2}).toVector<double>(), (std::vector<double>{1.5, 2.0}));
  EXPECT_TRUE(Array(std::vector<int>{}).isEmpty());
  EXPECT_FALSE(Array(std::vector<int>{}).isNil());
  EXPECT_TRUE(Array{}.isNil()) << "empty braces pick the default constructor";

  const std::map<std::string, int> fps{{"A001", 25}, {"B002", 24}};
  const Dictionary byReel(fps);
  EXPECT_EQ(byReel.objectForKey(u"B002").intValue(), 24);
  EXPECT_EQ(byReel.size(), 2u);
  std::vector<std::string> keys;
  for (const auto& [key, value] : byReel) keys.push_back(key.asString().toStdString());
  EXPECT_EQ(keys, (std::vector<std::string>{"A001", "B002"}));
}

}  // namespace
}  // namespace tarnvik
