#include "cli/commands/InputFile.h"

#include "HLLeague/Failure.h"
#include "cli/output/System.h"

namespace cli {

using namespace HLLeague;

std::string ReadInputFile(const std::string& what, const std::string& path, std::size_t most) {
  std::string bytes;
  const std::string reason = ReadBytes(path, most + 1, bytes);
  if (!reason.empty())
    throw Failure(FailureKind::CannotOpen, "The " + what + " " + path + " cannot be read: " + reason + ".");
  if (bytes.size() <= most) return bytes;
  throw Failure(FailureKind::Refused, "The " + what + " " + path + " is too long: it may have " +
                                          std::to_string(most >> 20) + " MiB.");
}

bool ReadInputLine(std::istream& in, std::string& line) {
  using Traits = std::istream::traits_type;
  line.clear();
  int c = in.get();
  if (c == Traits::eof()) return false;
  for (; c != Traits::eof() && c != '\n'; c = in.get()) {
    if (line.size() == kLongestLine) {
      throw Failure(FailureKind::Refused,
                    "A line is too long: it may have " + std::to_string(kLongestLine >> 10) + " KiB.");
    }
    line += Traits::to_char_type(c);
  }
  return true;
}

}  // namespace cli
