// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFArray.h"

#include "Platform/CoreFoundation/CFRuntime.h"

#include <vector>

struct CFArrayObject final : CFObject {
  ~CFArrayObject() override {
    for (CFTypeRef value : values) CFRelease(value);
  }

  std::string description() const override {
    std::string text = "(";
    for (CFTypeRef value : values) {
      if (text.size() > 1) text += ", ";
      text += value == nullptr ? "(null)" : static_cast<const CFObject*>(value)->description();
    }
    return text + ")";
  }

  std::vector<CFTypeRef> values;
};

CFArrayRef CFArrayCreate(CFAllocatorRef, const CFTypeRef* values, CFIndex count) {
  if (count < 0 || (count > 0 && values == nullptr)) return nullptr;
  auto* array = new CFArrayObject;
  array->values.assign(values, values + count);
  for (CFTypeRef value : array->values) CFRetain(value);
  return array;
}

CFIndex CFArrayGetCount(CFArrayRef array) {
  return array == nullptr ? 0 : static_cast<CFIndex>(array->values.size());
}

CFTypeRef CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
  if (array == nullptr || !CFCheckRange(__func__, CFRangeMake(index, 1), CFArrayGetCount(array))) return nullptr;
  return array->values[static_cast<std::size_t>(index)];
}
