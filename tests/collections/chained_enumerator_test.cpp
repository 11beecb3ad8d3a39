#include "tarnvik/collections/chained_enumerator.hpp"

#include <gtest/gtest.h>

namespace tarnvik {
namespace {

std::vector<Value> drain(Enumerator& e, int calls) {
  std::vector<Value> seen;
  for (int i = 0; i < calls; ++i) seen.push_back(e.nextObject());
  return seen;
}

TEST(ChainedEnumerator, WalksTheChainInOrder) {
  KUChainedEnumerator chain(
      {objectEnumerator(Array{u"a1", u"a2"}), objectEnumerator(Array{u"b1"})});
  EXPECT_EQ(drain(chain, 4), (std::vector<Value>{u"a1", u"a2", u"b1", Value()}));
  KUChainedEnumerator skipsOne({objectEnumerator(Array::array()), objectEnumerator(Array{u"b1"})});
  EXPECT_EQ(skipsOne.nextObject(), Value(u"b1"));
}

TEST(ChainedEnumerator, TwoEmptyEnumeratorsStopOneCallEarly) {
  KUChainedEnumerator chain({objectEnumerator(Array::array()), objectEnumerator(Array::array()),
                             objectEnumerator(Array{u"c1"})});
  EXPECT_TRUE(chain.nextObject().isNil());
  EXPECT_EQ(chain.currentPos(), 1u);
  EXPECT_EQ(chain.nextObject(), Value(u"c1"));
  EXPECT_TRUE(chain.nextObject().isNil());
}

TEST(ChainedEnumerator, AllObjectsAndEmptyChains) {
  KUChainedEnumerator chain(
      {objectEnumerator(Array{u"a1"}), objectEnumerator(Array{u"b1", u"b2"})});
  EXPECT_EQ(chain.allObjects(), (Array{u"a1", u"b1", u"b2"}));
  EXPECT_TRUE(chain.nextObject().isNil());  // allObjects handed everything out
  KUChainedEnumerator empty({});
  EXPECT_TRUE(empty.nextObject().isNil());
  EXPECT_EQ(empty.allObjects(), Array::array());
  EXPECT_TRUE(Value(std::make_shared<KUChainedEnumerator>(KUChainedEnumerator::Enumerators{}))
                  .isKindOfClass(u"Enumerator"));
}

}  // namespace
}  // namespace tarnvik
