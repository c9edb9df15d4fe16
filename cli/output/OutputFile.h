#pragma once

#include <string>
#include <string_view>

namespace cli {

/// Makes a file with this text, or replaces one: it is finished under another name and then renamed, so that
/// readers see the old or the new file, whole. Raises Failure (SystemFailed).
void WriteFileAtomically(const std::string& path, std::string_view text);

/// Whether something is at a path.
bool IsThere(const std::string& path);

/// The first `length` bytes of a file; fewer when it is shorter, none when it cannot be read.
std::string BeginningOf(const std::string& path, std::size_t length);

}  // namespace cli
