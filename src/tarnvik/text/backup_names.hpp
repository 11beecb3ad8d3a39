// Backup file names ("2024-03-05_141530-type:auto-mv:12.kddb"): when the backup was made,
// its type and the data model version, read back from the name alone.
//
//   backupType(u"2024-03-05_141530-type:auto-mv:12.kddb");     // "auto"
//   backupVersion(u"2024-03-05_141530-type:auto-mv:12.kddb");  // 12
#pragma once

#include <optional>

#include "tarnvik/platform/base/date.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// The "yyyy-MM-dd_HHmmss" date before "-type:" (after two path extensions are removed), in
// the local time zone and the current locale; nullopt when it does not parse. Folders in
// front of the name stay in front of the date, so pass the bare file name.
std::optional<Date> backupDate(const String& name);
// The integer between "-mv:" and ".kddb"; nullopt without "-mv:". A name with "-mv:" but no
// ".kddb" raises NSRangeException.
std::optional<Integer> backupVersion(const String& name);
// The text between "-type:" and "-mv:" (or ".kddb"); nil without "-type:". NSRangeException
// when neither end marker follows.
String backupType(const String& name);

}  // namespace tarnvik
