// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/PropertyList.h"

#include <cstdint>

// How much one reading or writing may take. Inside this library only.
//
// An archive may hold archives, and many objects may share one: a few bytes can then unfold to any amount of work, each
// part of it within the limits of a list. So the outermost budget of a thread is the one of all that are made below it.
class NSCodingBudget {
 public:
  static constexpr std::uint64_t kUnits = 2 * PropertyListMaximumValues;

  NSCodingBudget();
  ~NSCodingBudget();
  NSCodingBudget(const NSCodingBudget&) = delete;
  NSCodingBudget& operator=(const NSCodingBudget&) = delete;

  // Takes units off the budget: one for a value, and one for every so many bytes. False when there are not so many
  // left. Where nobody has begun one there is no limit.
  static bool spend(std::uint64_t units);
  // Takes what a list and everything in it comes to.
  static bool spendOn(const PropertyList& list);
  static std::uint64_t unitsOfBytes(std::uint64_t size);

  static constexpr const char* kSpent = "unfolds to more values than one archive may hold";
};
