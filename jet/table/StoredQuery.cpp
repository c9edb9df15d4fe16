#include "jet/table/StoredQuery.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "jet/Error.h"
#include "jet/format/NameOrder.h"
#include "jet/format/PageLayout.h"

namespace jet {

namespace {

// What a row of MSysQueries says (column Attribute).
namespace attribute {
constexpr std::int32_t kType = 1;     // Flag: kind of query; Expression: the text of one of another server
constexpr std::int32_t kOptions = 3;  // Flag: option bits; Name1: how many rows
constexpr std::int32_t kTable = 5;    // Name1: table; Name2: alias
constexpr std::int32_t kColumn = 6;   // Expression, Name1: alias
constexpr std::int32_t kJoin = 7;     // Name1, Name2: its two sides; Expression: condition; Flag: kind
constexpr std::int32_t kWhere = 8;
constexpr std::int32_t kGroup = 9;
constexpr std::int32_t kHaving = 10;
constexpr std::int32_t kOrder = 11;  // Expression; Name1: D for descending
constexpr std::int32_t kEnd = 255;
}  // namespace attribute

constexpr std::int32_t kSelect = 1;
constexpr std::int32_t kDefinition = 7;  // of data; the text is whole
constexpr std::int32_t kPassThrough = 8;

constexpr std::int32_t kAllColumns = 0x1;
constexpr std::int32_t kDistinct = 0x2;
constexpr std::int32_t kDistinctRow = 0x8;
constexpr std::int32_t kTop = 0x10;
constexpr std::int32_t kPercent = 0x20;
constexpr std::int32_t kKnownOptions = kAllColumns | kDistinct | 0x4 | kDistinctRow | kTop | kPercent;

struct Piece {
  std::int32_t attribute = 0;
  Bytes order;
  std::string name1;
  std::string name2;
  std::string expression;
  std::int32_t flag = 0;
};

std::string Quoted(const std::string& name) {
  const bool isPlain = !name.empty() && std::isdigit(static_cast<unsigned char>(name.front())) == 0 &&
                       std::ranges::all_of(name, [](char c) {
                         return c == '_' || std::isalnum(static_cast<unsigned char>(c)) != 0;
                       });
  return isPlain ? name : "[" + name + "]";
}

/// Tables that joins have brought together.
struct Group {
  std::set<std::string> names;  ///< folded: aliases, or tables without one
  std::string text;
  bool isJoined = false;
};

Group* FindGroup(std::vector<Group>& groups, const std::string& name) {
  const auto found = std::ranges::find_if(
      groups, [&](const Group& group) { return group.names.contains(format::FoldName(name)); });
  return found == groups.end() ? nullptr : &*found;
}

/// Puts the pieces of one query together.
class Assembly {
 public:
  explicit Assembly(std::vector<Piece> pieces) : m_pieces(std::move(pieces)) {
    std::ranges::stable_sort(m_pieces, [](const Piece& a, const Piece& b) {
      return std::pair(a.attribute, a.order) < std::pair(b.attribute, b.order);
    });
  }

  std::optional<std::string> Text() const {
    if (!IsUnderstood()) return std::nullopt;
    const Piece* const type = First(attribute::kType);
    const std::int32_t kind = type == nullptr ? kSelect : type->flag;
    if (kind == kDefinition || kind == kPassThrough)
      return type->expression.empty() ? std::nullopt : std::optional(type->expression);
    const std::optional<std::string> from = From();
    if (kind != kSelect || !from) return std::nullopt;
    std::string text = "select " + Options() + Columns();
    if (!from->empty()) text += " from " + *from;
    if (const Piece* const where = First(attribute::kWhere)) text += " where " + where->expression;
    text += Listed(attribute::kGroup, " group by ");
    if (const Piece* const having = First(attribute::kHaving)) text += " having " + having->expression;
    return text + Listed(attribute::kOrder, " order by ");
  }

 private:
  bool IsUnderstood() const {
    static constexpr std::array kKnown = {0,
                                          attribute::kType,
                                          attribute::kOptions,
                                          attribute::kTable,
                                          attribute::kColumn,
                                          attribute::kJoin,
                                          attribute::kWhere,
                                          attribute::kGroup,
                                          attribute::kHaving,
                                          attribute::kOrder,
                                          attribute::kEnd};
    return std::ranges::all_of(m_pieces, [](const Piece& piece) {
      return std::ranges::find(kKnown, piece.attribute) != kKnown.end() &&
             (piece.attribute != attribute::kOptions || (piece.flag & ~kKnownOptions) == 0);
    });
  }
  const Piece* First(std::int32_t wanted) const {
    const auto found = std::ranges::find(m_pieces, wanted, &Piece::attribute);
    return found == m_pieces.end() ? nullptr : &*found;
  }
  std::string Options() const {
    const Piece* const options = First(attribute::kOptions);
    if (options == nullptr) return {};
    std::string text;
    if ((options->flag & kDistinct) != 0) text += "distinct ";
    if ((options->flag & kDistinctRow) != 0) text += "distinctrow ";
    if ((options->flag & kTop) != 0)
      text += "top " + options->name1 + ((options->flag & kPercent) != 0 ? " percent " : " ");
    return text;
  }
  std::string Columns() const {
    const Piece* const options = First(attribute::kOptions);
    std::string text = options != nullptr && (options->flag & kAllColumns) != 0 ? "*" : "";
    for (const Piece& piece : m_pieces) {
      if (piece.attribute != attribute::kColumn) continue;
      text += (text.empty() ? "" : ", ") + piece.expression;
      if (!piece.name1.empty()) text += " as " + Quoted(piece.name1);
    }
    return text.empty() ? "*" : text;
  }
  std::string Listed(std::int32_t wanted, const std::string& keyword) const {
    std::string text;
    for (const Piece& piece : m_pieces) {
      if (piece.attribute != wanted) continue;
      text += (text.empty() ? keyword : ", ") + piece.expression;
      if (wanted == attribute::kOrder && piece.name1 == "D") text += " desc";
    }
    return text;
  }
  std::optional<std::string> From() const {
    std::vector<Group> groups;
    for (const Piece& piece : m_pieces) {
      if (piece.attribute != attribute::kTable) continue;
      if (piece.name1.empty()) return std::nullopt;  // a statement in the place of a table
      const std::string alias = piece.name2.empty() ? "" : " as " + Quoted(piece.name2);
      groups.push_back({{format::FoldName(piece.name2.empty() ? piece.name1 : piece.name2)},
                        Quoted(piece.name1) + alias,
                        false});
    }
    for (std::size_t i = 0; i < m_pieces.size(); ++i) {
      if (m_pieces[i].attribute == attribute::kJoin && !Join(i, groups)) return std::nullopt;
    }
    std::string text;
    for (const Group& group : groups)
      text += (text.empty() ? "" : ", ") + group.text;
    return text;
  }
  /// Joins what the piece says; further conditions of the same two sides follow it. False when it fits not.
  bool Join(std::size_t at, std::vector<Group>& groups) const {
    static constexpr std::array kKinds = {" inner join ", " left join ", " right join "};
    const Piece& join = m_pieces[at];
    const auto isSame = [&](const Piece& other) {
      return other.attribute == attribute::kJoin && other.name1 == join.name1 && other.name2 == join.name2;
    };
    if (at > 0 && isSame(m_pieces[at - 1])) return true;  // was one of the conditions
    std::string condition = join.expression;
    bool isOne = true;
    for (std::size_t next = at + 1; next < m_pieces.size() && isSame(m_pieces[next]); ++next) {
      condition = (isOne ? "(" + condition + ")" : condition) + " and (" + m_pieces[next].expression + ")";
      isOne = false;
    }
    Group* const left = FindGroup(groups, join.name1);
    Group* const right = FindGroup(groups, join.name2);
    if (left == nullptr || right == nullptr || left == right || join.flag < 1 || join.flag > 3) return false;
    const auto inBrackets = [](const Group& group) {
      return group.isJoined ? "(" + group.text + ")" : group.text;
    };
    left->text = inBrackets(*left) + kKinds[static_cast<std::size_t>(join.flag - 1)] + inBrackets(*right) +
                 " on " + condition;
    left->isJoined = true;
    left->names.merge(right->names);
    groups.erase(groups.begin() + (right - groups.data()));
    return true;
  }

  std::vector<Piece> m_pieces;
};

}  // namespace

std::map<std::uint32_t, std::string> StoredQueryTexts(Store& store) {
  const Table& queries = store.TableAt(format::system_page::kQueries);
  std::array<std::size_t, 7> columns{};
  constexpr std::array kNames = {"ObjectId", "Attribute", "Order", "Name1", "Name2", "Expression", "Flag"};
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    const std::optional<std::size_t> column = queries.FindColumn(kNames[i]);
    if (!column) {
      throw Error(ErrorNumber::DamagedFile,
                  std::string("Table 'MSysQueries' is damaged: it has no column '") + kNames[i] + "'.");
    }
    columns[i] = *column;
  }
  std::map<std::uint32_t, std::vector<Piece>> pieces;
  for (TableScan scan(queries); scan.Next();) {
    const auto read = [&](std::size_t which) { return queries.Read(scan.Row(), columns[which]); };
    const auto number = [&](std::size_t which) {
      const Value value = read(which);
      return value.As<std::int32_t>() == nullptr ? 0 : *value.As<std::int32_t>();
    };
    Piece piece{number(1), {}, read(3).ToText(), read(4).ToText(), read(5).ToText(), number(6)};
    const Value order = read(2);
    if (const auto* const bytes = order.As<Bytes>()) piece.order = *bytes;
    pieces[static_cast<std::uint32_t>(number(0))].push_back(std::move(piece));
  }
  std::map<std::uint32_t, std::string> texts;
  for (auto& [id, parts] : pieces) {
    if (std::optional<std::string> text = Assembly(std::move(parts)).Text())
      texts.emplace(id, *std::move(text));
  }
  return texts;
}

}  // namespace jet
