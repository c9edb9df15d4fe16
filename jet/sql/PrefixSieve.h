#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "jet/format/RowCodec.h"
#include "jet/format/TextCodec.h"
#include "jet/sql/BoundExpression.h"

namespace jet::sql {

/// Sees from the stored bytes of most rows that a like with a known beginning does not hold for them, long
/// before their texts are read.
class PrefixSieve {
 public:
  /// That of a condition on a text column of the table that is `source` of the statement; none for other
  /// conditions.
  static std::optional<PrefixSieve> Of(const BoundExpression& condition, std::size_t source,
                                       const format::TableDefinition& table);

  /// Whether the condition does surely not hold. Raises DamagedFile.
  bool Rejects(const format::RowView& row) const {
    const std::span<const std::byte> text = format::CompressedBytes(row.Field(m_column).bytes);
    for (std::size_t i = 0; i < m_prefix.size() && i < text.size(); ++i) {
      const auto stored = std::to_integer<unsigned char>(text[i]);
      if (stored == 0 || stored >= 0x80) return false;  // not a character of ASCII: let others look
      const bool isCapital = stored >= 'A' && stored <= 'Z';
      if (static_cast<unsigned char>(m_prefix[i]) != (isCapital ? stored + 32 : stored)) return true;
    }
    return false;
  }

 private:
  PrefixSieve(format::ColumnDefinition column, std::string prefix)
      : m_column(std::move(column)), m_prefix(std::move(prefix)) {}

  format::ColumnDefinition m_column;
  std::string m_prefix;  // ASCII, letters small
};

}  // namespace jet::sql
