// Small pieces the file manager's sources share. Not installed.
#pragma once

#include <time.h>

#include "tarnvik/platform/base/file_manager.hpp"

namespace tarnvik::posix_files {

// The instant as a timespec, nanoseconds in [0, 1e9) also before 1970.
inline struct timespec timespecOf(Date date) {
  const double seconds = date.timeIntervalSince1970();
  struct timespec t {};
  t.tv_sec = static_cast<time_t>(seconds);
  t.tv_nsec = static_cast<long>((seconds - static_cast<double>(t.tv_sec)) * 1e9);
  if (t.tv_nsec < 0) {
    t.tv_sec -= 1;
    t.tv_nsec += 1000000000;
  }
  return t;
}

// Writes the error (when the caller wants one) and answers false.
inline bool fail(Error* error, FileOperation operation, const String& path, int posixError) {
  if (error) *error = FileManager::errorFor(operation, path, posixError);
  return false;
}

// The POSIX error under a file error; EIO when there is none.
inline int posixErrorOf(const Error& error) {
  const Error underlying = error.underlyingError();
  return underlying.isNil() ? 5 /* EIO */ : static_cast<int>(underlying.code());
}

}  // namespace tarnvik::posix_files
