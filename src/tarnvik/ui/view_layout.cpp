#include "tarnvik/ui/view_layout.hpp"

#include <algorithm>

#include "tarnvik/collections/arrays.hpp"
#include "tarnvik/core/checks.hpp"
#include "tarnvik/platform/text/format.hpp"

namespace tarnvik {
namespace {

Rect frameOf(const ViewRef& view) { return view ? view->frame() : Rect{}; }

// The bounds of the subviews' frames, starting from the given extremes.
struct Bounds {
  double minX, minY, maxX, maxY;
};
Bounds boundsOfSubviews(const View& view, double start, double startMax) {
  Bounds b{start, start, startMax, startMax};
  for (const auto& subview : view.subviews()) {
    const Rect f = frameOf(subview);
    b.maxX = std::max(b.maxX, f.origin.x + f.size.width);
    b.maxY = std::max(b.maxY, f.origin.y + f.size.height);
    b.minX = std::min(b.minX, f.origin.x);
    b.minY = std::min(b.minY, f.origin.y);
  }
  return b;
}

void collect(const ViewRef& view, Array& into) {
  into.addObject(Value(view));
  for (const auto& subview : view->subviews()) collect(subview, into);
}

}  // namespace

void layoutSubviews(const ViewRef& view, Integer layout, bool remainOtherValue) {
  const auto subviews = view->subviews();  // a snapshot
  double x = 0;
  double y = remainOtherValue && !view->isFlipped() ? view->frame().size.height : 0;
  for (const auto& subview : subviews) {
    const Rect f = frameOf(subview);
    if (layout == 0) {
      if (remainOtherValue) y = f.origin.y;
      subview->setFrameOrigin({x, y});
      x += f.size.width;
      continue;
    }
    if (remainOtherValue) x = f.origin.x;
    if (view->isFlipped()) {
      subview->setFrameOrigin({x, y});
      y += f.size.height;
      continue;
    }
    double next = y - f.size.height;
    if (next < 0) {
      // The view grows by the overflow; autoresizing moves what was placed already.
      const Rect own = view->frame();
      view->setFrameSize({own.size.width, own.size.height - next});
      view->setFrameOrigin({own.origin.x, own.origin.y - next});
      next = 0;
    }
    subview->setFrameOrigin({x, next});
    y = next;
  }
}

Array subviewsSortedWithLayout(const ViewRef& view, Integer layout) {
  std::vector<ViewRef> sorted = view->subviews();
  std::stable_sort(sorted.begin(), sorted.end(), [layout](const ViewRef& a, const ViewRef& b) {
    const Rect fa = frameOf(a), fb = frameOf(b);
    if (layout == 0) return static_cast<float>(fa.origin.x) < static_cast<float>(fb.origin.x);
    if (layout == 1) return static_cast<float>(fa.origin.y) > static_cast<float>(fb.origin.y);
    return false;
  });
  Array views = Array::array();
  for (const auto& v : sorted) views.addObject(Value(v));
  return views;
}

void trimToSubviewsWithBorder(const ViewRef& view, Size border) {
  const bool autoresizes = view->autoresizesSubviews();
  view->setAutoresizesSubviews(false);
  const Bounds b = boundsOfSubviews(*view, 9999999.0, -9999999.0);
  for (const auto& subview : view->subviews()) {
    const Rect f = frameOf(subview);
    subview->setFrameOrigin(
        {f.origin.x - b.minX + border.width, f.origin.y - b.minY + border.height});
  }
  view->setFrameSize({2 * border.width + b.maxX - b.minX, 2 * border.height + b.maxY - b.minY});
  view->setAutoresizesSubviews(autoresizes);
}

void trimToSubviews(const ViewRef& view) { trimToSubviewsWithBorder(view, {0, 0}); }

void sizeToSubviews(const ViewRef& view, Integer mode) {
  if (view->subviews().empty()) return;
  const bool autoresizes = view->autoresizesSubviews();
  view->setAutoresizesSubviews(false);
  const Rect own = view->frame();
  double x0 = own.origin.x, y0 = own.origin.y;
  // -999999.0, not -9999999.0: the maxima have always started there.
  const Bounds b = boundsOfSubviews(*view, 9999999.0, -999999.0);
  const double h = b.maxY - b.minY;
  const double w = b.maxX - b.minX;
  if (view->isFlipped()) y0 = y0 + own.size.height - h;
  if (mode == 2)
    view->setFrame({{x0, y0}, {own.size.width, h}});
  else if (mode == 1)
    view->setFrame({{x0, y0}, {w, own.size.height}});
  else
    view->setFrame({{x0, y0}, {w, h}});
  view->setAutoresizesSubviews(autoresizes);
}

void sizeToSuperview(const ViewRef& view, Integer mode, Size border) {
  const Rect s = frameOf(view->superview());
  const Rect own = view->frame();
  if (mode == 2) {
    view->setFrame({{0, border.height}, {own.size.width, s.size.height - 2 * border.height}});
  } else if (mode == 1) {
    view->setFrame({{border.width, 0}, {s.size.width - 2 * border.width, own.size.height}});
  } else {
    view->setFrame({{border.width, border.height},
                    {s.size.width - 2 * border.width, s.size.height - 2 * border.height}});
  }
}

String subviewDescriptionWithIndentation(const ViewRef& view, UInteger indentation) {
  String text = String(std::u16string(indentation, u'\t'));
  text.appendString(
      stringWithFormat(u"%@ %@\n", view->description(), NSStringFromRect(view->frame())));
  for (const auto& subview : view->subviews())
    text.appendString(subviewDescriptionWithIndentation(subview, indentation + 1));
  return text;
}

String subviewDescription(const ViewRef& view) {
  return subviewDescriptionWithIndentation(view, 0);
}

Array allSubviews(const ViewRef& view) {
  Array views = Array::array();
  collect(view, views);
  return views;
}

void removeAllSubviews(const ViewRef& view) {
  const auto snapshot = view->subviews();
  for (const auto& subview : snapshot) subview->removeFromSuperview();
}

Array disableAllSubcontrols(const ViewRef& view) {
  Array disabled = Array::array();
  for (const Value& v : allSubviews(view)) {
    const auto control = v.asObject<Control>();
    if (!control || !control->isEnabled()) continue;
    control->setEnabled(false);
    disabled.addObject(v);
  }
  return disabled;
}

void enableAllSubcontrols(const ViewRef& view) {
  for (const Value& v : allSubviews(view))
    if (const auto control = v.asObject<Control>()) control->setEnabled(true);
}

Point upperLeftCorner(const ViewRef& view) {
  const Rect f = view->frame();
  return {f.origin.x, f.origin.y + f.size.height};
}

void setUpperLeftCorner(const ViewRef& view, Point point) {
  view->setFrameOrigin({point.x, point.y - view->frame().size.height});
}

void addConstrainedBasedSubview(const ViewRef& view, const ViewRef& subview, double priority) {
  view->addSubview(subview);
  subview->setTranslatesAutoresizingMaskIntoConstraints(false);
  const Dictionary metrics{{u"priority", priority}};
  const Dictionary views{{u"theViewToAdd", Value(subview)}};
  view->addConstraints(
      constraintsWithVisualFormat(u"H:|-0@priority-[theViewToAdd]-0@priority-|", metrics, views));
  view->addConstraints(
      constraintsWithVisualFormat(u"V:|-0@priority-[theViewToAdd]-0@priority-|", metrics, views));
}

void addConstrainedBasedSubview(const ViewRef& view, const ViewRef& subview) {
  _addConstraintsForSubview(view, subview);
}

void addConstrainedBasedSubview(const ViewRef& view, const ViewRef& subview,
                                WindowOrderingMode place, const ViewRef& relativeTo) {
  view->addSubview(subview, place, relativeTo);
  _addConstraintsForSubview(view, subview);
}

void _addConstraintsForSubview(const ViewRef& view, const ViewRef& subview) {
  addConstrainedBasedSubview(view, subview, 999);
}

void setContentCompressionResistanceOnAllSubviews(const ViewRef& view, Integer priority) {
  view->setContentCompressionResistancePriority(static_cast<float>(priority),
                                                LayoutConstraintOrientation::Vertical);
  view->setContentCompressionResistancePriority(static_cast<float>(priority),
                                                LayoutConstraintOrientation::Horizontal);
  for (const auto& subview : view->subviews())
    setContentCompressionResistanceOnAllSubviews(subview, priority);
}

ViewRef commonSuperviewWithView(const ViewRef& view, const ViewRef& other) {
  for (ViewRef candidate = view; candidate; candidate = candidate->superview())
    if (other && other->isDescendantOf(*candidate)) return candidate;
  KU_ASSERT(false, u"-[NSView(KUExtensions) commonSuperviewWithView:]", Value(view),
            u"Can't constrain two views that do not share a common superview. Make sure "
            u"that both views have been added into the same view hierarchy.");
  return nullptr;
}

ViewRef viewWithIdentifier(const ViewRef& view, const String& identifier) {
  if (identifier.isNil()) return nullptr;
  for (const auto& subview : view->subviews())
    if (subview->identifier() == identifier) return subview;
  for (const auto& subview : view->subviews())
    if (auto found = viewWithIdentifier(subview, identifier)) return found;
  return nullptr;
}

ViewRef firstAncestorOrSelfViewOfClass(const ViewRef& view, const ClassInfo& viewClass) {
  for (ViewRef v = view; v; v = v->superview())
    if (&v->classInfo() == &viewClass) return v;
  return nullptr;
}

Array constraintsAffectingView(const ViewRef& view, const ViewRef& other) {
  return filterWithBlock(view->constraintsArray(), [&](const Value& v) {
    const auto c = v.asObject<LayoutConstraint>();
    return c && (c->firstItem.lock() == other || c->secondItem.lock() == other);
  });
}

ViewRef selfOrSuperViewInFullScreenMode(const ViewRef& view) {
  for (ViewRef v = view; v; v = v->superview())
    if (v->isInFullScreenMode()) return v;
  return nullptr;
}

}  // namespace tarnvik
