#include "tarnvik/platform/base/index_set.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "support/raised.hpp"

namespace tarnvik {
namespace {

constexpr UInteger kLargest = std::numeric_limits<UInteger>::max();

TEST(IndexSet, MergesTouchingRangesAndSplitsOnRemoval) {
  IndexSet s;
  s.addIndexesInRange({5, 2});
  s.addIndex(3);
  s.addIndex(4);  // touches both neighbours: one range 3..6
  EXPECT_EQ(s.ranges(), (std::vector<Range>{{3, 4}}));
  s.addIndex(9);
  s.removeIndex(4);
  EXPECT_EQ(s.indexes(), (std::vector<UInteger>{3, 5, 6, 9}));
  EXPECT_EQ(s.count(), 4u);
  EXPECT_EQ(s.firstIndex(), 3u);
  EXPECT_EQ(s.lastIndex(), 9u);
  EXPECT_FALSE(s.containsIndex(4));
  EXPECT_TRUE(s.containsIndex(6));
}

TEST(IndexSet, TheLargestIndexesNeverWrapAround) {
  IndexSet s;
  s.addIndex(kLargest);  // what a stored -1 becomes
  s.addIndex(0);
  EXPECT_EQ(s.count(), 2u);
  EXPECT_EQ(s.indexes(), (std::vector<UInteger>{0, kLargest}));
  EXPECT_EQ(s.lastIndex(), kLargest);
  s.addIndexesInRange({kLargest - 2, 2});  // touches the largest index
  EXPECT_EQ(s.ranges(), (std::vector<Range>{{0, 1}, {kLargest - 2, 3}}));
  EXPECT_TRUE(s.containsIndex(kLargest));
  s.removeIndex(kLargest);
  EXPECT_EQ(s.lastIndex(), kLargest - 1);
  EXPECT_EQ(testing::raised([&] {
              s.addIndexesInRange({kLargest, 2});
            }),
            "NSRangeException: IndexSet::addIndexesInRange: Range "
            "{18446744073709551615, 2} exceeds the largest index");
  IndexSet all = IndexSet::indexSetWithIndexesInRange({0, kLargest});
  EXPECT_EQ(all.count(), kLargest);
  EXPECT_EQ(testing::raised([&] { all.addIndex(kLargest); }).substr(0, 17), "NSRangeException:");
}

}  // namespace
}  // namespace tarnvik
