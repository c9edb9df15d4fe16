#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "records/DraftInfo.h"
#include "records/ManagerInfo.h"
#include "records/SeasonInfo.h"
#include "records/WinningInfo.h"
#include "tests/service/LeagueRows.h"
#include "tests/service/ServiceTest.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/Witnesses.h"

namespace HLDataSrvc::test {

/// A service on a league file in memory, whose bytes can be looked at while it is open.
class LeagueTest : public ServiceTest {
 protected:
  LeagueTest();

  /// Puts a file in place of the one that is there, and a new service on it that has loaded nothing.
  void Open(std::vector<std::byte> bytes);
  void Open(const std::string& fixture) { Open(jet::test::ReadWholeFile(jet::test::FixturePath(fixture))); }
  /// A new service on the file as it is, which has loaded nothing.
  void Restart();
  /// The small league with rows added to it that contradict the others.
  void OpenLoose(const Tables& added) { Open(SmallLeague(/*isLoose=*/true, added)); }

  /// The file as it would be if it were closed now.
  std::vector<std::byte> Bytes() const;
  /// All rows as they stand in the file.
  const Tables& Stored();
  /// All rows as the service sees them, with those of an open transaction; without the engine's observer.
  Tables Seen();
  /// Checks that the rows of a season in these tables are stored, that every other row is that of `before`,
  /// and that mdb-export, if it is there, reads the same.
  void ExpectStored(const Tables& before, std::int32_t seasonID, const Tables& written);

  /// The current season, in the class of this component.
  std::shared_ptr<SeasonInfo> Season() {
    return std::dynamic_pointer_cast<SeasonInfo>(m_service->GetCurrentSeasonInfo());
  }
  static DraftInfo& Pick(const HLIData::ISeasonInfo& season, std::int32_t number) {
    return dynamic_cast<DraftInfo&>(*season.Drafts()->Item(number));
  }
  /// The keys of a collection, blanks between.
  template <typename T>
  static std::string Keys(const std::shared_ptr<HLIData::KeyedCollection<T>>& collection) {
    std::string keys;
    for (std::int32_t position = 1; position <= collection->Count(); ++position)
      keys += (position > 1 ? " " : "") + collection->KeyAt(position);
    return keys;
  }

  /// The statements made since the last question, each with the changes that followed: calls that add, edit,
  /// delete, update, search and close, and the columns that were assigned.
  std::vector<std::string> Steps();
  /// The statements alone.
  std::vector<std::string> Statements();
  /// The texts of the message boxes since the last question, after their title was checked.
  std::vector<std::string> Boxes();

  std::string Path() const { return PathOf("Halcyra - Live.mdb"); }
  const std::shared_ptr<jet::test::MemoryFileSystem> m_files =
      std::make_shared<jet::test::MemoryFileSystem>();

 private:
  using FileBytes = std::array<std::vector<std::byte>, 2>;
  /// The file and, while it is open, the log beside it in which changes wait until it is closed.
  FileBytes Files() const;

  FileBytes m_readFrom;  // what m_stored was
  Tables m_stored;
};

/// "Sentence" and description as a message box joins them.
inline std::string Box(const std::string& sentence, const std::string& description) {
  return sentence + "\r\n" + description;
}

}  // namespace HLDataSrvc::test
