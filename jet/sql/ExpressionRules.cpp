#include "jet/sql/ExpressionRules.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "jet/Error.h"
#include "jet/format/NameOrder.h"
#include "jet/sql/BoundExpression.h"
#include "jet/sql/Evaluator.h"
#include "jet/sql/Parser.h"
#include "jet/table/Table.h"

namespace jet::sql {
namespace {

/// The columns of one table, or only one of them.
class RuleScope final : public NameScope {
 public:
  RuleScope(const Table& table, std::optional<std::size_t> only) : m_table(&table), m_only(only) {}

  BoundColumn Resolve(const ColumnName& name) const override {
    const bool isOfTable = name.table.empty() || format::SameName(name.table, m_table->Name());
    const std::optional<std::size_t> column =
        isOfTable ? m_table->FindColumn(name.name) : std::optional<std::size_t>();
    if (!column || (m_only && column != m_only))
      throw Error(ErrorNumber::UnknownColumnInStatement, "It names " + Describe(name) + ".");
    return {{0, *column}, m_table->Definition().columns[*column].type};
  }

 private:
  const Table* m_table;
  std::optional<std::size_t> m_only;
};

class NoColumns final : public NameScope {
 public:
  BoundColumn Resolve(const ColumnName& name) const override {
    throw Error(ErrorNumber::UnknownColumnInStatement, "The expression names " + Describe(name) + ".");
  }
};

class ValuesOf final : public RowSource {
 public:
  explicit ValuesOf(const IncomingRow& row) : m_row(&row) {}
  Value Read(ColumnPlace place) const override { return m_row->read(place.column); }
  std::optional<std::string_view> ReadText(ColumnPlace place, std::string& buffer) const override {
    const Value value = Read(place);
    if (value.IsNull()) return std::nullopt;
    buffer = value.ToText();
    return buffer;
  }

 private:
  const IncomingRow* m_row;
};

/// One rule, with what it is a rule of, for messages.
class Rule {
 public:
  /// `column`: whose rule it is; none: the table's.
  Rule(const Table& table, std::optional<std::size_t> column, const ValidationRule& text)
      : m_text(&text), m_where("table '" + table.Name() + "'") {
    try {
      Expression expression;
      if (column) {
        const std::string& name = table.Definition().columns[*column].name;
        m_where = "column '" + name + "' of " + m_where;
        expression = ParseColumnRule(text.expression, name);
      } else {
        expression = ParseTableRule(text.expression);
      }
      m_condition = BindCondition(expression, RuleScope(table, column));
    } catch (const Error& error) {
      m_whyNot = error.what();
    }
  }

  void Check(const ValuesOf& row) const {
    if (!m_condition) RaiseCannotEvaluate(m_whyNot);
    Truth truth = Truth::Unknown;
    try {
      truth = Evaluator(row).Test(*m_condition);
    } catch (const Error& error) {
      RaiseCannotEvaluate(error.what());
    }
    if (truth != Truth::False) return;
    throw Error(ErrorNumber::RuleViolated, "The validation rule of " + m_where + ", " + m_text->expression +
                                               ", does not allow the row" +
                                               (m_text->message.empty() ? "." : ": " + m_text->message));
  }

 private:
  [[noreturn]] void RaiseCannotEvaluate(const std::string& why) const {
    throw Error(ErrorNumber::FeatureNotSupported, "The row cannot be stored: the validation rule of " +
                                                      m_where + ", " + m_text->expression +
                                                      ", cannot be evaluated. " + why);
  }

  const ValidationRule* m_text;  // the table's
  std::string m_where;
  std::optional<BoundExpression> m_condition;  // none: it cannot be evaluated
  std::string m_whyNot;
};

class ExpressionRules final : public RowRules {
 public:
  explicit ExpressionRules(const Table& table) : m_columns(table.Definition().columns.size()) {
    for (std::size_t column = 0; column < m_columns.size(); ++column) {
      if (const auto& text = table.Rules(column).validation) m_columns[column].emplace(table, column, *text);
    }
    if (const auto& text = table.RowRule()) m_row.emplace(table, std::nullopt, *text);
  }

  void Check(const IncomingRow& row) const override {
    const ValuesOf values(row);
    for (std::size_t column = 0; column < m_columns.size(); ++column) {
      if (m_columns[column] && (row.isNew || row.assigned[column])) m_columns[column]->Check(values);
    }
    if (m_row) m_row->Check(values);
  }

 private:
  std::vector<std::optional<Rule>> m_columns;
  std::optional<Rule> m_row;
};

}  // namespace

void UseExpressionRules(Store& store) {
  store.UseRules([](const Table& table) -> std::unique_ptr<RowRules> {
    return std::make_unique<ExpressionRules>(table);
  });
}

Value EvaluateConstant(const std::string& expression) {
  struct NoRow final : RowSource {
    Value Read(ColumnPlace) const override { return {}; }
    std::optional<std::string_view> ReadText(ColumnPlace, std::string&) const override {
      return std::nullopt;
    }
  };
  const NoRow row;
  return Evaluator(row).Evaluate(BindExpression(ParseValue(expression), NoColumns()));
}

}  // namespace jet::sql
