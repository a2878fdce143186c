// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSCodingBudget.h"

namespace {

thread_local int budgets = 0;
thread_local std::uint64_t left = 0;

std::uint64_t unitsOf(const PropertyList& list) {
  std::uint64_t units = 1 + NSCodingBudget::unitsOfBytes(list.stringValue().size() + list.bytes().size());
  for (const PropertyList& each : list.items()) {
    units += unitsOf(each);
  }
  const PropertyList::Dictionary& entries = list.entries();
  for (std::size_t i = 0; i < entries.size(); ++i) {
    units += 1 + NSCodingBudget::unitsOfBytes(entries.keyAt(i).size()) + unitsOf(entries.valueAt(i));
  }
  return units;
}

}  // namespace

NSCodingBudget::NSCodingBudget() {
  if (budgets++ == 0) {
    left = kUnits;
  }
}

NSCodingBudget::~NSCodingBudget() {
  --budgets;
}

bool NSCodingBudget::spend(std::uint64_t units) {
  if (budgets == 0) {
    return true;
  }
  const bool enough = units <= left;
  left = enough ? left - units : 0;
  return enough;
}

bool NSCodingBudget::spendOn(const PropertyList& list) {
  return budgets == 0 || spend(unitsOf(list));
}

std::uint64_t NSCodingBudget::unitsOfBytes(std::uint64_t size) {
  return size / (PropertyListMaximumBytes / PropertyListMaximumValues);
}
