#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace jet {
class Database;
}

/// Copies of league files: made, restored, and rebuilt without free pages. Each can be interrupted at any
/// point without loss: under a league's name there is always a whole file, the one before or the one after.
namespace HLDataSrvc {

/// Writes a copy of a league file to `backup`, all saved changes included. Raises jet::Error: what opening
/// the file exclusively raises, ObjectExists when there is a file `backup`, DiskFull, PermissionDenied.
void BackUpLeague(const std::string& path, const std::string& backup);
/// The same for a league file that is open exclusively, outside of a transaction.
void BackUpLeague(jet::Database& league, const std::string& backup);

/// What a restored league took the place of.
enum class Replaced {
  Nothing,     ///< there was no file
  Whole,       ///< a league file, of which a backup was made
  Unreadable,  ///< a file that does not open as a league file, and has another name now
  LogOnly,     ///< the log of a file that is gone; the log has another name now
};

/// Puts a copy of `backup` in the place of the league file `path`, once the whole of the backup has been
/// checked, unless `acceptDamage`. What was there is kept as `kept`: as a backup if it opens; if not, the
/// file itself and its log are renamed, and until the copy is in its place there is no file `path`. So is a
/// log whose file is gone.
///
/// Raises jet::Error: what opening the backup raises, DamagedFile for one that is not sound; FileInUse or
/// FileHeldExclusively when the league or its log is open elsewhere, ObjectExists when there is a file
/// `kept`, DiskFull, PermissionDenied.
Replaced RestoreLeague(const std::string& backup, const std::string& path, const std::string& kept,
                       bool acceptDamage = false);

/// What compacting a file has done.
struct Compacted {
  std::uint32_t pagesBefore = 0;
  std::uint32_t pagesAfter = 0;
  std::vector<std::string> findings;  ///< what was wrong with the file; it was kept if there are any
};

/// Replaces a league file by a rebuilt one with the same content. Every row must be readable; the
/// fresh file is checked before. A file that is not sound, though all of its rows can be read, is mended so,
/// and kept as `kept`.
///
/// Raises jet::Error: what opening the file exclusively and reading its rows raises, FeatureNotSupported for
/// a file with something in it that would be lost, ObjectExists when a file must be kept and `kept` is there,
/// DiskFull, PermissionDenied.
Compacted CompactLeague(const std::string& path, const std::string& kept);

}  // namespace HLDataSrvc
