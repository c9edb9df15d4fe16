#include "cli/commands/WatchLeague.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>
#include <thread>
#include <tuple>
#include <utility>

#include "HLLeague/League.h"
#include "cli/commands/ExitCode.h"
#include "cli/output/System.h"
#include "platform/Paths.h"

namespace cli {

using namespace HLLeague;

namespace {

using namespace std::chrono_literals;

constexpr auto kBetweenLooks = 1s;

/// Changes whenever the file or its log may have changed.
using Stamp = std::tuple<std::filesystem::file_time_type, std::uintmax_t, std::filesystem::file_time_type>;

Stamp StampOf(const std::string& path) {
  const auto file = HLDataSrvc::ToSystemPath(path);
  const auto log = HLDataSrvc::ToSystemPath(path + "-log");
  std::error_code error;
  const auto changed = std::filesystem::last_write_time(file, error);
  const auto size = std::filesystem::file_size(file, error);
  return {changed, size, std::filesystem::last_write_time(log, error)};
}

}  // namespace

void WatchLeague(Context& context, const std::function<std::string(League&)>& text) {
  std::string shown;
  std::string noted;
  std::optional<Stamp> seen;
  for (;; std::this_thread::sleep_for(kBetweenLooks)) {
    const Stamp now = StampOf(context.LeaguePath());
    if (seen == now) continue;
    try {
      LeagueOptions options = context.Options();
      options.patience = 0ms;
      std::optional<League> league(std::in_place, std::move(options));
      std::string told = text(*league);
      league.reset();
      seen = now;
      if (told == shown && noted.empty()) continue;
      noted.clear();
      shown = std::move(told);
      if (!context.json) context.output.Clear();
      context.output.Write(shown);
      context.output.Flush();
    } catch (const Failure& failure) {
      std::error_code error;
      const bool isThere = std::filesystem::exists(HLDataSrvc::ToSystemPath(context.LeaguePath()), error);
      if (failure.Kind() != FailureKind::CannotOpen || !isThere) throw;
      if (noted != failure.what()) context.messages.Note(failure.what() + std::string(" Waiting for it."));
      noted = failure.what();
    }
  }
}

}  // namespace cli
