// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <string_view>

namespace host {

// What is wrong with an expression.
enum class ExpressionFault {
  None,
  Empty,
  TooLong,     // more than kLongestExpression bytes
  TooDeep,     // more than kDeepestExpression parentheses in one another
  NoNumber,    // a number or a parenthesis should stand there
  Unexpected,  // something stands behind what could be the end
  NotClosed,   // a parenthesis has no end
  Ambiguous,   // a separator that could set off thousands as well as decimals
  DivisionByZero,
  NotFinite,  // more than a number holds
};

struct ExpressionValue {
  double number = 0;  // 0 where there is a fault
  ExpressionFault fault = ExpressionFault::None;
  std::size_t at = 0;      // where the fault is, in bytes
  std::size_t length = 0;  // of what is wrong there; 0 when something is missing
};

inline constexpr std::size_t kLongestExpression = 256;
inline constexpr int kDeepestExpression = 32;

// The number that people type: 1/3, 0.2*1.5, 50%, -(1 + 2) * 1e-3. The signs are + - * / and those of print (the
// multiplication and division signs, the minus sign); * and / go before + and -; a percent sign divides what is before
// it by 100. White space between the parts counts for nothing.
//
// `decimal` is the sign that sets off decimals where the text was typed, '.' or ','. The other one of them does so too,
// unless the number could have thousands set off by it (1,234): then it is ambiguous. Thousands are never set off.
//
// The text is UTF-8. No locale of the process matters.
ExpressionValue valueOfExpression(std::string_view text, char decimal = '.');

}  // namespace host
