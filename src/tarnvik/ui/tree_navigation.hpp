// Index-path arithmetic, tree-node relations and tree-controller navigation: where a new item
// goes, finding the nodes of model objects, flattening the tree, selecting by objects.
//
//   auto where = indexPathForInsertion(tree);  // after the selection, or at the end
//   tree.insertObject(Value(newFolder), *where);
#pragma once

#include "tarnvik/platform/ui/tree_controller.hpp"

namespace tarnvik {

using TreeNodeRef = std::shared_ptr<TreeNode>;

IndexPathRef indexPathByPrependingIndex(const IndexPath& path, UInteger index);
// NSNotFound for an empty path.
UInteger firstIndex(const IndexPath& path);
UInteger lastIndex(const IndexPath& path);
IndexPathRef indexPathByIncrementingLastIndex(const IndexPath& path);
// An exception named "Invalid index value" ("index of <position> is invalid") for a position
// beyond the last.
IndexPathRef indexPathByReplacingIndexAtPosition(const IndexPath& path, UInteger position,
                                                 UInteger index);

// Depth first, each child followed by its own descendants.
Array descendants(const TreeNodeRef& node);
Array groupDescendants(const TreeNodeRef& node);
Array leafDescendants(const TreeNodeRef& node);
// The parent's children, the node included.
Array siblings(const TreeNodeRef& node);
bool isDescendantOfNode(const TreeNodeRef& node, const TreeNodeRef& other);
bool isSiblingOfNode(const TreeNodeRef& node, const TreeNodeRef& other);
bool isSiblingOfOrDescendantOfNode(const TreeNodeRef& node, const TreeNodeRef& other);
// Right after the node.
IndexPathRef adjacentIndexPath(const TreeNodeRef& node);
// After the node's last sibling.
IndexPathRef nextSiblingIndexPath(const TreeNodeRef& node);
// After the node's last child; for a leaf, after its last sibling.
IndexPathRef nextChildIndexPath(const TreeNodeRef& node);

Array rootNodes(const TreeController& tree);
TreeNodeRef nodeAtIndexPath(const TreeController& tree, const IndexPath& path);
void selectNone(TreeController& tree);
void selectParentFromSelection(TreeController& tree);
TreeNodeRef nextSiblingOfNodeAtIndexPath(const TreeController& tree, const IndexPath& path);
TreeNodeRef nextSiblingOfNode(const TreeController& tree, const TreeNodeRef& node);
IndexPathRef indexPathForInsertion(const TreeController& tree);
// The top-level content objects (or root nodes), each followed by its value for
// "descendants" unless its leaf key path says it is a leaf.
Array flattenedContent(const TreeController& tree);
Array flattenedNodes(const TreeController& tree);
// The node representing this very object (identity), or nil.
TreeNodeRef treeNodeForObject(const TreeController& tree, const Value& object);
// The path of the first node, depth first, whose object isEqual to the given one; nil when
// none.
IndexPathRef indexPathOfObject(const TreeController& tree, const Value& object);
IndexPathRef indexPathOfObject(const TreeController& tree, const Value& object, const Array& nodes);
bool setSelectedObjects(TreeController& tree, const Array& objects);

}  // namespace tarnvik
