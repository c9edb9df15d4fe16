// The draft picks of the current season.

#include "service/DataService.h"
#include "service/NotAvailable.h"

namespace HLDataSrvc {

bool DataService::SaveDrafts() {
  return ShowNotAvailable<bool>(*m_host, "Error in saving drafts.");
}

bool DataService::DeleteDrafts() {
  return ShowNotAvailable<bool>(*m_host, "Error in deleting drafts.");
}

}  // namespace HLDataSrvc
