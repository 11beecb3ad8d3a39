#include "tarnvik/ui/alerts.hpp"

#include <mutex>
#include <unordered_map>

#include "tarnvik/platform/system/bundle.hpp"

namespace tarnvik {
namespace {

// Keys kept beside alerts, as associated values: an entry lives as long as its alert.
struct AssociatedKeys {
  std::mutex lock;
  std::unordered_map<const Alert*, std::pair<std::weak_ptr<Alert>, String>> keys;
};
AssociatedKeys& associated() {
  static AssociatedKeys table;
  return table;
}

bool suppressed(const AlertRef& alert) {
  const String key = dontShowAgainDefaultsKey(alert);
  return !key.isNil() && UserDefaults::standardUserDefaults().boolForKey(key);
}

}  // namespace

String dontShowAgainDefaultsKey(const AlertRef& alert) {
  if (!alert) return String();
  auto& table = associated();
  const std::lock_guard guard(table.lock);
  const auto found = table.keys.find(alert.get());
  if (found == table.keys.end() || found->second.first.lock() != alert) return String();
  return found->second.second;
}

void setDontShowAgainDefaultsKey(const AlertRef& alert, const String& key) {
  if (!alert) return;
  auto& table = associated();
  const std::lock_guard guard(table.lock);
  std::erase_if(table.keys, [](const auto& entry) { return entry.second.first.expired(); });
  if (key.isNil())
    table.keys.erase(alert.get());
  else
    table.keys[alert.get()] = {alert, key};
}

AlertRef
ke_alertWithMessageTextDefaultButtonAlternateButtonOtherButtonDontShowAgainDefaultsKeyDontShowAgainMessageInformativeText(
    const String& message, const String& defaultButton, const String& alternateButton,
    const String& otherButton, const String& dontShowAgainDefaultsKey,
    const String& dontShowAgainMessage, const String& informativeText) {
  auto checkBox = std::make_shared<Button>();
  checkBox->setFrame({});
  checkBox->setControlSize(1);
  checkBox->setButtonType(ButtonType::Switch);
  checkBox->setBezelStyle(2);
  checkBox->setImagePosition(2);
  checkBox->setTitle(dontShowAgainMessage);
  checkBox->sizeToFit();
  checkBox->bind(u"value", UserDefaultsController::sharedUserDefaultsController(),
                 stringWithFormat(u"values.%@", dontShowAgainDefaultsKey));
  auto alert =
      ke_alertWithMessageTextDefaultButtonAlternateButtonOtherButtonInformativeTextWithFormat(
          message, defaultButton, alternateButton, otherButton, u"%@", informativeText);
  alert->setAccessoryView(checkBox);
  setDontShowAgainDefaultsKey(alert, dontShowAgainDefaultsKey);
  return alert;
}

AlertRef
ke_alertWithMessageTextDefaultButtonAlternateButtonOtherButtonDontShowAgainDefaultsKeyInformativeText(
    const String& message, const String& defaultButton, const String& alternateButton,
    const String& otherButton, const String& dontShowAgainDefaultsKey,
    const String& informativeText) {
  const String title = localizedString(u"Don't show this message again", u"", u"NSAlert");
  return ke_alertWithMessageTextDefaultButtonAlternateButtonOtherButtonDontShowAgainDefaultsKeyDontShowAgainMessageInformativeText(
      message, defaultButton, alternateButton, otherButton, dontShowAgainDefaultsKey, title,
      informativeText);
}

AlertRef
ke_alertWithMessageTextDefaultButtonAlternateButtonOtherButtonInformativeTextWithFormatArguments(
    const String& message, const String& defaultButton, const String& alternateButton,
    const String& otherButton, const String& informativeText) {
  return Alert::alertWithMessageText(message, defaultButton, alternateButton, otherButton,
                                     informativeText);
}

Integer runModalIfShouldShowWithDefaultResponse(const AlertRef& alert, Integer defaultResponse) {
  if (suppressed(alert)) return defaultResponse;
  return alert->runModal();
}

void beginSheetModalIfShouldShowForWindow(const AlertRef& alert,
                                          const std::shared_ptr<Window>& window,
                                          Integer defaultResponse,
                                          const std::function<void(Integer)>& completionHandler) {
  if (suppressed(alert)) {
    if (completionHandler)
      MainQueue::async(
          [completionHandler, defaultResponse] { completionHandler(defaultResponse); });
    return;
  }
  alert->beginSheetModalForWindow(window, [completionHandler](Integer response) {
    if (completionHandler) completionHandler(response);
  });
}

}  // namespace tarnvik
