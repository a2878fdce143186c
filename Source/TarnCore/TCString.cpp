// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCString.h"

#include "Platform/CoreFoundation/TextEncodingConversion.h"
#include "Platform/Foundation/NSValues.h"
#include "TarnCore/TCPrint.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr CFStringCompareFlags kCompare = kCFCompareLocalized;
constexpr CFStringCompareFlags kCaseInsensitive = kCFCompareLocalized | kCFCompareCaseInsensitive;

// The reports below name the lines that stand for these operations in the records of the system, not lines of this
// file.
[[noreturn]] void NotImplemented(int line) {
  VortoUnreachable("TarnCore/TCString", line, "Not implemented yet");
}

CFStringRef FromMacRoman(const char* text) {
  return CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingMacRoman);
}

// A mutable copy in the place of the string given, whose reference it takes over.
CFStringRef MutableInPlaceOf(CFStringRef string) {
  CFStringRef copy = CFStringCreateMutableCopy(kCFAllocatorDefault, 0, string);
  CFRelease(string);
  return copy;
}

CFIndex CountUnits(const unsigned short* text) {
  CFIndex count = 0;
  while (text[count] != 0) ++count;
  return count;
}

CFStringRef FromUnits(const unsigned short* text) {
  return text == nullptr ? nullptr : CFStringCreateWithCharacters(kCFAllocatorDefault, text, CountUnits(text));
}

CFStringRef CopyLocalized(CFStringRef key, CFBundleRef bundle) {
  return CFBundleCopyLocalizedString(bundle, key, key, nullptr);
}

// Both temporaries are the caller's; null in either gives null.
CFStringRef CopyLocalized(CFStringRef key, CFStringRef identifier) {
  if (key == nullptr || identifier == nullptr) return nullptr;
  return CopyLocalized(key, CFBundleGetBundleWithIdentifier(identifier));
}

char* CreateBuffer(CFStringRef string, std::size_t size, CFStringEncoding encoding) {
  auto* buffer = static_cast<char*>(std::malloc(size));
  if (buffer != nullptr) CFStringGetCString(string, buffer, static_cast<CFIndex>(size), encoding);
  return buffer;
}

// `whole` compared with `other` where either may be null; `part` is the range of the first that counts.
int CompareOptional(CFStringRef whole, CFRange part, CFStringRef other, CFStringCompareFlags options) {
  if (whole == nullptr) return other == nullptr ? 0 : -1;
  if (other == nullptr) return 1;
  return static_cast<int>(CFStringCompareWithOptions(whole, other, part, options));
}

CFRange Whole(CFStringRef string) {
  return CFRangeMake(0, CFStringGetLength(string));
}

}  // namespace

VortoString::VortoString(const char* text) {
  set(text);
}

VortoString::VortoString(const char* key, const char* bundleIdentifier) {
  if (key == nullptr || bundleIdentifier == nullptr) return;
  CFStringRef keyString = FromMacRoman(key);
  CFStringRef identifier = FromMacRoman(bundleIdentifier);
  _string = CopyLocalized(keyString, identifier);
  CFRelease(identifier);
  CFRelease(keyString);
}

VortoString::VortoString(CFStringRef key, const char* bundleIdentifier) {
  if (bundleIdentifier == nullptr) return;
  CFStringRef identifier = FromMacRoman(bundleIdentifier);
  _string = CopyLocalized(key, identifier);
  CFRelease(identifier);
}

VortoString::VortoString(CFStringRef key, CFStringRef bundleIdentifier)
    : _string(CopyLocalized(key, bundleIdentifier)) {}

VortoString::VortoString(CFStringRef key, CFBundleRef bundle) : _string(CopyLocalized(key, bundle)) {}

VortoString::VortoString(const char* key, CFBundleRef bundle) {
  if (key == nullptr) return;
  CFStringRef keyString = FromMacRoman(key);
  _string = CopyLocalized(keyString, bundle);
  CFRelease(keyString);
}

VortoString::VortoString(const unsigned short* text) : _string(MutableInPlaceOf(FromUnits(text))) {}

VortoString::VortoString(const VortoString& other) : _string(CFStringCreateCopy(kCFAllocatorDefault, other._string)) {}

VortoString::VortoString(const CFStringRef& string) : _string(static_cast<CFStringRef>(CFRetain(string))) {}

VortoString::~VortoString() {
  CFRelease(_string);
}

void VortoString::adopt(CFStringRef string) {
  CFRelease(_string);
  _string = string;
}

std::uint32_t VortoString::size() const {
  return static_cast<std::uint32_t>(CFStringGetLength(_string));
}

bool VortoString::empty() const {
  return size() == 0;
}

CFStringRef VortoString::cf_str() const {
  static const CFStringRef empty = CFSTR("");
  return _string == nullptr ? empty : _string;
}

std::shared_ptr<NSString> VortoString::ns_str() const {
  static const std::shared_ptr<NSString> empty = NSString::stringWithUTF8String("");
  return _string == nullptr ? empty : NSString::stringWithUTF8String(CFStringCopyUTF8(_string));
}

const unsigned short* VortoString::u_str() const {
  return CFStringGetCharactersPtr(_string);
}

char* VortoString::createCStr() const {
  if (_string == nullptr) return nullptr;
  return CreateBuffer(_string, std::size_t{size()} + 1, kCFStringEncodingMacRoman);
}

char* VortoString::createUTF8Str() const {
  if (_string == nullptr) return nullptr;
  return CreateBuffer(_string, 4 * std::size_t{size()} + 1, kCFStringEncodingUTF8);
}

unsigned short* VortoString::createUniStr() const {
  if (_string == nullptr) return nullptr;
  const std::size_t length = size();
  auto* buffer = static_cast<unsigned short*>(std::malloc(2 * length + 2));
  if (buffer == nullptr) return nullptr;
  CFStringGetCharacters(_string, Whole(_string), buffer);
  buffer[length] = 0;
  return buffer;
}

std::uint32_t VortoString::get_OSType() const {
  char text[7] = {};
  if (!CFStringGetCString(_string, text, sizeof text, kCFStringEncodingMacRoman)) return 0;
  if (text[0] != '\'' || text[5] != '\'') return 0;
  std::uint32_t code = 0;
  for (int i = 1; i <= 4; ++i) {
    // Through a signed character, so that its sign fills the bits above.
    const auto extended = static_cast<std::uint32_t>(std::int32_t{static_cast<signed char>(text[i])});
    code |= extended << (8 * (4 - i));
  }
  return code;
}

int VortoString::compare(const VortoString& other) const {
  return CompareOptional(_string, Whole(_string), other._string, kCompare);
}

int VortoString::caseInsensitiveCompare(const VortoString& other) const {
  return CompareOptional(_string, Whole(_string), other._string, kCaseInsensitive);
}

int VortoString::compare(std::uint32_t position, std::uint32_t length, const VortoString& other) const {
  return CompareOptional(_string, CFRangeMake(position, length), other._string, kCompare);
}

int VortoString::caseInsensitiveCompare(std::uint32_t position, std::uint32_t length, const VortoString& other) const {
  return CompareOptional(_string, CFRangeMake(position, length), other._string, kCaseInsensitive);
}

int VortoString::compare(std::uint32_t, std::uint32_t, const VortoString&, std::uint32_t) const {
  NotImplemented(470);
}

int VortoString::caseInsensitiveCompare(std::uint32_t, std::uint32_t, const VortoString&, std::uint32_t) const {
  NotImplemented(516);
}

std::int32_t VortoString::find(const VortoString& wanted) const {
  const CFRange found = CFStringFind(_string, wanted._string, 0);
  return found.length == 0 ? -1 : static_cast<std::int32_t>(found.location);
}

VortoString VortoString::substr(std::uint32_t position, std::uint32_t length) const {
  VortoString result;
  result.adopt(CFStringCreateWithSubstring(kCFAllocatorDefault, _string, CFRangeMake(position, length)));
  return result;
}

VortoString VortoString::substrTo(std::uint32_t end) const {
  return substr(0, end == 0 ? 0 : end - 1);
}

VortoString VortoString::substrFrom(std::uint32_t position) const {
  return substr(position, position < size() ? size() - position : 0);
}

void VortoString::debugShow() const {
  CFShow(_string);
}

void VortoString::clear() {
  adopt(nullptr);
}

void VortoString::set(const VortoString& other) {
  set(other._string);
}

void VortoString::set(const char* text) {
  adopt(MutableInPlaceOf(FromMacRoman(text)));
}

void VortoString::set(const unsigned short* text) {
  adopt(FromUnits(text));
}

void VortoString::set(const unsigned short* text, std::uint32_t length) {
  adopt(text == nullptr ? nullptr : CFStringCreateWithCharacters(kCFAllocatorDefault, text, length));
}

void VortoString::set(CFStringRef string) {
  adopt(CFStringCreateMutableCopy(kCFAllocatorDefault, 0, string));
}

void VortoString::sprintf(const char* format, ...) {
  static char buffer[2048];
  if (format == nullptr) return clear();
  std::va_list args;
  va_start(args, format);
  if (std::vsnprintf(buffer, sizeof buffer, format, args) < 0) buffer[0] = 0;
  va_end(args);
  set(buffer);
}

void VortoString::setOSType(std::uint32_t code) {
  char text[7] = "'";
  std::size_t length = 1;
  for (; code != 0; code <<= 8) text[length++] = static_cast<char>(code >> 24);
  text[length] = '\'';
  set(text);
}

void VortoString::insert(std::uint32_t position, const VortoString& other) {
  if (_string == nullptr || other._string == nullptr) return;
  CFMutableStringRef copy = CFStringCreateMutableCopy(kCFAllocatorDefault, 0, _string);
  CFStringInsert(copy, position, other._string);
  adopt(copy);
}

void VortoString::append(const VortoString& other) {
  if (other._string == nullptr) return;
  if (_string == nullptr) return set(other);
  const CFTypeRef strings[] = {_string, other._string};
  CFArrayRef array = CFArrayCreate(kCFAllocatorDefault, strings, 2);
  CFStringRef joined = CFStringCreateByCombiningStrings(kCFAllocatorDefault, array, CFSTR(""));
  CFRelease(array);
  if (joined != nullptr) adopt(joined);
}

void VortoString::append(const char* text) {
  if (text == nullptr) return;
  if (_string == nullptr) return set(text);
  CFMutableStringRef copy = CFStringCreateMutableCopy(kCFAllocatorDefault, 0, _string);
  CFStringAppendCString(copy, text, kCFStringEncodingMacRoman);
  adopt(copy);
}

void VortoString::erase(std::uint32_t position, std::uint32_t length) {
  if (_string == nullptr || length == 0) return;
  CFMutableStringRef copy = CFStringCreateMutableCopy(kCFAllocatorDefault, 0, _string);
  CFStringDelete(copy, CFRangeMake(position, length));
  adopt(copy);
}

void VortoString::replace(std::uint32_t position, std::uint32_t length, const VortoString& other) {
  if (_string == nullptr || other._string == nullptr) return;
  CFMutableStringRef copy = CFStringCreateMutableCopy(kCFAllocatorDefault, 0, _string);
  CFStringReplace(copy, CFRangeMake(position, length), other._string);
  adopt(copy);
}

void VortoString::append(const VortoString&, std::uint32_t, std::uint32_t) {
  NotImplemented(580);
}

void VortoString::append(const unsigned short*) {
  NotImplemented(648);
}

void VortoString::push_back(char) {
  NotImplemented(658);
}

CFStringRef CFStringCreateWithSniffingEncoding(const char* text) {
  if (text == nullptr) return nullptr;
  ItemCount count = 0;
  TECCountAvailableSniffers(&count);
  std::vector<TextEncoding> encodings(count);
  std::vector<ItemCount> errorCounts(count);
  std::vector<ItemCount> featureCounts(count);
  CFStringRef string = nullptr;
  TECSnifferObjectRef sniffer = nullptr;
  if (TECGetAvailableSniffers(encodings.data(), count, &count) == noErr &&
      TECCreateSniffer(&sniffer, encodings.data(), count) == noErr) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text);
    const auto length = static_cast<ItemCount>(std::strlen(text));
    if (TECSniffTextEncoding(sniffer, bytes, length, encodings.data(), count, errorCounts.data(), count,
                             featureCounts.data(), count) == noErr) {
      for (ItemCount i = 0; i < count && string == nullptr; ++i) {
        string = CFStringCreateWithCString(kCFAllocatorDefault, text, encodings[i]);
      }
    }
    TECDisposeSniffer(sniffer);
  }
  return string != nullptr ? string : FromMacRoman(text);
}
