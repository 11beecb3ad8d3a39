// Index paths, tree nodes and a headless tree controller that arranges model objects (read by
// key-value coding through a children key path) into nodes under one hidden root, and keeps a
// selection of index paths.
//
//   TreeController tree;
//   tree.setChildrenKeyPath(u"children");
//   tree.setContent(Array{Value(folderA), Value(folderB)});
//   tree.setSelectionIndexPaths(Array{Value(IndexPath::withIndexes({1, 0}))});
#pragma once

#include <initializer_list>
#include <memory>
#include <vector>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/object.hpp"

namespace tarnvik {

// An immutable sequence of indexes, one per tree level. Index paths are values: equal paths
// have equal indexes, and they compare level by level (a prefix first).
class IndexPath : public Object {
 public:
  static std::shared_ptr<IndexPath> withIndexes(std::vector<UInteger> indexes);
  static std::shared_ptr<IndexPath> withIndexes(std::initializer_list<UInteger> indexes) {
    return withIndexes(std::vector<UInteger>(indexes));
  }
  UInteger length() const { return indexes_.size(); }
  // NSNotFound beyond the last position.
  UInteger indexAtPosition(UInteger position) const;
  const std::vector<UInteger>& indexes() const { return indexes_; }
  std::shared_ptr<IndexPath> indexPathByAddingIndex(UInteger index) const;
  std::shared_ptr<IndexPath> indexPathByRemovingLastIndex() const;
  ComparisonResult compare(const IndexPath& other) const;
  bool isEqual(const Object& other) const override;
  std::size_t hash() const override;
  // "<IndexPath: 0x...> {length = 2, path = 1 - 0}".
  String description() const override;

  explicit IndexPath(std::vector<UInteger> indexes) : indexes_(std::move(indexes)) {}

 private:
  std::vector<UInteger> indexes_;
  TARNVIK_CLASS(IndexPath)
};
using IndexPathRef = std::shared_ptr<IndexPath>;

class TreeNode : public Object {
 public:
  static std::shared_ptr<TreeNode> treeNodeWithRepresentedObject(const Value& object);
  const Value& representedObject() const { return object_; }
  std::shared_ptr<TreeNode> parentNode() const { return parent_.lock(); }
  const std::vector<std::shared_ptr<TreeNode>>& childNodes() const { return children_; }
  // The child nodes as an Array of nodes.
  Array childNodesArray() const;
  // A leaf has no children unless the controller's leaf key path says otherwise.
  bool isLeaf() const { return leaf_; }
  void setLeaf(bool leaf) { leaf_ = leaf; }
  // The position from the root: empty for the root itself.
  IndexPathRef indexPath() const;
  // The node at the path below this one; nil when the path leaves the tree.
  std::shared_ptr<TreeNode> descendantNodeAtIndexPath(const IndexPath& path) const;
  void insertChild(const std::shared_ptr<TreeNode>& child, UInteger index);
  void removeAllChildren();

 private:
  Value object_;
  std::weak_ptr<TreeNode> parent_;
  std::vector<std::shared_ptr<TreeNode>> children_;
  bool leaf_ = true;
  TARNVIK_CLASS(TreeNode)
};

class TreeController : public Object {
 public:
  TreeController();
  // The model objects at the top level.
  const Array& content() const { return content_; }
  void setContent(const Array& content);
  const String& childrenKeyPath() const { return childrenKeyPath_; }
  void setChildrenKeyPath(const String& keyPath);
  // A key path whose boolValue marks leaves; nil: a node without children is a leaf.
  const String& leafKeyPath() const { return leafKeyPath_; }
  void setLeafKeyPath(const String& keyPath);
  // Rebuilds the nodes from the model objects (after the model changed behind the
  // controller's back).
  void rearrangeObjects();

  // The hidden root node, whose children are the nodes of the top-level objects.
  const std::shared_ptr<TreeNode>& arrangedObjects() const { return root_; }
  // The selected index paths, sorted; an Array of IndexPath.
  Array selectionIndexPaths() const;
  // Selects the paths that lead to nodes (others are dropped); YES when the selection changed.
  bool setSelectionIndexPaths(const Array& indexPaths);
  bool removeSelectionIndexPaths(const Array& indexPaths);
  // The nodes of the selection, in path order.
  std::vector<std::shared_ptr<TreeNode>> selectedNodes() const;
  // Inserts a model object at the path: into the content for a one-index path, else into the
  // children (an Array under the children key path) of the parent's model object.
  void insertObject(const Value& object, const IndexPath& path);

 private:
  void build(const std::shared_ptr<TreeNode>& node, const Array& objects, int depth);
  Array content_ = Array::array();
  String childrenKeyPath_;
  String leafKeyPath_;
  std::shared_ptr<TreeNode> root_;
  std::vector<IndexPathRef> selection_;
  TARNVIK_CLASS(TreeController)
};

}  // namespace tarnvik
