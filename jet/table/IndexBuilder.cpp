#include "jet/table/IndexBuilder.h"

#include <algorithm>
#include <string>
#include <vector>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/TableDefinitionLayout.h"
#include "jet/table/IndexEditor.h"
#include "jet/table/Store.h"

namespace jet {
namespace {

struct Entry {
  KeyBytes key;
  RowId row;
  bool anyNull = false;  ///< such keys do not count as equal
};

std::string Describe(const Table& table, std::size_t number, const std::vector<Value>& values) {
  std::string text;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0) text += ", ";
    text += table.Definition().columns[table.IndexColumns(number)[i]].name + " = " +
            (values[i].IsNull() ? "Null" : values[i].ToText());
  }
  return text;
}

std::vector<Value> ValuesOf(const Table& table, std::size_t number, const RowRef& row) {
  std::vector<Value> values;
  for (const std::size_t column : table.IndexColumns(number))
    values.push_back(table.ReadForKey(row, column));
  return values;
}

void CheckNulls(const Table& table, std::size_t number, const std::vector<Value>& values) {
  const Index& index = table.IndexAt(number);
  const bool primary = table.PrimaryIndex() == number;
  if (!primary && !index.Definition().IsRequired()) return;
  for (const Value& value : values) {
    if (!value.IsNull()) continue;
    throw Error(
        primary ? ErrorNumber::NullInPrimaryKey : ErrorNumber::NullInRequiredColumn,
        "The " + index.Where() + " cannot be made: a row has " + Describe(table, number, values) + ".");
  }
}

std::vector<Entry> CollectEntries(const Table& table, std::size_t number) {
  const Index& index = table.IndexAt(number);
  std::vector<Entry> entries;
  for (TableScan scan(table); scan.Next();) {
    const std::vector<Value> values = ValuesOf(table, number, scan.Row());
    CheckNulls(table, number, values);
    const auto isNull = [](const Value& value) { return value.IsNull(); };
    if (index.Definition().IgnoresNulls() && std::all_of(values.begin(), values.end(), isNull)) continue;
    std::optional<KeyBytes> key = index.KeyPrefix(values);
    if (!key) {
      throw Error(ErrorNumber::FeatureNotSupported, "The " + index.Where() +
                                                        " cannot be made: there is no known key for " +
                                                        Describe(table, number, values) + ".");
    }
    entries.push_back({std::move(*key), scan.Id(), std::any_of(values.begin(), values.end(), isNull)});
  }
  std::sort(entries.begin(), entries.end(),
            [](const Entry& a, const Entry& b) { return a.key != b.key ? a.key < b.key : a.row < b.row; });
  return entries;
}

}  // namespace

void BuildIndex(Table& table, std::size_t number) {
  namespace layout = format::definition_page;
  const Index& index = table.IndexAt(number);
  const std::vector<Entry> entries = CollectEntries(table, number);
  Pager& pager = table.Owner().Pages();
  IndexEditor editor(pager, table.Owner().Allocator(), index, table.Definition().page);
  std::uint32_t distinct = 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const bool same = i > 0 && entries[i].key == entries[i - 1].key;
    if (same && index.Definition().IsUnique() && !entries[i].anyNull) {
      const std::optional<RowRef> row = table.Fetch(entries[i].row);
      throw Error(ErrorNumber::DuplicateKey,
                  "The " + index.Where() + " cannot be made: more than one row has " +
                      Describe(table, number, ValuesOf(table, number, *row)) + ".");
    }
    if (!same) ++distinct;
    editor.Insert(entries[i].key, entries[i].row);
  }
  const MutablePage page = pager.Change(table.Definition().page);
  std::byte* const counts = page.Data() + layout::kIndexCounts + layout::kIndexCountsSize * number;
  format::StoreU32(counts, static_cast<std::uint32_t>(entries.size()));
  format::StoreU32(counts + layout::kDistinctKeys, distinct);
}

}  // namespace jet
