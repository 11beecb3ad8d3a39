#include "tarnvik/core/checks.hpp"

#include <cstring>

namespace tarnvik {

void raiseInvalidArgument(const String& reason) {
  throw Exception(NSInvalidArgumentException, reason);
}

void raiseRange(const String& reason) { throw Exception(NSRangeException, reason); }

String sourceFileName(const char* path) {
  if (!path || !*path) return u"<Unknown File>";
  const char* slash = std::strrchr(path, '/');
  const char* name = slash ? slash + 1 : path;
  return *name ? String(name) : String(u"<Unknown File>");
}

void reportAssertionFailure(const String& method, const Value& object, const char* file,
                            Integer line, const String& description) {
  AssertionHandler::currentHandler().handleFailureInMethod(method, object, sourceFileName(file),
                                                           line, description);
}

}  // namespace tarnvik
