#pragma once

#include <memory>

#include "jet/file/File.h"

namespace jet::test {

/// Adds to the league in `file` what the desktop program leaves in a file: containers and documents with
/// properties, a hidden system table, a linked table 'far players', a stored query 'best players', a form and
/// rights of accounts that the engine does not know. All of it was made on 2001-02-03.
void AddDesktopObjects(std::unique_ptr<File> file);

/// Days of that date.
inline constexpr double kDesktopDay = 36925.5;

}  // namespace jet::test
