#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// What the command line asks of the system it runs on. Implemented in posix/ and windows/.

/// The words of the command line after the program's name, as UTF-8.
std::vector<std::string> CommandLineWords(int argc, char** argv);

/// Readies the standard streams: bytes go out as they are written, and what is typed at a terminal comes in
/// as UTF-8. What it changes at a terminal is as before when the program ends.
void PrepareStandardStreams();

/// Writes UTF-8 to a standard stream, which shows as such at a terminal; `text` holds whole characters.
/// False, with errno set, if the system does not take all of it.
bool WriteText(std::FILE* stream, std::string_view text);

/// The stream leads to a terminal, not to a file or another program.
bool IsTerminal(std::FILE* stream);

/// How many columns the terminal has to which the stream leads; 0 when it leads to none, or it cannot be
/// determined.
std::size_t TerminalWidth(std::FILE* stream);

/// The folder that this program was started from, without a separator at its end; "." when the system does
/// not know it.
std::string ProgramFolder();

/// Reads a file, a pipe or a device from its beginning into `bytes`, at most `most` bytes. Returns why it
/// cannot be read, without a full stop; empty when it can. Waits ten seconds at most for a writer of a pipe.
std::string ReadBytes(const std::string& path, std::size_t most, std::string& bytes);

/// Value of an environment variable, as UTF-8; empty when there is none.
std::string EnvironmentText(const char* name);

}  // namespace cli
