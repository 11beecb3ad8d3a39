// Error (a domain, a code and a user-info dictionary), the platform's Exception with a
// name and a reason, and the replaceable AssertionHandler.
//
//   Error e(u"MyDomain", 3, Dictionary{{NSLocalizedFailureReasonErrorKey, u"disk full"}});
//   e.localizedDescription();  // "The operation couldn’t be completed. disk full"
#pragma once

#include <exception>
#include <memory>
#include <string>

#include "tarnvik/platform/base/dictionary.hpp"
#include "tarnvik/platform/base/value.hpp"

namespace tarnvik {

inline constexpr char16_t NSLocalizedDescriptionKey[] = u"NSLocalizedDescription";
inline constexpr char16_t NSLocalizedFailureReasonErrorKey[] = u"NSLocalizedFailureReason";
inline constexpr char16_t NSUnderlyingErrorKey[] = u"NSUnderlyingError";
inline constexpr char16_t NSDetailedErrorsKey[] = u"NSDetailedErrors";
inline constexpr char16_t NSCocoaErrorDomain[] = u"NSCocoaErrorDomain";
// The code in NSCocoaErrorDomain of an operation its caller cancelled.
inline constexpr Integer NSUserCancelledError = 3072;
// Validation codes of the object-graph store in NSCocoaErrorDomain.
inline constexpr Integer NSManagedObjectValidationError = 1550;
inline constexpr Integer NSValidationMultipleErrorsError = 1560;
inline constexpr Integer NSValidationRelationshipDeniedDeleteError = 1600;

inline constexpr char16_t NSInvalidArgumentException[] = u"NSInvalidArgumentException";
inline constexpr char16_t NSRangeException[] = u"NSRangeException";
inline constexpr char16_t NSInternalInconsistencyException[] = u"NSInternalInconsistencyException";
// Raised by key-value coding for a key a class does not know.
inline constexpr char16_t NSUndefinedKeyException[] = u"NSUnknownKeyException";

struct ErrorStorage;

// A handle to an immutable error. A default-constructed Error is nil. The class name is
// part of the error ("NSError" unless a subclass such as KEError made it).
class Error {
 public:
  Error() = default;
  // A nil user info is stored as an empty dictionary.
  Error(const String& domain, Integer code, const Dictionary& userInfo = Dictionary());

  bool isNil() const { return !storage_; }
  String domain() const;
  Integer code() const;
  Dictionary userInfo() const;
  String className() const;
  bool isKindOfClass(const String& className) const;

  // NSLocalizedDescriptionKey when set; otherwise "The operation couldn’t be completed."
  // followed by the failure reason, or by "(<domain> error <code>.)" when there is none.
  String localizedDescription() const;
  // NSLocalizedFailureReasonErrorKey, or nil.
  String localizedFailureReason() const;
  // NSUnderlyingErrorKey, or nil.
  Error underlyingError() const;
  // How an error describes itself (in logs, in %@): coreDataErrorDescription for a store's
  // multiple-validation error (NSCocoaErrorDomain, 1560), standardErrorDescription otherwise.
  String description() const;
  // "<NSError 0x...>\n", then tab-indented lines: " domain: ..." (left out when the domain is
  // nil), " code: ...", " userInfo: ...", " localizedDesciption: ..." and " errorName: ...".
  String standardErrorDescription() const;
  // The same first four lines; then for code 1560 one line per error under
  // NSDetailedErrorsKey ("\t detailed error\t error : <description>, <user info>\t
  // errorName: <name>"), and for any other code "\t errorName:<name>".
  String coreDataErrorDescription() const;
  // The symbolic name of a store validation code in NSCocoaErrorDomain
  // ("NSValidationMultipleErrorsError", ...; "Unknown" for other codes there); the empty
  // string in any other domain.
  String errorName() const;

  // Same domain, code and user info.
  bool isEqual(const Error& other) const;
  std::size_t hash() const;
  bool isIdenticalTo(const Error& other) const { return storage_ == other.storage_; }

 protected:
  Error(const String& className, const String& domain, Integer code, const Dictionary& userInfo);

 private:
  friend class Value;
  explicit Error(std::shared_ptr<ErrorStorage> storage) : storage_(std::move(storage)) {}
  std::shared_ptr<ErrorStorage> storage_;
};

// An exception raised for a broken precondition: a name such as
// NSInvalidArgumentException and the exact reason text. what() gives the reason in UTF-8.
class Exception : public std::exception {
 public:
  Exception(const String& name, const String& reason, const Dictionary& userInfo = Dictionary());
  const String& name() const { return name_; }
  const String& reason() const { return reason_; }
  const Dictionary& userInfo() const { return userInfo_; }
  const char* what() const noexcept override { return what_.c_str(); }

 private:
  String name_;
  String reason_;
  Dictionary userInfo_;
  std::string what_;
};

// Receives assertion failures. The default handler raises an Exception named
// NSInternalInconsistencyException whose reason is the description; a handler that
// returns instead lets the failing operation go on with its documented fallback.
class AssertionHandler {
 public:
  virtual ~AssertionHandler() = default;
  virtual void handleFailureInMethod(const String& method, const Value& object,
                                     const String& fileName, Integer line,
                                     const String& description);
  virtual void handleFailureInFunction(const String& function, const String& fileName, Integer line,
                                       const String& description);

  // The calling thread's handler.
  static AssertionHandler& currentHandler();
  // Installs a handler for the calling thread; nullptr restores the default.
  static void setCurrentHandler(std::shared_ptr<AssertionHandler> handler);
};

}  // namespace tarnvik
