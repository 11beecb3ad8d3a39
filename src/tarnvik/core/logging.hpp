// The library's one logging form: an error-flag line through DDLog, written only when bit 1
// of ddLogLevel is set; otherwise nothing at all happens and the arguments are not
// formatted.
//
//   KU_LOG_ERROR(u"+[NSFileManager(CFIExtensions) isDirectoryCFI:]", u"IsDirectoryCFI failed on
//   %@", path);
#pragma once

#include "tarnvik/core/checks.hpp"
#include "tarnvik/platform/system/log.hpp"

// Synchronous; level is the current ddLogLevel, flag 1 (error), context 0, the source
// file's base name, the operation's full name, the line and no tag.
#define KU_LOG_ERROR(function, ...)                                                         \
  do {                                                                                      \
    const unsigned long kuLogLevel = ::tarnvik::ddLogLevel.load(std::memory_order_relaxed); \
    if (kuLogLevel & ::tarnvik::DDLogFlagError) {                                           \
      ::tarnvik::DDLog::log(false, kuLogLevel, ::tarnvik::DDLogFlagError, 0,                \
                            ::tarnvik::sourceFileName(__FILE__), function, __LINE__,        \
                            ::tarnvik::Value(), __VA_ARGS__);                               \
    }                                                                                       \
  } while (0)
