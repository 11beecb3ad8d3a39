#include "tarnvik/platform/base/enumerator.hpp"

namespace tarnvik {

TARNVIK_DEFINE_CLASS(Enumerator, Object, )

Array Enumerator::allObjects() {
  Array rest = Array::array();
  for (Value v = nextObject(); !v.isNil(); v = nextObject()) rest.addObject(v);
  return rest;
}

std::shared_ptr<Enumerator> objectEnumerator(const Array& array) {
  return std::make_shared<ValuesEnumerator>(array.values());
}

std::shared_ptr<Enumerator> reverseObjectEnumerator(const Array& array) {
  return std::make_shared<ValuesEnumerator>(
      std::vector<Value>(array.values().rbegin(), array.values().rend()));
}

std::shared_ptr<Enumerator> objectEnumerator(const Set& set) {
  return std::make_shared<ValuesEnumerator>(set.values());
}

std::shared_ptr<Enumerator> objectEnumerator(const OrderedSet& set) {
  return std::make_shared<ValuesEnumerator>(set.values());
}

}  // namespace tarnvik
