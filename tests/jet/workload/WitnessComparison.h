#pragma once

#include <string>

#include "tests/jet/workload/Model.h"

namespace jet::test {

/// Differences between the model and the rows that independent readers find in a file, in the columns whose
/// values all of them print alike (text, memo, whole numbers, yes/no). Empty: none. A reader that is not
/// installed is skipped.
std::string CompareWithMdbExport(Model& model, const std::string& path);
std::string CompareWithMdbReader(Model& model, const std::string& path, const std::string& password);

/// Differences between the model and the values of all types that the independent checker decodes. Empty:
/// none.
std::string CompareWithIndependentChecker(Model& model, const std::string& path);

}  // namespace jet::test
