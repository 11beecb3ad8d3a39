// A table's column layout (shown columns, their order and widths, the sort order) as a plain
// Dictionary an application can keep in its user defaults, the two ready-made layouts of a
// column menu (everything shown; the hideable columns hidden), and applying a layout back.
//
//   userDefaults.setObject(ke_dictionaryForAutosavingLayout(*table), u"clipTable");
//   ...
//   ke_adjustLayoutForAutosavedDictionary(*table, userDefaults.dictionaryForKey(u"clipTable"));
//
// Sort descriptors are kept as dictionaries {key, ascending, selector}, so the layout is a
// property list.
#pragma once

#include "tarnvik/platform/ui/table_view.hpp"

namespace tarnvik {

inline constexpr char16_t kAutosavedVersionKey[] = u"ke_table_restoration_version";
inline constexpr char16_t kAutosavedVersionValue[] = u"A";
inline constexpr char16_t kAutosavedColumnsKey[] = u"columns";
inline constexpr char16_t kAutosavedSortDescriptorsKey[] = u"sortDescriptors";
inline constexpr char16_t kAutosavedColumnWidthKey[] = u"width";
inline constexpr char16_t kAutosavedColumnIndexKey[] = u"index";
inline constexpr char16_t kAutosavedColumnHiddenKey[] = u"hidden";

// The current layout.
Dictionary ke_dictionaryForAutosavingLayout(const TableView& table);
// [every column shown, the given columns (TableColumn objects) hidden].
Array ke_allAndNoneLayoutsWithHideableColumns(const TableView& table, const Array& hideableColumns);
// Applies a layout. Columns the layout does not know, and columns whose record has no
// "hidden" entry, end up hidden. NSInvalidArgumentException ("invalid table restoration
// dictionary given") for a layout of another version or without columns, before anything
// changes.
void ke_adjustLayoutForAutosavedDictionary(TableView& table, const Dictionary& layout);
// The order of two column records by their "index" (a missing index counts as 0).
ComparisonResult compareByAutosavedIndex(const Dictionary& record, const Dictionary& other);

}  // namespace tarnvik
