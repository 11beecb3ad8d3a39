// The platform's description texts for values and collections. Not installed.
#pragma once

#include "tarnvik/platform/base/value.hpp"

namespace tarnvik::describe {

// The description of a value at the given nesting depth. Inside a collection
// (nested = true) strings are quoted when they hold anything but letters, digits and
// "_$/:.-", with quotes, backslashes and line breaks escaped and non-ASCII units written
// as \Uxxxx.
String describe(const Value& value, int depth, bool nested);
// Shortest decimal text that reads back to the same double ("0.1", "3", "1e+100").
std::string shortestDouble(double value);

}  // namespace tarnvik::describe
