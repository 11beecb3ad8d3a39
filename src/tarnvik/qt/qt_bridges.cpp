#include "tarnvik/qt/qt_bridges.hpp"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTableView>
#include <QTreeView>
#include <cmath>

#include "tarnvik/ui/table_layouts.hpp"

namespace tarnvik::qt {
namespace {

String fromQString(const QString& text) {
  return String(std::u16string_view(reinterpret_cast<const char16_t*>(text.utf16()),
                                    static_cast<std::size_t>(text.size())));
}

QString toQString(const String& text) {
  const std::u16string_view units = text.units();
  return QString::fromUtf16(units.data(), static_cast<qsizetype>(units.size()));
}

String columnIdentifier(const QAbstractItemModel* model, int logical, int role) {
  const QVariant data = model ? model->headerData(logical, Qt::Horizontal, role) : QVariant();
  const QString text = data.toString();
  return fromQString(text.isEmpty() ? QString::number(logical) : text);
}

// The width a section has, or would have if shown.
int sectionWidth(QHeaderView& header, int logical) {
  if (!header.isSectionHidden(logical)) return header.sectionSize(logical);
  const QSignalBlocker quiet(&header);
  header.setSectionHidden(logical, false);
  const int width = header.sectionSize(logical);
  header.setSectionHidden(logical, true);
  return width;
}

}  // namespace

std::shared_ptr<TableView> tableViewFromQt(const QTableView& table, int identifierRole) {
  auto model = std::make_shared<TableView>();
  QHeaderView& header = *table.horizontalHeader();
  for (int visual = 0; visual < header.count(); ++visual) {
    const int logical = header.logicalIndex(visual);
    auto column =
        TableColumn::withIdentifier(columnIdentifier(table.model(), logical, identifierRole));
    column->setMinWidth(header.minimumSectionSize());
    column->setMaxWidth(header.maximumSectionSize());
    column->setWidth(sectionWidth(header, logical));
    column->setHidden(header.isSectionHidden(logical));
    model->addTableColumn(column);
  }
  const int sorted = header.sortIndicatorSection();
  if (header.isSortIndicatorShown() && sorted >= 0 && sorted < header.count()) {
    model->setSortDescriptors(
        {SortDescriptor(columnIdentifier(table.model(), sorted, identifierRole),
                        header.sortIndicatorOrder() == Qt::AscendingOrder)});
  }
  return model;
}

void applyTableView(const TableView& model, QTableView& table, int identifierRole) {
  QHeaderView& header = *table.horizontalHeader();
  std::unordered_map<std::u16string, int> logicalOf;
  for (int logical = 0; logical < header.count(); ++logical) {
    logicalOf.emplace(
        std::u16string(columnIdentifier(table.model(), logical, identifierRole).units()), logical);
  }
  const auto find = [&](const String& identifier) {
    const auto found = logicalOf.find(std::u16string(identifier.units()));
    return found == logicalOf.end() ? -1 : found->second;
  };
  int visual = 0;
  for (const auto& column : model.tableColumns()) {
    const int logical = find(column->identifier());
    if (logical < 0) continue;
    header.moveSection(header.visualIndex(logical), visual++);
    header.setSectionHidden(logical, false);
    header.resizeSection(logical, static_cast<int>(std::lround(column->width())));
    header.setSectionHidden(logical, column->isHidden());
  }
  if (!model.sortDescriptors().empty()) {
    const SortDescriptor& first = model.sortDescriptors().front();
    if (const int logical = find(first.key()); logical >= 0) {
      header.setSortIndicatorShown(true);
      header.setSortIndicator(logical,
                              first.ascending() ? Qt::AscendingOrder : Qt::DescendingOrder);
    }
  }
}

Dictionary saveTableLayout(const QTableView& table, int identifierRole) {
  return ke_dictionaryForAutosavingLayout(*tableViewFromQt(table, identifierRole));
}

void restoreTableLayout(QTableView& table, int identifierRole, const Dictionary& layout) {
  const auto model = tableViewFromQt(table, identifierRole);
  ke_adjustLayoutForAutosavedDictionary(*model, layout);  // raises before anything changes
  applyTableView(*model, table, identifierRole);
}

WidgetBridge::WidgetBridge(QWidget& root) : widget_(&root) { refresh(); }

std::shared_ptr<View> WidgetBridge::mirror(QWidget& widget) {
  const bool control = qobject_cast<QAbstractButton*>(&widget) ||
                       qobject_cast<QLineEdit*>(&widget) || qobject_cast<QComboBox*>(&widget) ||
                       qobject_cast<QAbstractSpinBox*>(&widget) ||
                       qobject_cast<QAbstractSlider*>(&widget);
  std::shared_ptr<View> view;
  if (control) {
    auto c = std::make_shared<Control>();
    c->setEnabled(widget.isEnabled());
    view = c;
  } else {
    view = std::make_shared<View>();
  }
  const QRect g = widget.geometry();
  view->setFrame({{double(g.x()), double(g.y())}, {double(g.width()), double(g.height())}});
  view->setFlipped(true);  // Qt's origin is the top-left corner
  view->setIdentifier(fromQString(widget.objectName()));
  widgets_[view.get()] = &widget;
  views_[&widget] = view;
  for (QWidget* child : widget.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    if (!child->isWindow()) view->addSubview(mirror(*child));
  }
  return view;
}

std::shared_ptr<View> WidgetBridge::viewForWidget(const QWidget* widget) const {
  const auto found = views_.find(widget);
  return found == views_.end() ? nullptr : found->second.lock();
}

void WidgetBridge::apply() const {
  for (const auto& [view, widget] : widgets_) {
    if (!widget) continue;
    const Rect f = view->frame();
    const QRect g(
        static_cast<int>(std::lround(f.origin.x)), static_cast<int>(std::lround(f.origin.y)),
        static_cast<int>(std::lround(f.size.width)), static_cast<int>(std::lround(f.size.height)));
    if (widget->isWindow())
      widget->resize(g.size());
    else
      widget->setGeometry(g);
    if (const auto* control = dynamic_cast<const Control*>(view))
      widget->setEnabled(control->isEnabled());
  }
}

void WidgetBridge::refresh() {
  widgets_.clear();
  views_.clear();
  root_ = widget_ ? mirror(*widget_) : std::make_shared<View>();
}

IndexPathRef indexPathFromModelIndex(const QModelIndex& index) {
  std::vector<UInteger> rows;
  for (QModelIndex at = index; at.isValid(); at = at.parent())
    rows.push_back(static_cast<UInteger>(at.row()));
  return IndexPath::withIndexes(std::vector<UInteger>(rows.rbegin(), rows.rend()));
}

QModelIndex modelIndexFromIndexPath(const QAbstractItemModel& model, const IndexPath& path) {
  QModelIndex at;
  for (UInteger row : path.indexes()) {
    if (row >= static_cast<UInteger>(model.rowCount(at))) return {};
    at = model.index(static_cast<int>(row), 0, at);
  }
  return at;
}

TreeBridge::TreeBridge(QTreeView& view) : view_(&view) {
  controller_.setChildrenKeyPath(u"children");
  refresh();
}

Dictionary TreeBridge::itemAt(const QModelIndex& index) const {
  const QAbstractItemModel& model = *view_->model();
  Array children = Array::array();
  for (int row = 0; row < model.rowCount(index); ++row)
    children.addObject(itemAt(model.index(row, 0, index)));
  return Dictionary{{u"title", fromQString(model.data(index).toString())}, {u"children", children}};
}

void TreeBridge::refresh() {
  if (!view_ || !view_->model()) {
    controller_.setContent(Array::array());
    return;
  }
  Array content = Array::array();
  for (int row = 0; row < view_->model()->rowCount(); ++row)
    content.addObject(itemAt(view_->model()->index(row, 0)));
  controller_.setContent(content);
  Array selected = Array::array();
  if (const QItemSelectionModel* selection = view_->selectionModel()) {
    for (const QModelIndex& index : selection->selectedRows())
      selected.addObject(Value(indexPathFromModelIndex(index)));
  }
  controller_.setSelectionIndexPaths(selected);
}

void TreeBridge::applySelection() const {
  if (!view_ || !view_->model() || !view_->selectionModel()) return;
  QItemSelectionModel& selection = *view_->selectionModel();
  selection.clearSelection();
  for (const Value& v : controller_.selectionIndexPaths()) {
    const QModelIndex index = modelIndexFromIndexPath(*view_->model(), *v.asObject<IndexPath>());
    if (index.isValid())
      selection.select(index, QItemSelectionModel::Select | QItemSelectionModel::Rows);
  }
}

QColor toQColor(const Color& color) {
  const auto rgb = color.colorUsingCalibratedRGBColorSpace();
  if (!rgb) return QColor();
  return QColor::fromRgbF(
      static_cast<float>(rgb->redComponent()), static_cast<float>(rgb->greenComponent()),
      static_cast<float>(rgb->blueComponent()), static_cast<float>(rgb->alphaComponent()));
}

Color fromQColor(const QColor& color) {
  if (!color.isValid()) return Color::patternColor();
  const QColor rgb = color.toRgb();
  return Color::colorWithCalibratedRed(rgb.redF(), rgb.greenF(), rgb.blueF(), rgb.alphaF());
}

namespace {

// A message box for the alert: its texts, its buttons in order (the first the default) and
// the check box of an accessory Button. `answer` turns the box's outcome into the alert's
// response and hands the check box's state to the button.
struct Prepared {
  std::unordered_map<const QAbstractButton*, Integer> responses;
  QCheckBox* checkBox = nullptr;
  std::shared_ptr<Button> accessory;
  Integer fallback = NSAlertFirstButtonReturn;
};

Prepared prepare(QMessageBox& box, const Alert& alert) {
  Prepared p;
  box.setText(toQString(alert.messageText()));
  box.setInformativeText(toQString(alert.informativeText()));
  const auto& titles = alert.buttonTitles();
  for (std::size_t i = 0; i < titles.size(); ++i) {
    const auto role = i == 0   ? QMessageBox::AcceptRole
                      : i == 1 ? QMessageBox::RejectRole
                               : QMessageBox::ActionRole;
    QPushButton* button = box.addButton(toQString(titles[i]), role);
    p.responses[button] = alert.responseForButtonAtIndex(i);
    if (i == 0) box.setDefaultButton(button);
  }
  if (titles.empty()) p.responses[box.addButton(QMessageBox::Ok)] = NSAlertFirstButtonReturn;
  if (!titles.empty()) p.fallback = alert.responseForButtonAtIndex(titles.size() - 1);
  p.accessory = std::dynamic_pointer_cast<Button>(alert.accessoryView());
  if (p.accessory) {
    p.checkBox = new QCheckBox(toQString(p.accessory->title()));
    p.checkBox->setChecked(p.accessory->state());
    box.setCheckBox(p.checkBox);  // the box takes it
  }
  return p;
}

Integer answer(const QMessageBox& box, const Prepared& p) {
  if (p.accessory && p.checkBox) p.accessory->setState(p.checkBox->isChecked());
  const auto found = p.responses.find(box.clickedButton());
  return found == p.responses.end() ? p.fallback : found->second;
}

}  // namespace

Integer MessageBoxPresenter::runModal(Alert& alert) {
  QMessageBox box;
  const Prepared p = prepare(box, alert);
  box.exec();
  return answer(box, p);
}

void MessageBoxPresenter::beginSheetModal(Alert& alert, Window& window,
                                          std::function<void(Integer)> completion) {
  const auto found = parents_.find(&window);
  QWidget* parent = found == parents_.end() ? nullptr : found->second.data();
  auto* box = new QMessageBox(parent);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setWindowModality(parent ? Qt::WindowModal : Qt::ApplicationModal);
  auto prepared = std::make_shared<Prepared>(prepare(*box, alert));
  auto keepAlive = alert.shared_from_this();
  QObject::connect(box, &QMessageBox::finished, box, [box, prepared, keepAlive, completion](int) {
    const Integer response = answer(*box, *prepared);
    if (completion) completion(response);
  });
  box->open();  // returns at once; `finished` comes from the event loop
}

void MessageBoxPresenter::setWidgetForWindow(const Window& window, QWidget* widget) {
  parents_[&window] = widget;
}

std::shared_ptr<MessageBoxPresenter> installAlertPresenter() {
  auto presenter = std::make_shared<MessageBoxPresenter>();
  Alert::setPresenter(presenter);
  MainQueue::setWakeUp([] {
    if (QCoreApplication* app = QCoreApplication::instance())
      QMetaObject::invokeMethod(
          app, [] { MainQueue::drain(); }, Qt::QueuedConnection);
  });
  return presenter;
}

}  // namespace tarnvik::qt
