// The running process (its name, identifier, executable and environment) and launching
// other programs.
//
//   Integer pid = ProcessInfo::processIdentifier();
//   Task::launchedTaskWithLaunchPath(u"/usr/bin/touch", Array{u"/tmp/done"}, &error);
#pragma once

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/string.hpp"
#include "tarnvik/platform/base/types.hpp"

namespace tarnvik {

// Facts about the running process.
struct ProcessInfo {
  // The executable's file name.
  static String processName();
  static Integer processIdentifier();
  // The absolute path of the running executable (links resolved), or nil.
  static String executablePath();
  // The value of an environment variable, or nil.
  static String environmentValue(const char* name);
};

// Another program, started and left to run.
struct Task {
  // Starts the executable at path with the arguments (each taken as its text) and this
  // process's environment, and returns at once with the new process's identifier. The
  // caller does not wait for it; a program that outlives its parent is adopted by the
  // system. Returns 0 and writes error (NSPOSIXErrorDomain, with the path) when the
  // program cannot be started.
  static Integer launchedTaskWithLaunchPath(const String& path, const Array& arguments,
                                            Error* error = nullptr);
};

}  // namespace tarnvik
