#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "jet/Error.h"
#include "jet/TableSpec.h"
#include "jet/table/EmptyDatabase.h"
#include "jet/table/SchemaWriter.h"
#include "jet/table/Store.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/Witnesses.h"

namespace jet::test {

inline constexpr const char* kName = "test.mdb";
inline constexpr std::size_t kCache = std::size_t{1} << 20;

/// A database in memory, new or a copy of given bytes, and its Store.
class TestDatabase {
 public:
  TestDatabase() : store(CreateEmptyDatabase(files.Open(kName, {true, false, true}), kName, {}, kCache)) {}
  explicit TestDatabase(const std::vector<std::byte>& bytes, std::string_view password = {}) {
    files.Put(kName, bytes);
    store = Store::Open(std::make_unique<PageStore>(files.Open(kName, {}), kName), password, kCache);
  }

  const std::vector<std::byte>& Bytes() const { return files.Get(kName); }
  std::string Check(bool strict = true) const { return IndependentCheck(Bytes(), strict); }
  Table& TableOf(std::string_view name) {
    Table* const table = store->FindTable(name);
    if (table == nullptr) throw Error(ErrorNumber::UnknownTable, "no table " + std::string(name));
    return *table;
  }
  /// Adds a row; its values in the order of the columns.
  RowId Add(std::string_view table, const std::vector<Value>& values) {
    std::vector<ColumnValue> row;
    for (std::size_t i = 0; i < values.size(); ++i)
      row.push_back({i, values[i]});
    ChangeUnit unit(store->Pages());
    const RowId id = TableOf(table).Insert(row);
    unit.Commit();
    return id;
  }
  SchemaWriter Schema() { return SchemaWriter(*store); }

  MemoryFileSystem files;
  std::unique_ptr<Store> store;
};

inline ColumnSpec Column(std::string name, ColumnType type, std::uint16_t length = 0) {
  ColumnSpec column;
  column.name = std::move(name);
  column.type = type;
  column.length = length;
  return column;
}

inline IndexSpec PrimaryKey(std::vector<IndexColumn> columns) {
  IndexSpec index;
  index.name = "PrimaryKey";
  index.columns = std::move(columns);
  index.primary = true;
  return index;
}

/// A table with a long `id` as its primary key, a long `parent`, and a text `name`.
inline TableSpec Simple(std::string name) {
  return {std::move(name),
          {Column("id", ColumnType::Long), Column("parent", ColumnType::Long),
           Column("name", ColumnType::Text, 50)},
          {PrimaryKey({{"id"}})}};
}

template <typename Action>
int ErrorOf(Action action) {
  try {
    action();
  } catch (const Error& error) {
    EXPECT_GT(std::string(error.what()).size(), 20U);
    return static_cast<int>(error.Number());
  }
  return 0;
}

}  // namespace jet::test
