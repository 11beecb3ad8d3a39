#include "tarnvik/platform/object.hpp"

#include <functional>

#include "tarnvik/platform/format.hpp"

namespace tarnvik {

bool Object::isKindOfClass(const String& name) const {
  return name == className() || name == String(u"NSObject");
}

std::size_t Object::hash() const { return std::hash<const void*>{}(this); }

String Object::description() const {
  return stringWithFormat(u"<%@: %p>", className(), static_cast<const void*>(this));
}

}  // namespace tarnvik
