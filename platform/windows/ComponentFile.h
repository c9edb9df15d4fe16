#pragma once

#include <string>

namespace HLDataSrvc {

/// The file from which the component was loaded, with its folder: the library, or the program that it is
/// linked into.
std::wstring ComponentFile();

}  // namespace HLDataSrvc
