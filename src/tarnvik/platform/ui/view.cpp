#include "tarnvik/platform/ui/view.hpp"

#include <algorithm>
#include <cmath>

#include "tarnvik/platform/base/internal/message.hpp"

namespace tarnvik {

TARNVIK_DEFINE_CLASS(View, Object,
                     c.method(u"identifier", &View::identifier)
                         .method(u"isFlipped", &View::isFlipped)
                         .method(u"isInFullScreenMode", &View::isInFullScreenMode))
TARNVIK_DEFINE_CLASS(Control, View, c.method(u"isEnabled", &Control::isEnabled))
TARNVIK_DEFINE_CLASS(Window, Object, c.method(u"title", &Window::title))
TARNVIK_DEFINE_CLASS(LayoutConstraint, Object,
                     c.method(u"priority", &LayoutConstraint::priorityValue))

String NSStringFromRect(Rect rect) {
  return message::build(u"{", NSStringFromPoint(rect.origin), u", ", NSStringFromSize(rect.size),
                        u"}");
}

std::shared_ptr<View> View::viewWithFrame(Rect frame) {
  auto view = std::make_shared<View>();
  view->frame_ = frame;
  return view;
}

void View::setFrame(Rect frame) {
  frame_.origin = frame.origin;
  setFrameSize(frame.size);
}

void View::setFrameSize(Size size) {
  const Size old = frame_.size;
  frame_.size = size;
  if (autoresizesSubviews_ && !(old == size)) resizeSubviewsWithOldSize(old);
}

namespace {

// Shares the change of the superview's extent among a subview's flexible parts (leading
// margin, size, trailing margin) along one axis.
void autoresize(double delta, bool minFlexible, bool sizeFlexible, bool maxFlexible, double& origin,
                double& length) {
  const int parts = minFlexible + sizeFlexible + maxFlexible;
  if (parts == 0 || delta == 0) return;
  const double share = delta / parts;
  if (minFlexible) origin += share;
  if (sizeFlexible) length = std::max(0.0, length + share);
}

}  // namespace

void View::resizeSubviewsWithOldSize(Size old) {
  const double dx = frame_.size.width - old.width;
  const double dy = frame_.size.height - old.height;
  for (const auto& subview : subviews_) {
    const UInteger mask = subview->autoresizingMask_;
    Rect f = subview->frame_;
    autoresize(dx, mask & NSViewMinXMargin, mask & NSViewWidthSizable, mask & NSViewMaxXMargin,
               f.origin.x, f.size.width);
    autoresize(dy, mask & NSViewMinYMargin, mask & NSViewHeightSizable, mask & NSViewMaxYMargin,
               f.origin.y, f.size.height);
    subview->setFrame(f);
  }
}

Array View::subviewsArray() const {
  Array views = Array::array();
  for (const auto& v : subviews_) views.addObject(Value(v));
  return views;
}

void View::addSubview(const std::shared_ptr<View>& view) {
  addSubview(view, NSWindowAbove, nullptr);
}

void View::addSubview(const std::shared_ptr<View>& view, WindowOrderingMode place,
                      const std::shared_ptr<View>& relativeTo) {
  if (!view) {
    throw Exception(NSInvalidArgumentException, u"View::addSubview: nil view");
  }
  if (view.get() == this || isDescendantOf(*view)) {
    throw Exception(NSInvalidArgumentException,
                    u"View::addSubview: a view cannot become its own descendant");
  }
  view->removeFromSuperview();
  auto at = std::find(subviews_.begin(), subviews_.end(), relativeTo);
  if (!relativeTo || at == subviews_.end()) {
    at = place == NSWindowBelow ? subviews_.begin() : subviews_.end();
  } else if (place != NSWindowBelow) {
    ++at;
  }
  subviews_.insert(at, view);
  view->superview_ = std::static_pointer_cast<View>(shared_from_this());
}

void View::removeFromSuperview() {
  auto parent = superview_.lock();
  superview_.reset();
  if (!parent) return;
  auto& siblings = parent->subviews_;
  const auto at = std::find_if(siblings.begin(), siblings.end(),
                               [this](const auto& v) { return v.get() == this; });
  if (at != siblings.end()) siblings.erase(at);
}

bool View::isDescendantOf(const View& view) const {
  for (const View* v = this; v; v = v->superview_.lock().get())
    if (v == &view) return true;
  return false;
}

Array View::constraintsArray() const {
  Array constraints = Array::array();
  for (const auto& c : constraints_) constraints.addObject(Value(c));
  return constraints;
}

void View::addConstraints(const std::vector<LayoutConstraintRef>& constraints) {
  constraints_.insert(constraints_.end(), constraints.begin(), constraints.end());
}

float View::contentCompressionResistancePriorityForOrientation(
    LayoutConstraintOrientation o) const {
  return compression_[o == LayoutConstraintOrientation::Vertical];
}

void View::setContentCompressionResistancePriority(float priority, LayoutConstraintOrientation o) {
  compression_[o == LayoutConstraintOrientation::Vertical] = priority;
}

namespace {

class VisualFormat {
 public:
  VisualFormat(const String& format, const Dictionary& metrics, const Dictionary& views)
      : text_(format.units()), format_(format), metrics_(metrics), views_(views) {}

  std::vector<LayoutConstraintRef> parse() {
    bool vertical = false;
    if (take(u"H:"))
      vertical = false;
    else if (take(u"V:"))
      vertical = true;
    expect(u"|");
    const auto [leadMargin, leadPriority] = spacing();
    expect(u"[");
    const std::size_t start = at_;
    while (at_ < text_.size() && text_[at_] != u']') ++at_;
    const String name(text_.substr(start, at_ - start));
    expect(u"]");
    const auto [trailMargin, trailPriority] = spacing();
    expect(u"|");
    if (at_ != text_.size()) fail();
    const auto view = views_.objectForKey(name).asObject<View>();
    const auto superview = view ? view->superview() : nullptr;
    if (!view) fail();
    const LayoutAttribute lead = vertical ? LayoutAttribute::Top : LayoutAttribute::Leading;
    const LayoutAttribute trail = vertical ? LayoutAttribute::Bottom : LayoutAttribute::Trailing;
    return {
        std::make_shared<LayoutConstraint>(view, lead, superview, lead, leadMargin, leadPriority),
        std::make_shared<LayoutConstraint>(superview, trail, view, trail, trailMargin,
                                           trailPriority),
    };
  }

 private:
  [[noreturn]] void fail() const {
    throw Exception(NSInvalidArgumentException,
                    message::build(u"Unable to parse constraint format: \"", format_, u"\"."));
  }
  bool take(std::u16string_view s) {
    if (text_.substr(at_, s.size()) != s) return false;
    at_ += s.size();
    return true;
  }
  void expect(std::u16string_view s) {
    if (!take(s)) fail();
  }
  double number() {
    const std::size_t start = at_;
    while (at_ < text_.size() && text_[at_] != u'@' && text_[at_] != u'-' && text_[at_] != u'[' &&
           text_[at_] != u']' && text_[at_] != u'|')
      ++at_;
    const String word(text_.substr(start, at_ - start));
    if (word.length() == 0) fail();
    const Value metric = metrics_.objectForKey(word);
    if (metric.isNumber()) return metric.doubleValue();
    const std::string ascii = word.utf8();
    char* end = nullptr;
    const double value = std::strtod(ascii.c_str(), &end);
    if (*end || !std::isfinite(value)) fail();
    return value;
  }
  // "-margin@priority-", "-margin-", or nothing (margin 0 at the required priority).
  std::pair<double, double> spacing() {
    if (!take(u"-")) return {0, 1000};
    const double margin = number();
    const double priority = take(u"@") ? number() : 1000;
    expect(u"-");
    return {margin, priority};
  }

  std::u16string_view text_;
  String format_;
  Dictionary metrics_;
  Dictionary views_;
  std::size_t at_ = 0;
};

}  // namespace

std::vector<LayoutConstraintRef> constraintsWithVisualFormat(const String& format,
                                                             const Dictionary& metrics,
                                                             const Dictionary& views) {
  if (format.isNil())
    throw Exception(NSInvalidArgumentException, u"Unable to parse constraint format: nil.");
  return VisualFormat(format, metrics, views).parse();
}

}  // namespace tarnvik
