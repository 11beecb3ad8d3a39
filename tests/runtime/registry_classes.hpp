// Classes of the registry tests, shared with the plug-in, which derives from Base.
#pragma once

#include "tarnvik/platform/base/object.hpp"

namespace tarnvik::testing {

struct Base : Object {
  TARNVIK_CLASS(Base)
};

}  // namespace tarnvik::testing
