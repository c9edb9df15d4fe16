#include "storage/FileInMaking.h"

#include "jet/Error.h"
#include "jet/dao/DBEngine.h"
#include "storage/HLServiceUtils.h"

namespace HLDataSrvc {

FileInMaking::FileInMaking(const std::string& target) : m_target(target), m_path(target + ".being-made") {
  HLServiceUtils::Engine().RemoveDatabase(m_path);
}

FileInMaking::~FileInMaking() {
  try {
    HLServiceUtils::Engine().RemoveDatabase(m_path);
  } catch (const jet::Error&) {
    // The next making of the file tries again.
  }
}

void FileInMaking::PutInPlace() {
  HLServiceUtils::Engine().ReplaceDatabase(m_target, m_path);
}

void FileInMaking::PutInPlaceOf(jet::Database& database) {
  HLServiceUtils::Engine().ReplaceDatabase(database, m_path);
}

}  // namespace HLDataSrvc
