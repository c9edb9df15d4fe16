#pragma once

#include <cstddef>
#include <istream>
#include <string>

namespace cli {

// Reading what a command line names, or a program hands in, in bounded memory and time.

/// The bytes of the file or pipe `path`; `what` it is called in messages: "script". Raises HLLeague::Failure:
/// CannotOpen for one that cannot be read, such as a folder, or a pipe into which nothing is written for ten
/// seconds; Refused for more bytes than `most`.
std::string ReadInputFile(const std::string& what, const std::string& path, std::size_t most);

/// Most bytes of a line.
inline constexpr std::size_t kLongestLine = std::size_t{64} << 10;

/// Reads a line without its end; false at the end of the input. Raises HLLeague::Failure (Refused) for one of
/// more bytes than kLongestLine, and leaves its rest.
bool ReadInputLine(std::istream& in, std::string& line);

}  // namespace cli
