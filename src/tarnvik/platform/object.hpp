// Object: the base of reference types (domain objects, tree nodes, ...), held by
// std::shared_ptr and carried in a Value.
//
//   struct Clip : Object { String className() const override { return u"Clip"; } };
//   Value v = std::make_shared<Clip>();
#pragma once

#include <cstddef>
#include <memory>

#include "tarnvik/platform/string.hpp"

namespace tarnvik {

class Object : public std::enable_shared_from_this<Object> {
 public:
  virtual ~Object() = default;
  virtual String className() const { return u"NSObject"; }
  // Whether this object's class is the named class or derives from it.
  virtual bool isKindOfClass(const String& name) const;
  // Identity unless a subclass says otherwise; hash must agree with isEqual.
  virtual bool isEqual(const Object& other) const { return this == &other; }
  virtual std::size_t hash() const;
  // "<ClassName: 0x...>" unless a subclass says otherwise.
  virtual String description() const;
};

}  // namespace tarnvik
