// Alerts, their buttons and accessory view, a replaceable presenter that shows them (modal,
// or as a sheet on a window), check-box buttons bound to user defaults, and the main queue a
// desktop host drains.
//
//   Alert::setPresenter(myToolkitPresenter);  // a toolkit adapter shows real dialogs
//   auto alert = std::make_shared<Alert>();
//   alert->setMessageText(u"Replace the clip?");
//   alert->addButtonWithTitle(u"Replace");
//   Integer response = alert->runModal();  // NSAlertFirstButtonReturn when "Replace" is chosen
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "tarnvik/platform/system/user_defaults.hpp"
#include "tarnvik/platform/ui/view.hpp"

namespace tarnvik {

// The responses of an alert's buttons, in the order they were added.
inline constexpr Integer NSAlertFirstButtonReturn = 1000;
inline constexpr Integer NSAlertSecondButtonReturn = 1001;
inline constexpr Integer NSAlertThirdButtonReturn = 1002;
// The responses of alerts made by the older constructor with default, alternate and other
// buttons.
inline constexpr Integer NSAlertDefaultReturn = 1;
inline constexpr Integer NSAlertAlternateReturn = 0;
inline constexpr Integer NSAlertOtherReturn = -1;

// The work a desktop host runs on its main thread: tasks are queued by anyone and run, in
// order, when the host drains the queue from its event loop.
struct MainQueue {
  // Queues the task and calls the wake-up hook, if one is installed.
  static void async(std::function<void()> task);
  // Called (from the queuing thread) whenever a task is queued, so that an event loop can
  // schedule a drain; nullptr removes it.
  static void setWakeUp(std::function<void()> wakeUp);
  // Runs what is queued, including tasks queued meanwhile; returns how many ran.
  static std::size_t drain();
  static std::size_t pending();
};

// Reaches the standard user defaults through the key path "values.<key>", for bindings.
class UserDefaultsController : public Object {
 public:
  static std::shared_ptr<UserDefaultsController> sharedUserDefaultsController();
  UserDefaults& defaults() const { return UserDefaults::standardUserDefaults(); }
  TARNVIK_CLASS(UserDefaultsController)
};

enum class ButtonType : Integer { MomentaryLight = 0, PushOnPushOff = 1, Toggle = 2, Switch = 3 };

class Button : public Control {
 public:
  const String& title() const { return title_; }
  void setTitle(const String& title) { title_ = title; }
  ButtonType buttonType() const { return type_; }
  void setButtonType(ButtonType type) { type_ = type; }
  Integer bezelStyle() const { return bezelStyle_; }
  void setBezelStyle(Integer style) { bezelStyle_ = style; }
  Integer imagePosition() const { return imagePosition_; }
  void setImagePosition(Integer position) { imagePosition_ = position; }
  // 0 regular, 1 small, 2 mini.
  Integer controlSize() const { return controlSize_; }
  void setControlSize(Integer size) { controlSize_ = size; }
  // Ticked (a check box) or pressed in; read from and written to the bound value when there
  // is a binding.
  bool state() const;
  void setState(bool on);
  // Binds "value" to the controller's "values.<key>": the state is the stored boolean.
  void bind(const String& binding, const std::shared_ptr<UserDefaultsController>& controller,
            const String& keyPath);
  // Wide enough for the title (7 points a character, 22 for the box), 18 high; small and
  // mini controls are a little narrower and lower.
  void sizeToFit();

 private:
  String title_;
  ButtonType type_ = ButtonType::MomentaryLight;
  Integer bezelStyle_ = 1;
  Integer imagePosition_ = 0;
  Integer controlSize_ = 0;
  bool state_ = false;
  std::shared_ptr<UserDefaultsController> boundTo_;
  String boundKey_;
  TARNVIK_CLASS(Button)
};

class Alert;

// Shows alerts. A toolkit adapter installs one that shows real dialogs; tests install one
// that answers as scripted.
class AlertPresenter {
 public:
  virtual ~AlertPresenter() = default;
  virtual Integer runModal(Alert& alert) = 0;
  // Calls `completion` with the response when the sheet ends (never before this returns).
  virtual void beginSheetModal(Alert& alert, Window& window,
                               std::function<void(Integer)> completion) = 0;
};

class Alert : public Object {
 public:
  const String& messageText() const { return messageText_; }
  void setMessageText(const String& text) { messageText_ = text; }
  const String& informativeText() const { return informativeText_; }
  void setInformativeText(const String& text) { informativeText_ = text; }
  // At most three buttons; the first added is the default one.
  const std::vector<String>& buttonTitles() const { return buttons_; }
  void addButtonWithTitle(const String& title);
  // The response of the button at a position, as runModal reports it.
  Integer responseForButtonAtIndex(std::size_t index) const;
  const std::shared_ptr<View>& accessoryView() const { return accessoryView_; }
  void setAccessoryView(std::shared_ptr<View> view) { accessoryView_ = std::move(view); }

  // The alert of the older constructor: buttons "default" (or "OK" when nil), "alternate" and
  // "other" when given, responding NSAlertDefaultReturn, NSAlertAlternateReturn and
  // NSAlertOtherReturn; the informative text is the finished text (no format is applied).
  static std::shared_ptr<Alert> alertWithMessageText(const String& message,
                                                     const String& defaultButton,
                                                     const String& alternateButton,
                                                     const String& otherButton,
                                                     const String& informativeText);

  // Through the installed presenter; without one, the alert is answered at once with its
  // first button.
  Integer runModal();
  void beginSheetModalForWindow(const std::shared_ptr<Window>& window,
                                std::function<void(Integer)> completion);

  // The presenter for every alert; nullptr removes it.
  static void setPresenter(std::shared_ptr<AlertPresenter> presenter);
  static std::shared_ptr<AlertPresenter> presenter();

 private:
  String messageText_;
  String informativeText_;
  std::vector<String> buttons_;
  std::vector<Integer> responses_;
  std::shared_ptr<View> accessoryView_;
  TARNVIK_CLASS(Alert)
};

}  // namespace tarnvik
