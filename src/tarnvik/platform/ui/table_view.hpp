// A headless table: its columns in display order with their widths, limits, visibility and
// resizing, the sort order, and the names under which a toolkit autosaves the layout.
//
//   auto table = std::make_shared<TableView>();
//   table->addTableColumn(TableColumn::withIdentifier(u"name", 180));
//   table->moveColumn(0, 0);
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "tarnvik/platform/base/sort_descriptor.hpp"
#include "tarnvik/platform/ui/view.hpp"

namespace tarnvik {

// How a column's width may change: by the table, by the user.
enum : UInteger {
  NSTableColumnNoResizing = 0,
  NSTableColumnAutoresizingMask = 1,
  NSTableColumnUserResizingMask = 2,
};

class TableColumn : public Object {
 public:
  static std::shared_ptr<TableColumn> withIdentifier(const String& identifier, double width = 100);
  const String& identifier() const { return identifier_; }
  void setIdentifier(const String& identifier) { identifier_ = identifier; }
  const String& title() const { return title_; }
  void setTitle(const String& title) { title_ = title; }
  double width() const { return width_; }
  // Kept within the minimum and maximum width.
  void setWidth(double width);
  double minWidth() const { return minWidth_; }
  void setMinWidth(double width);
  double maxWidth() const { return maxWidth_; }
  void setMaxWidth(double width);
  bool isHidden() const { return hidden_; }
  void setHidden(bool hidden) { hidden_ = hidden; }
  UInteger resizingMask() const { return resizingMask_; }
  void setResizingMask(UInteger mask) { resizingMask_ = mask; }
  // Whether the user may hide the column (from a column menu).
  bool isUserHideable() const { return userHideable_; }
  void setUserHideable(bool hideable) { userHideable_ = hideable; }

 private:
  String identifier_;
  String title_;
  double width_ = 100;
  double minWidth_ = 10;
  double maxWidth_ = 1e6;
  bool hidden_ = false;
  UInteger resizingMask_ = NSTableColumnAutoresizingMask | NSTableColumnUserResizingMask;
  bool userHideable_ = true;
  TARNVIK_CLASS(TableColumn)
};

class TableView : public View {
 public:
  const std::vector<std::shared_ptr<TableColumn>>& tableColumns() const { return columns_; }
  void addTableColumn(const std::shared_ptr<TableColumn>& column);
  void removeTableColumn(const std::shared_ptr<TableColumn>& column);
  // The position of the first column with the identifier, or -1.
  Integer columnWithIdentifier(const String& identifier) const;
  std::shared_ptr<TableColumn> tableColumnWithIdentifier(const String& identifier) const;
  // Takes the column at `from` out and puts it at `to` (NSRangeException outside the columns).
  void moveColumn(Integer from, Integer to);

  const std::vector<SortDescriptor>& sortDescriptors() const { return sortDescriptors_; }
  void setSortDescriptors(std::vector<SortDescriptor> descriptors) {
    sortDescriptors_ = std::move(descriptors);
  }
  const String& autosaveName() const { return autosaveName_; }
  void setAutosaveName(const String& name) { autosaveName_ = name; }
  bool autosaveTableColumns() const { return autosaveTableColumns_; }
  void setAutosaveTableColumns(bool on) { autosaveTableColumns_ = on; }

 private:
  std::vector<std::shared_ptr<TableColumn>> columns_;
  // Identifier -> first position, rebuilt after the columns change.
  mutable std::unordered_map<std::u16string, Integer> positions_;
  mutable bool positionsValid_ = false;
  std::vector<SortDescriptor> sortDescriptors_;
  String autosaveName_;
  bool autosaveTableColumns_ = false;
  TARNVIK_CLASS(TableView)
};

}  // namespace tarnvik
