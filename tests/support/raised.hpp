// "Name: reason" of the Exception an operation raises, or "nothing".
#pragma once

#include <functional>
#include <string>

#include "tarnvik/platform/base/error.hpp"

namespace tarnvik::testing {

inline std::string raised(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const Exception& e) {
    return e.name().utf8() + ": " + e.reason().utf8();
  }
  return "nothing";
}

}  // namespace tarnvik::testing
