// A small Qt window on the adapter: a table of clips whose column layout (order, widths,
// hidden columns, sort order) persists across runs by column identifier, a column menu on the
// header, and a "Delete clip" confirmation the user can silence for good.
//
// usage: tarnvik_qt_clips [--defaults FOLDER] [--screenshot FILE.png]
#include <QApplication>
#include <QHeaderView>
#include <QMainWindow>
#include <QMenu>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

#include "tarnvik/qt/qt_bridges.hpp"
#include "tarnvik/ui/alerts.hpp"

using namespace tarnvik;

namespace {

constexpr int kIdentifierRole = Qt::UserRole + 1;
constexpr char16_t kLayoutKey[] = u"clipTableLayout";

void fill(QStandardItemModel& model) {
  const char* columns[][2] = {{"name", "Name"},
                              {"duration", "Duration"},
                              {"codec", "Codec"},
                              {"fps", "FPS"},
                              {"reel", "Reel"}};
  model.setColumnCount(5);
  for (int i = 0; i < 5; ++i) {
    model.setHeaderData(i, Qt::Horizontal, columns[i][1]);
    model.setHeaderData(i, Qt::Horizontal, columns[i][0], kIdentifierRole);
  }
  const char* clips[][5] = {{"A001C003.mov", "00:01:12:04", "ProRes 422 HQ", "25", "A001"},
                            {"A001C004.mov", "00:00:48:17", "ProRes 422 HQ", "25", "A001"},
                            {"B002C011.mxf", "00:03:05:00", "DNxHR HQX", "23.976", "B002"},
                            {"B002C012.mxf", "00:00:09:12", "DNxHR HQX", "23.976", "B002"}};
  for (const auto& clip : clips) {
    QList<QStandardItem*> row;
    for (const char* field : clip) row.append(new QStandardItem(field));
    model.appendRow(row);
  }
}

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  QString screenshot;
  for (int i = 1; i + 1 < argc; ++i) {
    if (QString(argv[i]) == "--defaults")
      UserDefaults::setDefaultsDirectory(String(std::string(argv[i + 1])));
    if (QString(argv[i]) == "--screenshot") screenshot = argv[i + 1];
  }
  const auto presenter = qt::installAlertPresenter();

  QMainWindow window;
  window.setWindowTitle("Clips");
  auto* central = new QWidget;
  auto* layout = new QVBoxLayout(central);
  QStandardItemModel model;
  fill(model);
  auto* table = new QTableView;
  table->setModel(&model);
  table->setSortingEnabled(true);
  table->horizontalHeader()->setSectionsMovable(true);
  layout->addWidget(table);
  auto* remove = new QPushButton("Delete Clip");
  layout->addWidget(remove);
  window.setCentralWidget(central);
  window.resize(640, 260);

  // The saved layout, if any: keyed by column identifier, so it survives new columns.
  UserDefaults& defaults = UserDefaults::standardUserDefaults();
  table->sortByColumn(0, Qt::AscendingOrder);
  if (const Dictionary saved = defaults.dictionaryForKey(kLayoutKey); !saved.isNil()) {
    try {
      qt::restoreTableLayout(*table, kIdentifierRole, saved);
    } catch (const Exception&) {
      // A layout from an unknown version: keep the default one.
    }
  }
  QObject::connect(&app, &QApplication::aboutToQuit, [&] {
    defaults.setObject(qt::saveTableLayout(*table, kIdentifierRole), kLayoutKey);
    defaults.synchronize();
  });

  // The column menu: every column but the name may be hidden.
  QHeaderView* header = table->horizontalHeader();
  header->setContextMenuPolicy(Qt::CustomContextMenu);
  QObject::connect(header, &QHeaderView::customContextMenuRequested, [&](const QPoint& at) {
    QMenu menu;
    for (int i = 1; i < model.columnCount(); ++i) {
      QAction* action = menu.addAction(model.headerData(i, Qt::Horizontal).toString());
      action->setCheckable(true);
      action->setChecked(!header->isSectionHidden(i));
      QObject::connect(action, &QAction::toggled,
                       [header, i](bool on) { header->setSectionHidden(i, !on); });
    }
    menu.exec(header->mapToGlobal(at));
  });

  auto alertWindow = std::make_shared<Window>();
  presenter->setWidgetForWindow(*alertWindow, &window);
  QObject::connect(remove, &QPushButton::clicked, [&] {
    const QModelIndex current = table->currentIndex();
    if (!current.isValid()) return;
    const auto alert =
        ke_alertWithMessageTextDefaultButtonAlternateButtonOtherButtonDontShowAgainDefaultsKeyInformativeText(
            u"Delete the clip?", u"Delete", u"Cancel", String(), u"skipDeleteClipWarning",
            u"The clip is removed from the project; its file stays on disk.");
    beginSheetModalIfShouldShowForWindow(alert, alertWindow, NSAlertDefaultReturn,
                                         [&, current](Integer r) {
                                           if (r == NSAlertDefaultReturn)
                                             model.removeRow(current.row());
                                         });
  });

  window.show();
  if (!screenshot.isEmpty()) {
    table->selectRow(2);
    QTimer::singleShot(100, [&] {
      window.grab().save(screenshot);
      app.quit();
    });
  }
  return app.exec();
}
