#include "tarnvik/collections/chained_enumerator.hpp"

namespace tarnvik {

TARNVIK_DEFINE_CLASS(KUChainedEnumerator, Enumerator, )

Value KUChainedEnumerator::nextObject() {
  if (currentPos_ >= enumerators_.size()) return Value();
  const Value next = enumerators_[currentPos_]->nextObject();
  if (!next.isNil()) return next;
  ++currentPos_;
  return currentPos_ < enumerators_.size() ? enumerators_[currentPos_]->nextObject() : Value();
}

Array KUChainedEnumerator::allObjects() {
  Array all = Array::array();
  for (const auto& enumerator : enumerators_) all.addObjectsFromArray(enumerator->allObjects());
  return all;
}

}  // namespace tarnvik
