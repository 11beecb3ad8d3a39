#include "tarnvik/platform/ui/alert.hpp"

#include <deque>
#include <mutex>

#include "tarnvik/platform/base/internal/message.hpp"

namespace tarnvik {

TARNVIK_DEFINE_CLASS(UserDefaultsController, Object, (void)c)
TARNVIK_DEFINE_CLASS(Button, Control,
                     c.method(u"title", &Button::title).method(u"state", &Button::state))
TARNVIK_DEFINE_CLASS(Alert, Object,
                     c.method(u"messageText", &Alert::messageText)
                         .method(u"informativeText", &Alert::informativeText))

namespace {

std::mutex queueLock;
std::deque<std::function<void()>>& queue() {
  static std::deque<std::function<void()>> tasks;
  return tasks;
}

std::mutex presenterLock;
std::shared_ptr<AlertPresenter>& installedPresenter() {
  static std::shared_ptr<AlertPresenter> presenter;
  return presenter;
}

std::function<void()>& wakeUpHook() {
  static std::function<void()> hook;
  return hook;
}

}  // namespace

void MainQueue::async(std::function<void()> task) {
  if (!task) return;
  std::function<void()> wakeUp;
  {
    const std::lock_guard lock(queueLock);
    queue().push_back(std::move(task));
    wakeUp = wakeUpHook();
  }
  if (wakeUp) wakeUp();
}

void MainQueue::setWakeUp(std::function<void()> wakeUp) {
  const std::lock_guard lock(queueLock);
  wakeUpHook() = std::move(wakeUp);
}

std::size_t MainQueue::drain() {
  std::size_t ran = 0;
  while (true) {
    std::function<void()> task;
    {
      const std::lock_guard lock(queueLock);
      if (queue().empty()) return ran;
      task = std::move(queue().front());
      queue().pop_front();
    }
    task();
    ++ran;
  }
}

std::size_t MainQueue::pending() {
  const std::lock_guard lock(queueLock);
  return queue().size();
}

std::shared_ptr<UserDefaultsController> UserDefaultsController::sharedUserDefaultsController() {
  static const auto shared = std::make_shared<UserDefaultsController>();
  return shared;
}

bool Button::state() const {
  if (boundTo_) return boundTo_->defaults().boolForKey(boundKey_);
  return state_;
}

void Button::setState(bool on) {
  state_ = on;
  if (boundTo_) boundTo_->defaults().setBool(on, boundKey_);
}

void Button::bind(const String& binding, const std::shared_ptr<UserDefaultsController>& controller,
                  const String& keyPath) {
  if (binding != String(u"value") || !controller || keyPath.isNil() ||
      !keyPath.hasPrefix(u"values.") || keyPath.length() <= 7) {
    throw Exception(NSInvalidArgumentException,
                    message::build(u"Button::bind: cannot bind ", binding, u" to ", keyPath));
  }
  boundTo_ = controller;
  boundKey_ = keyPath.substringFromIndex(7);
}

void Button::sizeToFit() {
  const double scale = controlSize_ == 1 ? 0.85 : controlSize_ == 2 ? 0.7 : 1.0;
  Rect f = frame();
  f.size = {(22 + 7.0 * static_cast<double>(title_.length())) * scale, 18 * scale};
  setFrame(f);
}

void Alert::addButtonWithTitle(const String& title) {
  if (buttons_.size() >= 3) {
    throw Exception(NSInvalidArgumentException,
                    u"Alert::addButtonWithTitle: at most three buttons");
  }
  buttons_.push_back(title);
  responses_.push_back(NSAlertFirstButtonReturn + static_cast<Integer>(responses_.size()));
}

Integer Alert::responseForButtonAtIndex(std::size_t index) const {
  if (index >= responses_.size()) {
    throw Exception(NSRangeException,
                    message::build(u"Alert::responseForButtonAtIndex: no button ", index));
  }
  return responses_[index];
}

std::shared_ptr<Alert> Alert::alertWithMessageText(const String& message,
                                                   const String& defaultButton,
                                                   const String& alternateButton,
                                                   const String& otherButton,
                                                   const String& informativeText) {
  auto alert = std::make_shared<Alert>();
  alert->messageText_ = message;
  alert->informativeText_ = informativeText;
  alert->buttons_.push_back(defaultButton.isNil() ? String(u"OK") : defaultButton);
  alert->responses_.push_back(NSAlertDefaultReturn);
  if (!alternateButton.isNil()) {
    alert->buttons_.push_back(alternateButton);
    alert->responses_.push_back(NSAlertAlternateReturn);
  }
  if (!otherButton.isNil()) {
    alert->buttons_.push_back(otherButton);
    alert->responses_.push_back(NSAlertOtherReturn);
  }
  return alert;
}

Integer Alert::runModal() {
  if (auto shown = presenter()) return shown->runModal(*this);
  return responses_.empty() ? NSAlertFirstButtonReturn : responses_.front();
}

void Alert::beginSheetModalForWindow(const std::shared_ptr<Window>& window,
                                     std::function<void(Integer)> completion) {
  auto shown = presenter();
  if (shown && window) {
    shown->beginSheetModal(*this, *window, std::move(completion));
    return;
  }
  const Integer response = responses_.empty() ? NSAlertFirstButtonReturn : responses_.front();
  if (completion) MainQueue::async([completion, response] { completion(response); });
}

void Alert::setPresenter(std::shared_ptr<AlertPresenter> presenter) {
  const std::lock_guard lock(presenterLock);
  installedPresenter() = std::move(presenter);
}

std::shared_ptr<AlertPresenter> Alert::presenter() {
  const std::lock_guard lock(presenterLock);
  return installedPresenter();
}

}  // namespace tarnvik
