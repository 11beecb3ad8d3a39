#include "tarnvik/platform/system/application.hpp"

#include <atomic>
#include <cstdlib>

#include "tarnvik/platform/base/error.hpp"

namespace tarnvik {

namespace {
std::atomic<Application*> shared{nullptr};
}  // namespace

Application::Application() {
  Application* expected = nullptr;
  if (!shared.compare_exchange_strong(expected, this)) {
    throw Exception(NSInternalInconsistencyException, u"An application object already exists.");
  }
}

Application::~Application() {
  Application* expected = this;
  shared.compare_exchange_strong(expected, nullptr);
}

Application* Application::sharedApplication() { return shared.load(); }

void Application::terminate(const Value& sender) {
  std::function<void(const Value&)> handler;
  {
    std::lock_guard guard(lock_);
    handler = terminateHandler_;
  }
  if (handler) {
    handler(sender);
  } else {
    std::exit(EXIT_SUCCESS);
  }
}

void Application::setTerminateHandler(std::function<void(const Value& sender)> handler) {
  std::lock_guard guard(lock_);
  terminateHandler_ = std::move(handler);
}

}  // namespace tarnvik
