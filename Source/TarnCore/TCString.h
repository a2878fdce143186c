// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/CoreFoundation/CFBundle.h"
#include "Platform/CoreFoundation/CFString.h"
#include "Platform/Visibility.h"

#include <cstdint>
#include <memory>

class NSString;

// The framework's string: a value that wraps one CFStringRef, or null, which means empty.
//
// - Positions and lengths count UTF-16 units. `char` text is Mac OS Roman unless an operation says otherwise.
// - The object owns one reference. Copies are independent; only the constructor from a CFStringRef shares its string.
// - Edits work on a fresh copy, so what cf_str() returned before keeps its content.
// - Ranges out of bounds are reported on standard error, and the text stays as it is; a substring of one is null.
// - Null arguments: a null C string or UTF-16 text gives a null string; find(null string) is -1; insert() with a null
//   string on either side changes nothing. Every other case is stated at its operation.
// - Used by one thread at a time; copies of it may be on other threads.
class TARN_EXPORT VortoString {
 public:
  VortoString() = default;
  VortoString(const char* text);
  // The text for `key` in the bundle's default string table, in the user's language; the key itself when the bundle has
  // none, or is not found. Null when the key or the identifier is null.
  VortoString(const char* key, const char* bundleIdentifier);
  VortoString(CFStringRef key, const char* bundleIdentifier);
  VortoString(CFStringRef key, CFStringRef bundleIdentifier);
  VortoString(CFStringRef key, CFBundleRef bundle);
  VortoString(const char* key, CFBundleRef bundle);
  VortoString(const unsigned short* text);  // up to the first 0
  VortoString(const VortoString& other);
  VortoString(VortoString&& other) noexcept;             // with the other's string; the other is null afterwards
  VortoString(const CFStringRef& string);                // retained and shared, not copied
  VortoString& operator=(const VortoString& other);      // set()
  VortoString& operator=(VortoString&& other) noexcept;  // set(); the other is null afterwards

  // In UTF-16 units; null and the empty string have none.
  std::uint32_t size() const;
  bool empty() const;
  CFStringRef cf_str() const;                // not retained: the caller does not own it; never null
  std::shared_ptr<NSString> ns_str() const;  // never null; a lone surrogate becomes U+FFFD
  // The units themselves, size() of them without a terminator, valid until this string changes. Null for an empty
  // string.
  const unsigned short* u_str() const;

  // New zero-terminated buffers; the caller frees them with free(). Null for a null string. Text that the encoding
  // cannot express gives the empty C string.
  char* createCStr() const;
  char* createUTF8Str() const;
  unsigned short* createUniStr() const;

  // The four-character code of text like 'TEST', apostrophes included; 0 for any other text. Characters are
  // sign-extended before they are shifted: one of 0x80 or above sets every bit above its own byte.
  std::uint32_t get_OSType() const;

  // Negative, 0 or positive, by the collation rules of the user's locale. Null comes before everything but null.
  int compare(const VortoString& other) const;
  int caseInsensitiveCompare(const VortoString& other) const;
  // A range of this string with the whole of the other.
  int compare(std::uint32_t position, std::uint32_t length, const VortoString& other) const;
  int caseInsensitiveCompare(std::uint32_t position, std::uint32_t length, const VortoString& other) const;
  // Declared but not implemented: report themselves and abort.
  int compare(std::uint32_t position, std::uint32_t length, const VortoString& other,
              std::uint32_t otherPosition) const;
  int caseInsensitiveCompare(std::uint32_t position, std::uint32_t length, const VortoString& other,
                             std::uint32_t otherPosition) const;

  std::int32_t find(const VortoString& wanted) const;  // -1 when not found; an empty string is never found
  // `length` units from `position` on.
  VortoString substr(std::uint32_t position, std::uint32_t length) const;
  VortoString substrTo(std::uint32_t end) const;         // the first end - 1 units: one less than `end`; 0 takes none
  VortoString substrFrom(std::uint32_t position) const;  // empty when the position lies beyond the end
  void debugShow() const;                                // on standard error

  // The text becomes another one, or none.
  void clear();
  void set(const VortoString& other);
  void set(const char* text);
  void set(const unsigned short* text);  // up to the first 0
  void set(const unsigned short* text, std::uint32_t length);
  void set(CFStringRef string);
  // Formats as the C library does, at most 2047 bytes (the rest is cut off), then set(). A null format gives null.
  void sprintf(const char* format, ...) __attribute__((format(printf, 2, 3)));
  // The code as text between apostrophes, most significant byte first. Trailing zero bytes are dropped; a zero byte
  // before that ends the text.
  void setOSType(std::uint32_t code);

  // Edits, by positions and lengths in units.
  void insert(std::uint32_t position, const VortoString& other);
  void append(const VortoString& other);  // to a null string: set(); a null one: no change
  void append(const char* text);          // likewise
  void erase(std::uint32_t position, std::uint32_t length);
  void replace(std::uint32_t position, std::uint32_t length, const VortoString& other);
  // Declared but not implemented: report themselves and abort.
  void append(const VortoString& other, std::uint32_t position, std::uint32_t length);
  void append(const unsigned short* text);
  void push_back(char character);

 private:
  CFOwned<CFStringRef> _string;
};

// A string from bytes of unknown encoding: the first encoding, most likely first, in which they are valid, else Mac OS
// Roman. The caller releases it. Null for null.
TARN_EXPORT CFStringRef CFStringCreateWithSniffingEncoding(const char* text);
