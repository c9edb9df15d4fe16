#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "jet/check/Checker.h"
#include "jet/table/Store.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/TestFiles.h"

namespace jet::test {

/// Opens a database in memory and checks it. Raises what opening raises.
inline CheckReport CheckBytes(std::vector<std::byte> bytes, const std::string& password = kFixturePassword) {
  MemoryFileSystem files;
  files.Put("checked.mdb", std::move(bytes));
  constexpr std::size_t kCacheBytes = std::size_t{1} << 20;
  const auto store =
      Store::Open(std::make_unique<PageStore>(files.Open("checked.mdb", {true, true, false}), "checked.mdb"),
                  password, kCacheBytes);
  return CheckDatabase(*store);
}

/// All findings in one text, a line each.
inline std::string Lines(const CheckReport& report) {
  std::string text;
  for (const std::string& finding : report.findings)
    text += finding + "\n";
  return text;
}

}  // namespace jet::test
