#include "storage/TemporaryDatabase.h"

#include <utility>

#include "jet/Error.h"
#include "jet/dao/DBEngine.h"
#include "storage/HLServiceUtils.h"

namespace HLDataSrvc {

using HLServiceUtils::Engine;

TemporaryDatabase::TemporaryDatabase(const std::string& target)
    : m_target(target), m_path(Engine().TemporaryName(target)) {}

TemporaryDatabase::~TemporaryDatabase() {
  m_file.reset();
  try {
    Engine().RemoveDatabase(m_path);
  } catch (const jet::Error&) {
    // The next making of a file tries again.
  }
}

void TemporaryDatabase::Finish(jet::Database& database) {
  m_file = Engine().Release(database);
}

void TemporaryDatabase::PutInPlace() {
  Engine().PlaceDatabase(m_target, m_path, std::move(m_file));
}

void TemporaryDatabase::PutInPlaceOf(std::shared_ptr<jet::File> held) {
  Engine().ReplaceDatabase(m_target, std::move(held), m_path, std::move(m_file));
}

void TemporaryDatabase::PutInPlaceOf(jet::Database& database) {
  Engine().ReplaceDatabase(database, m_path, std::move(m_file));
}

}  // namespace HLDataSrvc
