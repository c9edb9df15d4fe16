#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "jet/Durability.h"
#include "jet/file/File.h"
#include "jet/file/Pages.h"
#include "jet/format/RedoLogLayout.h"

namespace jet {

/// The redo log of one open database file: a file beside it, named as it with "-log" behind, whatever link it
/// was opened by.
///
/// Units of changed pages are appended to the log and leave the database file alone until a checkpoint, which
/// writes the newest state of each page into it. The file therefore changes only while every change is also
/// in the log: after a crash the log is replayed, as far as its units are whole, and until then other
/// programs see the file as the last checkpoint left it. Between checkpoints pages are read from the log if
/// they are in it.
///
/// format/RedoLogLayout.h has the layout. Each unit carries the log's salt; after a checkpoint of a log that
/// stays in use, a new salt makes what is left in it void. The first unit also carries checksums of pages
/// that it does not change, the witnesses, by which another state of the database file is recognised.
///
/// Pages are here as they are in the file, coded if its pages are. The caller holds the lock of the database
/// file; the log has a separate one, so that no two processes hold it.
class RedoLog {
 public:
  static constexpr std::uint64_t kLongLog = std::uint64_t{16} << 20;

  /// Touches nothing yet. `longLog`: bytes past which a checkpoint is due.
  RedoLog(std::shared_ptr<FileSystem> files, const std::string& databaseName, Durability durability,
          std::uint64_t longLog = kLongLog);
  /// Leaves the log to be replayed when a checkpoint is due.
  ~RedoLog();
  RedoLog(const RedoLog&) = delete;
  RedoLog& operator=(const RedoLog&) = delete;

  static std::string NameFor(const std::string& databaseName) { return databaseName + "-log"; }

  /// Replays a log that was left beside the database file, and removes it; one that is read only is left
  /// where it is, and its pages are read from it. Without a log it does nothing, and also when the file is
  /// read only and another process holds the log: its changes are not visible here yet.
  ///
  /// Raises LogDoesNotBelong, and touches neither file, when a page of the database file is neither as the
  /// log found it nor as a unit of the log leaves it. Raises DamagedFile when units follow a damaged place:
  /// those before it have been replayed then, and the log has another name, so that the next opening succeeds
  /// (nothing is touched if it is read only).
  void Recover(File& database, bool readOnly);
  /// Why there can be no changes although they were wished for: the log that was left could not be replayed
  /// or removed, and is read where it is. Empty: there can.
  const std::string& Refusal() const { return m_refusal; }

  /// Whether changes go into the log.
  bool IsUsed() const { return m_durability != Durability::Off; }
  bool Has(PageNumber number) const { return m_pages.contains(number); }
  /// Pages of the database once the log is replayed; meaningful while it has pages.
  PageNumber PageCount() const { return m_pageCount; }
  bool IsEmpty() const { return m_pages.empty(); }
  /// A page that the log has.
  void Read(PageNumber number, PageBytes& into);

  /// Appends a unit; `oldPageCount` are the pages of the database before it, `pageCount` those after it.
  /// Pages without an `after` are witnesses, which the first unit should have: see IsEmpty. When it returns,
  /// the unit is as durable as wished. When it fails, the unit is not there. Should it be unknown whether it
  /// is, the error is marked uncertain, and every later Append is refused. A log that was removed
  /// meanwhile is written again, with its content.
  void Append(std::span<const ChangedPage> changes, PageNumber oldPageCount, PageNumber pageCount);
  /// Whether the log is so long that a checkpoint is due.
  bool IsLong() const { return m_end > m_longLog; }

  /// Writes the pages of the log into the database file and empties the log, which stays in use. When it
  /// fails the log has them still.
  void Checkpoint(File& database);
  /// The same for the last time: the log is removed. One that was not used, or that is read only, does
  /// nothing. Raises FileNotFound, and leaves the log, when the database file is gone.
  void Close(File& database);
  /// Removes a log unread, as for a database file that is created again.
  void Remove();

 private:
  using Hole = format::LogHole;
  using SectorSums = format::SectorSums;
  using PageHead = format::LogPageHead;
  using UnitHead = format::LogUnitHead;

  struct LoggedPage {
    std::uint64_t offset = 0;  ///< of its newest state in the log; 0 while its first one is being written
    Hole hole;
    bool isNew = false;   ///< the database file did not have it at the last checkpoint
    SectorSums before{};  ///< of its state at the last checkpoint
  };

  /// A unit of the log that is whole.
  struct Unit {
    UnitHead head;
    std::vector<std::pair<PageHead, std::uint64_t>> pages;  ///< and where their bytes begin
    std::uint64_t end = 0;                                  ///< where it ends
  };

  static Hole HoleIn(const PageBytes& page);

  bool OpenLeft(bool readOnly);
  void FindBesideLink();
  void Create(PageNumber pageCount);
  void PutBackIfRemoved();
  void WriteHeader(PageNumber pageCount);
  bool ReadHeader();
  void Begin(const format::LogHeader& header);
  void ReadUnits();
  std::optional<Unit> ReadUnit(std::uint64_t begin, std::uint64_t size, std::uint64_t& bytesRead);
  void AddUnit(const Unit& unit);
  std::uint32_t LostUnits();
  [[noreturn]] void KeepDamaged(std::uint32_t lost, File& database);
  void CheckBelongs(File& database);
  bool Belongs(PageNumber number, const LoggedPage& page, std::span<const std::byte> stored);
  void Read(const LoggedPage& page, PageBytes& into);
  LoggedPage Place(const ChangedPage& change, std::uint64_t offset);
  void AppendUnit(std::span<const ChangedPage> changes, PageNumber pageCount);
  void ForgetUnit(std::span<const ChangedPage> changes, std::uint64_t end, bool isWhole);
  void ForgetUnwritten(std::span<const ChangedPage> changes);
  void WriteAhead();
  void Void();
  void WritePages(File& database);
  /// Refuses further changes when `work` fails: it is unknown then what the log holds.
  template <typename Work>
  void MarkBrokenOnFailure(Work&& work);
  [[noreturn]] void RaiseDoesNotBelong() const;

  std::shared_ptr<FileSystem> m_files;
  std::string m_databaseName;
  std::string m_name;
  Durability m_durability;
  std::uint64_t m_longLog;
  std::unique_ptr<File> m_file;  // none: no log
  std::uint64_t m_end = 0;       // where the next unit goes
  std::uint64_t m_ahead = 0;     // up to where the file holds units or zeros, so far as is known
  std::uint64_t m_salt = 0;
  std::uint32_t m_sequence = 0;
  PageNumber m_basePageCount = 0;
  PageNumber m_pageCount = 0;
  std::unordered_map<PageNumber, LoggedPage> m_pages;
  std::unordered_multimap<PageNumber, LoggedPage> m_earlier;  // states that later units replace, on opening
  std::unordered_map<PageNumber, SectorSums> m_witnesses;     // on opening
  std::vector<std::byte> m_buffer;
  std::vector<LoggedPage> m_appended;  // the pages of the unit that is being appended
  std::string m_refusal;
  bool m_isReadOnly = false;
  bool m_isSynced = false;
  bool m_isBroken = false;
  bool m_isLeftBehind = false;  // a log without units could not be removed
};

}  // namespace jet
