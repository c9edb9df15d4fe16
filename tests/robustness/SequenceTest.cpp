// Random sequences of legal operations: whatever a client does, every season loads again, and the rows are
// those that the operations promise.

#include <gtest/gtest.h>

#include "tests/robustness/SeasonSequence.h"

namespace HLDataSrvc::test {
namespace {

TEST(SequenceTest, EverySeasonLoadsAfterEveryOperation) {
  PlaySequences(8, 50, /*checksSteps=*/true);
}

TEST(SequenceTest, SlowEverySeasonLoadsAfterEveryOperation) {
  PlaySequences(1000, 50, /*checksSteps=*/true);
}

}  // namespace
}  // namespace HLDataSrvc::test
