#pragma once

namespace jet::format {

/// The small letter of a capital of the Latin (to U+017F), Greek and Cyrillic scripts; other characters stay.
/// Accents stay too.
char32_t FoldCase(char32_t character);

}  // namespace jet::format
