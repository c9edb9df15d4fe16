// The command line on the leagues that random sequences of operations leave behind: it shows them, names what
// does not fit, and mends it.

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <utility>

#include <gtest/gtest.h>

#include "cli/line/App.h"
#include "jet/dao/DBEngine.h"
#include "jet/dao/Recordset.h"
#include "storage/HLServiceUtils.h"
#include "storage/LeagueCheck.h"
#include "tests/robustness/SeasonSequence.h"
#include "tests/support/TestFiles.h"

namespace HLDataSrvc::test {
namespace {

using Words = std::vector<std::string>;

/// The command line on the league that a sequence has left behind.
class MendedLeague {
 public:
  MendedLeague(const std::vector<std::byte>& bytes, const SeasonModel& model)
      : m_model(model), m_current(model.CurrentSeason()) {
    m_files->Put(Path(), bytes);
    HLServiceUtils::ReplaceEngine({.files = m_files, .observer = {}});
    // What the host finds, and what 'check' reads, which uses a separate engine.
    jet::test::WriteWholeFile(m_folder.File("Halcyra - Live.mdb"), bytes);
    const auto ids = model.IDs("season info");
    m_hasCurrent = std::find(ids.begin(), ids.end(), m_current) != ids.end();
  }

  /// Every command succeeds or names what does not fit.
  void ExpectShown() {
    const auto misfits = m_model.MisfitSeasons();
    for (const Words& words : std::initializer_list<Words>{{"season", "list"},
                                                           {"season", "show"},
                                                           {"draft", "board"},
                                                           {"history"},
                                                           {"player", "list"},
                                                           {"manager", "list", "--all"},
                                                           {"check"}}) {
      const auto [code, said] = Run(words);
      const bool isRefused =
          code == cli::ExitCode::Refused && (words[0] == "check" || words[0] == "history" || !m_hasCurrent);
      EXPECT_TRUE(code == cli::ExitCode::Done || isRefused) << words[0] << ": " << said;
      if (words[0] == "draft" && m_hasCurrent && misfits.contains(m_current)) {
        EXPECT_TRUE(said.find("Does not fit") != std::string::npos ||
                    said.find("more than") != std::string::npos)
            << said;
      }
      for (const std::int32_t id : words[0] == "check" ? misfits : std::set<std::int32_t>())
        EXPECT_NE(said.find("(id " + std::to_string(id) + ")"), std::string::npos) << said;
    }
    std::set<std::int32_t> found;
    for (const LeagueFinding& finding : DraftFindings())
      found.insert(finding.seasonID);
    EXPECT_EQ(found, misfits) << "the rules that are checked are those of loading";
  }

  ~MendedLeague() { HLServiceUtils::ReplaceEngine({}); }
  MendedLeague(const MendedLeague&) = delete;
  MendedLeague& operator=(const MendedLeague&) = delete;

  int Cleared() const { return m_cleared; }
  int Repicked() const { return m_repicked; }

  /// Every pick that does not fit is mended by its number. A draft that is locked is unlocked by the library.
  void ExpectMends() {
    for (const std::int32_t id : m_model.MisfitSeasons()) {
      EXPECT_EQ(Run({"settings", "--current-season", std::to_string(id)}).first, cli::ExitCode::Done);
      Unlock(id);
      for (const LeagueFinding& finding : DraftFindings()) {
        if (finding.seasonID == id && finding.misfit == Misfit::TooManyPicks)
          Mend({"season", "set", "--managers", "20", "--rounds", "20"});
      }
      // Where the numbers are negative, picks have no place: they go together.
      if (HasNegativeNumbers(id)) {
        Mend({"draft", "clear", "--yes"});
        continue;
      }
      std::set<std::int32_t> numbers;
      for (const LeagueFinding& finding : DraftFindings()) {
        if (finding.seasonID == id) numbers.insert(finding.number);
      }
      // Some are picked again, if the order of the managers is settled; the others are emptied.
      Words clear{"draft", "clear"};
      for (const std::int32_t number : numbers) {
        const std::string text = std::to_string(number);
        if (clear.size() < 6 &&
            Run({"draft", "pick", "P" + text, "--pick", text}).first == cli::ExitCode::Done) {
          ++m_repicked;
        } else {
          clear.push_back(text);
        }
      }
      if (clear.size() > 2) Mend(clear);
      m_cleared += static_cast<int>(clear.size()) - 2;
    }
    std::string left;
    for (const LeagueFinding& finding : DraftFindings())
      left += finding.text + "\n";
    EXPECT_EQ(left, "");
    jet::test::WriteWholeFile(m_folder.File("Halcyra - Live.mdb"), m_files->Get(Path()));
    EXPECT_EQ(Run({"check"}).second.find("Loading it ends here"), std::string::npos);
    EXPECT_EQ(Run({"season", "list"}).second.find("Error in"), std::string::npos);
  }

 private:
  std::string Path() const { return ScriptFile(m_folder.Path()); }
  void Mend(const Words& words) {
    const auto [code, said] = Run(words);
    EXPECT_EQ(code, cli::ExitCode::Done) << said;
  }
  std::pair<cli::ExitCode, std::string> Run(Words words) {
    words.insert(words.begin(), {"--folder", m_folder.Path()});
    std::FILE* const file = std::tmpfile();
    cli::Output output(file);
    cli::Messages messages(file, output, false);
    const cli::ExitCode code = cli::Run(words, output, messages);
    std::string said(static_cast<std::size_t>(std::ftell(file)), ' ');
    std::rewind(file);
    said.resize(std::fread(said.data(), 1, said.size(), file));
    std::fclose(file);
    return {code, said};
  }
  std::shared_ptr<jet::Database> Open() {
    return HLServiceUtils::Engine().OpenDatabase(Path(), true, false, HLServiceUtils::GetConnectString());
  }
  /// The findings of a kind for which a draft does not load whole.
  std::vector<LeagueFinding> DraftFindings() {
    std::vector<LeagueFinding> findings = CheckLeague(*Open());
    std::erase_if(findings, [](const LeagueFinding& finding) {
      return finding.misfit != Misfit::TooManyPicks &&
             (finding.table != "draft info" || finding.misfit == Misfit::TwoInOnePick ||
              finding.misfit == Misfit::LatePicks);
    });
    return findings;
  }
  bool HasNegativeNumbers(std::int32_t id) {
    const std::vector<LeagueFinding> findings = CheckLeague(*Open());
    return std::any_of(findings.begin(), findings.end(), [&](const LeagueFinding& finding) {
      return finding.misfit == Misfit::NegativeNumber && finding.seasonID == id &&
             finding.table == "season info";
    });
  }
  /// Takes the locks away, which no command does, and ranks the managers.
  void Unlock(std::int32_t id) {
    const auto database = Open();
    const auto row = database->OpenRecordset("select * from [season info] where id = " + std::to_string(id));
    row->Edit();
    for (const char* column : {"is ranking locked", "is season locked", "is draft locked"})
      row->Fields(column).Value(false);
    row->Update();
    const auto managers =
        database->OpenRecordset("select * from [playing info] where [season id] = " + std::to_string(id));
    for (std::int32_t rank = 1; !managers->Eof(); managers->MoveNext(), ++rank) {
      managers->Edit();
      managers->Fields("ranking").Value(rank);
      managers->Update();
    }
  }

  std::shared_ptr<jet::test::MemoryFileSystem> m_files = std::make_shared<jet::test::MemoryFileSystem>();
  const SeasonModel& m_model;
  std::int32_t m_current;
  bool m_hasCurrent = false;
  int m_cleared = 0;
  int m_repicked = 0;
  jet::test::TempFolder m_folder;
};

void Mend(int sequences) {
  int withMisfits = 0;
  int cleared = 0;
  int repicked = 0;
  PlaySequences(sequences, 50, /*checksSteps=*/false, [&](const auto& bytes, const SeasonModel& model) {
    MendedLeague league(bytes, model);
    league.ExpectShown();
    league.ExpectMends();
    withMisfits += model.MisfitSeasons().empty() ? 0 : 1;
    cleared += league.Cleared();
    repicked += league.Repicked();
  });
  std::cout << withMisfits << " of " << sequences << " leagues have picks that do not fit: " << cleared
            << " were cleared, " << repicked << " picked anew\n";
}

TEST(SequenceMendingTest, TheCommandLineShowsAndMendsEveryEnd) {
  Mend(10);
}

TEST(SequenceMendingTest, SlowTheCommandLineShowsAndMendsEveryEnd) {
  Mend(1000);
}

}  // namespace
}  // namespace HLDataSrvc::test
