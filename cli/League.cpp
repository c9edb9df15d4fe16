#include "cli/League.h"

#include <algorithm>
#include <limits>

#include "HLDataSrvc/CreateDataService.h"
#include "cli/DraftSession.h"
#include "cli/ExitCode.h"
#include "jet/Error.h"
#include "jet/dao/DBEngine.h"
#include "jet/dao/Database.h"
#include "storage/HLServiceUtils.h"

namespace cli {
namespace {

namespace HLServiceUtils = HLDataSrvc::HLServiceUtils;

/// Why the engine does not open a file that is there. The service's message has no number, so the engine is
/// asked again.
ExitCode ReasonNotOpened(const std::string& path) {
  try {
    HLServiceUtils::Engine().OpenDatabase(path, /*exclusive=*/true, /*readOnly=*/false,
                                          HLServiceUtils::GetConnectString());
  } catch (const jet::Error& error) {
    return ExitCodeOf(error.Number());
  }
  return ExitCode::Refused;
}

/// The lengths of the columns of text in a file, under table and column.
std::map<std::pair<std::string, std::string>, std::size_t> TextLengthsIn(const std::string& path) {
  const auto database = HLServiceUtils::Engine().OpenDatabase(path, /*exclusive=*/true, /*readOnly=*/true,
                                                              HLServiceUtils::GetConnectString());
  std::map<std::pair<std::string, std::string>, std::size_t> lengths;
  for (const jet::TableInfo& table : database->Tables()) {
    for (const jet::ColumnSpec& column : table.columns) {
      if (column.type == jet::ColumnType::Text) lengths[{table.name, column.name}] = column.length;
    }
  }
  return lengths;
}

}  // namespace

void LeagueHost::ShowMessage(const std::string& text, const std::string& title) {
  std::string line = title + ": " + text;
  line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
  std::replace(line.begin(), line.end(), '\n', ' ');
  m_shown.push_back(std::move(line));
}

League::League(const Context& context)
    : m_host(std::make_shared<LeagueHost>(context.folder)),
      m_service(HLDataSrvc::CreateDataService(m_host)),
      m_draft(std::make_unique<DraftSession>(*this)) {
  std::string message;
  if (!m_service->Initialize(context.Kind(), message)) RaiseNotOpened(context, message);
  m_path = HLServiceUtils::GetDatabasePath(*m_host, context.Kind(), "", "");
  RaiseShownMessages();
}

League::~League() = default;

void League::RaiseShownMessages() {
  const std::vector<std::string> shown = m_host->TakeShown();
  if (shown.empty()) return;
  std::string others;
  for (std::size_t i = 1; i < shown.size(); ++i)
    others += (others.empty() ? "" : "\n") + shown[i];
  throw Failure(ExitCode::Refused, shown.front(), others);
}

void League::Reopen(bool forget) {
  std::string message;
  if (m_service->OpenDatabase(forget, message)) return;
  throw Failure(ReasonNotOpened(m_path), message);
}

std::size_t League::TextLength(const std::string& table, const std::string& column) {
  if (m_textLengths.empty()) {
    // The service has the file to itself, and does not tell about columns.
    m_service->CloseDatabase();
    try {
      m_textLengths = TextLengthsIn(m_path);
    } catch (const jet::Error&) {
      Reopen(/*forget=*/false);
      throw;
    }
    Reopen(/*forget=*/false);
  }
  const auto found = m_textLengths.find({table, column});
  return found == m_textLengths.end() ? std::numeric_limits<std::size_t>::max() : found->second;
}

void League::RefuseUnsavedPicks(const std::string& command) {
  const std::vector<std::int32_t> unsaved = m_draft->Unsaved();
  if (unsaved.empty()) return;
  throw Failure(
      ExitCode::Refused,
      "'" + command + "' reads the draft again, and changes of " + PickNumbers(unsaved) + " are not saved.",
      "'draft save' saves them, 'draft revert' drops them.");
}

void League::RaiseNotOpened(const Context& context, const std::string& message) const {
  const std::string live = HLServiceUtils::GetDatabaseFileName(HLIData::DBType::Live, "", "");
  if (HLServiceUtils::GetDatabaseFolder(*m_host).empty()) {
    throw Failure(ExitCode::CannotOpen, message,
                  "The folder " + context.folder + " has no '" + live +
                      "', by which a league's folder is known; 'halcyra create' makes one.");
  }
  const std::string path = HLServiceUtils::GetDatabasePath(*m_host, context.Kind(), "", "");
  if (m_host->FindFile(path).empty()) {
    throw Failure(ExitCode::CannotOpen, message,
                  "'halcyra --kind " + context.kindName + " create' makes one.");
  }
  throw Failure(ReasonNotOpened(path), message);
}

}  // namespace cli
