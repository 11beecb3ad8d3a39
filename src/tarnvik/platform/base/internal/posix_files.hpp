// Small pieces the file manager's sources share. Not installed.
#pragma once

#include <time.h>

#include <algorithm>
#include <cmath>

#include "tarnvik/platform/base/file_manager.hpp"

namespace tarnvik::posix_files {

// The instant as a timespec, nanoseconds in [0, 1e9) also before 1970; instants beyond
// time_t saturate and an undefined one is the epoch.
inline struct timespec timespecOf(Date date) {
  const double seconds = date.timeIntervalSince1970();
  const double whole = std::floor(seconds);
  struct timespec t {};
  t.tv_sec = saturatingCast<time_t>(whole);
  t.tv_nsec = std::clamp(saturatingCast<long>((seconds - whole) * 1e9), 0L, 999999999L);
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
