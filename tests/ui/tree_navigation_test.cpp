#include "tarnvik/ui/tree_navigation.hpp"

#include <gtest/gtest.h>

#include "support/raised.hpp"
#include "tarnvik/platform/base/key_value_coding.hpp"

namespace tarnvik {
namespace {

// A folder of the model: a name, children, and its flattened subtree as "descendants".
struct Folder : Object {
  String name;
  Array children = Array::array();
  bool isLeaf() const { return children.count() == 0; }
  Array descendants() const {
    Array all = Array::array();
    for (const Value& c : children) {
      all.addObject(c);
      all.addObjectsFromArray(c.asObject<Folder>()->descendants());
    }
    return all;
  }
  bool isEqual(const Object& other) const override {
    const auto* f = dynamic_cast<const Folder*>(&other);
    return f && f->name == name;
  }
  std::size_t hash() const override { return name.hash(); }
  TARNVIK_CLASS(Folder)
};
TARNVIK_DEFINE_CLASS(Folder, Object,
                     c.property(u"name", &Folder::name)
                         .property(u"children", &Folder::children)
                         .method(u"isLeaf", &Folder::isLeaf)
                         .method(u"descendants", &Folder::descendants))

std::shared_ptr<Folder> folder(const char16_t* name,
                               std::vector<std::shared_ptr<Folder>> kids = {}) {
  auto f = std::make_shared<Folder>();
  f->name = name;
  for (auto& k : kids) f->children.addObject(Value(k));
  return f;
}

std::string path(const IndexPathRef& p) {
  if (!p) return "nil";
  std::string out;
  for (UInteger i : p->indexes()) out += (out.empty() ? "" : ".") + std::to_string(i);
  return "[" + out + "]";
}

std::string names(const Array& items) {
  std::string out;
  for (const Value& v : items) {
    const auto node = v.asObject<TreeNode>();
    out += valueForKey(node ? node->representedObject() : v, u"name").asString().utf8() + " ";
  }
  return out;
}

class TreeNavigationTest : public ::testing::Test {
 protected:
  void SetUp() override {
    // day1 { a001 { take1, take2 }, a002 }, day2, day3 { b001 { c { deep } } }
    day1 =
        folder(u"day1", {folder(u"a001", {folder(u"take1"), folder(u"take2")}), folder(u"a002")});
    day3 = folder(u"day3", {folder(u"b001", {folder(u"c", {folder(u"deep")})})});
    tree.setChildrenKeyPath(u"children");
    tree.setLeafKeyPath(u"isLeaf");
    tree.setContent(Array{Value(day1), Value(folder(u"day2")), Value(day3)});
  }
  IndexPathRef at(std::initializer_list<UInteger> i) { return IndexPath::withIndexes(i); }
  TreeController tree;
  std::shared_ptr<Folder> day1, day3;
};

TEST_F(TreeNavigationTest, IndexPathArithmetic) {
  const auto p = at({2, 1});
  EXPECT_EQ(path(indexPathByPrependingIndex(*p, 7)), "[7.2.1]");
  EXPECT_EQ(firstIndex(*p), 2u);
  EXPECT_EQ(lastIndex(*p), 1u);
  EXPECT_EQ(lastIndex(*at({})), NSNotFound);
  EXPECT_EQ(path(indexPathByIncrementingLastIndex(*p)), "[2.2]");
  EXPECT_EQ(path(indexPathByReplacingIndexAtPosition(*p, 0, 9)), "[9.1]");
  EXPECT_EQ(testing::raised([&] { indexPathByReplacingIndexAtPosition(*p, 2, 0); }),
            "Invalid index value: index of 2 is invalid");
}

TEST_F(TreeNavigationTest, NodesRelationsAndInsertionPlaces) {
  const auto a001 = nodeAtIndexPath(tree, *at({0, 0}));
  const auto take2 = nodeAtIndexPath(tree, *at({0, 0, 1}));
  const auto deep = nodeAtIndexPath(tree, *at({2, 0, 0, 0}));
  ASSERT_TRUE(deep);
  EXPECT_EQ(names(descendants(nodeAtIndexPath(tree, *at({0})))), "a001 take1 take2 a002 ");
  EXPECT_EQ(names(groupDescendants(nodeAtIndexPath(tree, *at({2})))), "b001 c ");
  EXPECT_EQ(names(leafDescendants(nodeAtIndexPath(tree, *at({0})))), "take1 take2 a002 ");
  EXPECT_EQ(names(siblings(a001)), "a001 a002 ");
  EXPECT_TRUE(isDescendantOfNode(deep, nodeAtIndexPath(tree, *at({2}))));
  EXPECT_FALSE(isDescendantOfNode(deep, a001));
  EXPECT_TRUE(isSiblingOfOrDescendantOfNode(take2, a001));
  EXPECT_TRUE(isSiblingOfNode(nodeAtIndexPath(tree, *at({0})), nodeAtIndexPath(tree, *at({2}))));
  EXPECT_EQ(path(adjacentIndexPath(take2)), "[0.0.2]");
  EXPECT_EQ(path(nextSiblingIndexPath(nodeAtIndexPath(tree, *at({0, 0, 0})))), "[0.0.2]");
  EXPECT_EQ(path(nextChildIndexPath(a001)), "[0.0.2]");
  EXPECT_EQ(path(nextChildIndexPath(take2)), "[0.0.2]");
  EXPECT_EQ(names(Array{Value(nextSiblingOfNode(tree, a001))}), "a002 ");
  EXPECT_EQ(nextSiblingOfNodeAtIndexPath(tree, *at({0, 1})), nullptr);

  EXPECT_EQ(path(indexPathForInsertion(tree)), "[3]");  // nothing selected: at the end
  tree.setSelectionIndexPaths(Array{Value(at({0, 0, 1}))});
  EXPECT_EQ(path(indexPathForInsertion(tree)), "[0.0.2]");  // a leaf: right after it
  tree.setSelectionIndexPaths(Array{Value(at({2, 0}))});
  EXPECT_EQ(path(indexPathForInsertion(tree)), "[2.0.0]");  // a group: its first child slot
  tree.setSelectionIndexPaths(Array{Value(at({0, 1})), Value(at({2, 0, 0}))});
  EXPECT_EQ(path(indexPathForInsertion(tree)), "[2.0.1]");  // several: after the last
  selectParentFromSelection(tree);
  EXPECT_EQ(names(Array{Value(tree.selectedNodes().front())}), "day1 ");
  selectParentFromSelection(tree);  // a top-level node's parent is the hidden root
  EXPECT_EQ(tree.selectedNodes().size(), 0u);

  TreeController empty;
  EXPECT_EQ(path(indexPathForInsertion(empty)), "[0]");
  tree.insertObject(Value(folder(u"a003")), *indexPathForInsertion(tree));
  EXPECT_EQ(names(rootNodes(tree)), "day1 day2 day3 a003 ");
}

TEST_F(TreeNavigationTest, FlatteningFindingAndSelectingByObjects) {
  EXPECT_EQ(names(flattenedContent(tree)), "day1 a001 take1 take2 a002 day2 day3 b001 c deep ");
  EXPECT_EQ(names(flattenedNodes(tree)), "day1 a001 take1 take2 a002 day2 day3 b001 c deep ");
  const auto deep = day3->descendants().lastObject();
  EXPECT_EQ(names(Array{Value(treeNodeForObject(tree, deep))}), "deep ");
  EXPECT_EQ(treeNodeForObject(tree, Value(folder(u"deep"))), nullptr);  // equal is not enough
  EXPECT_EQ(path(indexPathOfObject(tree, Value(folder(u"deep")))), "[2.0.0.0]");
  EXPECT_EQ(indexPathOfObject(tree, Value(folder(u"nowhere"))), nullptr);

  EXPECT_TRUE(setSelectedObjects(
      tree, Array{Value(folder(u"take2")), Value(folder(u"nowhere")), Value(folder(u"day2"))}));
  EXPECT_EQ(names(tree.selectionIndexPaths().count() == 2
                      ? Array{Value(tree.selectedNodes()[0]), Value(tree.selectedNodes()[1])}
                      : Array::array()),
            "take2 day2 ");
  selectNone(tree);
  EXPECT_EQ(tree.selectionIndexPaths().count(), 0u);
}

}  // namespace
}  // namespace tarnvik
