#include "jet/sql/Comparison.h"

#include <algorithm>

#include "jet/format/SortKey.h"
#include "jet/sql/Numbers.h"

namespace jet::sql {

ValueKind KindOf(ColumnType type) {
  switch (type) {
    case ColumnType::YesNo:
    case ColumnType::Byte:
    case ColumnType::Integer:
    case ColumnType::Long:
    case ColumnType::Currency:
    case ColumnType::Single:
    case ColumnType::Double:
    case ColumnType::Decimal:
      return ValueKind::Number;
    case ColumnType::Text:
    case ColumnType::Memo:
      return ValueKind::Text;
    case ColumnType::DateTime:
      return ValueKind::Date;
    case ColumnType::Guid:
      return ValueKind::Guid;
    default:
      return ValueKind::Binary;
  }
}

ValueKind KindOf(const Value& value) {
  if (value.IsNull()) return ValueKind::Null;
  if (value.As<std::string>() != nullptr) return ValueKind::Text;
  if (value.As<DateTime>() != nullptr) return ValueKind::Date;
  if (value.As<Guid>() != nullptr) return ValueKind::Guid;
  if (value.As<Bytes>() != nullptr) return ValueKind::Binary;
  return ValueKind::Number;
}

const char* NameOf(ValueKind kind) {
  switch (kind) {
    case ValueKind::Null:
      return "Null";
    case ValueKind::Number:
      return "a number";
    case ValueKind::Text:
      return "text";
    case ValueKind::Date:
      return "a date";
    case ValueKind::Guid:
      return "a GUID";
    case ValueKind::Binary:
      return "binary data";
  }
  return "";
}

std::strong_ordering CompareValues(const Value& a, const Value& b) {
  const ValueKind kind = KindOf(a);
  if (kind != KindOf(b)) return kind <=> KindOf(b);
  switch (kind) {
    case ValueKind::Number:
      return CompareNumbers(a, b);
    case ValueKind::Text:
      return format::CompareText(*a.As<std::string>(), *b.As<std::string>());
    case ValueKind::Date:
      return CompareNumbers(a.As<DateTime>()->days, b.As<DateTime>()->days);
    case ValueKind::Guid:
      return *a.As<Guid>() <=> *b.As<Guid>();
    case ValueKind::Binary: {
      const Bytes& left = *a.As<Bytes>();
      const Bytes& right = *b.As<Bytes>();
      return std::lexicographical_compare_three_way(left.begin(), left.end(), right.begin(), right.end());
    }
    default:
      return std::strong_ordering::equal;
  }
}

}  // namespace jet::sql
