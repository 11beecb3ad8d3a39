#include "tarnvik/qt/qt_bridges.hpp"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QHeaderView>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTableView>
#include <QTimer>
#include <QTreeView>

#include "support/temp_dir.hpp"
#include "tarnvik/ui/alerts.hpp"
#include "tarnvik/ui/table_layouts.hpp"
#include "tarnvik/ui/tree_navigation.hpp"
#include "tarnvik/ui/view_layout.hpp"

namespace tarnvik {
namespace {

// One QApplication for the suite, on the offscreen platform (no display needed).
class QtEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char name[] = "qt_tests";
    static char* argv[] = {name, nullptr};
    app_ = std::make_unique<QApplication>(argc, argv);
  }
  void TearDown() override { app_.reset(); }

 private:
  std::unique_ptr<QApplication> app_;
};
[[maybe_unused]] auto* const environment = ::testing::AddGlobalTestEnvironment(new QtEnvironment);

constexpr int kIdentifierRole = Qt::UserRole + 1;

// A table whose columns carry identifiers in their header data.
struct ClipTable {
  explicit ClipTable(const std::vector<const char*>& ids) : model(0, static_cast<int>(ids.size())) {
    for (int i = 0; i < static_cast<int>(ids.size()); ++i) {
      model.setHeaderData(i, Qt::Horizontal, QString(ids[i]).toUpper());
      model.setHeaderData(i, Qt::Horizontal, QString(ids[i]), kIdentifierRole);
    }
    view.setModel(&model);
    view.resize(600, 300);
  }
  int visual(const char* id) const { return view.horizontalHeader()->visualIndex(logical(id)); }
  int logical(const char* id) const {
    for (int i = 0; i < model.columnCount(); ++i)
      if (model.headerData(i, Qt::Horizontal, kIdentifierRole).toString() == id) return i;
    return -1;
  }
  QStandardItemModel model;
  QTableView view;
};

TEST(QtBridgesTest, ALayoutSavedWithColumnsABCRestoresOntoACD) {
  ClipTable old({"a", "b", "c"});
  QHeaderView& header = *old.view.horizontalHeader();
  header.resizeSection(old.logical("a"), 140);
  header.resizeSection(old.logical("c"), 90);
  header.moveSection(old.visual("c"), 0);  // c a b
  header.setSectionHidden(old.logical("b"), true);
  header.setSortIndicatorShown(true);
  header.setSortIndicator(old.logical("a"), Qt::DescendingOrder);
  const Dictionary layout = qt::saveTableLayout(old.view, kIdentifierRole);
  EXPECT_EQ(ke_dictionaryForAutosavingLayout(*qt::tableViewFromQt(old.view, kIdentifierRole)),
            layout);

  ClipTable next({"a", "c", "d"});
  qt::restoreTableLayout(next.view, kIdentifierRole, layout);
  QHeaderView& h = *next.view.horizontalHeader();
  EXPECT_EQ(next.visual("c"), 0);
  EXPECT_EQ(next.visual("a"), 1);
  EXPECT_EQ(h.sectionSize(next.logical("a")), 140);
  EXPECT_EQ(h.sectionSize(next.logical("c")), 90);
  EXPECT_FALSE(h.isSectionHidden(next.logical("a")));
  EXPECT_TRUE(h.isSectionHidden(next.logical("d")));  // unknown to the layout: hidden
  EXPECT_EQ(h.sortIndicatorSection(), next.logical("a"));
  EXPECT_EQ(h.sortIndicatorOrder(), Qt::DescendingOrder);

  // A hidden column keeps its width through a save and a restore.
  header.resizeSection(old.logical("b"), 77);
  const auto model = qt::tableViewFromQt(old.view, kIdentifierRole);
  EXPECT_EQ(model->tableColumnWithIdentifier(u"b")->width(), 77);
  EXPECT_THROW(qt::restoreTableLayout(next.view, kIdentifierRole, Dictionary::dictionary()),
               Exception);
  EXPECT_EQ(next.visual("c"), 0);  // nothing changed
}

TEST(QtBridgesTest, ViewLayoutMovesRealWidgets) {
  QWidget root;
  root.resize(400, 100);
  std::vector<QPushButton*> buttons;
  for (int w : {60, 80, 100}) {
    auto* b = new QPushButton("clip", &root);
    b->setGeometry(50, 50, w, 24);
    buttons.push_back(b);
  }
  buttons[1]->setObjectName("middle");
  qt::WidgetBridge bridge(root);
  EXPECT_TRUE(bridge.root()->isFlipped());
  layoutSubviews(bridge.root(), 0);
  const Array disabled = disableAllSubcontrols(bridge.root());
  EXPECT_EQ(disabled.count(), 3u);
  bridge.apply();
  EXPECT_EQ(buttons[0]->geometry(), QRect(0, 0, 60, 24));
  EXPECT_EQ(buttons[1]->geometry(), QRect(60, 0, 80, 24));
  EXPECT_EQ(buttons[2]->geometry(), QRect(140, 0, 100, 24));
  EXPECT_FALSE(buttons[2]->isEnabled());
  EXPECT_EQ(viewWithIdentifier(bridge.root(), u"middle"), bridge.viewForWidget(buttons[1]));

  layoutSubviews(bridge.root(), 1);  // a column, top down in Qt's coordinates
  trimToSubviewsWithBorder(bridge.root(), {4, 4});
  bridge.apply();
  EXPECT_EQ(buttons[2]->geometry(), QRect(4, 52, 100, 24));
  EXPECT_EQ(root.size(), QSize(108, 80));
}

TEST(QtBridgesTest, TreeNavigationAndSelectionInARealTreeView) {
  QStandardItemModel model;
  for (const char* day : {"day1", "day2"}) {
    auto* item = new QStandardItem(day);
    for (const char* clip : {"a001", "a002", "a003"}) item->appendRow(new QStandardItem(clip));
    model.appendRow(item);
  }
  QTreeView view;
  view.setModel(&model);
  view.selectionModel()->select(model.index(1, 0, model.index(1, 0)),
                                QItemSelectionModel::Select | QItemSelectionModel::Rows);
  qt::TreeBridge bridge(view);
  TreeController& tree = bridge.controller();
  EXPECT_EQ(tree.selectedNodes().size(), 1u);
  const auto where = indexPathForInsertion(tree);  // right after the selected leaf
  EXPECT_EQ(where->indexes(), (std::vector<UInteger>{1, 2}));
  EXPECT_EQ(qt::modelIndexFromIndexPath(model, *where).data().toString(), "a003");
  EXPECT_FALSE(qt::modelIndexFromIndexPath(model, *IndexPath::withIndexes({5})).isValid());

  const Value day1 = nodeAtIndexPath(tree, *IndexPath::withIndexes({0}))->representedObject();
  EXPECT_TRUE(setSelectedObjects(tree, Array{day1}));
  bridge.applySelection();
  const auto rows = view.selectionModel()->selectedRows();
  ASSERT_EQ(rows.size(), 1);
  EXPECT_EQ(rows[0].data().toString(), "day1");
  EXPECT_EQ(qt::indexPathFromModelIndex(rows[0])->indexes(), (std::vector<UInteger>{0}));
}

TEST(QtBridgesTest, ColoursConvert) {
  const Color orange = Color::colorWithCalibratedRed(1, 0.5, 0, 0.25);
  const Color back = qt::fromQColor(qt::toQColor(orange));
  EXPECT_NEAR(back.greenComponent(), 0.5, 1.0 / 65535);
  EXPECT_NEAR(back.alphaComponent(), 0.25, 1.0 / 65535);
  EXPECT_FALSE(qt::toQColor(Color::patternColor()).isValid());
  EXPECT_NEAR(qt::fromQColor(QColor(Qt::blue)).blueComponent(), 1.0, 1e-9);
}

// Answers the next message box from the event loop: ticks its check box when asked, then
// clicks the button with the title.
void answerNextMessageBox(const QString& button, bool tick) {
  QTimer::singleShot(0, [=] {
    for (QWidget* w : QApplication::topLevelWidgets()) {
      auto* box = qobject_cast<QMessageBox*>(w);
      if (!box || !box->isVisible()) continue;
      if (tick && box->checkBox()) box->checkBox()->setChecked(true);
      for (QAbstractButton* b : box->buttons())
        if (b->text() == button) b->click();
      return;
    }
  });
}

class QtAlertsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    UserDefaults::setDefaultsDirectory(String(dir.path().string()));
    presenter = qt::installAlertPresenter();
  }
  void TearDown() override {
    Alert::setPresenter(nullptr);
    MainQueue::setWakeUp(nullptr);
    MainQueue::drain();
    UserDefaults::setDefaultsDirectory(String());
  }
  AlertRef deleteAlert() {
    return ke_alertWithMessageTextDefaultButtonAlternateButtonOtherButtonDontShowAgainDefaultsKeyInformativeText(
        u"Delete the clip?", u"Delete", u"Cancel", String(), u"skipDelete", u"A001C003.mov");
  }
  testing::TempDir dir;
  std::shared_ptr<qt::MessageBoxPresenter> presenter;
};

TEST_F(QtAlertsTest, ARealMessageBoxIsTickedOnceAndThenSuppressed) {
  answerNextMessageBox("Cancel", true);
  EXPECT_EQ(runModalIfShouldShowWithDefaultResponse(deleteAlert(), 42), NSAlertAlternateReturn);
  EXPECT_TRUE(UserDefaults::standardUserDefaults().boolForKey(u"skipDelete"));
  EXPECT_EQ(runModalIfShouldShowWithDefaultResponse(deleteAlert(), 42), 42);  // not shown
}

TEST_F(QtAlertsTest, SheetsCompleteFromTheEventLoop) {
  QWidget parent;
  parent.show();
  auto window = std::make_shared<Window>();
  presenter->setWidgetForWindow(*window, &parent);
  std::vector<Integer> responses;
  answerNextMessageBox("Delete", false);
  beginSheetModalIfShouldShowForWindow(deleteAlert(), window, 7,
                                       [&](Integer r) { responses.push_back(r); });
  EXPECT_TRUE(responses.empty());  // never before the call returns
  for (int i = 0; i < 100 && responses.empty(); ++i)
    QApplication::processEvents(QEventLoop::AllEvents, 20);
  EXPECT_EQ(responses, std::vector<Integer>{NSAlertDefaultReturn});

  UserDefaults::standardUserDefaults().setBool(true, u"skipDelete");
  beginSheetModalIfShouldShowForWindow(deleteAlert(), window, 7,
                                       [&](Integer r) { responses.push_back(r); });
  EXPECT_EQ(responses.size(), 1u);
  for (int i = 0; i < 100 && responses.size() < 2; ++i)
    QApplication::processEvents(QEventLoop::AllEvents, 20);
  EXPECT_EQ(responses.back(), 7);  // delivered by the main queue, drained by Qt
}

}  // namespace
}  // namespace tarnvik
