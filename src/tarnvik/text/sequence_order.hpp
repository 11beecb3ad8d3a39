// Sequence order: comparing and sorting media names the way a person reads them, digit runs
// by value, either with the extension first (the sequence order) or as file names, by name
// and then extension (the file-name sequence order a file browser shows).
//
//   compareForSequence(u"clip2.mov", u"clip10.mov");          // NSOrderedAscending
//   compareFileNamesForSequence(u"A001C002.MOV", u"A001C010.mov");  // NSOrderedAscending
//   sequenceOrder(names);                                      // positions in that order
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "tarnvik/platform/base/string.hpp"

namespace tarnvik {

// Sequence order: by path extension first (plain comparison), then the whole names
// case-insensitively, digit runs by value, full-width forms folded, ties broken so that
// only identical names are the same.
ComparisonResult compareForSequence(const String& name, const String& other);
// The same order over raw UTF-16 text, for sorting large lists without a String per name.
ComparisonResult compareUnitsForSequence(std::u16string_view name, std::u16string_view other);
// The positions of the names in sequence order (the order compareForSequence gives). Lists
// of printable-ASCII names are sorted through byte keys built once per name; any other list
// with compareUnitsForSequence.
std::vector<std::size_t> sequenceOrder(std::span<const std::u16string_view> names);
// File-name sequence order: the names before their extensions case-insensitively, digit runs
// by value and full-width forms folded; then the extensions case-insensitively (no extension
// first); then, so that only identical names are the same, the whole names unit by unit. So
// "clip2.mov" < "clip10.MOV" < "clip10.mov" < "clip10.mxf", and "Clip" < "clip.mov".
ComparisonResult compareFileNamesForSequence(const String& name, const String& other);
ComparisonResult compareFileNameUnitsForSequence(std::u16string_view name,
                                                 std::u16string_view other);
// The positions of the names in file-name sequence order (through byte keys for lists of
// printable-ASCII names, as sequenceOrder does).
std::vector<std::size_t> fileNameSequenceOrder(std::span<const std::u16string_view> names);
// Case-insensitive with digit runs by value; may call different names the same.
ComparisonResult caseInsensitiveNumericalCompare(const String& name, const String& other);

}  // namespace tarnvik
