// The application object of a desktop program. A command-line process has none; a desktop
// host creates one at start-up (before its event loop, as with QApplication) and it is the
// shared application until it is destroyed.
//
//   int main() {
//     tarnvik::Application app;  // Application::sharedApplication() is now &app
//     app.setTerminateHandler([&](const Value&) { qApp->quit(); });
//     ...
//   }
#pragma once

#include <functional>
#include <mutex>

#include "tarnvik/platform/base/value.hpp"

namespace tarnvik {

class Application {
 public:
  // Becomes the shared application. Raises NSInternalInconsistencyException when another
  // application object exists.
  Application();
  virtual ~Application();
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  // The application object, or nullptr in a process that is not a desktop application.
  static Application* sharedApplication();

  // Ends the application: runs the terminate handler when the host set one, otherwise
  // exits the process with status 0 (std::exit, so atexit handlers and static destructors
  // run). A host with an event loop sets a handler that stops the loop.
  virtual void terminate(const Value& sender = Value());
  void setTerminateHandler(std::function<void(const Value& sender)> handler);

 private:
  std::mutex lock_;
  std::function<void(const Value&)> terminateHandler_;
};

}  // namespace tarnvik
