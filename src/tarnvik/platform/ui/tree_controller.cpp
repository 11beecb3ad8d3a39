#include "tarnvik/platform/ui/tree_controller.hpp"

#include <algorithm>

#include "tarnvik/platform/base/internal/message.hpp"
#include "tarnvik/platform/base/key_value_coding.hpp"
#include "tarnvik/platform/base/set.hpp"

namespace tarnvik {

TARNVIK_DEFINE_CLASS(IndexPath, Object, c.method(u"length", &IndexPath::length))
TARNVIK_DEFINE_CLASS(TreeNode, Object,
                     c.method(u"representedObject", &TreeNode::representedObject)
                         .method(u"isLeaf", &TreeNode::isLeaf))
TARNVIK_DEFINE_CLASS(TreeController, Object, (void)c)

namespace {
// Model trees deeper than this are cut off, so that a cycle in the model cannot recurse
// without end.
constexpr int kMaxDepth = 512;
}  // namespace

IndexPathRef IndexPath::withIndexes(std::vector<UInteger> indexes) {
  return std::make_shared<IndexPath>(std::move(indexes));
}

UInteger IndexPath::indexAtPosition(UInteger position) const {
  return position < indexes_.size() ? indexes_[position] : NSNotFound;
}

IndexPathRef IndexPath::indexPathByAddingIndex(UInteger index) const {
  auto indexes = indexes_;
  indexes.push_back(index);
  return withIndexes(std::move(indexes));
}

IndexPathRef IndexPath::indexPathByRemovingLastIndex() const {
  auto indexes = indexes_;
  if (!indexes.empty()) indexes.pop_back();
  return withIndexes(std::move(indexes));
}

ComparisonResult IndexPath::compare(const IndexPath& other) const {
  const auto order = std::lexicographical_compare_three_way(
      indexes_.begin(), indexes_.end(), other.indexes_.begin(), other.indexes_.end());
  return order < 0 ? NSOrderedAscending : order > 0 ? NSOrderedDescending : NSOrderedSame;
}

bool IndexPath::isEqual(const Object& other) const {
  const auto* path = dynamic_cast<const IndexPath*>(&other);
  return path && path->indexes_ == indexes_;
}

std::size_t IndexPath::hash() const {
  std::size_t seed = indexes_.size();
  for (UInteger i : indexes_) seed = seed * 31 + i;
  return seed;
}

String IndexPath::description() const {
  std::u16string out;
  for (std::size_t i = 0; i < indexes_.size(); ++i) {
    if (i) message::append(out, u" - ");
    message::append(out, indexes_[i]);
  }
  return message::build(u"<IndexPath: ", message::Pointer{this}, u"> {length = ", indexes_.size(),
                        u", path = ", String(std::move(out)), u"}");
}

std::shared_ptr<TreeNode> TreeNode::treeNodeWithRepresentedObject(const Value& object) {
  auto node = std::make_shared<TreeNode>();
  node->object_ = object;
  return node;
}

Array TreeNode::childNodesArray() const {
  Array nodes = Array::array();
  for (const auto& child : children_) nodes.addObject(Value(child));
  return nodes;
}

IndexPathRef TreeNode::indexPath() const {
  std::vector<UInteger> indexes;
  const TreeNode* node = this;
  for (auto parent = parent_.lock(); parent; parent = node->parent_.lock()) {
    const auto at = std::find_if(parent->children_.begin(), parent->children_.end(),
                                 [node](const auto& c) { return c.get() == node; });
    indexes.push_back(static_cast<UInteger>(at - parent->children_.begin()));
    node = parent.get();
  }
  std::reverse(indexes.begin(), indexes.end());
  return IndexPath::withIndexes(std::move(indexes));
}

std::shared_ptr<TreeNode> TreeNode::descendantNodeAtIndexPath(const IndexPath& path) const {
  std::shared_ptr<TreeNode> node;
  const TreeNode* at = this;
  for (UInteger index : path.indexes()) {
    if (index >= at->children_.size()) return nullptr;
    node = at->children_[index];
    at = node.get();
  }
  return node;
}

void TreeNode::insertChild(const std::shared_ptr<TreeNode>& child, UInteger index) {
  child->parent_ = std::static_pointer_cast<TreeNode>(shared_from_this());
  children_.insert(children_.begin() +
                       static_cast<std::ptrdiff_t>(std::min<std::size_t>(index, children_.size())),
                   child);
}

void TreeNode::removeAllChildren() {
  for (auto& child : children_) child->parent_.reset();
  children_.clear();
}

TreeController::TreeController() : root_(TreeNode::treeNodeWithRepresentedObject(Value())) {
  root_->setLeaf(false);
}

void TreeController::setContent(const Array& content) {
  content_ = content.isNil() ? Array::array() : content;
  rearrangeObjects();
}

void TreeController::setChildrenKeyPath(const String& keyPath) {
  childrenKeyPath_ = keyPath;
  rearrangeObjects();
}

void TreeController::setLeafKeyPath(const String& keyPath) {
  leafKeyPath_ = keyPath;
  rearrangeObjects();
}

void TreeController::build(const std::shared_ptr<TreeNode>& node, const Array& objects, int depth) {
  for (const Value& object : objects) {
    auto child = TreeNode::treeNodeWithRepresentedObject(object);
    node->insertChild(child, node->childNodes().size());
    Array children;
    if (!childrenKeyPath_.isNil() && depth < kMaxDepth) {
      const Value value = valueForKeyPath(object, childrenKeyPath_);
      children = value.asArray();
      if (children.isNil() && value.kind() == Value::Kind::Set)
        children = value.asSet().allObjects();
      if (children.isNil() && value.kind() == Value::Kind::OrderedSet)
        children = value.asOrderedSet().array();
    }
    child->setLeaf(leafKeyPath_.isNil() ? children.isNil() || children.count() == 0
                                        : valueForKeyPath(object, leafKeyPath_).boolValue());
    if (!children.isNil()) build(child, children, depth + 1);
  }
}

void TreeController::rearrangeObjects() {
  root_->removeAllChildren();
  build(root_, content_, 0);
  std::erase_if(selection_,
                [this](const IndexPathRef& p) { return !root_->descendantNodeAtIndexPath(*p); });
}

Array TreeController::selectionIndexPaths() const {
  Array paths = Array::array();
  for (const auto& p : selection_) paths.addObject(Value(p));
  return paths;
}

bool TreeController::setSelectionIndexPaths(const Array& indexPaths) {
  std::vector<IndexPathRef> chosen;
  if (!indexPaths.isNil()) {
    for (const Value& v : indexPaths) {
      auto path = v.asObject<IndexPath>();
      if (!path || path->length() == 0 || !root_->descendantNodeAtIndexPath(*path)) continue;
      if (std::none_of(chosen.begin(), chosen.end(),
                       [&](const auto& c) { return c->isEqual(*path); }))
        chosen.push_back(std::move(path));
    }
  }
  std::sort(chosen.begin(), chosen.end(),
            [](const auto& a, const auto& b) { return a->compare(*b) == NSOrderedAscending; });
  const bool changed = chosen.size() != selection_.size() ||
                       !std::equal(chosen.begin(), chosen.end(), selection_.begin(),
                                   [](const auto& a, const auto& b) { return a->isEqual(*b); });
  selection_ = std::move(chosen);
  return changed;
}

bool TreeController::removeSelectionIndexPaths(const Array& indexPaths) {
  std::vector<IndexPathRef> kept;
  for (const auto& p : selection_) {
    bool removed = false;
    if (!indexPaths.isNil())
      for (const Value& v : indexPaths)
        if (auto q = v.asObject<IndexPath>(); q && q->isEqual(*p)) removed = true;
    if (!removed) kept.push_back(p);
  }
  const bool changed = kept.size() != selection_.size();
  selection_ = std::move(kept);
  return changed;
}

std::vector<std::shared_ptr<TreeNode>> TreeController::selectedNodes() const {
  std::vector<std::shared_ptr<TreeNode>> nodes;
  for (const auto& p : selection_)
    if (auto node = root_->descendantNodeAtIndexPath(*p)) nodes.push_back(std::move(node));
  return nodes;
}

void TreeController::insertObject(const Value& object, const IndexPath& path) {
  if (path.length() == 0) {
    throw Exception(NSInvalidArgumentException, u"TreeController::insertObject: empty index path");
  }
  const UInteger index = path.indexes().back();
  if (path.length() == 1) {
    Array content = content_;
    content.insertObject(object, std::min<UInteger>(index, content.count()));
    content_ = content;
  } else {
    const auto parent = root_->descendantNodeAtIndexPath(*path.indexPathByRemovingLastIndex());
    if (!parent || childrenKeyPath_.isNil()) {
      throw Exception(
          NSRangeException,
          message::build(u"TreeController::insertObject: no parent node at ", path.description()));
    }
    Array children = valueForKeyPath(parent->representedObject(), childrenKeyPath_).asArray();
    if (children.isNil()) children = Array::array();
    children.insertObject(object, std::min<UInteger>(index, children.count()));
    setValueForKey(parent->representedObject(), Value(children), childrenKeyPath_);
  }
  rearrangeObjects();
}

}  // namespace tarnvik
