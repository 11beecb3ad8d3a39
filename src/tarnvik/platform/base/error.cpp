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
  String text = message::build(u"Error Domain=", domain(), u" Code=", code(), u" \"",
                               localizedDescription(), u"\"");
  if (!storage_->userInfo.isEmpty()) {
    text.appendString(u" UserInfo={");
    bool first = true;
    for (const auto& [key, value] : storage_->userInfo) {
      if (!first) text.appendString(u", ");
      first = false;
      text.appendString(message::build(key.description(), u"=", value.description()));
    }
    text.appendString(u"}");
  }
  return text;
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
