#include "tarnvik/text/sequence_order.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tarnvik/platform/base/array.hpp"

namespace tarnvik {
namespace {

TEST(SequenceOrder, ExtensionFirstThenNumbersByValue) {
  EXPECT_EQ(compareForSequence(u"b.mov", u"a.mxf"), NSOrderedAscending);
  EXPECT_EQ(compareForSequence(u"clip2.mov", u"clip10.mov"), NSOrderedAscending);
  EXPECT_EQ(compareForSequence(u"Clip2.mov", u"clip2.mov"),
            NSOrderedAscending);  // forced, never same
  EXPECT_EQ(compareForSequence(u"clip2.mov", u"clip2.mov"), NSOrderedSame);
  EXPECT_EQ(compareForSequence(u"clip02.mov", u"clip2.mov"), NSOrderedAscending);
  EXPECT_EQ(compareForSequence(u"ＣＬＩＰ3.mov", u"clip10.mov"),
            NSOrderedAscending);  // width folded
  EXPECT_EQ(caseInsensitiveNumericalCompare(u"Clip2", u"clip02"), NSOrderedSame);
  EXPECT_EQ(caseInsensitiveNumericalCompare(u"clip9", u"clip10"), NSOrderedAscending);
}

TEST(SequenceOrder, SortsARealisticReel) {
  std::vector<String> names{u"A001C010.mov", u"A001C002.mov", u"clip10.mov", u"Take B.mov",
                            u"clip9.mov",    u"Reel_10.mxf",  u"Reel_9.mxf", u"A001C001.mov"};
  std::sort(names.begin(), names.end(), [](const String& a, const String& b) {
    return compareForSequence(a, b) == NSOrderedAscending;
  });
  std::vector<std::string> sorted;
  for (const String& n : names) sorted.push_back(n.utf8());
  EXPECT_EQ(sorted,
            (std::vector<std::string>{"A001C001.mov", "A001C002.mov", "A001C010.mov", "clip9.mov",
                                      "clip10.mov", "Take B.mov", "Reel_9.mxf", "Reel_10.mxf"}));
}

TEST(SequenceOrder, KeyedSortAgreesWithTheComparator) {
  // Mixed forms with case variants, leading zeros, long digit runs and duplicates; once in
  // printable ASCII (the keyed path) and once with a non-ASCII name (the comparator path).
  std::mt19937 random(3);
  const char16_t* stems[] = {u"A001C", u"a001c", u"clip", u"Clip", u"Reel_", u"Take ", u"x", u""};
  const char16_t* extensions[] = {u".mov", u".MOV", u".mxf", u"", u".tar.gz", u"."};
  for (const char16_t* extra : {u"plain", u"caf\u00E9.mov"}) {
    std::vector<String> names{String(extra)};
    for (int i = 0; i < 3000; ++i) {
      String name = stems[random() % 8];
      const int digits = static_cast<int>(random() % 4);
      for (int d = 0; d < digits; ++d)
        name.appendString(String(std::to_string(random() % (d == 2 ? 100000 : 12))));
      if (random() % 50 == 0) name.appendString(u"123456789012345678901234567890");
      name.appendString(extensions[random() % 6]);
      names.push_back(name);
    }
    std::vector<std::u16string_view> views;
    for (const String& n : names) views.push_back(n.units());
    using Order = std::vector<std::size_t> (*)(std::span<const std::u16string_view>);
    using Compare = ComparisonResult (*)(const String&, const String&);
    const std::pair<Order, Compare> orders[] = {
        {sequenceOrder, compareForSequence}, {fileNameSequenceOrder, compareFileNamesForSequence}};
    for (const auto& [order, compare] : orders) {
      std::vector<String> keyed;
      for (const std::size_t i : order(views)) keyed.push_back(names[i]);
      std::vector<String> expected = names;
      std::sort(expected.begin(), expected.end(), [compare](const String& a, const String& b) {
        return compare(a, b) == NSOrderedAscending;
      });
      ASSERT_EQ(keyed.size(), expected.size());
      for (std::size_t i = 0; i < keyed.size(); ++i) {
        ASSERT_EQ(keyed[i], expected[i]) << "at " << i;
      }
    }
  }
  EXPECT_TRUE(sequenceOrder({}).empty());
  EXPECT_TRUE(fileNameSequenceOrder({}).empty());
}

TEST(FileNameSequenceOrder, ByNameThenExtensionWhateverItsCase) {
  std::vector<String> names{u"clip10.mov", u"clip2.MOV",   u"clip10.MXF",   u"Clip",
                            u"clip10.MOV", u"clip.mov",    u"A001C010.mov", u"a001c009.MOV",
                            u".profile",   u"clip1.tar.gz"};
  std::sort(names.begin(), names.end(), [](const String& a, const String& b) {
    return compareFileNamesForSequence(a, b) == NSOrderedAscending;
  });
  std::vector<std::string> sorted;
  for (const String& n : names) sorted.push_back(n.utf8());
  // The sequence order would put every .MOV before every .mov; here the names lead.
  EXPECT_EQ(sorted, (std::vector<std::string>{".profile", "a001c009.MOV", "A001C010.mov", "Clip",
                                              "clip.mov", "clip1.tar.gz", "clip2.MOV", "clip10.MOV",
                                              "clip10.mov", "clip10.MXF"}));
  EXPECT_EQ(compareFileNamesForSequence(u"clip.mov", u"clip.mov"), NSOrderedSame);
  EXPECT_EQ(compareForSequence(u"clip2.MOV", u"clip10.mov"), NSOrderedAscending);
  EXPECT_EQ(compareForSequence(u"clip10.MOV", u"clip2.mov"), NSOrderedAscending);
  EXPECT_EQ(compareFileNamesForSequence(u"clip10.MOV", u"clip2.mov"), NSOrderedDescending);
}

}  // namespace
}  // namespace tarnvik
