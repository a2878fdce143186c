// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFLocale.h"
#include "Platform/CoreFoundation/CFStringObject.h"
#include "Platform/CoreFoundation/ICU.h"

#include <algorithm>

namespace {

using Text = std::span<const UniChar>;

int CompareUnits(Text a, Text b) {
  const auto order = std::lexicographical_compare_three_way(a.begin(), a.end(), b.begin(), b.end());
  if (std::is_eq(order)) return 0;
  return std::is_lt(order) ? -1 : 1;
}

int CompareFolded(Text a, Text b) {
  UErrorCode error = U_ZERO_ERROR;
  const int order = u_strCaseCompare(a.data(), static_cast<std::int32_t>(a.size()), b.data(),
                                     static_cast<std::int32_t>(b.size()), U_FOLD_CASE_DEFAULT, &error);
  return U_FAILURE(error) ? CompareUnits(a, b) : order;
}

UCollator* OpenCollator(UCollationStrength strength) {
  UErrorCode error = U_ZERO_ERROR;
  UCollator* collator = ucol_open(CFCollationLocale().c_str(), &error);
  if (U_FAILURE(error)) return nullptr;
  ucol_setStrength(collator, strength);
  ucol_setAttribute(collator, UCOL_NORMALIZATION_MODE, UCOL_ON, &error);
  return collator;
}

// Opening a collator costs thousands of comparisons, so both stay open for the life of the process.
const UCollator* Collator(bool caseInsensitive) {
  if (caseInsensitive) {
    static const UCollator* const collator = OpenCollator(UCOL_SECONDARY);
    return collator;
  }
  static const UCollator* const collator = OpenCollator(UCOL_TERTIARY);
  return collator;
}

int CompareLocalized(Text a, Text b, bool caseInsensitive) {
  const UCollator* collator = Collator(caseInsensitive);
  if (collator == nullptr) return caseInsensitive ? CompareFolded(a, b) : CompareUnits(a, b);
  return ucol_strcoll(collator, a.data(), static_cast<std::int32_t>(a.size()), b.data(),
                      static_cast<std::int32_t>(b.size()));
}

int CompareTexts(Text a, Text b, CFStringCompareFlags options) {
  const bool caseInsensitive = (options & kCFCompareCaseInsensitive) != 0;
  if ((options & kCFCompareLocalized) != 0) return CompareLocalized(a, b, caseInsensitive);
  return caseInsensitive ? CompareFolded(a, b) : CompareUnits(a, b);
}

}  // namespace

CFComparisonResult CFStringCompareWithOptions(CFStringRef a, CFStringRef b, CFRange range,
                                              CFStringCompareFlags options) {
  if (a == nullptr || b == nullptr) {
    const int order = static_cast<int>(a != nullptr) - static_cast<int>(b != nullptr);
    return static_cast<CFComparisonResult>(order);
  }
  if (!CFCheckRange(__func__, range, a->length())) range = CFRangeMake(0, 0);
  const Text part = a->text().subspan(static_cast<std::size_t>(range.location), static_cast<std::size_t>(range.length));
  const int order = CompareTexts(part, b->text(), options);
  return order < 0 ? kCFCompareLessThan : (order > 0 ? kCFCompareGreaterThan : kCFCompareEqualTo);
}
