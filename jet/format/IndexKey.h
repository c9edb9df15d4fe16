#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "jet/Value.h"
#include "jet/format/TableDefinition.h"

namespace jet::format {

/// Appends what an index stores for one column of a row: a flag byte and the value in bytes that sort as it
/// does. Keys of several columns are the columns' one behind the other. A Null of a yes/no column counts as
/// false.
///
/// False, with `key` as it was, when there is no known form: for descending binary and GUIDs, text in another
/// sort order than General Legacy, long binary values, text that is not UTF-8, a value of another kind
/// than the column's or outside its range.
bool AppendKeyColumn(std::vector<std::byte>& key, const Value& value, const ColumnDefinition& column,
                     bool ascending);

/// The same of the text of a text or memo column, without a Value of it; none for Null.
bool AppendTextKeyColumn(std::vector<std::byte>& key, std::optional<std::string_view> text,
                         const ColumnDefinition& column, bool ascending);

/// Whether every key of an index on this column can be formed.
bool HasKnownKeyForm(const ColumnDefinition& column, bool ascending);

}  // namespace jet::format
