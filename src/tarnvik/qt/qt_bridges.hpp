// The Qt 6 adapter: real widgets behind the platform's UI models, so that the UI helpers
// (table layouts, view layout, tree navigation, colours, suppressible alerts) work on a Qt
// application. Built only when Qt 6 Widgets is found; the rest of the library never uses Qt.
//
//   // Save a QTableView's column layout by column identifier, and restore it next run:
//   defaults.setObject(qt::saveTableLayout(*tableView, Qt::UserRole), u"clipTable");
//   qt::restoreTableLayout(*tableView, Qt::UserRole, defaults.dictionaryForKey(u"clipTable"));
//
//   qt::installAlertPresenter();  // alerts become QMessageBoxes; MainQueue drains from Qt
#pragma once

#include <QColor>
#include <QModelIndex>
#include <QPointer>
#include <memory>
#include <unordered_map>

#include "tarnvik/platform/ui/alert.hpp"
#include "tarnvik/platform/ui/color.hpp"
#include "tarnvik/platform/ui/table_view.hpp"
#include "tarnvik/platform/ui/tree_controller.hpp"

class QAbstractItemModel;
class QTableView;
class QTreeView;
class QWidget;

namespace tarnvik::qt {

// ---- Tables: a QTableView's horizontal header as a TableView ----

// The header's columns in visual order: identifiers from the model's header data under
// `identifierRole` (the section number when there is none), widths (also of hidden
// sections), hidden flags and the sort indicator as the one sort descriptor.
std::shared_ptr<TableView> tableViewFromQt(const QTableView& table, int identifierRole);
// Moves, sizes, hides and sorts the header's sections as the model says; sections whose
// identifier the model does not have are left alone.
void applyTableView(const TableView& model, QTableView& table, int identifierRole);
// The layout dictionary of the table, keyed by column identifier (unlike
// QHeaderView::saveState, it survives columns being added or removed between versions).
Dictionary saveTableLayout(const QTableView& table, int identifierRole);
// NSInvalidArgumentException for a dictionary that is not a layout, before anything changes.
void restoreTableLayout(QTableView& table, int identifierRole, const Dictionary& layout);

// ---- Widgets: a QWidget tree as a View tree ----

// Mirrors a widget and its child widgets into views (Qt's top-left origin makes every view
// flipped; the object name is the identifier; buttons, inputs, combo boxes, sliders and
// spin boxes become Controls with their enabled flag). apply() writes geometry and enabled
// flags back; refresh() reads them again.
class WidgetBridge {
 public:
  explicit WidgetBridge(QWidget& root);
  const std::shared_ptr<View>& root() const { return root_; }
  std::shared_ptr<View> viewForWidget(const QWidget* widget) const;
  void apply() const;
  void refresh();

 private:
  std::shared_ptr<View> mirror(QWidget& widget);
  QPointer<QWidget> widget_;
  std::shared_ptr<View> root_;
  std::unordered_map<const View*, QPointer<QWidget>> widgets_;
  std::unordered_map<const QWidget*, std::weak_ptr<View>> views_;
};

// ---- Trees: a QTreeView's model and selection as a TreeController ----

// The index path of a model index (one row per level) and back; an invalid index for a path
// that leaves the model.
IndexPathRef indexPathFromModelIndex(const QModelIndex& index);
QModelIndex modelIndexFromIndexPath(const QAbstractItemModel& model, const IndexPath& path);

// A TreeController over the tree view's model: each item is a Dictionary {"title": the
// display text, "children": [...]} and the controller's selection is the view's.
class TreeBridge {
 public:
  explicit TreeBridge(QTreeView& view);
  TreeController& controller() { return controller_; }
  // Reads the model and the view's selection again.
  void refresh();
  // Selects in the view what the controller has selected.
  void applySelection() const;

 private:
  Dictionary itemAt(const QModelIndex& index) const;
  QPointer<QTreeView> view_;
  TreeController controller_;
};

// ---- Colours ----

QColor toQColor(const Color& color);
Color fromQColor(const QColor& color);

// ---- Alerts ----

// Shows alerts as QMessageBoxes: the buttons in order, the informative text, and a check box
// (QMessageBox::setCheckBox) for an accessory Button, whose ticked state is written to the
// button (and so to the user defaults it is bound to) when the box closes. Sheets open
// window-modal on the window's widget (see setWidgetForWindow) and call their completion from
// Qt's event loop.
class MessageBoxPresenter : public AlertPresenter {
 public:
  Integer runModal(Alert& alert) override;
  void beginSheetModal(Alert& alert, Window& window,
                       std::function<void(Integer)> completion) override;
  void setWidgetForWindow(const Window& window, QWidget* widget);

 private:
  std::unordered_map<const Window*, QPointer<QWidget>> parents_;
};

// Installs a MessageBoxPresenter for every alert and makes MainQueue drain from Qt's event
// loop (a queued call on the application object). Returns the presenter.
std::shared_ptr<MessageBoxPresenter> installAlertPresenter();

}  // namespace tarnvik::qt
