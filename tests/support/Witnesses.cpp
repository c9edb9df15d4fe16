#include "tests/support/Witnesses.h"

#include <filesystem>
#include <stdexcept>

#include "tests/support/Processes.h"
#include "tests/support/TestFiles.h"

namespace jet::test {

std::string IndependentCheck(const std::string& path, bool strict, const std::string& password) {
  std::vector<std::string> command{"python3", std::string(HALCYRA_TEST_TOOLS) + "/mdbcheck.py", path};
  if (strict) command.emplace_back("--strict");
  if (!password.empty()) {
    command.emplace_back("--password");
    command.push_back(password);
  }
  const ProgramResult result = RunProgram(command);
  if (result.exitCode == 0 && result.output.empty()) return {};
  return result.output.empty() ? "the checker could not be run" : result.output;
}

std::string IndependentCheck(const std::vector<std::byte>& bytes, bool strict, const std::string& password) {
  const TempFolder folder;
  const std::string path = folder.File("checked.mdb");
  WriteWholeFile(path, bytes);
  return IndependentCheck(path, strict, password);
}

std::string IndependentRows(const std::string& path, std::string_view table) {
  const ProgramResult result = RunProgram(
      {"python3", std::string(HALCYRA_TEST_TOOLS) + "/mdbcheck.py", path, "--json", std::string(table)});
  if (result.exitCode != 0) throw std::runtime_error("the checker failed on " + path + ": " + result.output);
  return result.output;
}

std::string MdbExport(const std::string& path, std::string_view table) {
  const ProgramResult result =
      RunProgram({"mdb-export", "-Q", "-d", std::string(1, kMdbExportFieldEnd), "-R",
                  std::string(1, kMdbExportRowEnd), "-0", "\\N", "-b", "strip", path, std::string(table)});
  if (result.exitCode != 0) throw std::runtime_error("mdb-export failed on " + path + ": " + result.output);
  return result.output;
}

bool HasMdbExport() {
  return HasProgram("mdb-export");
}

std::string MdbReaderJson(const std::string& path, const std::string& password) {
  const ProgramResult result =
      RunProgram({"node", std::string(HALCYRA_TEST_TOOLS) + "/node/read-tables.mjs", path, password});
  if (result.exitCode != 0) throw std::runtime_error("mdb-reader failed on " + path + ": " + result.output);
  return result.output;
}

bool HasMdbReader() {
  return HasProgram("node") && std::filesystem::exists(HALCYRA_TEST_TOOLS "/node/node_modules/mdb-reader");
}

}  // namespace jet::test
