#include <string>

#include <gtest/gtest.h>

#include "records/Conversions.h"
#include "tests/records/RecordsSupport.h"

namespace HLDataSrvc::Conversions {
namespace {

using HLIData::ErrorNumber;
using test::NumberOfError;

TEST(LeadingInt32, TakesTheNumberThatTheTextBeginsWith) {
  EXPECT_EQ(LeadingInt32("17"), 17);
  EXPECT_EQ(LeadingInt32("  -17 rounds"), -17);
  EXPECT_EQ(LeadingInt32("+3,5"), 3);
  EXPECT_EQ(LeadingInt32("1e3x"), 1000);
  EXPECT_EQ(LeadingInt32("12e"), 12);
  EXPECT_EQ(LeadingInt32("1e-400"), 0);
  EXPECT_EQ(LeadingInt32("0." + std::string(400, '0') + "1"), 0);
  EXPECT_EQ(LeadingInt32("2147483647"), INT32_MAX);
  EXPECT_EQ(LeadingInt32("-2147483648"), INT32_MIN);
  for (const char* none : {"", " ", "x1", "-", "+-1", "--1", ".", "inf", "nan", "True"}) {
    EXPECT_EQ(LeadingInt32(none), 0) << none;
  }
}

TEST(LeadingInt32, RoundsHalvesToEven) {
  EXPECT_EQ(LeadingInt32("0.5"), 0);
  EXPECT_EQ(LeadingInt32("1.5"), 2);
  EXPECT_EQ(LeadingInt32("2.5"), 2);
  EXPECT_EQ(LeadingInt32("-2.5"), -2);
  EXPECT_EQ(LeadingInt32("-.51"), -1);
}

TEST(WholeInt32, WantsTheWholeTextToBeANumber) {
  EXPECT_EQ(WholeInt32("17"), 17);
  EXPECT_EQ(WholeInt32(" -2.5 "), -2);
  EXPECT_EQ(WholeInt32("3.5"), 4);
  EXPECT_EQ(WholeInt32("1e2"), 100);
  for (const char* bad : {"", " ", "17 rounds", "1 2", "True", "0x11", "1e", "-", "inf"}) {
    EXPECT_EQ(NumberOfError([&] { WholeInt32(bad); }), ErrorNumber::TypeMismatch) << bad;
  }
}

TEST(Int32FromText, RaisesOverflowOutside32Bits) {
  const std::string manyDigits(400, '9');
  for (const std::string& large : {std::string("2147483648"), std::string("-2147483649"), std::string("1e10"),
                                   std::string("1e999"), manyDigits}) {
    EXPECT_EQ(NumberOfError([&] { LeadingInt32(large); }), ErrorNumber::Overflow) << large;
    EXPECT_EQ(NumberOfError([&] { WholeInt32(large); }), ErrorNumber::Overflow) << large;
  }
  // Rounded to even first: the half above the largest number is out of range, the half below the smallest is
  // not.
  EXPECT_EQ(NumberOfError([] { WholeInt32("2147483647.5"); }), ErrorNumber::Overflow);
  EXPECT_EQ(WholeInt32("-2147483648.5"), INT32_MIN);
}

TEST(WholeBoolean, TakesWordsAndNumbers) {
  for (const char* yes : {"True", "TRUE", "true", "-1", "1", "0.3", " 2 "})
    EXPECT_TRUE(WholeBoolean(yes)) << yes;
  for (const char* no : {"False", "false", "0", "0.0", "-0"})
    EXPECT_FALSE(WholeBoolean(no)) << no;
  for (const char* bad : {"", " ", "yes", "Truely", "1x"}) {
    EXPECT_EQ(NumberOfError([&] { WholeBoolean(bad); }), ErrorNumber::TypeMismatch) << bad;
  }
}

TEST(CheckedArithmetic, RaisesOverflowInsteadOfWrapping) {
  EXPECT_EQ(CheckedAdd(INT32_MAX - 1, 1), INT32_MAX);
  EXPECT_EQ(CheckedSubtract(INT32_MIN + 1, 1), INT32_MIN);
  EXPECT_EQ(CheckedMultiply(-65536, 32768), INT32_MIN);
  EXPECT_EQ(NumberOfError([] { CheckedAdd(INT32_MAX, 1); }), ErrorNumber::Overflow);
  EXPECT_EQ(NumberOfError([] { CheckedSubtract(INT32_MIN, 1); }), ErrorNumber::Overflow);
  EXPECT_EQ(NumberOfError([] { CheckedMultiply(INT32_MIN, -1); }), ErrorNumber::Overflow);
  EXPECT_EQ(NumberOfError([] { CheckedMultiply(65536, 65536); }), ErrorNumber::Overflow);
}

}  // namespace
}  // namespace HLDataSrvc::Conversions
