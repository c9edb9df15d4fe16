#include "HLLeague/League.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <thread>
#include <utility>
#include <vector>

#include "HLDataSrvc/CreateDataService.h"
#include "HLDataSrvc/Host.h"
#include "HLDataSrvc/ServiceDatabase.h"
#include "HLLeague/Failure.h"
#include "jet/Error.h"
#include "league/EngineErrors.h"
#include "storage/HLServiceUtils.h"

namespace HLLeague {
namespace {

namespace HLServiceUtils = HLDataSrvc::HLServiceUtils;

using namespace std::chrono_literals;

constexpr auto kBetweenTries = 50ms;
/// In the message box of an operation that has loaded such a draft.
constexpr const char* kPartialDraft = "Error in loading drafts.";
constexpr const char* kNothingChanged = "Nothing was changed.";

/// Raises why the service did not open a file, with the engine's number.
[[noreturn]] void RaiseOpeningError(HLIData::IDataService& service, const std::string& message) {
  const std::exception_ptr error = HLDataSrvc::OpeningError(service);
  if (error == nullptr) throw jet::Error(jet::ErrorNumber::FileNotFound, message);
  try {
    std::rethrow_exception(error);
  } catch (const jet::Error&) {
    throw;
  } catch (const std::exception&) {
    throw jet::Error(jet::ErrorNumber::PermissionDenied, message);  // the folder could not be searched
  }
}

/// The result of `work()`, which is called again while it raises that the file is in use, for as long as
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

constexpr const char* NameOf(HLIData::DBType kind) {
  switch (kind) {
    case HLIData::DBType::Test:
      return "test";
    case HLIData::DBType::Blank:
      return "blank";
    case HLIData::DBType::Backup:
      return "backup";
    case HLIData::DBType::Setup:
      return "setup";
    default:
      return "live";
  }
}

/// Raises why a league did not open, with what can be done about it.
[[noreturn]] void RaiseNotOpened(const HLDataSrvc::Host& host, const LeagueOptions& options,
                                 const std::string& path, const jet::Error& error) {
  const std::string live = HLServiceUtils::GetDatabaseFileName(HLIData::DBType::Live, "", "");
  if (HLServiceUtils::GetDatabaseFolder(host).empty()) {
    throw Failure(FailureKind::CannotOpen, error.what(),
                  "The folder " + options.folder + " has no '" + live +
                      "', by which a league's folder is known; 'halcyra create' makes one.");
  }
  if (host.FindFile(path).empty()) {
    throw Failure(FailureKind::CannotOpen, error.what(),
                  "'halcyra --kind " + std::string(NameOf(options.kind)) + " create' makes one.");
  }
  throw Failure(FailureKindOf(error.Number()), error.what());
}

}  // namespace

/// The host of a league's service: its folder is the league's, and what it would show in a message box is
/// kept, for the operation to fail with.
class LeagueHost : public HLDataSrvc::Host {
 public:
  explicit LeagueHost(std::string folder) : m_folder(std::move(folder)), m_system(HLDataSrvc::SystemHost()) {}

  std::string ApplicationFolder() const override { return m_folder; }
  std::string FindFile(const std::string& path) const override { return m_system->FindFile(path); }
  void ShowMessage(const std::string& text, const std::string& title) override;
  std::chrono::year_month_day Today() const override { return m_system->Today(); }

  /// The texts of the message boxes since they were last taken, oldest first, each on one line.
  std::vector<std::string> TakeShown() { return std::exchange(m_shown, {}); }

 private:
  std::string m_folder;
  std::shared_ptr<HLDataSrvc::Host> m_system;
  std::vector<std::string> m_shown;
};

void LeagueHost::ShowMessage(const std::string& text, const std::string& title) {
  std::string line = title + ": " + text;
  line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
  std::replace(line.begin(), line.end(), '\n', ' ');
  m_shown.push_back(std::move(line));
}

League::League(LeagueOptions options)
    : m_options(std::move(options)), m_host(std::make_shared<LeagueHost>(m_options.folder)) {
  Open(m_options.patience);
}

void League::Note(const std::string& text) const {
  if (m_options.note) m_options.note(text);
}

void League::Open(std::chrono::milliseconds patience) {
  auto service = HLDataSrvc::CreateDataService(m_host);
  try {
    WhileInUse(patience, [&] {
      std::string message;
      const bool isOpen = service->Initialize(m_options.kind, message);
      m_path = HLServiceUtils::GetDatabasePath(*m_host, m_options.kind, "", "");
      if (!isOpen) RaiseOpeningError(*service, message);
    });
  } catch (const jet::Error& error) {
    RaiseNotOpened(*m_host, m_options, m_path, error);
  }
  const std::string shown = TakeShownMessages();  // settings that cannot be read; 'settings' mends them
  if (!shown.empty()) Note(shown);
  m_service = std::move(service);
}

HLIData::IDataService& League::Service() {
  if (!m_service) Open(LeagueOptions::kPatience);
  return *m_service;
}

League::~League() = default;

std::string League::TakeShownMessages() {
  std::string text;
  for (const std::string& line : m_host->TakeShown()) {
    if (line.find(kPartialDraft) == std::string::npos) {
      text += (text.empty() ? "" : "\n") + line;
    } else if (m_partialDrafts.insert(line).second) {
      Note(line);
    }
  }
  return text;
}

void League::RaiseShownMessages() {
  const std::string text = TakeShownMessages();
  if (text.empty()) return;
  const std::size_t first = text.find('\n');
  throw Failure(FailureKind::Refused, text.substr(0, first),
                first == std::string::npos ? "" : text.substr(first + 1));
}

void League::Transact(const std::string& failure, const std::function<void()>& work) {
  if (m_isInTransaction) return work();
  HLIData::IDataService& service = Service();
  const auto fail = [&](FailureKind kind, const std::string& reason, std::string details, bool isCertain) {
    m_isInTransaction = false;
    Reload();  // the records show undone changes
    if (isCertain) details += (details.empty() ? "" : "\n") + std::string(kNothingChanged);
    throw Failure(kind, failure + " " + reason, details);
  };
  m_isInTransaction = true;
  try {
    HLDataSrvc::CheckCanChange(service);
    HLDataSrvc::RunInTransaction(service, [&] {
      work();
      RaiseShownMessages();
      return true;
    });
  } catch (const Failure& error) {
    fail(error.Kind(), error.what(), error.Hint(), /*isCertain=*/true);
  } catch (const jet::Error& error) {
    std::string details;
    for (const std::string& context : error.Context())
      details += (details.empty() ? "in " : "\nin ") + context;
    fail(FailureKindOf(error.Number()), error.what(), details, !error.IsUncertain());
  } catch (const std::exception& error) {
    fail(FailureKind::Refused, error.what(), {}, /*isCertain=*/true);
  }
  m_isInTransaction = false;
  m_hasStored = true;
}

void League::Reload() {
  m_host->TakeShown();
  try {
    m_service = HLDataSrvc::RenewService(*m_service);
  } catch (const std::exception&) {
    m_service.reset();  // the database was closed: the next use of the service opens it
  }
  m_host->TakeShown();
}

std::size_t League::TextLength(const std::string& table, const std::string& column) {
  return HLDataSrvc::TextColumnLength(Service(), table, column)
      .value_or(std::numeric_limits<std::size_t>::max());
}

}  // namespace HLLeague
