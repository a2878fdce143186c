// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCString.h"

#include "Platform/CoreFoundation/TextEncodingConversion.h"
#include "Platform/Foundation/NSValues.h"
#include "TarnCore/TCPrint.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

namespace {

constexpr CFStringCompareFlags kCompare = kCFCompareLocalized;
constexpr CFStringCompareFlags kCaseInsensitive = kCFCompareLocalized | kCFCompareCaseInsensitive;

// The reports below name the lines that stand for these operations in the records of the system, not lines of this
// file.
[[noreturn]] void NotImplemented(int line) {
  VortoUnreachable("TarnCore/TCString", line, "Not implemented yet");
}

using OwnedString = CFOwned<CFStringRef>;

OwnedString FromMacRoman(const char* text) {
  return OwnedString(CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingMacRoman));
}

CFOwned<CFMutableStringRef> MutableCopy(const OwnedString& string) {
  return CFOwned<CFMutableStringRef>(CFStringCreateMutableCopy(kCFAllocatorDefault, 0, string.get()));
}

CFIndex CountUnits(const unsigned short* text) {
  CFIndex count = 0;
  while (text[count] != 0) ++count;
  return count;
}

OwnedString FromUnits(const unsigned short* text) {
  if (text == nullptr) return OwnedString();
  return OwnedString(CFStringCreateWithCharacters(kCFAllocatorDefault, text, CountUnits(text)));
}

OwnedString Localized(CFStringRef key, CFBundleRef bundle) {
  return OwnedString(CFBundleCopyLocalizedString(bundle, key, key, nullptr));
}

// Null in either gives null.
OwnedString Localized(CFStringRef key, CFStringRef identifier) {
  if (key == nullptr || identifier == nullptr) return OwnedString();
  return Localized(key, CFBundleGetBundleWithIdentifier(identifier));
}

char* CreateBuffer(CFStringRef string, std::size_t size, CFStringEncoding encoding) {
  auto* buffer = static_cast<char*>(std::malloc(size));
  if (buffer != nullptr) CFStringGetCString(string, buffer, static_cast<CFIndex>(size), encoding);
  return buffer;
}

// `whole` compared with `other` where either may be null; `part` is the range of the first that counts.
int CompareOptional(const OwnedString& whole, CFRange part, const OwnedString& other, CFStringCompareFlags options) {
  if (!whole) return other ? -1 : 0;
  if (!other) return 1;
  return static_cast<int>(CFStringCompareWithOptions(whole.get(), other.get(), part, options));
}

CFRange Whole(const OwnedString& string) {
  return CFRangeMake(0, CFStringGetLength(string.get()));
}

// Looked up once.
CFStringRef EmptyString() {
  static const CFStringRef empty = CFSTR("");
  return empty;
}

}  // namespace

VortoString::VortoString(const char* text) {
  set(text);
}

VortoString::VortoString(const char* key, const char* bundleIdentifier) {
  if (key == nullptr || bundleIdentifier == nullptr) return;
  _string = Localized(FromMacRoman(key).get(), FromMacRoman(bundleIdentifier).get());
}

VortoString::VortoString(CFStringRef key, const char* bundleIdentifier) {
  if (bundleIdentifier == nullptr) return;
  _string = Localized(key, FromMacRoman(bundleIdentifier).get());
}

VortoString::VortoString(CFStringRef key, CFStringRef bundleIdentifier) : _string(Localized(key, bundleIdentifier)) {}

VortoString::VortoString(CFStringRef key, CFBundleRef bundle) : _string(Localized(key, bundle)) {}

VortoString::VortoString(const char* key, CFBundleRef bundle) {
  if (key == nullptr) return;
  _string = Localized(FromMacRoman(key).get(), bundle);
}

VortoString::VortoString(const unsigned short* text) : _string(MutableCopy(FromUnits(text))) {}

VortoString::VortoString(const VortoString& other)
    : _string(CFStringCreateCopy(kCFAllocatorDefault, other._string.get())) {}

VortoString::VortoString(VortoString&& other) noexcept : _string(std::move(other._string)) {}

VortoString& VortoString::operator=(const VortoString& other) {
  set(other);
  return *this;
}

// A string that somebody else holds too may still change: it is copied, as set() does.
VortoString& VortoString::operator=(VortoString&& other) noexcept {
  if (&other == this) return *this;
  if (other._string && CFGetRetainCount(other._string.get()) == 1) {
    _string = std::move(other._string);
  } else {
    set(other);
  }
  other.clear();
  return *this;
}

VortoString::VortoString(const CFStringRef& string) : _string(static_cast<CFStringRef>(CFRetain(string))) {}

std::uint32_t VortoString::size() const {
  return static_cast<std::uint32_t>(CFStringGetLength(_string.get()));
}

bool VortoString::empty() const {
  return size() == 0;
}

CFStringRef VortoString::cf_str() const {
  return _string ? _string.get() : EmptyString();
}

std::shared_ptr<NSString> VortoString::ns_str() const {
  static const std::shared_ptr<NSString> empty = NSString::stringWithUTF8String("");
  return _string ? NSString::stringWithUTF8String(CFStringCopyUTF8(_string.get())) : empty;
}

const unsigned short* VortoString::u_str() const {
  return CFStringGetCharactersPtr(_string.get());
}

char* VortoString::createCStr() const {
  if (!_string) return nullptr;
  return CreateBuffer(_string.get(), std::size_t{size()} + 1, kCFStringEncodingMacRoman);
}

char* VortoString::createUTF8Str() const {
  if (!_string) return nullptr;
  return CreateBuffer(_string.get(), 4 * std::size_t{size()} + 1, kCFStringEncodingUTF8);
}

unsigned short* VortoString::createUniStr() const {
  if (!_string) return nullptr;
  const std::size_t length = size();
  auto* buffer = static_cast<unsigned short*>(std::malloc(2 * length + 2));
  if (buffer == nullptr) return nullptr;
  CFStringGetCharacters(_string.get(), Whole(_string), buffer);
  buffer[length] = 0;
  return buffer;
}

std::uint32_t VortoString::get_OSType() const {
  char text[7] = {};
  if (!CFStringGetCString(_string.get(), text, sizeof text, kCFStringEncodingMacRoman)) return 0;
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
  const CFRange found = CFStringFind(_string.get(), wanted._string.get(), 0);
  return found.length == 0 ? -1 : static_cast<std::int32_t>(found.location);
}

VortoString VortoString::substr(std::uint32_t position, std::uint32_t length) const {
  VortoString result;
  result._string.reset(CFStringCreateWithSubstring(kCFAllocatorDefault, _string.get(), CFRangeMake(position, length)));
  return result;
}

VortoString VortoString::substrTo(std::uint32_t end) const {
  return substr(0, end == 0 ? 0 : end - 1);
}

VortoString VortoString::substrFrom(std::uint32_t position) const {
  return substr(position, position < size() ? size() - position : 0);
}

void VortoString::debugShow() const {
  CFShow(_string.get());
}

void VortoString::clear() {
  _string.reset(nullptr);
}

void VortoString::set(const VortoString& other) {
  set(other._string.get());
}

void VortoString::set(const char* text) {
  _string = MutableCopy(FromMacRoman(text));
}

void VortoString::set(const unsigned short* text) {
  _string = FromUnits(text);
}

void VortoString::set(const unsigned short* text, std::uint32_t length) {
  _string.reset(text == nullptr ? nullptr : CFStringCreateWithCharacters(kCFAllocatorDefault, text, length));
}

void VortoString::set(CFStringRef string) {
  _string.reset(CFStringCreateMutableCopy(kCFAllocatorDefault, 0, string));
}

void VortoString::sprintf(const char* format, ...) {
  char buffer[2048];
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
  if (!_string || !other._string) return;
  CFOwned<CFMutableStringRef> copy = MutableCopy(_string);
  CFStringInsert(copy.get(), position, other._string.get());
  _string = std::move(copy);
}

void VortoString::append(const VortoString& other) {
  if (!other._string) return;
  if (!_string) return set(other);
  const CFTypeRef strings[] = {_string.get(), other._string.get()};
  const CFOwned<CFArrayRef> array(CFArrayCreate(kCFAllocatorDefault, strings, 2));
  OwnedString joined(CFStringCreateByCombiningStrings(kCFAllocatorDefault, array.get(), EmptyString()));
  if (joined) _string = std::move(joined);
}

void VortoString::append(const char* text) {
  if (text == nullptr) return;
  if (!_string) return set(text);
  CFOwned<CFMutableStringRef> copy = MutableCopy(_string);
  CFStringAppendCString(copy.get(), text, kCFStringEncodingMacRoman);
  _string = std::move(copy);
}

void VortoString::erase(std::uint32_t position, std::uint32_t length) {
  if (!_string || length == 0) return;
  CFOwned<CFMutableStringRef> copy = MutableCopy(_string);
  CFStringDelete(copy.get(), CFRangeMake(position, length));
  _string = std::move(copy);
}

void VortoString::replace(std::uint32_t position, std::uint32_t length, const VortoString& other) {
  if (!_string || !other._string) return;
  CFOwned<CFMutableStringRef> copy = MutableCopy(_string);
  CFStringReplace(copy.get(), CFRangeMake(position, length), other._string.get());
  _string = std::move(copy);
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
  return string != nullptr ? string : FromMacRoman(text).release();
}
