#include "tarnvik/ui/table_layouts.hpp"

#include <gtest/gtest.h>

#include "support/raised.hpp"
#include "support/temp_dir.hpp"
#include "tarnvik/platform/system/property_list.hpp"
#include "tarnvik/platform/system/user_defaults.hpp"

namespace tarnvik {
namespace {

std::shared_ptr<TableView> clipTable() {
  auto table = std::make_shared<TableView>();
  for (const char16_t* id : {u"name", u"duration", u"codec", u"reel"})
    table->addTableColumn(TableColumn::withIdentifier(id, 100));
  table->setSortDescriptors({SortDescriptor(u"name", true), SortDescriptor(u"duration", false)});
  table->setAutosaveName(u"clips");
  table->setAutosaveTableColumns(true);
  return table;
}

std::string state(const TableView& table) {
  std::string out;
  for (const auto& c : table.tableColumns())
    out += c->identifier().utf8() + ":" + std::to_string(static_cast<int>(c->width())) +
           (c->isHidden() ? "h " : " ");
  for (const auto& d : table.sortDescriptors())
    out += "|" + d.key().utf8() + (d.ascending() ? "+" : "-");
  return out;
}

TEST(TableLayoutsTest, ALayoutSurvivesStorageAndColumnsAddedOrRemovedMeanwhile) {
  testing::TempDir dir;
  UserDefaults::setDefaultsDirectory(String(dir.path().string()));
  auto table = clipTable();
  table->moveColumn(3, 0);  // reel name duration codec
  table->tableColumnWithIdentifier(u"codec")->setWidth(63.3);
  table->tableColumnWithIdentifier(u"duration")->setHidden(true);
  const Dictionary layout = ke_dictionaryForAutosavingLayout(*table);
  EXPECT_EQ(layout.objectForKey(kAutosavedVersionKey).asString().utf8(), "A");
  const Dictionary codec = layout.objectForKey(kAutosavedColumnsKey)
                               .asDictionary()
                               .objectForKey(u"codec")
                               .asDictionary();
  EXPECT_EQ(codec.objectForKey(kAutosavedColumnWidthKey).doubleValue(),
            static_cast<double>(63.3f));  // single precision
  EXPECT_EQ(codec.objectForKey(kAutosavedColumnIndexKey).integerValue(), 3);

  // Through the user defaults file and back, as an application keeps it.
  UserDefaults::standardUserDefaults().setObject(layout, u"clipTable");
  ASSERT_TRUE(UserDefaults::standardUserDefaults().synchronize());
  const Dictionary stored = UserDefaults::standardUserDefaults().dictionaryForKey(u"clipTable");

  // Meanwhile the application gained a "fps" column and lost "reel".
  auto next = clipTable();
  next->removeTableColumn(next->tableColumnWithIdentifier(u"reel"));
  next->addTableColumn(TableColumn::withIdentifier(u"fps", 40));
  next->setSortDescriptors({});
  ke_adjustLayoutForAutosavedDictionary(*next, stored);
  // Positions are the saved ones (codec was fourth), and the new column starts out hidden.
  EXPECT_EQ(state(*next), "name:100 duration:100h fps:40h codec:63 |name+|duration-");
  EXPECT_EQ(next->autosaveName().utf8(), "clips");  // restored afterwards
  EXPECT_TRUE(next->autosaveTableColumns());

  // The same table: capture then apply changes nothing.
  const std::string before = state(*table);
  ke_adjustLayoutForAutosavedDictionary(*table, layout);
  EXPECT_EQ(state(*table), before);
  UserDefaults::setDefaultsDirectory(String());
}

TEST(TableLayoutsTest, ReadyMadeLayoutsAndTheKeptQuirks) {
  auto table = clipTable();
  table->tableColumnWithIdentifier(u"reel")->setHidden(true);
  const Array layouts = ke_allAndNoneLayoutsWithHideableColumns(
      *table, Array{Value(table->tableColumnWithIdentifier(u"codec"))});
  ASSERT_EQ(layouts.count(), 2u);
  ke_adjustLayoutForAutosavedDictionary(*table, layouts[1].asDictionary());
  EXPECT_EQ(state(*table), "name:100 duration:100 codec:100h reel:100 |name+|duration-");
  ke_adjustLayoutForAutosavedDictionary(*table, layouts[0].asDictionary());
  EXPECT_EQ(state(*table), "name:100 duration:100 codec:100 reel:100 |name+|duration-");

  // An index past the end goes last; a record without "hidden" hides; no "width" means 0
  // (kept within the column's minimum); an empty sort list keeps the table's.
  const Dictionary layout{
      {kAutosavedVersionKey, u"A"},
      {kAutosavedColumnsKey,
       Dictionary{{u"name", Dictionary{{u"index", 99}, {u"width", 50}, {u"hidden", false}}},
                  {u"reel", Dictionary{{u"index", 0}, {u"width", 70}}},
                  {u"codec", Dictionary{{u"index", 1}, {u"hidden", false}}},
                  {u"duration", Dictionary{{u"index", 2}, {u"width", 30}, {u"hidden", true}}}}},
      {kAutosavedSortDescriptorsKey, Array::array()}};
  ke_adjustLayoutForAutosavedDictionary(*table, layout);
  EXPECT_EQ(state(*table), "reel:70h codec:10 duration:30h name:50 |name+|duration-");

  for (const Dictionary& bad :
       {Dictionary{{kAutosavedVersionKey, u"B"}, {kAutosavedColumnsKey, Dictionary::dictionary()}},
        Dictionary{{kAutosavedVersionKey, u"A"}}, Dictionary()}) {
    EXPECT_EQ(testing::raised([&] { ke_adjustLayoutForAutosavedDictionary(*table, bad); }),
              "NSInvalidArgumentException: invalid table restoration dictionary given");
  }
  EXPECT_EQ(compareByAutosavedIndex(Dictionary{{u"index", 2}}, Dictionary{{u"index", 10}}),
            NSOrderedAscending);
  EXPECT_EQ(compareByAutosavedIndex(Dictionary(), Dictionary{{u"index", 0}}), NSOrderedSame);
}

}  // namespace
}  // namespace tarnvik
