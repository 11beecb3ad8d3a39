#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/raised.hpp"
#include "tarnvik/platform/base/key_value_coding.hpp"
#include "tarnvik/platform/ui/alert.hpp"
#include "tarnvik/platform/ui/color.hpp"
#include "tarnvik/platform/ui/table_view.hpp"
#include "tarnvik/platform/ui/tree_controller.hpp"

namespace tarnvik {
namespace {

TEST(UIModelsTest, ViewsResizeTheirSubviewsByTheirMasks) {
  auto parent = View::viewWithFrame({{0, 0}, {100, 100}});
  auto stretchy = View::viewWithFrame({{10, 10}, {80, 20}});
  stretchy->setAutoresizingMask(NSViewWidthSizable | NSViewMinYMargin);
  auto fixed = View::viewWithFrame({{10, 50}, {10, 10}});
  parent->addSubview(stretchy);
  parent->addSubview(fixed);
  parent->setFrameSize({150, 120});
  EXPECT_EQ(NSStringFromRect(stretchy->frame()).utf8(), "{{10, 30}, {130, 20}}");
  EXPECT_EQ(NSStringFromRect(fixed->frame()).utf8(), "{{10, 50}, {10, 10}}");
  parent->setAutoresizesSubviews(false);
  parent->setFrameSize({100, 100});
  EXPECT_EQ(stretchy->frame().size.width, 130);

  parent->addSubview(fixed, NSWindowBelow, stretchy);  // moves it to the bottom
  EXPECT_EQ(parent->subviews().front(), fixed);
  EXPECT_NE(testing::raised([&] { stretchy->addSubview(parent); }), "nothing");
  auto other = View::viewWithFrame({});
  other->addSubview(fixed);  // taken from its old superview
  EXPECT_EQ(parent->subviews().size(), 1u);

  const auto pins = constraintsWithVisualFormat(u"V:|-margin@low-[v]-8-|",
                                                Dictionary{{u"margin", 4}, {u"low", 250}},
                                                Dictionary{{u"v", Value(stretchy)}});
  ASSERT_EQ(pins.size(), 2u);
  EXPECT_EQ(pins[0]->firstAttribute, LayoutAttribute::Top);
  EXPECT_EQ(pins[0]->constant, 4);
  EXPECT_EQ(pins[0]->priority, 250);
  EXPECT_EQ(pins[1]->firstItem.lock(), parent);
  EXPECT_EQ(pins[1]->constant, 8);
  EXPECT_EQ(pins[1]->priority, 1000);
  for (const char16_t* bad : {u"H:|-[v]-|", u"X:|[v]|", u"H:|[w]|", u"H:|-1@-[v]|"})
    EXPECT_NE(testing::raised([&] {
                constraintsWithVisualFormat(bad, {}, Dictionary{{u"v", Value(stretchy)}});
              }),
              "nothing")
        << String(bad).utf8();
}

TEST(UIModelsTest, TablesColumnsAndLimits) {
  TableView table;
  auto name = TableColumn::withIdentifier(u"name", 120);
  name->setMinWidth(50);
  name->setMaxWidth(300);
  name->setWidth(1000);
  EXPECT_EQ(name->width(), 300);
  table.addTableColumn(name);
  table.addTableColumn(TableColumn::withIdentifier(u"fps"));
  table.moveColumn(0, 1);
  EXPECT_EQ(table.columnWithIdentifier(u"name"), 1);
  EXPECT_EQ(table.columnWithIdentifier(u"nope"), -1);
  EXPECT_EQ(testing::raised([&] { table.moveColumn(0, 2); }),
            "NSRangeException: TableView::moveColumn: column 0 to 2 beyond bounds [0 .. 1]");
}

TEST(UIModelsTest, TreeControllersArrangeSelectAndInsert) {
  const auto node = [](const char16_t* name, Array children) {
    return Value(Dictionary{{u"name", name}, {u"children", children}});
  };
  TreeController tree;
  tree.setChildrenKeyPath(u"children");
  tree.setContent(
      Array{node(u"a", Array{node(u"a1", Array::array())}), node(u"b", Array::array())});
  const auto a1 =
      tree.arrangedObjects()->descendantNodeAtIndexPath(*IndexPath::withIndexes({0, 0}));
  ASSERT_TRUE(a1);
  EXPECT_TRUE(a1->isLeaf());
  EXPECT_FALSE(a1->parentNode()->isLeaf());
  EXPECT_THAT(a1->indexPath()->description().utf8(),
              ::testing::EndsWith("> {length = 2, path = 0 - 0}"));

  EXPECT_TRUE(tree.setSelectionIndexPaths(
      Array{Value(IndexPath::withIndexes({1})), Value(IndexPath::withIndexes({0, 0})),
            Value(IndexPath::withIndexes({0, 0})), Value(IndexPath::withIndexes({5}))}));
  const Array selected = tree.selectionIndexPaths();  // sorted, unique, existing only
  ASSERT_EQ(selected.count(), 2u);
  EXPECT_TRUE(selected[0].asObject<IndexPath>()->isEqual(*IndexPath::withIndexes({0, 0})));
  EXPECT_FALSE(tree.setSelectionIndexPaths(selected));

  const Dictionary folder = tree.content()[0].asDictionary();
  EXPECT_THROW(tree.insertObject(node(u"x", Array::array()), *IndexPath::withIndexes({0, 0})),
               Exception);  // dictionaries are values: the children key cannot be set on them
  tree.insertObject(node(u"c", Array::array()), *IndexPath::withIndexes({1}));
  EXPECT_EQ(valueForKey(tree.arrangedObjects()->childNodes()[1]->representedObject(), u"name")
                .asString()
                .utf8(),
            "c");
  // The selection follows the paths, not the objects.
  EXPECT_EQ(
      valueForKey(tree.selectedNodes().back()->representedObject(), u"name").asString().utf8(),
      "c");
}

TEST(UIModelsTest, ColoursConvertBetweenRGBAndHSB) {
  for (double h : {0.0, 0.1, 0.3, 0.5, 0.7, 0.95}) {
    const Color c = Color::colorWithCalibratedHue(h, 0.6, 0.8, 0.5);
    EXPECT_NEAR(c.hueComponent(), h, 1e-9);
    EXPECT_NEAR(c.saturationComponent(), 0.6, 1e-9);
    EXPECT_NEAR(c.brightnessComponent(), 0.8, 1e-9);
    EXPECT_EQ(c.alphaComponent(), 0.5);
  }
  EXPECT_EQ(Color::colorWithCalibratedRed(2, -1, 0.5, 9),
            Color::colorWithCalibratedRed(1, 0, 0.5, 1));
  EXPECT_EQ(Color::colorWithCalibratedHue(1.0, 1, 1, 1), Color::colorWithCalibratedRed(1, 0, 0, 1));
  EXPECT_FALSE(Color::patternColor().colorUsingCalibratedRGBColorSpace());
}

TEST(UIModelsTest, AlertsWithoutAPresenterAnswerWithTheirFirstButton) {
  auto alert = Alert::alertWithMessageText(u"m", u"Go", u"Stop", String(), u"i");
  EXPECT_EQ(alert->runModal(), NSAlertDefaultReturn);
  Integer got = 99;
  alert->beginSheetModalForWindow(std::make_shared<Window>(), [&](Integer r) { got = r; });
  EXPECT_EQ(got, 99);
  EXPECT_EQ(MainQueue::drain(), 1u);
  EXPECT_EQ(got, NSAlertDefaultReturn);
  auto modern = std::make_shared<Alert>();
  for (const char16_t* title : {u"A", u"B", u"C"}) modern->addButtonWithTitle(title);
  EXPECT_EQ(modern->responseForButtonAtIndex(2), NSAlertThirdButtonReturn);
  EXPECT_NE(testing::raised([&] { modern->addButtonWithTitle(u"D"); }), "nothing");
}

}  // namespace
}  // namespace tarnvik
