#include "tarnvik/text/backup_names.hpp"

#include "tarnvik/platform/time/date_formatter.hpp"

namespace tarnvik {

namespace {

// The text from the end of `from` to the start of `to`; an absent `to` makes the range
// invalid and the substring request raises, as callers are told.
String textBetween(const String& name, Range from, Range to) {
  return name.substringWithRange({from.end(), to.location - from.end()});
}

}  // namespace

std::optional<Date> backupDate(const String& name) {
  // One formatter for the process, made on first use.
  static DateFormatter* const formatter = [] {
    auto* f = new DateFormatter();
    f->setDateFormat(u"yyyy-MM-dd_HHmmss");
    return f;
  }();
  String stem = name.stringByDeletingPathExtension().stringByDeletingPathExtension();
  const Range type = stem.rangeOfString(u"-type:");
  if (type.location != NSNotFound) stem = stem.substringToIndex(type.location);
  return formatter->dateFromString(stem);
}

std::optional<Integer> backupVersion(const String& name) {
  const Range version = name.rangeOfString(u"-mv:");
  if (version.location == NSNotFound) return std::nullopt;
  return textBetween(name, version, name.rangeOfString(u".kddb")).integerValue();
}

String backupType(const String& name) {
  const Range type = name.rangeOfString(u"-type:");
  if (type.location == NSNotFound) return String();
  Range end = name.rangeOfString(u"-mv:");
  if (end.location == NSNotFound) end = name.rangeOfString(u".kddb");
  return textBetween(name, type, end);
}

}  // namespace tarnvik
