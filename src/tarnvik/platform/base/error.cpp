#include "tarnvik/platform/base/error.hpp"

#include "tarnvik/platform/base/internal/message.hpp"

namespace tarnvik {

struct ErrorStorage {
  String className;
  String domain;
  Integer code = 0;
  Dictionary userInfo;
};

Error::Error(const String& domain, Integer code, const Dictionary& userInfo)
    : Error(u"NSError", domain, code, userInfo) {}

Error::Error(const String& className, const String& domain, Integer code,
             const Dictionary& userInfo)
    : storage_(std::make_shared<ErrorStorage>(ErrorStorage{
          className, domain, code, userInfo.isNil() ? Dictionary::dictionary() : userInfo})) {}

String Error::domain() const { return storage_ ? storage_->domain : String(); }
Integer Error::code() const { return storage_ ? storage_->code : 0; }
Dictionary Error::userInfo() const { return storage_ ? storage_->userInfo : Dictionary(); }
String Error::className() const { return storage_ ? storage_->className : String(); }

bool Error::isKindOfClass(const String& name) const {
  if (isNil()) return false;
  return name == className() || name == String(u"NSError") || name == String(u"NSObject");
}

String Error::localizedDescription() const {
  if (isNil()) return String();
  const String description = storage_->userInfo.objectForKey(NSLocalizedDescriptionKey).asString();
  if (!description.isNil()) return description;
  const String reason = localizedFailureReason();
  if (!reason.isNil()) return message::build(u"The operation couldn\u2019t be completed. ", reason);
  return message::build(u"The operation couldn\u2019t be completed. (", domain(), u" error ",
                        code(), u".)");
}

String Error::localizedFailureReason() const {
  return userInfo().objectForKey(NSLocalizedFailureReasonErrorKey).asString();
}

Error Error::underlyingError() const {
  return userInfo().objectForKey(NSUnderlyingErrorKey).asError();
}

String Error::description() const {
  if (isNil()) return u"(null)";
  if (domain() == String(NSCocoaErrorDomain) && code() == NSValidationMultipleErrorsError)
    return coreDataErrorDescription();
  return standardErrorDescription();
}

namespace {

// The lines every description starts with: "<Class 0x...>", the domain (when there is one),
// the code and the user info.
std::u16string descriptionHeader(const Error& error, const void* identity) {
  std::u16string out;
  message::append(out, u"<");
  message::append(out, error.className());
  message::append(out, u" ");
  message::append(out, message::Pointer{identity});
  message::append(out, u">\n");
  if (!error.domain().isNil()) {
    message::append(out, u"\t domain: ");
    message::append(out, error.domain());
    message::append(out, u"\n");
  }
  message::append(out, u"\t code: ");
  message::append(out, error.code());
  message::append(out, u"\n\t userInfo: ");
  const Dictionary userInfo = error.userInfo();
  message::append(out, Value(userInfo).description());
  message::append(out, u"\n");
  return out;
}

}  // namespace

String Error::standardErrorDescription() const {
  if (isNil()) return u"(null)";
  std::u16string out = descriptionHeader(*this, storage_.get());
  // "Desciption" is how this line has always been labelled; readers match it.
  message::append(out, u"\t localizedDesciption: ");
  message::append(out, localizedDescription());
  message::append(out, u"\n\t errorName: ");
  message::append(out, errorName());
  message::append(out, u"\n");
  return String(std::move(out));
}

String Error::coreDataErrorDescription() const {
  if (isNil()) return u"(null)";
  std::u16string out = descriptionHeader(*this, storage_.get());
  if (code() != NSValidationMultipleErrorsError) {
    message::append(out, u"\t errorName:");
    message::append(out, errorName());
    message::append(out, u"\n");
    return String(std::move(out));
  }
  const Array detailed = userInfo().objectForKey(NSDetailedErrorsKey).asArray();
  if (!detailed.isNil()) {
    for (const Value& element : detailed) {
      const Error error = element.asError();
      message::append(out, u"\t detailed error");
      message::append(out, u"\t error : ");
      message::append(out, element.description());
      message::append(out, u", ");
      message::append(out,
                      error.isNil() ? String(u"(null)") : Value(error.userInfo()).description());
      message::append(out, u"\t errorName: ");
      message::append(out, error.errorName());
      message::append(out, u"\n");
    }
  }
  return String(std::move(out));
}

String Error::errorName() const {
  if (domain() != String(NSCocoaErrorDomain)) return String(u"");
  switch (code()) {
    case 1550:
      return u"NSManagedObjectValidationError";
    case 1560:
      return u"NSValidationMultipleErrorsError";
    case 1570:
      return u"NSValidationMissingMandatoryPropertyError";
    case 1580:
      return u"NSValidationRelationshipLacksMinimumCountError";
    case 1590:
      return u"NSValidationRelationshipExceedsMaximumCountError";
    case 1600:
      return u"NSValidationRelationshipDeniedDeleteError";
    case 1610:
      return u"NSValidationNumberTooLargeError";
    case 1620:
      return u"NSValidationNumberTooSmallError";
    case 1630:
      return u"NSValidationDateTooLateError";
    case 1640:
      return u"NSValidationDateTooSoonError";
    case 1650:
      return u"NSValidationInvalidDateError";
    case 1660:
      return u"NSValidationStringTooLongError";
    case 1670:
      return u"NSValidationStringTooShortError";
    case 1680:
      return u"NSValidationStringPatternMatchingError";
    default:
      return u"Unknown";
  }
}

bool Error::isEqual(const Error& other) const {
  if (isNil() || other.isNil()) return isNil() == other.isNil();
  return storage_ == other.storage_ || (domain() == other.domain() && code() == other.code() &&
                                        userInfo().isEqualToDictionary(other.userInfo()));
}

std::size_t Error::hash() const { return domain().hash() ^ static_cast<std::size_t>(code()); }

Exception::Exception(const String& name, const String& reason, const Dictionary& userInfo)
    : name_(name), reason_(reason), userInfo_(userInfo), what_(reason.utf8()) {}

void AssertionHandler::handleFailureInMethod(const String& method, const Value&, const String&,
                                             Integer, const String& description) {
  (void)method;
  throw Exception(NSInternalInconsistencyException, description);
}

void AssertionHandler::handleFailureInFunction(const String&, const String&, Integer,
                                               const String& description) {
  throw Exception(NSInternalInconsistencyException, description);
}

namespace {
thread_local std::shared_ptr<AssertionHandler> installedHandler;
}  // namespace

AssertionHandler& AssertionHandler::currentHandler() {
  static AssertionHandler defaultHandler;
  return installedHandler ? *installedHandler : defaultHandler;
}

void AssertionHandler::setCurrentHandler(std::shared_ptr<AssertionHandler> handler) {
  installedHandler = std::move(handler);
}

}  // namespace tarnvik
