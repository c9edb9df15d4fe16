// A client of the data service: shows a league's current season, looks for a player, and tries to draft him.
//
//     league FOLDER NAME
#include <iostream>
#include <memory>
#include <string>
#include <utility>

#include <HLDataSrvc/CreateDataService.h>
#include <HLDataSrvc/Host.h>
#include <HLIData/IDraftInfo.h>
#include <HLIData/IManagerInfo.h>

namespace {

/// The league lies in a folder of the user's choice, and messages go to a terminal.
class TerminalHost final : public HLDataSrvc::Host {
 public:
  explicit TerminalHost(std::string folder) : m_folder(std::move(folder)) {}

  std::string ApplicationFolder() const override { return m_folder; }
  std::string FindFile(const std::string& path) const override { return m_system->FindFile(path); }
  void ShowMessage(const std::string& text, const std::string& title) override {
    std::cerr << title << ": " << text << '\n';
  }
  std::chrono::year_month_day Today() const override { return m_system->Today(); }

 private:
  std::string m_folder;
  std::shared_ptr<HLDataSrvc::Host> m_system = HLDataSrvc::SystemHost();
};

/// Called when the settings change.
class SettingsWatcher final : public HLIData::ISettingInfoEvents {
 public:
  void SettingsChanged() override { std::cout << "The settings have changed.\n"; }
};

void ShowSeason(const HLIData::ISeasonInfo& season) {
  std::cout << "Season " << season.Year() << ": " << season.Managers()->Count() << " managers, "
            << season.NoOfRounds() << " rounds\n";
  for (const auto& manager : *season.Managers())
    std::cout << "  " << manager->Rank() << ". " << manager->FirstName() << ' ' << manager->LastName()
              << '\n';
  std::int32_t made = 0;
  for (const auto& pick : *season.Drafts())
    made += pick->PlayerOrTeam() ? 1 : 0;
  std::cout << made << " of " << season.Drafts()->Count() << " picks are made.\n";
}

/// Drafts the first player found, in memory; nothing is saved.
void TryToDraft(HLIData::IDataService& service, HLIData::ISeasonInfo& season, const std::string& name) {
  const auto found = service.Search(HLIData::SearchType::PlayersAndTeams, name, /*curSeasonOnly=*/false,
                                    /*skipRetiredPlayers=*/true);
  std::cout << "Of the name '" << name << "': " << found->Count() << '\n';
  if (found->Count() == 0 || season.Managers()->Count() == 0) return;
  const auto player = found->Item(1);
  std::string where;
  if (season.IsPickableTaken(player, where)) {
    std::cout << player->PickName() << " is taken (round, manager, player): " << where << '\n';
    return;
  }
  season.UpdateDraft(player, season.CurrentPick(), season.Managers()->Item(1));
  std::cout << player->PickName() << (season.IsPickableTaken(player, where) ? " is" : " is not")
            << " taken now.\n";
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 3) {
    std::cerr << "usage: league FOLDER NAME\n";
    return 2;
  }
  const auto service = HLDataSrvc::CreateDataService(std::make_shared<TerminalHost>(argv[1]));
  std::string message;
  if (!service->Initialize(HLIData::DBType::Live, message)) {
    std::cerr << message << '\n';
    return 1;
  }

  SettingsWatcher watcher;
  const auto settings = service->GetSettings();
  settings->AddObserver(watcher);
  const auto season = service->GetCurrentSeasonInfo();
  if (season) {
    ShowSeason(*season);
    TryToDraft(*service, *season, argv[2]);
  }
  const std::int32_t current = settings->CurrentSeason();
  settings->CurrentSeason(current + 1);  // everyone who holds the settings sees it; nothing is saved
  settings->CurrentSeason(current);
  settings->RemoveObserver(watcher);
  return 0;
} catch (const std::exception& error) {  // the few operations that raise say so where they are declared
  std::cerr << error.what() << '\n';
  return 1;
}
