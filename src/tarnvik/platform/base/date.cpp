#include "tarnvik/platform/base/date.hpp"

#include <chrono>
#include <memory>
#include <mutex>

namespace tarnvik {

namespace {

std::mutex clockLock;
std::shared_ptr<const std::function<Date()>> installedClock;

}  // namespace

Date Date::now() {
  std::shared_ptr<const std::function<Date()>> clock;
  {
    std::lock_guard guard(clockLock);
    clock = installedClock;
  }
  if (clock) return (*clock)();
  using namespace std::chrono;
  const auto since1970 = duration<double>(system_clock::now().time_since_epoch()).count();
  return dateWithTimeIntervalSince1970(since1970);
}

void Date::setClock(std::function<Date()> clock) {
  std::lock_guard guard(clockLock);
  installedClock =
      clock ? std::make_shared<const std::function<Date()>>(std::move(clock)) : nullptr;
}

}  // namespace tarnvik
