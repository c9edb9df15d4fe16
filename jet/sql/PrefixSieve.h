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

/// Sees from the stored bytes of most rows whether a like with a known beginning holds for them, long before
/// their texts are read.
class PrefixSieve {
 public:
  enum class Verdict { No, Unknown, Yes };

  /// That of a condition on a text column of the table that is `source` of the statement; none for other
  /// conditions.
  static std::optional<PrefixSieve> Of(const BoundExpression& condition, std::size_t source,
                                       const format::TableDefinition& table);

  /// Whether the condition holds. Raises DamagedFile.
  Verdict Look(const format::RowView& row) const {
    const format::RowField field = row.Field(m_column);
    if (!field.present) return Verdict::No;
    const std::span<const std::byte> text = format::CompressedBytes(field.bytes);
    if (text.empty()) return LookAtPlain(field.bytes);
    for (std::size_t i = 0; i < m_prefix.size(); ++i) {
      if (i == text.size()) return Verdict::No;
      const auto stored = std::to_integer<unsigned char>(text[i]);
      if (stored == 0) return Verdict::Unknown;  // characters of two bytes follow
      if (!IsLike(m_prefix[i], stored)) return Verdict::No;
    }
    return m_isAll ? Verdict::Yes : Verdict::Unknown;
  }

 private:
  PrefixSieve(format::ColumnDefinition column, std::string prefix, bool isAll)
      : m_column(std::move(column)), m_prefix(std::move(prefix)), m_isAll(isAll) {}

  // No character of U+0080 to U+00FF is a capital or small form of one of ASCII.
  static bool IsLike(char small, unsigned char character) {
    const bool isCapital = character >= 'A' && character <= 'Z';
    return static_cast<unsigned char>(small) == (isCapital ? character + 32 : character);
  }
  Verdict LookAtPlain(std::span<const std::byte> text) const;

  format::ColumnDefinition m_column;
  std::string m_prefix;  // ASCII, letters small
  bool m_isAll;          // anything may follow
};

}  // namespace jet::sql
