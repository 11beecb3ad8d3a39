#include "tarnvik/ui/tree_navigation.hpp"

#include "tarnvik/collections/arrays.hpp"
#include "tarnvik/platform/base/key_value_coding.hpp"
#include "tarnvik/platform/text/format.hpp"

namespace tarnvik {
namespace {

void walk(const TreeNodeRef& node, Array& into, bool groups, bool leaves) {
  for (const auto& child : node->childNodes()) {
    if (child->isLeaf()) {
      if (leaves) into.addObject(Value(child));
      continue;
    }
    if (groups) into.addObject(Value(child));
    walk(child, into, groups, leaves);
  }
}

Array flattened(const TreeController& tree, const Array& elements) {
  Array flat = Array::array();
  for (const Value& element : elements) {
    flat.addObject(element);
    // Without a leaf key path nothing counts as a leaf here.
    const Value leaf =
        tree.leafKeyPath().isNil() ? Value() : valueForKeyPath(element, tree.leafKeyPath());
    if (leaf.boolValue()) continue;
    const auto node = element.asObject<TreeNode>();
    const Array below = node ? descendants(node) : valueForKey(element, u"descendants").asArray();
    if (!below.isNil()) flat.addObjectsFromArray(below);
  }
  return flat;
}

}  // namespace

IndexPathRef indexPathByPrependingIndex(const IndexPath& path, UInteger index) {
  std::vector<UInteger> indexes{index};
  indexes.insert(indexes.end(), path.indexes().begin(), path.indexes().end());
  return IndexPath::withIndexes(std::move(indexes));
}

UInteger firstIndex(const IndexPath& path) { return path.indexAtPosition(0); }

UInteger lastIndex(const IndexPath& path) {
  return path.length() == 0 ? NSNotFound : path.indexAtPosition(path.length() - 1);
}

IndexPathRef indexPathByIncrementingLastIndex(const IndexPath& path) {
  if (path.length() == 0) return IndexPath::withIndexes({});
  return indexPathByReplacingIndexAtPosition(path, path.length() - 1, lastIndex(path) + 1);
}

IndexPathRef indexPathByReplacingIndexAtPosition(const IndexPath& path, UInteger position,
                                                 UInteger index) {
  if (position >= path.length()) {
    throw Exception(u"Invalid index value", stringWithFormat(u"index of %lu is invalid", position));
  }
  auto indexes = path.indexes();
  indexes[position] = index;
  return IndexPath::withIndexes(std::move(indexes));
}

Array descendants(const TreeNodeRef& node) {
  Array all = Array::array();
  walk(node, all, true, true);
  return all;
}

Array groupDescendants(const TreeNodeRef& node) {
  Array groups = Array::array();
  walk(node, groups, true, false);
  return groups;
}

Array leafDescendants(const TreeNodeRef& node) {
  Array leaves = Array::array();
  walk(node, leaves, false, true);
  return leaves;
}

Array siblings(const TreeNodeRef& node) {
  const auto parent = node->parentNode();
  return parent ? parent->childNodesArray() : Array();
}

bool isDescendantOfNode(const TreeNodeRef& node, const TreeNodeRef& other) {
  return other && descendants(other).containsObject(Value(node));
}

bool isSiblingOfNode(const TreeNodeRef& node, const TreeNodeRef& other) {
  return other && node->parentNode() == other->parentNode();
}

bool isSiblingOfOrDescendantOfNode(const TreeNodeRef& node, const TreeNodeRef& other) {
  return isSiblingOfNode(node, other) || isDescendantOfNode(node, other);
}

IndexPathRef adjacentIndexPath(const TreeNodeRef& node) {
  return indexPathByIncrementingLastIndex(*node->indexPath());
}

IndexPathRef nextSiblingIndexPath(const TreeNodeRef& node) {
  const auto parent = node->parentNode();
  if (!parent) return adjacentIndexPath(node);
  return parent->indexPath()->indexPathByAddingIndex(parent->childNodes().size());
}

IndexPathRef nextChildIndexPath(const TreeNodeRef& node) {
  if (node->isLeaf()) return nextSiblingIndexPath(node);
  return node->indexPath()->indexPathByAddingIndex(node->childNodes().size());
}

Array rootNodes(const TreeController& tree) { return tree.arrangedObjects()->childNodesArray(); }

TreeNodeRef nodeAtIndexPath(const TreeController& tree, const IndexPath& path) {
  return tree.arrangedObjects()->descendantNodeAtIndexPath(path);
}

void selectNone(TreeController& tree) {
  tree.removeSelectionIndexPaths(tree.selectionIndexPaths());
}

void selectParentFromSelection(TreeController& tree) {
  const auto selected = tree.selectedNodes();
  if (selected.empty()) return;
  const auto parent = selected.front()->parentNode();
  // The hidden root is no one's parent as far as the user is concerned.
  if (parent && parent != tree.arrangedObjects())
    tree.setSelectionIndexPaths(Array{Value(parent->indexPath())});
  else
    selectNone(tree);
}

TreeNodeRef nextSiblingOfNodeAtIndexPath(const TreeController& tree, const IndexPath& path) {
  if (path.length() == 0) return nullptr;
  return nodeAtIndexPath(tree, *indexPathByIncrementingLastIndex(path));
}

TreeNodeRef nextSiblingOfNode(const TreeController& tree, const TreeNodeRef& node) {
  return nextSiblingOfNodeAtIndexPath(tree, *node->indexPath());
}

IndexPathRef indexPathForInsertion(const TreeController& tree) {
  const UInteger roots = tree.arrangedObjects()->childNodes().size();
  const auto selected = tree.selectedNodes();
  if (selected.empty()) return IndexPath::withIndexes({roots});
  if (selected.size() > 1) return adjacentIndexPath(selected.back());
  const auto& node = selected.front();
  if (node->isLeaf()) {
    const auto parent = node->parentNode();
    if (!parent) return IndexPath::withIndexes({roots});
    return adjacentIndexPath(node);
  }
  return node->indexPath()->indexPathByAddingIndex(0);
}

Array flattenedContent(const TreeController& tree) { return flattened(tree, tree.content()); }

Array flattenedNodes(const TreeController& tree) { return flattened(tree, rootNodes(tree)); }

TreeNodeRef treeNodeForObject(const TreeController& tree, const Value& object) {
  for (const Value& v : flattenedNodes(tree)) {
    const auto node = v.asObject<TreeNode>();
    if (node && node->representedObject().isIdenticalTo(object)) return node;
  }
  return nullptr;
}

IndexPathRef indexPathOfObject(const TreeController& tree, const Value& object) {
  return indexPathOfObject(tree, object, rootNodes(tree));
}

IndexPathRef indexPathOfObject(const TreeController& tree, const Value& object,
                               const Array& nodes) {
  for (const Value& v : nodes) {
    const auto node = v.asObject<TreeNode>();
    if (!node) continue;
    if (node->representedObject().isEqual(object)) return node->indexPath();
    if (!node->childNodes().empty()) {
      if (auto found = indexPathOfObject(tree, object, node->childNodesArray())) return found;
    }
  }
  return nullptr;
}

bool setSelectedObjects(TreeController& tree, const Array& objects) {
  const Array paths = mapWithBlock(objects, [&](const Value& object) {
    const auto path = indexPathOfObject(tree, object);
    return path ? Value(path) : Value();
  });
  return tree.setSelectionIndexPaths(paths);
}

}  // namespace tarnvik
