// Saving a table's column layout in the user defaults and restoring it on the next run, after
// the application gained a column. Run as a test; the README quotes it.
//
// usage: tarnvik_table_layout FOLDER   (the user-defaults folder)
#include <iostream>

#include "tarnvik/tarnvik.hpp"

using namespace tarnvik;

std::shared_ptr<TableView> clipTable(bool withFps) {
  auto table = std::make_shared<TableView>();
  for (const char16_t* id : {u"name", u"duration", u"codec"})
    table->addTableColumn(TableColumn::withIdentifier(id, 120));
  if (withFps) table->addTableColumn(TableColumn::withIdentifier(u"fps", 40));
  return table;
}

int main(int argc, char** argv) {
  UserDefaults::setDefaultsDirectory(String(std::string(argc > 1 ? argv[1] : ".")));
  UserDefaults& defaults = UserDefaults::standardUserDefaults();

  // Quitting: the user had moved "codec" first, widened it and hidden "duration".
  auto table = clipTable(false);
  table->moveColumn(2, 0);
  table->tableColumnWithIdentifier(u"codec")->setWidth(200);
  table->tableColumnWithIdentifier(u"duration")->setHidden(true);
  table->setSortDescriptors({SortDescriptor(u"name", true)});
  defaults.setObject(ke_dictionaryForAutosavingLayout(*table), u"clipTableLayout");
  defaults.synchronize();

  // Next launch, with a new "fps" column: the saved layout comes back, the new column starts
  // out hidden (the column menu can show it).
  auto next = clipTable(true);
  ke_adjustLayoutForAutosavedDictionary(*next, defaults.dictionaryForKey(u"clipTableLayout"));
  for (const auto& column : next->tableColumns()) {
    std::cout << column->identifier().utf8() << " " << column->width()
              << (column->isHidden() ? " hidden" : "") << "\n";
  }
  std::cout << "sorted by " << next->sortDescriptors().front().key().utf8() << "\n";
}
