// A first look at TarnvikExtensions: values and their descriptions, the format engine,
// errors built the library's way, a broken precondition, and logging.
#include <cstdio>

#include "tarnvik/core/checks.hpp"
#include "tarnvik/core/errors.hpp"
#include "tarnvik/core/logging.hpp"
#include "tarnvik/platform/foundation.hpp"

using namespace tarnvik;

namespace {

void print(const String& text) { std::printf("%s\n", text.utf8().c_str()); }

// Prints every log line the library writes, as a host's own logger would.
class PrintingLogger : public Logger {
 public:
  void logMessage(const LogMessage& m) override {
    print(stringWithFormat(u"[log %@:%lu %@] %@", m.file, m.line, m.function, m.message));
  }
};

}  // namespace

int main() {
  print(u"== Values and descriptions");
  const Dictionary clip{{u"name", u"A001C009.mov"},
                        {u"fps", 25},
                        {u"tracks", Array{u"video", u"audio 1", u"audio 2"}}};
  print(stringWithFormat(u"clip = %@", clip));
  print(stringWithFormat(u"3 == 3.0 by value: %@", Value(3).isEqual(Value(3.0)) ? u"yes" : u"no"));

  print(u"\n== Format engine");
  const String counterFormat = stringWithFormat(u"%@%%0%lud", u"A001C", 3ul);
  print(stringWithFormat(u"%@ with 10 -> %@", counterFormat, stringWithFormat(counterFormat, 10)));
  print(stringWithFormat(u"plain %%d of 5000000000 prints %d (32 bits)", std::int64_t{5000000000}));
  print(stringWithFormat(u"[%8.3f] [%-6@] [%#x]", 3.14159, u"left", 255));

  print(u"\n== Errors");
  const Error missing = errorWithDomainCodeReasonFormat(
      KFErrorDomainTarnvikExtensions, 3, u"Path %@ does not exist", u"/Volumes/Media");
  print(missing.description());
  const KEError own = errorWithReasonFormat<KEError>(u"%lu clips could not be read", 4ul);
  print(stringWithFormat(u"%@ in domain %@ (code %ld)", own.className(), own.domain(), own.code()));

  print(u"\n== Broken preconditions");
  try {
    raiseInvalidArgumentFormat(u"%@ is not a prefix", u"B002");
  } catch (const Exception& e) {
    print(stringWithFormat(u"%@: %@", e.name(), e.reason()));
  }
  try {
    KU_ASSERT(false, u"-[NSString(KUHex) hexValue]", Value(u"XYZ"), u"invalid character %c", 'X');
  } catch (const Exception& e) {
    print(stringWithFormat(u"%@: %@", e.name(), e.reason()));
  }

  print(u"\n== Logging");
  DDLog::removeAllLoggers();
  DDLog::addLogger(std::make_shared<PrintingLogger>());
  ddLogLevel = 1;
  KU_LOG_ERROR(u"+[NSFileManager(CFIExtensions) isDirectoryCFI:]", u"IsDirectoryCFI failed on %@",
               u"/Volumes/Gone");
  ddLogLevel = 0;
  KU_LOG_ERROR(u"+[NSFileManager(CFIExtensions) isDirectoryCFI:]", u"never printed %@", u"x");
  print(u"(with ddLogLevel = 0 the second line was not even formatted)");
  return 0;
}
