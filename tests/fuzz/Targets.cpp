#include "tests/fuzz/Targets.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "jet/Check.h"
#include "jet/Error.h"
#include "jet/TableSpec.h"
#include "jet/dao/DBEngine.h"
#include "jet/dao/Recordset.h"
#include "jet/format/IndexKey.h"
#include "jet/format/IndexPage.h"
#include "jet/format/PropertyBlob.h"
#include "jet/sql/LikePattern.h"
#include "jet/sql/Parser.h"
#include "storage/HLServiceUtils.h"
#include "storage/LeagueCsv.h"
#include "tests/fuzz/PackedFile.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/TestFiles.h"

namespace fuzz {
namespace {

using jet::Database;
using jet::Error;
using jet::test::MemoryFileSystem;

constexpr char kName[] = "fuzzed.mdb";

void Want(bool holds, const char* what) {
  if (holds) return;
  std::cerr << "It does not hold: " << what << "\n";
  std::abort();
}

std::string Text(Input input) {
  return {input.begin(), input.end()};
}

std::shared_ptr<Database> Open(const std::shared_ptr<MemoryFileSystem>& files) {
  return jet::DBEngine({.cacheBytes = std::size_t{1} << 20, .files = files, .observer = {}})
      .OpenDatabase(kName, true, false, HLDataSrvc::HLServiceUtils::GetConnectString());
}

/// Does what may raise an error of the engine.
template <typename Work>
bool Try(Work&& work) {
  try {
    work();
    return true;
  } catch (const Error&) {
    return false;
  }
}

/// Reads all values of a recordset from its current row on, as far as it goes.
void ReadRows(jet::Recordset& rows) {
  for (int count = 0; !rows.Eof() && count < 20000; ++count) {
    for (std::size_t column = 0; column < rows.FieldCount(); ++column)
      Try([&] { rows.Fields(column).Value().ToText(); });
    rows.MoveNext();
  }
}

bool ReadAll(Database& database) {
  bool isAll = true;
  for (const jet::TableInfo& table : database.Tables())
    isAll &= Try([&] { ReadRows(*database.OpenRecordset("select * from [" + table.name + "]")); });
  return isAll && Try([&] { database.Relations(); });
}

void OpenAndRead(Input input) {
  const auto files = std::make_shared<MemoryFileSystem>();
  files->Put(kName, Unpack(input));
  Try([&] {
    const auto database = Open(files);
    ReadAll(*database);
    database->Check();
  });
}

void OpenAndWrite(Input input) {
  const auto files = std::make_shared<MemoryFileSystem>();
  files->Put(kName, Unpack(input));
  bool wasSound = false;
  bool isClosed = false;
  Try([&] {
    const auto database = Open(files);
    wasSound = database->Check().findings.empty();
    for (const jet::TableInfo& table : database->Tables()) {
      if (table.isSystem) continue;
      Try([&] {
        const auto rows = database->OpenRecordset("select * from [" + table.name + "]");
        for (const bool isNew : {false, true}) {
          Try([&] {
            if (isNew) rows->AddNew();
            if (!isNew) rows->Edit();
            for (std::size_t column = 0; column < rows->FieldCount(); ++column)
              Try([&] { rows->Fields(column).Value(std::to_string(input.size() % 100 + column)); });
            rows->Update();
          });
        }
        Try([&] {
          rows->MoveFirst();
          rows->MoveNext();
          rows->Delete();
        });
      });
    }
    Try([&] {
      jet::ColumnSpec id;
      id.name = "id";
      id.type = jet::ColumnType::Long;
      database->CreateTable(
          {"another", {id}, {{.name = "k", .columns = {{"id"}}, .primary = true, .unique = true}}});
    });
    database->Close();
    isClosed = true;
  });
  if (isClosed && wasSound)
    Want(Open(files)->Check().findings.empty(), "a sound file is sound after changes");
}

/// A league with a row in each master table.
const std::shared_ptr<Database>& League() {
  static const std::shared_ptr<Database> league = [] {
    const auto files = std::make_shared<MemoryFileSystem>();
    files->Put(kName, jet::test::ReadWholeFile(jet::test::FixturePath("league-blank.mdb")));
    auto database = Open(files);
    const auto rows = database->OpenRecordset("select * from [player info]");
    rows->AddNew();
    rows->Fields("id").Value(1);
    rows->Fields("last name").Value("O'Neil");
    rows->Fields("is retired").Value(true);
    rows->Update();
    return database;
  }();
  return league;
}

void RunStatement(Input input) {
  const std::string text = Text(input);
  Try([&] { jet::sql::ParseSelect(text); });
  Try([&] { jet::sql::ParseCriterion(text); });
  Try([&] {
    const auto rows = League()->OpenRecordset(text);
    rows->Plan();
    ReadRows(*rows);
  });
  Try([&] { League()->OpenRecordset("select * from [player info]")->FindFirst(text); });
}

void MatchPattern(Input input) {
  const std::string text = Text(input);
  const std::size_t split = std::min(text.find('\0'), text.size());
  const std::string pattern = text.substr(0, split);
  const std::string subject = split < text.size() ? text.substr(split + 1) : text;
  Try([&] {
    const jet::sql::LikePattern compiled(pattern);
    compiled.Matches(subject);
    const bool isPlain = pattern.find_first_of("*?#[") == std::string::npos;
    Want(!isPlain || compiled.Matches(pattern), "a pattern without wildcards matches itself");
    Want(jet::sql::LikePattern(pattern + "*").Matches(subject) || !compiled.Matches(subject),
         "a pattern with * behind it matches no less");
  });
}

void DecodeBlob(Input input) {
  Try([&] {
    const jet::format::PropertyBlob blob = jet::format::DecodeProperties(std::as_bytes(input));
    const jet::Bytes encoded = jet::format::EncodeProperties(blob);
    Want(jet::format::EncodeProperties(jet::format::DecodeProperties(encoded)) == encoded,
         "properties that were encoded stay as they are");
  });
}

/// Takes pieces off the front of an input, zeros when it is at its end.
class Pieces {
 public:
  explicit Pieces(Input input) : m_rest(input) {}
  template <typename T>
  T Take() {
    T value{};
    const std::size_t size = std::min(sizeof value, m_rest.size());
    if (size > 0) std::memcpy(&value, m_rest.data(), size);
    m_rest = m_rest.subspan(size);
    return value;
  }
  Input Rest() const { return m_rest; }

 private:
  Input m_rest;
};

template <typename T>
void CompareKeys(jet::ColumnType type, T a, T b, bool ascending) {
  if (a != a || b != b) return;  // no order among what is not a number
  jet::format::ColumnDefinition column;
  column.type = type;
  jet::Bytes keyA, keyB;
  if (!jet::format::AppendKeyColumn(keyA, a, column, ascending) ||
      !jet::format::AppendKeyColumn(keyB, b, column, ascending)) {
    return;
  }
  Want(a == b || (keyA < keyB) == ((a < b) == ascending), "keys sort as their values do");
}

void FormKeys(Input input) {
  Pieces pieces(input);
  const auto kind = pieces.Take<std::uint8_t>();
  const bool ascending = pieces.Take<std::uint8_t>() % 2 == 0;
  switch (kind % 6) {
    case 0:
      return CompareKeys(jet::ColumnType::Long, pieces.Take<std::int32_t>(), pieces.Take<std::int32_t>(),
                         ascending);
    case 1:
      return CompareKeys(jet::ColumnType::Double, pieces.Take<double>(), pieces.Take<double>(), ascending);
    case 2:
      return CompareKeys(jet::ColumnType::Single, pieces.Take<float>(), pieces.Take<float>(), ascending);
    case 3:
      return CompareKeys(jet::ColumnType::Currency, jet::Currency{pieces.Take<std::int64_t>()},
                         jet::Currency{pieces.Take<std::int64_t>()}, ascending);
    case 4: {
      jet::format::ColumnDefinition column;
      column.type = jet::ColumnType::Text;
      jet::Bytes key;
      const bool isFormed = jet::format::AppendKeyColumn(key, Text(pieces.Rest()), column, ascending);
      Want(isFormed || key.empty(), "a key that is not formed leaves nothing behind");
      return;
    }
    default: {  // a page of entries, and a change of it
      std::vector<std::byte> page(jet::format::kPageSize);
      const Input rest = pieces.Rest().first(std::min(pieces.Rest().size(), page.size()));
      std::memcpy(page.data(), rest.data(), rest.size());
      Try([&] {
        jet::format::IndexPage view(page, 7);
        const auto entries = view.AllEntries();
        const jet::format::EntryBytes key(10, static_cast<std::byte>(kind));
        view.LowerBound(key);
        for (auto place = view.First(); !place.IsEnd(); place = view.Next(place))
          Try([&] { view.RowPage(place); });
        if (view.Insert(view.LowerBound(key), key))
          Want(view.AllEntries().size() == entries.size() + 1, "an entry put in is one entry more");
      });
    }
  }
}

/// A folder of this process's own.
const std::string& CsvFolder() {
  static const jet::test::TempFolder folder;
  return folder.Path();
}

void ImportCsv(Input input) {
  Pieces pieces(input);
  const auto names = HLDataSrvc::LeagueCsv::FileNames();
  const std::string path = CsvFolder() + "/" + names[pieces.Take<std::uint8_t>() % names.size()];
  const std::string text = Text(pieces.Rest());
  std::ofstream(path, std::ios::binary) << text;
  const auto files = std::make_shared<MemoryFileSystem>();
  static const auto blank = jet::test::ReadWholeFile(jet::test::FixturePath("league-blank.mdb"));
  files->Put(kName, blank);
  const auto database = Open(files);
  try {
    HLDataSrvc::LeagueCsv::FillFromFolder(*database, CsvFolder());
  } catch (const HLDataSrvc::CsvError&) {
  } catch (const Error&) {
  }
  std::filesystem::remove(path);
  database->Close();
}

/// A log beside a sound database: the database can be opened, or is refused and left alone.
void ReplayLog(Input input) {
  static const auto blank = jet::test::ReadWholeFile(jet::test::FixturePath("league-blank.mdb"));
  const auto files = std::make_shared<MemoryFileSystem>();
  files->Put(kName, blank);
  const auto bytes = std::as_bytes(input);
  files->Put(jet::LogNameFor(kName), {bytes.begin(), bytes.end()});
  if (!Try([&] { Open(files)->Close(); })) Want(files->Get(kName) == blank, "a refused log changes nothing");
}

constexpr Target kTargets[] = {{"open", OpenAndRead},  {"write", OpenAndWrite}, {"sql", RunStatement},
                               {"like", MatchPattern}, {"blob", DecodeBlob},    {"keys", FormKeys},
                               {"csv", ImportCsv},     {"log", ReplayLog}};

}  // namespace

std::span<const Target> Targets() {
  return kTargets;
}

}  // namespace fuzz
