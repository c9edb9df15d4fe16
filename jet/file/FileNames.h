#pragma once

#include <string>

/// What can be said about the name of a file without asking the system.
namespace jet::file_names {

/// What the names of files begin with that are still being made, before 16 random hexadecimal digits.
inline constexpr char kTemporaryPrefix[] = ".being-made-";
/// Whether the last part of a name is such a one.
bool IsTemporary(const std::string& name);

/// Raises InvalidFileName for a name that no file can have: empty, ending in a separator, or with `*`, `?` or
/// a control character in it.
void Check(const std::string& name);

/// The part before the last separator, `\` or `/`, the separator included; empty when there is none.
std::string Folder(const std::string& name);

/// The name with its extension, if it has one, replaced by `extension` (which begins with a dot).
std::string WithExtension(const std::string& name, const std::string& extension);

}  // namespace jet::file_names
