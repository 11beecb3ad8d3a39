#include "tarnvik/ui/view_layout.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/raised.hpp"

namespace tarnvik {
namespace {

ViewRef view(double x, double y, double w, double h) {
  return View::viewWithFrame({{x, y}, {w, h}});
}

std::string frames(const ViewRef& parent) {
  std::string out;
  for (const auto& v : parent->subviews()) out += NSStringFromRect(v->frame()).utf8() + " ";
  return out;
}

TEST(ViewLayoutTest, RowsAndColumnsInFlippedAndUnflippedViews) {
  auto row = view(0, 0, 100, 50);
  for (double w : {10, 20, 30}) row->addSubview(view(5, 7, w, 4));
  layoutSubviews(row, 0);
  EXPECT_EQ(frames(row), "{{0, 0}, {10, 4}} {{10, 0}, {20, 4}} {{30, 0}, {30, 4}} ");
  layoutSubviews(row, 0, true);  // keeps each subview's own y
  EXPECT_EQ(frames(row), "{{0, 0}, {10, 4}} {{10, 0}, {20, 4}} {{30, 0}, {30, 4}} ");

  auto flipped = view(0, 0, 40, 40);
  flipped->setFlipped(true);
  flipped->addSubview(view(3, 9, 8, 5));
  flipped->addSubview(view(4, 9, 8, 7));
  layoutSubviews(flipped, 1);
  EXPECT_EQ(frames(flipped), "{{0, 0}, {8, 5}} {{0, 5}, {8, 7}} ");

  auto column = view(0, 0, 40, 12);
  column->addSubview(view(3, 0, 8, 5));
  column->addSubview(view(4, 0, 8, 7));
  layoutSubviews(column, 1, true);
  EXPECT_EQ(frames(column), "{{3, 7}, {8, 5}} {{4, 0}, {8, 7}} ");

  // Too short: the view grows by the overflow (its origin moves by it too) and autoresizing
  // moves the subviews already placed.
  auto grows = view(10, 100, 40, 6);
  for (int i = 0; i < 2; ++i) {
    auto v = view(0, 0, 8, 5);
    v->setAutoresizingMask(NSViewMinYMargin);
    grows->addSubview(v);
  }
  layoutSubviews(grows, 1, true);
  EXPECT_EQ(NSStringFromRect(grows->frame()).utf8(), "{{10, 104}, {40, 10}}");
  EXPECT_EQ(frames(grows), "{{0, 5}, {8, 5}} {{0, 0}, {8, 5}} ");

  const Array byX = subviewsSortedWithLayout(row, 0);
  EXPECT_EQ(byX[2].asObject<View>()->frame().size.width, 30);
  const Array byY = subviewsSortedWithLayout(column, 1);
  EXPECT_EQ(byY[0].asObject<View>()->frame().origin.y, 7);  // top first
}

TEST(ViewLayoutTest, TrimmingAndSizingWithBordersAndAxisModes) {
  auto box = view(5, 6, 500, 500);
  box->addSubview(view(10, 20, 15, 5));
  box->addSubview(view(30, 30, 20, 10));
  trimToSubviewsWithBorder(box, {2, 3});
  EXPECT_EQ(NSStringFromRect(box->frame()).utf8(), "{{5, 6}, {44, 26}}");
  EXPECT_EQ(frames(box), "{{2, 3}, {15, 5}} {{22, 13}, {20, 10}} ");
  EXPECT_TRUE(box->autoresizesSubviews());

  auto empty = view(1, 2, 3, 4);
  sizeToSubviews(empty);
  EXPECT_EQ(NSStringFromRect(empty->frame()).utf8(), "{{1, 2}, {3, 4}}");
  trimToSubviews(empty);  // no guard: the start values show through
  EXPECT_EQ(NSStringFromRect(empty->frame()).utf8(), "{{1, 2}, {-19999998, -19999998}}");

  auto flipped = view(0, 100, 80, 60);
  flipped->setFlipped(true);
  flipped->addSubview(view(10, 10, 20, 30));
  sizeToSubviews(flipped, 2);
  EXPECT_EQ(NSStringFromRect(flipped->frame()).utf8(), "{{0, 130}, {80, 30}}");
  sizeToSubviews(flipped, 1);
  EXPECT_EQ(NSStringFromRect(flipped->frame()).utf8(), "{{0, 130}, {20, 30}}");

  auto super = view(0, 0, 100, 60);
  auto child = view(7, 7, 10, 10);
  super->addSubview(child);
  sizeToSuperview(child, 1, {5, 5});
  EXPECT_EQ(NSStringFromRect(child->frame()).utf8(), "{{5, 0}, {90, 10}}");
  sizeToSuperview(child, 2, {5, 5});
  EXPECT_EQ(NSStringFromRect(child->frame()).utf8(), "{{0, 5}, {90, 50}}");
  sizeToSuperview(child);
  EXPECT_EQ(NSStringFromRect(child->frame()).utf8(), "{{0, 0}, {100, 60}}");
  setUpperLeftCorner(child, {3, 80});
  EXPECT_EQ(NSStringFromPoint(upperLeftCorner(child)).utf8(), "{3, 80}");
  EXPECT_EQ(child->frame().origin.y, 20);
}

TEST(ViewLayoutTest, TreeUtilitiesAndConstraints) {
  auto root = view(0, 0, 200, 100);
  auto panel = view(0, 0, 100, 100);
  auto ok = std::make_shared<Control>();
  auto cancel = std::make_shared<Control>();
  cancel->setEnabled(false);
  root->addSubview(panel);
  panel->addSubview(ok);
  panel->addSubview(cancel);
  ok->setIdentifier(u"ok");
  auto deepOk = view(0, 0, 1, 1);
  deepOk->setIdentifier(u"ok");
  auto side = view(100, 0, 100, 100);
  side->setIdentifier(u"ok");
  root->addSubview(side);
  side->addSubview(deepOk);

  EXPECT_EQ(allSubviews(root).count(), 6u);
  EXPECT_EQ(viewWithIdentifier(root, u"ok"), side);  // direct subviews first
  EXPECT_EQ(viewWithIdentifier(panel, u"ok"), ok);
  EXPECT_EQ(viewWithIdentifier(root, String()), nullptr);
  const Array disabled = disableAllSubcontrols(root);
  ASSERT_EQ(disabled.count(), 1u);  // only what was enabled
  EXPECT_EQ(disabled[0].asObject(), ok);
  enableAllSubcontrols(root);
  EXPECT_TRUE(cancel->isEnabled());
  EXPECT_THAT(
      subviewDescription(root).utf8(),
      ::testing::MatchesRegex("<View: 0x[0-9a-f]+> \\{\\{0, 0\\}, \\{200, 100\\}\\}\n"
                              "\t<View: 0x[0-9a-f]+> \\{\\{0, 0\\}, \\{100, 100\\}\\}\n"
                              "\t\t<Control: .*\n\t\t<Control: .*\n\t<View: .*\n\t\t<View: .*\n"));
  EXPECT_EQ(commonSuperviewWithView(ok, deepOk), root);
  EXPECT_EQ(commonSuperviewWithView(panel, ok), panel);
  EXPECT_THAT(testing::raised([&] { commonSuperviewWithView(ok, view(0, 0, 1, 1)); }),
              ::testing::HasSubstr("Can't constrain two views that do not share a common "
                                   "superview. Make sure that both views have been added into "
                                   "the same view hierarchy."));
  EXPECT_EQ(firstAncestorOrSelfViewOfClass(ok, View::staticClassInfo()), panel);
  EXPECT_EQ(firstAncestorOrSelfViewOfClass(ok, Control::staticClassInfo()), ok);
  root->setInFullScreenMode(true);
  EXPECT_EQ(selfOrSuperViewInFullScreenMode(ok), root);

  auto pinned = view(0, 0, 10, 10);
  addConstrainedBasedSubview(side, pinned, 250);
  EXPECT_FALSE(pinned->translatesAutoresizingMaskIntoConstraints());
  const Array affecting = constraintsAffectingView(side, pinned);
  ASSERT_EQ(affecting.count(), 4u);
  EXPECT_EQ(affecting[0].asObject<LayoutConstraint>()->priority, 250);
  EXPECT_EQ(constraintsAffectingView(side, ok).count(), 0u);
  // Positioned below deepOk, then added again by the pinning: it ends up on top.
  auto below = view(0, 0, 1, 1);
  addConstrainedBasedSubview(side, below, NSWindowBelow, deepOk);
  EXPECT_EQ(side->subviews().back(), below);
  EXPECT_EQ(constraintsAffectingView(side, below).count(), 4u);
  EXPECT_EQ(side->constraints().back()->priority, 999);

  setContentCompressionResistanceOnAllSubviews(root, 300);
  EXPECT_EQ(deepOk->contentCompressionResistancePriorityForOrientation(
                LayoutConstraintOrientation::Horizontal),
            300);
  removeAllSubviews(root);
  EXPECT_TRUE(root->subviews().empty());
  EXPECT_EQ(panel->superview(), nullptr);
  EXPECT_THAT(testing::raised([] { constraintsWithVisualFormat(u"H:[x]", {}, {}); }),
              ::testing::HasSubstr("Unable to parse constraint format"));
}

}  // namespace
}  // namespace tarnvik
