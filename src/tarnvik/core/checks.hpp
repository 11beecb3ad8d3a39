// The three forms of precondition failure: an invalid-argument exception, a range
// exception, and a report to the current assertion handler.
//
//   if (prefix.isNil()) raiseInvalidArgument(u"Prefix must not be nil");
//   KU_ASSERT(text.length() < 16, u"-[NSString(KU) hexValue]", text,
//             u"%@ is too long to be converted to an integer", text);
#pragma once

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/text/format.hpp"

namespace tarnvik {

// Raises Exception(NSInvalidArgumentException, reason) with no user info.
[[noreturn]] void raiseInvalidArgument(const String& reason);
// Raises Exception(NSRangeException, reason).
[[noreturn]] void raiseRange(const String& reason);

template <class... Args>
[[noreturn]] void raiseInvalidArgumentFormat(const String& format, const Args&... args) {
  raiseInvalidArgument(stringWithFormat(format, args...));
}
template <class... Args>
[[noreturn]] void raiseRangeFormat(const String& format, const Args&... args) {
  raiseRange(stringWithFormat(format, args...));
}

// The base name of a source path ("<Unknown File>" when there is none).
String sourceFileName(const char* path);

// Reports a failed assertion to AssertionHandler::currentHandler(). Returns only when an
// installed handler returns.
void reportAssertionFailure(const String& method, const Value& object, const char* file,
                            Integer line, const String& description);

}  // namespace tarnvik

// Reports to the assertion handler when the condition is false. The message arguments
// are formatted only then.
#define KU_ASSERT(condition, method, object, ...)                                  \
  do {                                                                             \
    if (!(condition)) {                                                            \
      ::tarnvik::reportAssertionFailure(method, object, __FILE__, __LINE__,        \
                                        ::tarnvik::stringWithFormat(__VA_ARGS__)); \
    }                                                                              \
  } while (0)

// The parameter assertion: "Invalid parameter not satisfying: <conditionText>".
#define KU_PARAMETER_ASSERT(condition, conditionText, method, object)           \
  KU_ASSERT(condition, method, object, u"Invalid parameter not satisfying: %@", \
            ::tarnvik::String(conditionText))
