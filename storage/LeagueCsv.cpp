#include "storage/LeagueCsv.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

#include "jet/Error.h"
#include "jet/Text.h"
#include "jet/Value.h"
#include "jet/dao/Database.h"
#include "jet/dao/Recordset.h"
#include "jet/dao/Transaction.h"
#include "platform/Paths.h"
#include "storage/Schema.h"

namespace HLDataSrvc::LeagueCsv {
namespace {

enum class Kind { Key, Text, YesNo, Reference };

struct Column {
  const char* name;
  Kind kind;
  const char* parentTable = nullptr;  // of a reference
  const char* parentKey = nullptr;
};

struct TableFile {
  const char* file;
  const char* table;
  std::vector<Column> columns;
};

Column Referring(const char* name, const char* parentTable, const char* parentKey) {
  return {name, Kind::Reference, parentTable, parentKey};
}

// A file comes after those whose rows it refers to.
const std::vector<TableFile>& TableFiles() {
  namespace S = Schema;
  static const std::vector<TableFile> files = {
      {"positions.csv",
       S::Position::kTable,
       {{S::Position::kID, Kind::Key}, {S::Position::kAbbr, Kind::Text}, {S::Position::kDesc, Kind::Text}}},
      {"teams.csv",
       S::Team::kTable,
       {{S::Team::kID, Kind::Key},
        {S::Team::kAbbr, Kind::Text},
        {S::Team::kName, Kind::Text},
        {S::Team::kNickname, Kind::Text},
        Referring(S::Team::kPositionID, S::Position::kTable, S::Position::kID)}},
      {"prize-types.csv",
       S::PrizeType::kTable,
       {{S::PrizeType::kTypeID, Kind::Key}, {S::PrizeType::kTypeName, Kind::Text}}},
      {"prizes.csv",
       S::Prize::kTable,
       {{S::Prize::kID, Kind::Key},
        {S::Prize::kDesc, Kind::Text},
        Referring(S::Prize::kTypeID, S::PrizeType::kTable, S::PrizeType::kTypeID)}},
      {"players.csv",
       S::Player::kTable,
       {{S::Player::kID, Kind::Key},
        {S::Player::kFirstName, Kind::Text},
        {S::Player::kLastName, Kind::Text},
        Referring(S::Player::kPositionID, S::Position::kTable, S::Position::kID),
        Referring(S::Player::kTeamID, S::Team::kTable, S::Team::kID),
        {S::Player::kIsRetired, Kind::YesNo}}},
      {"managers.csv",
       S::Manager::kTable,
       {{S::Manager::kID, Kind::Key},
        {S::Manager::kFirstName, Kind::Text},
        {S::Manager::kLastName, Kind::Text}}},
  };
  return files;
}

// Errors for which the row is to blame, and not the file or the system.
bool IsFaultOfRow(jet::ErrorNumber number) {
  using enum jet::ErrorNumber;
  constexpr jet::ErrorNumber kFaults[] = {
      DuplicateKey,  RecordTooLarge,       NullInPrimaryKey, TextTooLong,  NoReferredRow,
      CannotConvert, NullInRequiredColumn, ZeroLengthText,   RuleViolated, FeatureNotSupported};
  return std::find(std::begin(kFaults), std::end(kFaults), number) != std::end(kFaults);
}

// Fills one table from one file.
class TableFiller {
 public:
  TableFiller(jet::Database& database, const TableFile& file, std::istream& in)
      : m_database(database), m_file(file), m_reader(in, file.file) {}

  std::int32_t Fill() {
    ReadHeader();
    jet::Transaction unit(m_database);
    const auto rows = m_database.OpenRecordset(std::string("select * from [") + m_file.table + "]");
    std::vector<std::string> fields;
    std::int32_t count = 0;
    while (m_reader.Next(fields)) {
      AddRow(*rows, fields);
      ++count;
    }
    rows->Close();
    unit.Commit();
    return count;
  }

 private:
  void ReadHeader() {
    std::vector<std::string> names;
    if (!m_reader.Next(names)) m_reader.Refuse("The line with the names of the columns is missing.");
    for (const std::string& name : names) {
      const std::string wanted = CsvColumnWord(name);
      const auto column =
          std::find_if(m_file.columns.begin(), m_file.columns.end(),
                       [&](const Column& candidate) { return CsvColumnWord(candidate.name) == wanted; });
      if (column == m_file.columns.end()) {
        m_reader.Refuse("[" + std::string(m_file.table) + "] has no column \"" + name + "\".");
      }
      if (std::find(m_columns.begin(), m_columns.end(), &*column) != m_columns.end()) {
        m_reader.Refuse("The column \"" + name + "\" is named twice.");
      }
      m_columns.push_back(&*column);
    }
    const Column& key = m_file.columns.front();
    if (std::find(m_columns.begin(), m_columns.end(), &key) == m_columns.end()) {
      m_reader.Refuse("The column \"" + std::string(key.name) + "\" is missing.");
    }
  }

  void AddRow(jet::Recordset& rows, const std::vector<std::string>& fields) {
    if (fields.size() != m_columns.size()) {
      m_reader.Refuse("The line has " + std::to_string(fields.size()) +
                      " fields where the first line names " + std::to_string(m_columns.size()) + ".");
    }
    try {
      rows.AddNew();
      for (std::size_t i = 0; i < fields.size(); ++i) {
        rows.Fields(m_columns[i]->name).Value(ValueOf(*m_columns[i], fields[i]));
      }
      rows.Update();
    } catch (const jet::Error& error) {
      if (!IsFaultOfRow(error.Number())) throw;
      m_reader.Refuse(error.what());
    }
  }

  jet::Value ValueOf(const Column& column, const std::string& field) {
    if (column.kind == Kind::Text) return field.empty() ? jet::Value() : jet::Value(field);
    const std::string_view text = jet::Trim(field, " ");
    switch (column.kind) {
      case Kind::Key:
        return Identifier(column, text);
      case Kind::Reference:
        return text.empty() ? jet::Value() : jet::Value(ExistingIdentifier(column, text));
      default:
        return !text.empty() && YesOrNo(column, text);
    }
  }

  std::int32_t Identifier(const Column& column, std::string_view text) const {
    std::int32_t id = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), id);
    if (error != std::errc() || end != text.data() + text.size() || id < 1) {
      RefuseValue(column, text, "a whole number from 1 to 2147483647");
    }
    return id;
  }

  std::int32_t ExistingIdentifier(const Column& column, std::string_view text) {
    const std::int32_t id = Identifier(column, text);
    if (!Identifiers(column).contains(id)) {
      m_reader.Refuse("The column \"" + std::string(column.name) + "\" refers to " + std::to_string(id) +
                      ", which [" + column.parentTable + "] does not hold.");
    }
    return id;
  }

  // What a reference may refer to. The database does not enforce them all.
  const std::set<std::int32_t>& Identifiers(const Column& column) {
    const auto [found, isNew] = m_identifiers.try_emplace(column.parentTable);
    if (isNew) {
      const auto rows = m_database.OpenRecordset(std::string("select [") + column.parentKey + "] from [" +
                                                 column.parentTable + "]");
      for (; !rows->Eof(); rows->MoveNext()) {
        const jet::Value id = rows->Fields(column.parentKey).Value();
        if (const auto* number = id.As<std::int32_t>()) found->second.insert(*number);
      }
    }
    return found->second;
  }

  bool YesOrNo(const Column& column, std::string_view text) const {
    const std::optional<bool> flag = CsvYesNo(text);
    if (!flag) RefuseValue(column, text, "true, false, yes, no, 1 or 0");
    return *flag;
  }

  [[noreturn]] void RefuseValue(const Column& column, std::string_view text, const char* wanted) const {
    m_reader.Refuse("The column \"" + std::string(column.name) + "\" takes " + wanted + ", not \"" +
                    std::string(text) + "\".");
  }

  jet::Database& m_database;
  const TableFile& m_file;
  CsvReader m_reader;
  std::vector<const Column*> m_columns;                         // in the order of the fields
  std::map<std::string, std::set<std::int32_t>> m_identifiers;  // by table, read when first needed
};

std::int32_t FillFromFile(jet::Database& database, const TableFile& file, const std::filesystem::path& path) {
  std::error_code unknown;
  const auto kind = std::filesystem::status(path, unknown).type();
  if (kind != std::filesystem::file_type::regular)
    throw jet::Error(jet::ErrorNumber::PermissionDenied, "File " + path.string() + " is not a plain file.");
  try {
    std::ifstream in;
    in.exceptions(std::ios::badbit);  // else a read error would look like the end of the file
    in.open(path, std::ios::binary);
    if (!in)
      throw jet::Error(jet::ErrorNumber::PermissionDenied, "File " + path.string() + " cannot be read.");
    return TableFiller(database, file, in).Fill();
  } catch (const std::ios_base::failure&) {
    throw jet::Error(jet::ErrorNumber::ReadFailed, "File " + path.string() + " cannot be read to its end.");
  }
}

}  // namespace

std::vector<std::string> FileNames() {
  std::vector<std::string> names;
  for (const TableFile& file : TableFiles())
    names.emplace_back(file.file);
  return names;
}

std::vector<Filled> FillFromFolder(jet::Database& database, const std::string& folder) {
  std::error_code unknown;
  if (!std::filesystem::is_directory(ToSystemPath(folder), unknown)) {
    throw jet::Error(jet::ErrorNumber::PathNotFound, "There is no folder " + folder + ".");
  }
  std::vector<Filled> filled;
  for (const TableFile& file : TableFiles()) {
    const std::filesystem::path path = ToSystemPath(folder) / file.file;
    if (std::filesystem::status(path, unknown).type() == std::filesystem::file_type::not_found) continue;
    filled.push_back({file.file, file.table, FillFromFile(database, file, path)});
  }
  return filled;
}

}  // namespace HLDataSrvc::LeagueCsv
