#include "cli/commands/Rows.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "jet/Error.h"

namespace cli {
namespace {

/// From the current row to the last.
void Write(jet::Recordset& rows, RowWriter& writer) {
  const std::size_t count = rows.FieldCount();
  std::vector<std::string> columns;
  std::vector<std::pair<jet::Field*, bool>> fields;  // and whether it is one of text
  for (std::size_t i = 0; i < count; ++i) {
    jet::Field& field = rows.Fields(i);
    columns.push_back(field.Name());
    fields.emplace_back(&field, field.Type() == jet::ColumnType::Text);
  }
  writer.Begin(columns);
  for (; !rows.Eof(); rows.MoveNext()) {
    for (const auto& [field, isText] : fields) {
      const std::optional<std::string_view> text = isText ? field->Text() : std::nullopt;
      if (text) {
        writer.Cell(*text);
      } else {
        writer.Cell(isText ? jet::Value() : field->Value());
      }
    }
    writer.EndRow();
  }
  writer.End();
}

}  // namespace

void FormatOption::AddTo(Command& command) {
  command.AddOption("--format", "FORMAT", m_format, "how the rows are written")
      .OneOf({"tsv", "csv", "json"})
      .ShowsDefault();
}

RowFormat FormatOption::Format(const Context& context) const {
  if (context.json || m_format == "json") return RowFormat::JsonArray;
  return m_format == "csv" ? RowFormat::Csv : RowFormat::Tsv;
}

void WriteRows(Context& context, jet::Database& database, const std::string& statement,
               const FormatOption& format, const std::string& source, bool explain) try {
  const auto rows = database.OpenRecordset(statement);
  if (explain) context.messages.Note("plan: " + rows->Plan());
  Write(*rows, *MakeRowWriter(format.Format(context), context.output));
} catch (jet::Error& error) {
  if (error.Number() == jet::ErrorNumber::DamagedFile) error.AddContext(source);
  throw;
}

std::string Bracketed(const std::string& name) {
  return "[" + name + "]";
}

}  // namespace cli
