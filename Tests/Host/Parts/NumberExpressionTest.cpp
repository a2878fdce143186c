// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/NumberExpression.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace {

using host::ExpressionFault;
using host::valueOfExpression;

TEST(NumberExpression, Values) {
  const struct {
    const char* text;
    char decimal;
    double value;
  } rows[] = {
      {"1/3", '.', 1 / 3.0},
      {"0.2*1.5", '.', 0.2 * 1.5},
      {"50%", '.', 0.5},
      {" ( 1 + 2 ) * -3 ", '.', -9},
      {"1 - 2 - 3", '.', -4},
      {"8 / 2 / 2", '.', 2},
      {"2 + 3 * 4 / 6 - 1", '.', 3},
      {"- -+-2", '.', -2},
      {"50%%", '.', 0.005},
      {"(25% + 25%) * 2", '.', 1},
      {"1e-3", '.', 0.001},
      {"2.5E+2", '.', 250},
      {".5", '.', 0.5},
      {"5.", '.', 5},
      {"3 \u00d7 4 \u00f7 2 \u2212 1", '.', 5},
      {"1e-999", '.', 0},
      // The other separator, where no thousands could be meant.
      {"0,5", '.', 0.5},
      {"1,5 * 2", '.', 3},
      {"0,125", '.', 0.125},
      {"1,2345", '.', 1.2345},
      {"0,5", ',', 0.5},
      {"1,234", ',', 1.234},
      {"1.234", '.', 1.234},
      {"0.125", ',', 0.125},
      {"1234,567", '.', 1234.567},
  };
  for (const auto& [text, decimal, value] : rows) {
    const auto read = valueOfExpression(text, decimal);
    EXPECT_EQ(read.fault, ExpressionFault::None) << text;
    EXPECT_EQ(read.number, value) << text;
  }
}

TEST(NumberExpression, FaultsAndTheirPlaces) {
  const std::string deep = std::string(32, '(') + "1" + std::string(32, ')');
  EXPECT_EQ(valueOfExpression(deep).number, 1);
  const struct {
    std::string text;
    char decimal;
    ExpressionFault fault;
    std::size_t at, length;
  } rows[] = {
      {"", '.', ExpressionFault::Empty, 0, 0},
      {" \t", '.', ExpressionFault::Empty, 2, 0},
      {std::string(257, '1'), '.', ExpressionFault::TooLong, 256, 1},
      {"(" + deep + ")", '.', ExpressionFault::TooDeep, 32, 1},
      {"1 +", '.', ExpressionFault::NoNumber, 3, 0},
      {"2 * \u00e4", '.', ExpressionFault::NoNumber, 4, 2},
      {"()", '.', ExpressionFault::NoNumber, 1, 1},
      {"%", '.', ExpressionFault::NoNumber, 0, 1},
      {"nan", '.', ExpressionFault::NoNumber, 0, 1},
      {"1 2", '.', ExpressionFault::Unexpected, 2, 1},
      {"1e", '.', ExpressionFault::Unexpected, 1, 1},
      {"0x10", '.', ExpressionFault::Unexpected, 1, 1},
      {"1)", '.', ExpressionFault::Unexpected, 1, 1},
      {"(1 2)", '.', ExpressionFault::Unexpected, 3, 1},
      {"(1", '.', ExpressionFault::NotClosed, 2, 0},
      {"1,234", '.', ExpressionFault::Ambiguous, 0, 5},
      {"2 * 1.234", ',', ExpressionFault::Ambiguous, 4, 5},
      {"1,234.5", '.', ExpressionFault::Ambiguous, 0, 7},
      {"1.2.3", '.', ExpressionFault::Ambiguous, 0, 5},
      {"1/0", '.', ExpressionFault::DivisionByZero, 2, 1},
      {"1/(2-2)", '.', ExpressionFault::DivisionByZero, 2, 5},
      {"1e999", '.', ExpressionFault::NotFinite, 0, 5},
      {"1e300*1e300", '.', ExpressionFault::NotFinite, 0, 11},
  };
  for (const auto& [text, decimal, fault, at, length] : rows) {
    const auto read = valueOfExpression(text, decimal);
    EXPECT_EQ(read.fault, fault) << text;
    EXPECT_EQ(read.number, 0) << text;
    EXPECT_EQ(read.at, at) << text;
    EXPECT_EQ(read.length, length) << text;
  }
}

}  // namespace
