#pragma once

#include "HLLeague/Failure.h"
#include "jet/Error.h"

namespace HLLeague {

/// The kind of failure that an error of the engine is.
FailureKind FailureKindOf(jet::ErrorNumber number);

}  // namespace HLLeague
