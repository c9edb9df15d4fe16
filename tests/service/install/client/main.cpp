#include <HLDataSrvc/CreateDataService.h>

// Beside the library there is no league: that it says so, in words of its own, shows that it is there and
// runs.
int main() {
  std::string message;
  const bool opened = HLDataSrvc::CreateDataService()->Initialize(HLIData::DBType::Live, message);
  return !opened && message == "Database file: \\Halcyra - Live.mdb is missing." ? 0 : 1;
}
