#include "tests/robustness/SeasonScript.h"

#include <array>
#include <stdexcept>
#include <utility>

#include "service/DataService.h"

namespace HLDataSrvc::test {
namespace {

using namespace HLIData;

constexpr std::int32_t kYear = 2025;
constexpr std::int32_t kManagers = 3;
constexpr std::int32_t kRounds = 3;

/// A prize won: prize, manager, week (0: none).
constexpr std::array<std::array<std::int32_t, 3>, 4> kWinnings{{{1, 1, 1}, {1, 2, 2}, {1, 2, 3}, {2, 4, 0}}};

void Want(bool isDone, const std::string& message = {}) {
  if (!isDone) throw std::runtime_error("The service refused: " + message);
}

}  // namespace

std::string ScriptFile(const std::string& folder) {
  return folder + "\\Halcyra - Live.mdb";
}

SeasonScript::SeasonScript(std::shared_ptr<ScriptHost> host)
    : m_host(std::move(host)), m_service(CreateDataService(m_host)) {
  std::string message;
  Want(m_service->Initialize(DBType::Live, message), message);
}

jet::Database& SeasonScript::Database() {
  return dynamic_cast<DataService&>(*m_service).Database();
}

void SeasonScript::Play(int step) {
  m_host->messages.clear();
  Do(step);
  Want(m_host->messages.empty(), m_host->messages.empty() ? "" : m_host->messages.front());
}

std::shared_ptr<ISeasonInfo> SeasonScript::Season() {
  auto season = m_service->GetCurrentSeasonInfo();
  Want(season != nullptr, "no season");
  Want(season->Winnings() != nullptr, "no winnings");
  return season;
}

void SeasonScript::Do(int step) {
  switch (step) {
    case 0:
      return AddMasters();
    case 1:
      m_service->CurrentSeasonYear(kYear);
      return Want(m_service->CurrentSeasonYear() == kYear && m_service->CurrentSeasonID() == 3);
    case 2: {
      const auto season = Season();
      season->NoOfManagers(kManagers);
      season->NoOfRounds(kRounds);
      season->MoneyContribution(50);
      const auto prizes = m_service->GetPrizeTmpls();
      Want(prizes != nullptr, "no prizes");
      for (const auto& prize : *prizes)
        season->AddPrize(prize);
      std::int32_t amount = 10;
      for (const auto& prize : *season->Prizes())
        prize->Amount(amount += 5);
      return Want(m_service->SaveCurrentSeasonInfo());
    }
    case 3:
      return SetManagers(false);
    case 4:
      Want(m_service->SaveRanking());
      return Want(m_service->DisableRanking());
    case 5:
      return SetManagers(true);
    case 6:
      return Pick(0);
    case 7: {
      m_service->CloseDatabase();
      std::string message;
      return Want(m_service->OpenDatabase(true, message), message);
    }
    case 8:
      return Pick(1);
    case 9:
      Pick(2);
      return Want(m_service->DisableDrafting());
    case 10:
      return AddWinnings();
    case 11: {
      const auto season = Season();
      for (const auto& winning : *season->Winnings()) {
        if (winning->Week() == 3) winning->Action(WinningAction::Delete);
      }
      return Want(m_service->SaveWinnings());
    }
    default:
      return DeleteMasters();
  }
}

void SeasonScript::AddMasters() {
  const auto isThere = [&](SearchType type, const std::string& name) {
    const auto found = m_service->Search(type, name, false, false);
    Want(found != nullptr, "no search");
    return found->Count() > 0;
  };
  std::string message;
  for (const char* name : {"Volk", "Wend"}) {
    std::int32_t id = 0;
    std::shared_ptr<IManagerTmplInfo> manager;
    if (!isThere(SearchType::Managers, name))
      Want(m_service->UpdateManager(name, "Mx", id, manager, message));
  }
  for (int i = 0; i < 9; ++i) {
    const std::string name = "Rookie" + std::string(20, static_cast<char>('a' + i));
    std::int32_t id = 0;
    std::shared_ptr<IPlayerInfo> player;
    if (!isThere(SearchType::PlayersAndTeams, name))
      Want(m_service->UpdatePlayer(name, "P", 1, 1 + i % 2, false, id, player, message));
  }
  std::int32_t id = 0;
  std::shared_ptr<IPositionInfo> position;
  if (!isThere(SearchType::Positions, "Kicker"))
    Want(m_service->UpdatePosition("Kicker", "K", id, position, message));
  std::shared_ptr<IPrizeTmplInfo> prize;
  id = 0;
  if (!isThere(SearchType::Prizes, "Best trade"))
    Want(m_service->UpdatePrize("Best trade", 2, id, prize, message));
  id = 2;
  std::shared_ptr<IPlayerInfo> player;
  Want(m_service->UpdatePlayer("Moebius-" + std::string(40, 'o'), "Robert", 1, 2, true, id, player, message));
}

void SeasonScript::SetManagers(bool areFeesPaid) {
  const auto season = Season();
  const auto everybody = m_service->Search(SearchType::Managers, "", false, false);
  Want(everybody != nullptr, "no search");
  for (const auto& manager : *everybody) {
    if (manager->PickID() == 3 || manager->PickID() == 5) continue;
    if (!season->Managers()->Find("K" + std::to_string(manager->PickID())))
      season->AddManager(std::dynamic_pointer_cast<IManagerTmplInfo>(manager));
  }
  for (const auto& manager : *season->Managers()) {
    manager->Rank(kManagers + 2 - manager->ID());
    manager->IsFeePaid(areFeesPaid);
  }
  Want(m_service->SaveManagersPlaying());
}

void SeasonScript::Pick(int round) {
  const auto season = Season();
  const auto players = m_service->Search(SearchType::PlayersAndTeams, "Rookie", false, false);
  const auto teams = m_service->GetTeams();
  Want(players && teams && players->Count() == 9, "no players");
  for (std::int32_t i = 1; i <= kManagers; ++i) {
    const std::int32_t number = round * kManagers + i;
    const auto pick =
        number == 5 ? std::dynamic_pointer_cast<IPickable>(teams->Item("K2")) : players->Item(number);
    season->UpdateDraft(pick, number, season->Managers()->Item(i));
    Want(m_service->SaveDrafts());
  }
  if (round == 1) return;
  season->UpdateDraft(players->Item(5), round * kManagers + 1, season->Managers()->Item(1));  // another mind
  Want(m_service->SaveDrafts());
  season->UpdateDraft(players->Item(round * kManagers + 1), round * kManagers + 1,
                      season->Managers()->Item(1));
  Want(m_service->SaveDrafts());
}

void SeasonScript::AddWinnings() {
  m_service->DiscardCurrentSeasonInfo();  // what is not stored is added again
  const auto season = Season();
  for (const auto& [prize, manager, week] : kWinnings) {
    bool isThere = false;
    for (const auto& winning : *season->Winnings()) {
      isThere = isThere || (winning->PrizeID() == std::to_string(prize) &&
                            winning->ManagerID() == std::to_string(manager) && winning->Week() == week);
    }
    if (isThere) continue;
    std::shared_ptr<IWinningInfo> winning;
    Want(m_service->AddWinning(winning));
    winning->SeasonID(season->ID());
    winning->PrizeID(std::to_string(prize));
    winning->ManagerID(std::to_string(manager));
    winning->Week(week);
    winning->Action(WinningAction::Add);
    Want(m_service->SaveWinnings());
    // One for which no identifier can be found is not saved, and nothing is said.
    Want(winning->ID() > 0, "a winning was dropped");
  }
}

void SeasonScript::DeleteMasters() {
  const auto remove = [&](SearchType type, const std::string& name, DeleteType kind) {
    const auto found = m_service->Search(type, name, false, false);
    Want(found != nullptr, "no search");
    for (const auto& record : *found) {
      std::string message;
      Want(m_service->Delete(kind, record->PickID(), message), message);
    }
  };
  Want(m_service->GetPlayerPositions() != nullptr && m_service->GetPrizeTmpls() != nullptr, "no lists");
  remove(SearchType::Managers, "Wend", DeleteType::Manager);
  remove(SearchType::PlayersAndTeams, "Orr", DeleteType::Player);
  remove(SearchType::Positions, "Kicker", DeleteType::Position);
  const std::int32_t season = m_service->CurrentSeasonID();
  m_service->CurrentSeasonID(1);
  const bool isDeleted = m_service->DeleteDrafts();
  m_service->CurrentSeasonID(season);
  Want(isDeleted);
}

}  // namespace HLDataSrvc::test
