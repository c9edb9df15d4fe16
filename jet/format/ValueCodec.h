#pragma once

#include <cstddef>
#include <span>

#include "jet/Value.h"
#include "jet/format/TableDefinition.h"

/// Values of columns as rows store them. Yes/no values are bits of the row and long values lie elsewhere;
/// neither is handled here.
namespace jet::format {

/// The value in a column's stored bytes. Raises DamagedFile, naming the column, when they are too many or too
/// few, no text, or of a type that the engine does not know.
Value DecodeValue(const ColumnDefinition& column, std::span<const std::byte> stored);

/// Appends the stored form of a value that is already of the column's kind: an int32_t within its range, a
/// Decimal of its scale, a text or bytes within its size. Text is compressed if the column allows it, and in
/// a column of fixed size filled up with blanks; so is binary with zeros. Raises CannotConvert (TextTooLong
/// for a text), naming the column, for any other value.
void AppendValue(const ColumnDefinition& column, const Value& value, Bytes& into);

}  // namespace jet::format
