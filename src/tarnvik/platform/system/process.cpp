#include "tarnvik/platform/system/process.hpp"

#include <spawn.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "tarnvik/platform/base/file_manager.hpp"

extern char** environ;

namespace tarnvik {

String ProcessInfo::processName() {
  const String exe = executablePath();
  if (!exe.isEmpty()) return exe.lastPathComponent();
  return String(program_invocation_short_name);
}

Integer ProcessInfo::processIdentifier() { return static_cast<Integer>(::getpid()); }

String ProcessInfo::executablePath() {
  return FileManager::defaultManager().destinationOfSymbolicLinkAtPath(u"/proc/self/exe");
}

String ProcessInfo::environmentValue(const char* name) {
  const char* value = std::getenv(name);
  return value ? String::fromUTF8Lossy(value) : String();
}

Integer Task::launchedTaskWithLaunchPath(const String& path, const Array& arguments, Error* error) {
  std::vector<std::string> texts{path.utf8()};
  for (const Value& argument : arguments) texts.push_back(argument.description().utf8());
  std::vector<char*> argv;
  for (std::string& text : texts) argv.push_back(text.data());
  argv.push_back(nullptr);

  pid_t pid = 0;
  // glibc's posix_spawn reports a program that cannot be executed through its result.
  const int status = ::posix_spawn(&pid, texts[0].c_str(), nullptr, nullptr, argv.data(), environ);
  if (status == 0) return static_cast<Integer>(pid);
  if (error) {
    *error = Error(NSPOSIXErrorDomain, status,
                   Dictionary{{NSFilePathErrorKey, path},
                              {NSLocalizedFailureReasonErrorKey,
                               String::fromUTF8Lossy(std::strerror(status))}});
  }
  return 0;
}

}  // namespace tarnvik
