#pragma once

namespace jet {

/// What a change survives once the call that made it has returned. It is applied whole or not at all in every
/// case but the last.
enum class Durability {
  Full,    ///< a power cut
  Normal,  ///< the death of the process; a power cut may take the last changes
  Off,     ///< nothing: the file is whole when it was closed. For temporary files
};

}  // namespace jet
