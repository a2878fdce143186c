// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFString.h"

#include "Platform/CoreFoundation/CFStringObject.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <functional>
#include <iterator>
#include <new>

namespace {

std::span<const std::uint8_t> Bytes(const char* text) {
  return {reinterpret_cast<const std::uint8_t*>(text), std::strlen(text)};
}

CFRange WholeRange(CFStringRef string) {
  return CFRangeMake(0, CFStringGetLength(string));
}

// Every edit: puts `text` in the place of a range that the caller has checked.
void Splice(const char* function, CFMutableStringRef string, CFRange range, std::span<const UniChar> text) {
  if (!string->isMutable) return CFReport("%s: the string is immutable", function);
  const CFIndex length = string->length() - range.length + static_cast<CFIndex>(text.size());
  if (length > string->capacity) {
    return CFReport("%s: %ld units are more than the string may hold, %ld", function, length, string->capacity);
  }
  const CFUnits source(text.begin(), text.end());  // the text may be the string's own
  const auto first = string->units.begin() + range.location;
  const auto last = first + range.length;
  const auto common = std::min<CFIndex>(range.length, static_cast<CFIndex>(source.size()));
  std::copy_n(source.begin(), common, first);
  if (range.length > common) {
    string->units.erase(first + common, last);
  } else {
    string->units.insert(last, source.begin() + common, source.end());
  }
}

// A constant string, in a list that only grows: threads may look into it and add to it at the same time.
struct Constant {
  std::string text;
  CFStringRef string;
  const Constant* older;
};
constinit std::atomic<const Constant*> constants[64] = {};  // by the text's hash; never destroyed

const Constant* FindConstant(const Constant* newest, std::string_view text) {
  for (; newest != nullptr; newest = newest->older) {
    if (newest->text == text) return newest;
  }
  return nullptr;
}

}  // namespace

CFStringRef CFStringCreateWithUnits(CFUnits units) {
  auto* string = new CFStringObject;
  string->units = std::move(units);
  return string;
}

CFStringRef CFSTR(const char* text) {
  if (text == nullptr) text = "";
  std::atomic<const Constant*>& bucket = constants[std::hash<std::string_view>()(text) % std::size(constants)];
  const Constant* newest = bucket.load(std::memory_order_acquire);
  if (const Constant* known = FindConstant(newest, text)) return known->string;
  CFStringRef string = CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingUTF8);
  if (string == nullptr) return nullptr;
  string->references = CFObject::kConstant;
  auto* added = new Constant{text, string, newest};
  while (!bucket.compare_exchange_weak(added->older, added, std::memory_order_acq_rel, std::memory_order_acquire)) {
    // Another thread was first, maybe with this text.
    const Constant* known = FindConstant(added->older, text);
    if (known == nullptr) continue;
    delete added;
    delete string;
    return known->string;
  }
  return string;
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text, CFStringEncoding encoding) {
  if (text == nullptr) return nullptr;
  const std::span<const std::uint8_t> bytes = Bytes(text);
  return CFStringCreateWithBytes(allocator, bytes.data(), static_cast<CFIndex>(bytes.size()), encoding);
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const std::uint8_t* bytes, CFIndex count,
                                    CFStringEncoding encoding) {
  if (count < 0 || (count > 0 && bytes == nullptr)) return nullptr;
  std::optional<CFUnits> units = CFDecode({bytes, static_cast<std::size_t>(count)}, encoding);
  return units ? CFStringCreateWithUnits(std::move(*units)) : nullptr;
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar* units, CFIndex count) {
  if (count < 0 || (count > 0 && units == nullptr)) return nullptr;
  if (count > kCFStringMaximumLength) {
    CFReport("%s: %ld units are more than a string may hold", __func__, count);
    return nullptr;
  }
  return CFStringCreateWithUnits(CFUnits(units, units + count));
}

CFStringRef CFStringCreateCopy(CFAllocatorRef, CFStringRef string) {
  if (string == nullptr) return nullptr;
  if (string->isMutable) return CFStringCreateWithUnits(string->units);
  CFRetain(string);
  return string;
}

CFMutableStringRef CFStringCreateMutable(CFAllocatorRef, CFIndex capacity) {
  auto* string = new CFStringObject;
  string->isMutable = true;
  if (capacity > 0) string->capacity = std::min(capacity, kCFStringMaximumLength);
  return string;
}

CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity, CFStringRef string) {
  if (string == nullptr) return nullptr;
  CFOwned<CFMutableStringRef> copy(CFStringCreateMutable(allocator, capacity));
  if (string->length() > copy.get()->capacity) {
    CFReport("%s: %ld units are more than the capacity, %ld", __func__, string->length(), copy.get()->capacity);
    return nullptr;
  }
  copy.get()->units = string->units;
  return copy.release();
}

CFStringRef CFStringCreateWithSubstring(CFAllocatorRef, CFStringRef string, CFRange range) {
  if (string == nullptr) return nullptr;
  if (range.length == 0) return CFStringCreateWithUnits({});
  if (!CFCheckRange(__func__, range, string->length())) return nullptr;
  const auto first = string->units.begin() + range.location;
  return CFStringCreateWithUnits(CFUnits(first, first + range.length));
}

CFStringRef CFStringCreateByCombiningStrings(CFAllocatorRef, CFArrayRef strings, CFStringRef separator) {
  if (strings == nullptr) return nullptr;
  CFUnits units;
  const CFIndex count = CFArrayGetCount(strings);
  for (CFIndex i = 0; i < count; ++i) {
    const auto between = i == 0 ? std::span<const UniChar>() : CFStringUnits(separator);
    const auto next = CFStringUnits(static_cast<CFStringRef>(CFArrayGetValueAtIndex(strings, i)));
    if (units.size() + between.size() + next.size() > static_cast<std::size_t>(kCFStringMaximumLength)) {
      CFReport("%s: the strings together are longer than a string may be", __func__);
      return nullptr;
    }
    units.insert(units.end(), between.begin(), between.end());
    units.insert(units.end(), next.begin(), next.end());
  }
  return CFStringCreateWithUnits(std::move(units));
}

CFIndex CFStringGetLength(CFStringRef string) {
  return string == nullptr ? 0 : string->length();
}

UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index) {
  if (string == nullptr || !CFCheckRange(__func__, CFRangeMake(index, 1), string->length())) return 0;
  return string->units[static_cast<std::size_t>(index)];
}

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer) {
  if (string == nullptr || buffer == nullptr || !CFCheckRange(__func__, range, string->length())) return;
  std::copy_n(string->units.begin() + range.location, range.length, buffer);
}

const UniChar* CFStringGetCharactersPtr(CFStringRef string) {
  return string == nullptr || string->units.empty() ? nullptr : string->units.data();
}

bool CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize, CFStringEncoding encoding) {
  if (buffer == nullptr || bufferSize <= 0) return false;
  buffer[0] = 0;
  if (string == nullptr) return false;
  const std::optional<std::string> text = CFEncode(string->text(), encoding);
  if (!text || text->size() >= static_cast<std::size_t>(bufferSize)) return false;
  std::memcpy(buffer, text->c_str(), text->size() + 1);
  return true;
}

void CFStringInsert(CFMutableStringRef string, CFIndex position, CFStringRef inserted) {
  if (string == nullptr || inserted == nullptr) return;
  const CFRange range = CFRangeMake(position, 0);
  if (CFCheckRange(__func__, range, string->length())) Splice(__func__, string, range, inserted->text());
}

void CFStringAppend(CFMutableStringRef string, CFStringRef appended) {
  if (string == nullptr || appended == nullptr) return;
  Splice(__func__, string, CFRangeMake(string->length(), 0), appended->text());
}

void CFStringAppendCString(CFMutableStringRef string, const char* text, CFStringEncoding encoding) {
  if (string == nullptr || text == nullptr) return;
  const std::optional<CFUnits> units = CFDecode(Bytes(text), encoding);
  if (units) Splice(__func__, string, CFRangeMake(string->length(), 0), *units);
}

void CFStringDelete(CFMutableStringRef string, CFRange range) {
  if (string == nullptr || !CFCheckRange(__func__, range, string->length())) return;
  Splice(__func__, string, range, {});
}

void CFStringReplace(CFMutableStringRef string, CFRange range, CFStringRef replacement) {
  if (string == nullptr || replacement == nullptr || !CFCheckRange(__func__, range, string->length())) return;
  Splice(__func__, string, range, replacement->text());
}

CFRange CFStringFind(CFStringRef string, CFStringRef wanted, CFStringCompareFlags options) {
  constexpr CFRange kNotFound{kCFNotFound, 0};
  if (CFStringGetLength(wanted) == 0 || CFStringGetLength(string) == 0) return kNotFound;
  const CFUnits& text = string->units;
  const CFUnits& part = wanted->units;
  const auto found = (options & kCFCompareBackwards) != 0
                         ? std::find_end(text.begin(), text.end(), part.begin(), part.end())
                         : std::search(text.begin(), text.end(), part.begin(), part.end());
  return found == text.end() ? kNotFound : CFRangeMake(found - text.begin(), wanted->length());
}

std::string CFStringCopyUTF8(CFStringRef string) {
  return CFReadableUTF8(CFStringUnits(string));
}

CFComparisonResult CFStringCompare(CFStringRef a, CFStringRef b, CFStringCompareFlags options) {
  return CFStringCompareWithOptions(a, b, WholeRange(a), options);
}
