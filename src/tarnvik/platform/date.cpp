#include "tarnvik/platform/date.hpp"

#include <chrono>

namespace tarnvik {

Date Date::now() {
  using namespace std::chrono;
  const auto since1970 = duration<double>(system_clock::now().time_since_epoch()).count();
  return dateWithTimeIntervalSince1970(since1970);
}

}  // namespace tarnvik
