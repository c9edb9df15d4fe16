#include "cli/League.h"

#include <algorithm>
#include <limits>
#include <thread>

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

using namespace std::chrono_literals;

constexpr auto kBetweenTries = 50ms;

/// Why the service did not open a file that is there. Its message has no number, so the engine is asked; when
/// it opens the file by now, somebody else has just let go of it.
jet::ErrorNumber ReasonNotOpened(const std::string& path) {
  try {
    HLServiceUtils::Engine().OpenDatabase(path, /*exclusive=*/true, /*readOnly=*/false,
                                          HLServiceUtils::GetConnectString());
  } catch (const jet::Error& error) {
    return error.Number();
  }
  return jet::ErrorNumber::FileInUse;
}

/// What `work()` answers; it is called again while it raises that the file is in use, for as long as
/// `patience` says. A watcher has the file for a moment whenever it has changed.
template <typename Work>
auto WhileInUse(std::chrono::milliseconds patience, Work&& work) {
  const auto end = std::chrono::steady_clock::now() + patience;
  for (;; std::this_thread::sleep_for(kBetweenTries)) {
    try {
      return work();
    } catch (const jet::Error& error) {
      const bool isInUse = error.Number() == jet::ErrorNumber::FileInUse ||
                           error.Number() == jet::ErrorNumber::FileHeldExclusively;
      if (!isInUse || std::chrono::steady_clock::now() >= end) throw;
    }
  }
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

League::League(const Context& context, std::chrono::milliseconds patience)
    : m_host(std::make_shared<LeagueHost>(context.folder)),
      m_service(HLDataSrvc::CreateDataService(m_host)),
      m_draft(std::make_unique<DraftSession>(*this)) {
  try {
    WhileInUse(patience, [&] {
      std::string message;
      const bool isOpen = m_service->Initialize(context.Kind(), message);
      m_path = HLServiceUtils::GetDatabasePath(*m_host, context.Kind(), "", "");
      if (!isOpen) throw jet::Error(ReasonNotOpened(m_path), message);
    });
  } catch (const jet::Error& error) {
    RaiseNotOpened(context, error);
  }
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
  try {
    WhileInUse(kPatience, [&] {
      std::string message;
      if (!m_service->OpenDatabase(forget, message)) throw jet::Error(ReasonNotOpened(m_path), message);
    });
  } catch (const jet::Error& error) {
    throw Failure(ExitCodeOf(error.Number()), error.what());
  }
}

std::size_t League::TextLength(const std::string& table, const std::string& column) {
  if (m_textLengths.empty()) {
    // The service has the file to itself, and does not tell about columns.
    m_service->CloseDatabase();
    try {
      m_textLengths = WhileInUse(kPatience, [this] { return TextLengthsIn(m_path); });
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

void League::RaiseNotOpened(const Context& context, const jet::Error& error) const {
  const std::string live = HLServiceUtils::GetDatabaseFileName(HLIData::DBType::Live, "", "");
  if (HLServiceUtils::GetDatabaseFolder(*m_host).empty()) {
    throw Failure(ExitCode::CannotOpen, error.what(),
                  "The folder " + context.folder + " has no '" + live +
                      "', by which a league's folder is known; 'halcyra create' makes one.");
  }
  if (m_host->FindFile(m_path).empty()) {
    throw Failure(ExitCode::CannotOpen, error.what(),
                  "'halcyra --kind " + context.kindName + " create' makes one.");
  }
  throw Failure(ExitCodeOf(error.Number()), error.what());
}

}  // namespace cli
