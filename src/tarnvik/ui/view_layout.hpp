// Frame arithmetic on a view and its direct subviews (stacking in a row or a column, ordering
// by position, shrinking around the subviews, fitting into the superview with a border) and
// the small tree utilities that go with it.
//
//   layoutSubviews(panel, 1);                 // a column, top to bottom
//   trimToSubviewsWithBorder(panel, {8, 8});  // then hug the subviews with an 8-point border
//
// Layouts: 0 a row, anything else a column. Axis modes: 0 both, 1 width only, 2 height only.
#pragma once

#include "tarnvik/platform/ui/view.hpp"

namespace tarnvik {

using ViewRef = std::shared_ptr<View>;

void layoutSubviews(const ViewRef& view, Integer layout, bool remainOtherValue = false);
// The subviews left to right (0) or top to bottom in unflipped coordinates (1); any other
// layout keeps their order.
Array subviewsSortedWithLayout(const ViewRef& view, Integer layout);
void trimToSubviewsWithBorder(const ViewRef& view, Size border);
void trimToSubviews(const ViewRef& view);
void sizeToSubviews(const ViewRef& view, Integer mode = 0);
void sizeToSuperview(const ViewRef& view, Integer mode = 0, Size border = {0, 0});

// One line per view, depth first: tabs for the depth, the view's description and its frame.
String subviewDescriptionWithIndentation(const ViewRef& view, UInteger indentation);
String subviewDescription(const ViewRef& view);
// The view and everything below it, pre-order.
Array allSubviews(const ViewRef& view);
void removeAllSubviews(const ViewRef& view);
// Disables the enabled controls in the tree and returns them, for enabling them again later.
Array disableAllSubcontrols(const ViewRef& view);
void enableAllSubcontrols(const ViewRef& view);
Point upperLeftCorner(const ViewRef& view);
void setUpperLeftCorner(const ViewRef& view, Point point);

// Adds the subview pinned to all four edges at the priority.
void addConstrainedBasedSubview(const ViewRef& view, const ViewRef& subview, double priority);
void addConstrainedBasedSubview(const ViewRef& view, const ViewRef& subview);
// Adds the subview next to `relativeTo`, then pins it; pinning adds it once more, which places
// it above its siblings (kept as it has always behaved).
void addConstrainedBasedSubview(const ViewRef& view, const ViewRef& subview,
                                WindowOrderingMode place, const ViewRef& relativeTo);
void _addConstraintsForSubview(const ViewRef& view, const ViewRef& subview);
void setContentCompressionResistanceOnAllSubviews(const ViewRef& view, Integer priority);
// The nearest view, from this one upwards, that holds the other; nil (after an assertion)
// when they share none.
ViewRef commonSuperviewWithView(const ViewRef& view, const ViewRef& other);
// The direct subviews first, then each subview's tree in order; the view itself is not
// examined.
ViewRef viewWithIdentifier(const ViewRef& view, const String& identifier);
// The first view, from this one upwards, of exactly that class.
ViewRef firstAncestorOrSelfViewOfClass(const ViewRef& view, const ClassInfo& viewClass);
// The view's own constraints whose first or second item is `other`.
Array constraintsAffectingView(const ViewRef& view, const ViewRef& other);
ViewRef selfOrSuperViewInFullScreenMode(const ViewRef& view);

}  // namespace tarnvik
