#include "tarnvik/ui/table_layouts.hpp"

#include <algorithm>

namespace tarnvik {
namespace {

Array sortDescriptorRecords(const TableView& table) {
  Array records = Array::array();
  for (const SortDescriptor& d : table.sortDescriptors()) {
    records.addObject(
        Dictionary{{u"key", d.key()}, {u"ascending", d.ascending()}, {u"selector", u"compare:"}});
  }
  return records;
}

Dictionary layoutWith(const Dictionary& columns, const TableView& table) {
  return Dictionary{{kAutosavedVersionKey, kAutosavedVersionValue},
                    {kAutosavedColumnsKey, columns},
                    {kAutosavedSortDescriptorsKey, sortDescriptorRecords(table)}};
}

Dictionary record(const Value& width, Integer index, bool hidden) {
  return Dictionary{{kAutosavedColumnWidthKey, width},
                    {kAutosavedColumnIndexKey, index},
                    {kAutosavedColumnHiddenKey, hidden}};
}

}  // namespace

Dictionary ke_dictionaryForAutosavingLayout(const TableView& table) {
  Dictionary columns = Dictionary::dictionary();
  for (const auto& column : table.tableColumns()) {
    columns.setObject(record(Value(static_cast<float>(column->width())),
                             table.columnWithIdentifier(column->identifier()), column->isHidden()),
                      column->identifier());
  }
  return layoutWith(columns, table);
}

Array ke_allAndNoneLayoutsWithHideableColumns(const TableView& table,
                                              const Array& hideableColumns) {
  Dictionary all = Dictionary::dictionary();
  Dictionary none = Dictionary::dictionary();
  for (const auto& column : table.tableColumns()) {
    const Value width(column->width());
    const Integer index = table.columnWithIdentifier(column->identifier());
    const bool hideable = !hideableColumns.isNil() && hideableColumns.containsObject(Value(column));
    all.setObject(record(width, index, false), column->identifier());
    none.setObject(record(width, index, hideable), column->identifier());
  }
  return Array{Value(layoutWith(all, table)), Value(layoutWith(none, table))};
}

ComparisonResult compareByAutosavedIndex(const Dictionary& record, const Dictionary& other) {
  const auto index = [](const Dictionary& d) {
    const Value v = d.objectForKey(kAutosavedColumnIndexKey);
    return v.isNumber() ? v : Value(0);
  };
  return index(record).compare(index(other));
}

void ke_adjustLayoutForAutosavedDictionary(TableView& table, const Dictionary& layout) {
  const Value version = layout.objectForKey(kAutosavedVersionKey);
  const Value columnsValue = layout.objectForKey(kAutosavedColumnsKey);
  if (!version.isString() || version.asString() != String(kAutosavedVersionValue) ||
      columnsValue.isNil()) {
    throw Exception(NSInvalidArgumentException, u"invalid table restoration dictionary given");
  }
  Dictionary columns = columnsValue.asDictionary();
  if (columns.isNil()) columns = Dictionary::dictionary();
  const auto recordOf = [&](const String& identifier) {
    return columns.objectForKey(identifier).asDictionary();
  };

  std::vector<String> order;
  for (const auto& [identifier, value] : columns) {
    (void)value;
    order.push_back(identifier.asString());
  }
  std::stable_sort(order.begin(), order.end(), [&](const String& a, const String& b) {
    return compareByAutosavedIndex(recordOf(a), recordOf(b)) == NSOrderedAscending;
  });

  // The table's own column autosaving would record (and fight) the changes that follow.
  const bool autosaved = table.autosaveTableColumns();
  const String autosaveName = table.autosaveName();
  table.setAutosaveName(String());
  table.setAutosaveTableColumns(false);

  for (const auto& column : table.tableColumns()) column->setHidden(false);

  const auto count = static_cast<Integer>(table.tableColumns().size());
  for (const String& identifier : order) {
    const Integer position = table.columnWithIdentifier(identifier);
    if (position < 0) continue;
    const Dictionary record = recordOf(identifier);
    const Value index = record.objectForKey(kAutosavedColumnIndexKey);
    const UInteger target =
        std::min<UInteger>(index.unsignedIntegerValue(), static_cast<UInteger>(count - 1));
    table.moveColumn(position, static_cast<Integer>(target));
    if (const auto column = table.tableColumnWithIdentifier(identifier)) {
      // With resizing off, neighbouring columns do not absorb the change.
      const UInteger mask = column->resizingMask();
      column->setResizingMask(NSTableColumnNoResizing);
      const Value width = record.objectForKey(kAutosavedColumnWidthKey);
      column->setWidth(width.floatValue());
      column->setResizingMask(mask);
    }
  }
  for (const String& identifier : order) {
    const auto column = table.tableColumnWithIdentifier(identifier);
    if (!column) continue;
    const Dictionary record = recordOf(identifier);
    const Value hidden = record.objectForKey(kAutosavedColumnHiddenKey);
    // A record without a "hidden" entry hides its column.
    column->setHidden(hidden.isNil() || hidden.boolValue());
  }
  for (const auto& column : table.tableColumns()) {
    if (!column->isHidden() && columns.objectForKey(column->identifier()).isNil())
      column->setHidden(true);
  }

  const Array sorting = layout.objectForKey(kAutosavedSortDescriptorsKey).asArray();
  if (!sorting.isNil() && sorting.count() > 0) {
    std::vector<SortDescriptor> descriptors;
    for (const Value& v : sorting) {
      const Dictionary d = v.asDictionary();
      if (d.isNil()) continue;
      descriptors.emplace_back(d.objectForKey(u"key").asString(),
                               d.objectForKey(u"ascending").boolValue());
    }
    table.setSortDescriptors(std::move(descriptors));
  }

  table.setAutosaveTableColumns(autosaved);
  table.setAutosaveName(autosaveName);
}

}  // namespace tarnvik
