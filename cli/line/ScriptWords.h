#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cli {

/// The words of a line, separated by blanks, as a shell of POSIX reads them: '…' keeps everything, "…" keeps
/// everything but takes \" and \\ for the second character, \ outside quotes keeps the next character; # at
/// the beginning of a word starts a comment.
///
/// Other than there, an apostrophe right behind a letter is just one, so that O'Marrick needs no quotes.
/// Raises Failure (WrongUsage) for a quote that is not closed, and for a \ at the end of the line.
std::vector<std::string> ScriptWords(std::string_view line);

}  // namespace cli
