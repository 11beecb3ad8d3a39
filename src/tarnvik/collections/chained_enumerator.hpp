// KUChainedEnumerator: several enumerators walked one after another as one.
//
//   KUChainedEnumerator chain({objectEnumerator(a), objectEnumerator(b)});
//   for (Value v = chain.nextObject(); !v.isNil(); v = chain.nextObject()) ...
#pragma once

#include <initializer_list>
#include <memory>
#include <vector>

#include "tarnvik/platform/base/enumerator.hpp"

namespace tarnvik {

class KUChainedEnumerator : public Enumerator {
 public:
  using Enumerators = std::vector<std::shared_ptr<Enumerator>>;

  // initWithEnumerators: the chain in order, starting at the first.
  KUChainedEnumerator(std::initializer_list<std::shared_ptr<Enumerator>> enumerators)
      : enumerators_(enumerators) {}
  explicit KUChainedEnumerator(Enumerators enumerators) : enumerators_(std::move(enumerators)) {}

  // The current enumerator's next object; when it is exhausted, the next enumerator's first
  // (possibly nil). Only one exhausted enumerator is passed per call, so two empty ones in a
  // row make a call answer nil before later objects (kept as it stands); calling again goes on.
  Value nextObject() override;
  // Every enumerator's remaining objects, in chain order; the position is not consulted.
  Array allObjects() override;

  const Enumerators& enumerators() const { return enumerators_; }
  void setEnumerators(Enumerators enumerators) { enumerators_ = std::move(enumerators); }
  UInteger currentPos() const { return currentPos_; }
  void setCurrentPos(UInteger position) { currentPos_ = position; }

  TARNVIK_CLASS(KUChainedEnumerator)

 private:
  Enumerators enumerators_;
  UInteger currentPos_ = 0;
};

}  // namespace tarnvik
