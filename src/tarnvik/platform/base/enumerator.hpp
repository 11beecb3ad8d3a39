// Enumerator: hands out a collection's objects one at a time.
//
//   auto e = objectEnumerator(Array{1, 2});
//   e->nextObject();   // 1
#pragma once

#include <memory>
#include <vector>

#include "tarnvik/platform/base/object.hpp"
#include "tarnvik/platform/base/set.hpp"

namespace tarnvik {

class Enumerator : public Object {
 public:
  // The next object, or nil when there are no more.
  virtual Value nextObject() = 0;
  // The objects not yet handed out (and it hands them out).
  virtual Array allObjects();
  TARNVIK_CLASS(Enumerator)
};

// Walks a snapshot of the values in order.
class ValuesEnumerator : public Enumerator {
 public:
  explicit ValuesEnumerator(std::vector<Value> values) : values_(std::move(values)) {}
  Value nextObject() override { return next_ < values_.size() ? values_[next_++] : Value(); }

 private:
  std::vector<Value> values_;
  std::size_t next_ = 0;
};

std::shared_ptr<Enumerator> objectEnumerator(const Array& array);
std::shared_ptr<Enumerator> reverseObjectEnumerator(const Array& array);
std::shared_ptr<Enumerator> objectEnumerator(const Set& set);
std::shared_ptr<Enumerator> objectEnumerator(const OrderedSet& set);

}  // namespace tarnvik
