#include "jet/sql/PrefixSieve.h"

#include <cstdint>

#include "jet/format/Bytes.h"

namespace jet::sql {

std::optional<PrefixSieve> PrefixSieve::Of(const BoundExpression& condition, std::size_t source,
                                           const format::TableDefinition& table) {
  if (condition.kind != Expression::Kind::Like || !condition.pattern) return std::nullopt;
  const BoundExpression& operand = condition.operands[0];
  if (operand.kind != Expression::Kind::Column || operand.column.type != ColumnType::Text ||
      operand.column.place.source != source)
    return std::nullopt;
  std::string prefix = condition.pattern->AsciiPrefix();
  if (prefix.empty()) return std::nullopt;
  return PrefixSieve(table.columns[operand.column.place.column], std::move(prefix),
                     condition.pattern->IsAsciiPrefix());
}

PrefixSieve::Verdict PrefixSieve::LookAtPlain(std::span<const std::byte> text) const {
  for (std::size_t i = 0; i < m_prefix.size(); ++i) {
    if (2 * i + 2 > text.size()) return text.size() % 2 == 0 ? Verdict::No : Verdict::Unknown;
    const std::uint16_t unit = format::LoadU16(text.data() + 2 * i);
    if (unit > 0xFF) return Verdict::Unknown;
    if (!IsLike(m_prefix[i], static_cast<unsigned char>(unit))) return Verdict::No;
  }
  return Verdict::Unknown;
}

}  // namespace jet::sql
