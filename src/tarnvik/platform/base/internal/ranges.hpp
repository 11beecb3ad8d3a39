// The range check that the text operations raise from. Not installed.
#pragma once

#include "tarnvik/platform/base/types.hpp"

namespace tarnvik {

// Raises NSRangeException, "<operation>: Range {loc, len} out of bounds; string length n",
// when the range does not lie within a text of the given length.
void checkRangeInLength(Range range, UInteger length, const char* operation);

}  // namespace tarnvik
