#pragma once

namespace jet::format {

/// The small letter of a capital of any script, and the usual form of a letter that has several (final
/// sigma); other characters stay. Accents stay too.
char32_t FoldCase(char32_t character);

}  // namespace jet::format
