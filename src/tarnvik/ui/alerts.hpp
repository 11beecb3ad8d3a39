// Alerts the user may silence for good: a "Don't show this message again" check box bound to
// a boolean in the standard user defaults, and showing (modal or as a sheet) only while that
// boolean is NO; otherwise the caller gets the default response at once.
//
//   auto alert =
//   ke_alertWithMessageTextDefaultButtonAlternateButtonOtherButtonDontShowAgainDefaultsKeyInformativeText(
//       u"Replace the clip?", u"Replace", u"Cancel", String(), u"skipReplaceWarning", u"...");
//   Integer response = runModalIfShouldShowWithDefaultResponse(alert, NSAlertDefaultReturn);
#pragma once

#include <functional>

#include "tarnvik/platform/text/format.hpp"
#include "tarnvik/platform/ui/alert.hpp"

namespace tarnvik {

using AlertRef = std::shared_ptr<Alert>;

// The alert with a check box titled `dontShowAgainMessage`, bound to the key's boolean.
AlertRef
ke_alertWithMessageTextDefaultButtonAlternateButtonOtherButtonDontShowAgainDefaultsKeyDontShowAgainMessageInformativeText(
    const String& message, const String& defaultButton, const String& alternateButton,
    const String& otherButton, const String& dontShowAgainDefaultsKey,
    const String& dontShowAgainMessage, const String& informativeText);
// The same with the localized title "Don't show this message again" (table "NSAlert").
AlertRef
ke_alertWithMessageTextDefaultButtonAlternateButtonOtherButtonDontShowAgainDefaultsKeyInformativeText(
    const String& message, const String& defaultButton, const String& alternateButton,
    const String& otherButton, const String& dontShowAgainDefaultsKey,
    const String& informativeText);
// An alert without check box; the informative text is formatted first, so the alert shows a
// "%" in the arguments as it stands.
AlertRef
ke_alertWithMessageTextDefaultButtonAlternateButtonOtherButtonInformativeTextWithFormatArguments(
    const String& message, const String& defaultButton, const String& alternateButton,
    const String& otherButton, const String& informativeText);
template <class... Args>
AlertRef ke_alertWithMessageTextDefaultButtonAlternateButtonOtherButtonInformativeTextWithFormat(
    const String& message, const String& defaultButton, const String& alternateButton,
    const String& otherButton, const String& format, const Args&... args) {
  return ke_alertWithMessageTextDefaultButtonAlternateButtonOtherButtonInformativeTextWithFormatArguments(
      message, defaultButton, alternateButton, otherButton, stringWithFormat(format, args...));
}

// The user-defaults key that suppresses the alert; nil (never suppressed) unless set. Kept
// beside the alert for its lifetime.
String dontShowAgainDefaultsKey(const AlertRef& alert);
void setDontShowAgainDefaultsKey(const AlertRef& alert, const String& key);

// `defaultResponse` without showing anything while the key's boolean is YES; otherwise the
// alert's response.
Integer runModalIfShouldShowWithDefaultResponse(const AlertRef& alert, Integer defaultResponse);
// While the key's boolean is YES the handler gets `defaultResponse` from the main queue (never
// before this returns); otherwise the alert is shown as a sheet on the window.
void beginSheetModalIfShouldShowForWindow(const AlertRef& alert,
                                          const std::shared_ptr<Window>& window,
                                          Integer defaultResponse,
                                          const std::function<void(Integer)>& completionHandler);

}  // namespace tarnvik
