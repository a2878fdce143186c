// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFBase.h"

#include "Platform/CoreFoundation/CFRuntime.h"

#include <cstdarg>
#include <cstdio>

namespace {

const CFObject* Object(CFTypeRef object) {
  return static_cast<const CFObject*>(object);
}

bool IsConstant(CFTypeRef object) {
  return Object(object)->references.load(std::memory_order_relaxed) == CFObject::kConstant;
}

}  // namespace

CFTypeRef CFRetain(CFTypeRef object) {
  if (object != nullptr && !IsConstant(object)) Object(object)->references.fetch_add(1, std::memory_order_relaxed);
  return object;
}

void CFRelease(CFTypeRef object) {
  if (object == nullptr || IsConstant(object)) return;
  // What other holders did to the object has happened before it goes.
  if (Object(object)->references.fetch_sub(1, std::memory_order_acq_rel) == 1) delete Object(object);
}

CFIndex CFGetRetainCount(CFTypeRef object) {
  return object == nullptr ? 0 : Object(object)->references.load(std::memory_order_acquire);
}

void CFShow(CFTypeRef object) {
  const std::string text = object == nullptr ? "(null)" : Object(object)->description();
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fputc('\n', stderr);
}

void CFReport(const char* format, ...) {
  std::va_list args;
  va_start(args, format);
  std::vfprintf(stderr, format, args);
  va_end(args);
  std::fputc('\n', stderr);
}

bool CFCheckRange(const char* function, CFRange range, CFIndex length) {
  const bool inside =
      range.location >= 0 && range.length >= 0 && range.location <= length && range.length <= length - range.location;
  if (!inside) {
    CFReport("%s: the range (%ld, %ld) is out of bounds of %ld", function, range.location, range.length, length);
  }
  return inside;
}
