// A program that uses the installed library the way a host application would.
#include <cstdio>

#include "tarnvik/tarnvik.hpp"

int main() {
  const tarnvik::Error e = tarnvik::errorWithDomain(tarnvik::KFErrorDomainTarnvikExtensions, 3,
                                                    u"Path /x does not exist");
  std::puts(e.localizedFailureReason().utf8().c_str());
  return e.code() == 3 ? 0 : 1;
}
