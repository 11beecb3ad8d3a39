// Headless views: a tree of rectangles in their superview's coordinates, as a windowing
// toolkit keeps them, with the pieces the UI helpers use (flipped coordinates, autoresizing,
// controls, layout constraints, identifiers, full-screen mode). A toolkit adapter mirrors a
// real widget tree into these, or subclasses them.
//
//   auto panel = View::viewWithFrame({{0, 0}, {400, 300}});
//   auto ok = std::make_shared<Control>();
//   panel->addSubview(ok);
//   NSStringFromRect(ok->frame());  // "{{0, 0}, {0, 0}}"
#pragma once

#include <memory>
#include <vector>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/geometry.hpp"
#include "tarnvik/platform/base/object.hpp"

namespace tarnvik {

struct Rect {
  Point origin;
  Size size;
  friend bool operator==(const Rect&, const Rect&) = default;
};
inline constexpr Rect NSMakeRect(double x, double y, double w, double h) {
  return {{x, y}, {w, h}};
}
// "{{x, y}, {w, h}}", each number in its shortest exact form.
String NSStringFromRect(Rect rect);

// Autoresizing mask bits: which margins and sizes follow the superview's size changes.
enum : UInteger {
  NSViewNotSizable = 0,
  NSViewMinXMargin = 1,
  NSViewWidthSizable = 2,
  NSViewMaxXMargin = 4,
  NSViewMinYMargin = 8,
  NSViewHeightSizable = 16,
  NSViewMaxYMargin = 32,
};
class View;

// Where addSubview places a view relative to another.
enum WindowOrderingMode : Integer { NSWindowBelow = -1, NSWindowOut = 0, NSWindowAbove = 1 };
enum class LayoutConstraintOrientation : Integer { Horizontal = 0, Vertical = 1 };
enum class LayoutAttribute : Integer { Left = 1, Right, Top, Bottom, Leading, Trailing };

// One layout constraint: firstItem.firstAttribute == secondItem.secondAttribute * multiplier
// + constant, at a priority. Items are held weakly.
class LayoutConstraint : public Object {
 public:
  LayoutConstraint(std::weak_ptr<View> first, LayoutAttribute firstAttribute,
                   std::weak_ptr<View> second, LayoutAttribute secondAttribute, double constant,
                   double priority)
      : firstItem(std::move(first)),
        firstAttribute(firstAttribute),
        secondItem(std::move(second)),
        secondAttribute(secondAttribute),
        constant(constant),
        priority(priority) {}
  std::weak_ptr<View> firstItem;
  LayoutAttribute firstAttribute = LayoutAttribute::Leading;
  std::weak_ptr<View> secondItem;
  LayoutAttribute secondAttribute = LayoutAttribute::Leading;
  double multiplier = 1;
  double constant = 0;
  double priority = 1000;
  double priorityValue() const { return priority; }
  TARNVIK_CLASS(LayoutConstraint)
};
using LayoutConstraintRef = std::shared_ptr<LayoutConstraint>;

class View : public Object {
 public:
  static std::shared_ptr<View> viewWithFrame(Rect frame);

  Rect frame() const { return frame_; }
  // Setting the size resizes the subviews by their autoresizing masks when
  // autoresizesSubviews is on.
  void setFrame(Rect frame);
  void setFrameOrigin(Point origin) { frame_.origin = origin; }
  void setFrameSize(Size size);
  Rect bounds() const { return {{0, 0}, frame_.size}; }
  bool isFlipped() const { return flipped_; }
  void setFlipped(bool flipped) { flipped_ = flipped; }
  bool autoresizesSubviews() const { return autoresizesSubviews_; }
  void setAutoresizesSubviews(bool on) { autoresizesSubviews_ = on; }
  UInteger autoresizingMask() const { return autoresizingMask_; }
  void setAutoresizingMask(UInteger mask) { autoresizingMask_ = mask; }

  const std::vector<std::shared_ptr<View>>& subviews() const { return subviews_; }
  // The subviews as an Array of views.
  Array subviewsArray() const;
  std::shared_ptr<View> superview() const { return superview_.lock(); }
  // Adds the view above its siblings (moving it there when it is already a subview; taking it
  // from another superview first).
  void addSubview(const std::shared_ptr<View>& view);
  // Adds the view just above or below `relativeTo` (at the top or bottom when that is nil or
  // not a subview).
  void addSubview(const std::shared_ptr<View>& view, WindowOrderingMode place,
                  const std::shared_ptr<View>& relativeTo);
  void removeFromSuperview();
  // Whether the view is this one or lies below it.
  bool isDescendantOf(const View& view) const;

  const String& identifier() const { return identifier_; }
  void setIdentifier(const String& identifier) { identifier_ = identifier; }
  bool isInFullScreenMode() const { return fullScreen_; }
  void setInFullScreenMode(bool on) { fullScreen_ = on; }

  bool translatesAutoresizingMaskIntoConstraints() const { return translatesMask_; }
  void setTranslatesAutoresizingMaskIntoConstraints(bool on) { translatesMask_ = on; }
  const std::vector<LayoutConstraintRef>& constraints() const { return constraints_; }
  // The constraints as an Array.
  Array constraintsArray() const;
  void addConstraints(const std::vector<LayoutConstraintRef>& constraints);
  void removeConstraints() { constraints_.clear(); }
  // 750 for both orientations until set.
  float contentCompressionResistancePriorityForOrientation(LayoutConstraintOrientation o) const;
  void setContentCompressionResistancePriority(float priority, LayoutConstraintOrientation o);

 private:
  void resizeSubviewsWithOldSize(Size old);
  Rect frame_;
  bool flipped_ = false;
  bool autoresizesSubviews_ = true;
  UInteger autoresizingMask_ = NSViewNotSizable;
  std::vector<std::shared_ptr<View>> subviews_;
  std::weak_ptr<View> superview_;
  String identifier_;
  bool fullScreen_ = false;
  bool translatesMask_ = true;
  std::vector<LayoutConstraintRef> constraints_;
  float compression_[2] = {750, 750};
  TARNVIK_CLASS(View)
};

// The visual format language for the constraints that pin a view to its superview's edges:
// "H:|-<margin>@<priority>-[<name>]-<margin>@<priority>-|" (and "V:..."), where margin and
// priority are numbers or names from `metrics`, and name a key of `views`. Margins and
// priorities may be left out ("H:|[view]|"). Anything else raises
// NSInvalidArgumentException naming the format.
std::vector<LayoutConstraintRef> constraintsWithVisualFormat(const String& format,
                                                             const Dictionary& metrics,
                                                             const Dictionary& views);

// A view the user acts on, which can be disabled.
class Control : public View {
 public:
  bool isEnabled() const { return enabled_; }
  void setEnabled(bool enabled) { enabled_ = enabled; }

 private:
  bool enabled_ = true;
  TARNVIK_CLASS(Control)
};

class Window : public Object {
 public:
  const String& title() const { return title_; }
  void setTitle(const String& title) { title_ = title; }
  const std::shared_ptr<View>& contentView() const { return contentView_; }
  void setContentView(std::shared_ptr<View> view) { contentView_ = std::move(view); }

 private:
  String title_;
  std::shared_ptr<View> contentView_ = std::make_shared<View>();
  TARNVIK_CLASS(Window)
};

}  // namespace tarnvik
