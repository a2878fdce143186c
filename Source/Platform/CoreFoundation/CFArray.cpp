// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFArray.h"

#include "Platform/CoreFoundation/CFRuntime.h"

#include <vector>

struct CFArrayObject final : CFObject {
  std::string description() const override {
    std::string text = "(";
    for (const CFOwned<CFTypeRef>& value : values) {
      if (text.size() > 1) text += ", ";
      text += value ? static_cast<const CFObject*>(value.get())->description() : "(null)";
    }
    return text + ")";
  }

  std::vector<CFOwned<CFTypeRef>> values;
};

CFArrayRef CFArrayCreate(CFAllocatorRef, const CFTypeRef* values, CFIndex count) {
  if (count < 0 || (count > 0 && values == nullptr)) return nullptr;
  auto* array = new CFArrayObject;
  for (CFIndex i = 0; i < count; ++i) array->values.emplace_back(CFRetain(values[i]));
  return array;
}

CFIndex CFArrayGetCount(CFArrayRef array) {
  return array == nullptr ? 0 : static_cast<CFIndex>(array->values.size());
}

CFTypeRef CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
  if (array == nullptr || !CFCheckRange(__func__, CFRangeMake(index, 1), CFArrayGetCount(array))) return nullptr;
  return array->values[static_cast<std::size_t>(index)].get();
}
