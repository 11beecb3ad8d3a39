#include "tarnvik/platform/ui/table_view.hpp"

#include <algorithm>

#include "tarnvik/platform/base/internal/message.hpp"

namespace tarnvik {

TARNVIK_DEFINE_CLASS(TableColumn, Object,
                     c.method(u"identifier", &TableColumn::identifier)
                         .method(u"width", &TableColumn::width)
                         .method(u"isHidden", &TableColumn::isHidden))
TARNVIK_DEFINE_CLASS(TableView, View, (void)c)

std::shared_ptr<TableColumn> TableColumn::withIdentifier(const String& identifier, double width) {
  auto column = std::make_shared<TableColumn>();
  column->identifier_ = identifier;
  column->title_ = identifier;
  column->setWidth(width);
  return column;
}

void TableColumn::setWidth(double width) {
  width_ = std::clamp(width, minWidth_, std::max(minWidth_, maxWidth_));
}

void TableColumn::setMinWidth(double width) {
  minWidth_ = std::max(0.0, width);
  setWidth(width_);
}

void TableColumn::setMaxWidth(double width) {
  maxWidth_ = std::max(0.0, width);
  setWidth(width_);
}

void TableView::addTableColumn(const std::shared_ptr<TableColumn>& column) {
  if (!column)
    throw Exception(NSInvalidArgumentException, u"TableView::addTableColumn: nil column");
  columns_.push_back(column);
  positionsValid_ = false;
}

void TableView::removeTableColumn(const std::shared_ptr<TableColumn>& column) {
  std::erase(columns_, column);
  positionsValid_ = false;
}

Integer TableView::columnWithIdentifier(const String& identifier) const {
  if (identifier.isNil()) return -1;
  const std::u16string key(identifier.units());
  if (positionsValid_) {
    // A column may have been renamed since: a hit is checked, a miss looked up afresh.
    const auto found = positions_.find(key);
    if (found != positions_.end() &&
        columns_[static_cast<std::size_t>(found->second)]->identifier() == identifier)
      return found->second;
  }
  positions_.clear();
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const String& id = columns_[i]->identifier();
    if (!id.isNil()) positions_.emplace(std::u16string(id.units()), static_cast<Integer>(i));
  }
  positionsValid_ = true;
  const auto found = positions_.find(key);
  return found == positions_.end() ? -1 : found->second;
}

std::shared_ptr<TableColumn> TableView::tableColumnWithIdentifier(const String& identifier) const {
  const Integer at = columnWithIdentifier(identifier);
  return at < 0 ? nullptr : columns_[static_cast<std::size_t>(at)];
}

void TableView::moveColumn(Integer from, Integer to) {
  const auto count = static_cast<Integer>(columns_.size());
  if (from < 0 || from >= count || to < 0 || to >= count) {
    throw Exception(NSRangeException,
                    message::build(u"TableView::moveColumn: column ", from, u" to ", to,
                                   u" beyond bounds [0 .. ", count - 1, u"]"));
  }
  if (from == to) return;
  positionsValid_ = false;
  auto column = columns_[static_cast<std::size_t>(from)];
  columns_.erase(columns_.begin() + from);
  columns_.insert(columns_.begin() + to, std::move(column));
}

}  // namespace tarnvik
