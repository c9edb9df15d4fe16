#include "jet/check/Checker.h"

#include <utility>

#include "jet/check/CatalogCheck.h"
#include "jet/check/Findings.h"
#include "jet/check/IndexCheck.h"
#include "jet/check/LongValueUse.h"
#include "jet/check/PageUse.h"
#include "jet/check/RelationCheck.h"
#include "jet/check/TableCheck.h"
#include "jet/table/Store.h"

namespace jet {

using namespace check;

CheckReport CheckDatabase(Store& store) {
  CheckReport report;
  Findings findings(report);
  PageUse pages(store.Pages(), findings);
  LongValueUse longValues(store.Pages(), pages, findings);
  report.pages = pages.Count();

  CheckedTables tables;
  TableCheck tableCheck(store, pages, longValues, findings);
  for (const CatalogEntry& entry : store.Catalog()) {
    auto checked = tableCheck.Run(entry);
    if (!checked) continue;
    ++report.tables;
    report.rows += checked->rows.size();
    tables.emplace(entry.definition, std::move(*checked));
  }
  for (const auto& [page, checked] : tables) {
    for (std::size_t number = 0; number < checked.table->IndexCount(); ++number) {
      ++report.indexes;
      IndexCheck(store, pages, findings, checked, number).Run();
    }
  }
  CatalogCheck(tables, findings).Run();
  RelationCheck(tables, findings).Run();
  longValues.Finish();
  pages.Finish();
  findings.Finish();
  return report;
}

}  // namespace jet
