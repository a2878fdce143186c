// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFEncodings.h"

#include "Platform/CoreFoundation/ICU.h"

#include <algorithm>
#include <array>
#include <memory>

namespace {

constexpr std::array kEncodings = {
    CFEncodingInfo{kCFStringEncodingUTF8, "UTF-8", "UTF-8"},
    CFEncodingInfo{kCFStringEncodingWindowsLatin1, "windows-1252", "windows-1252"},
    CFEncodingInfo{kCFStringEncodingISOLatin1, "ISO-8859-1", "ISO-8859-1"},
    CFEncodingInfo{kCFStringEncodingWindowsLatin2, "windows-1250", "windows-1250"},
    CFEncodingInfo{kCFStringEncodingISOLatin2, "ISO-8859-2", "ISO-8859-2"},
    CFEncodingInfo{kCFStringEncodingWindowsCyrillic, "windows-1251", "windows-1251"},
    CFEncodingInfo{kCFStringEncodingISOLatinCyrillic, "ISO-8859-5", "ISO-8859-5"},
    CFEncodingInfo{kCFStringEncodingKOI8_R, "KOI8-R", "KOI8-R"},
    CFEncodingInfo{kCFStringEncodingWindowsGreek, "windows-1253", "windows-1253"},
    CFEncodingInfo{kCFStringEncodingISOLatinGreek, "ISO-8859-7", "ISO-8859-7"},
    CFEncodingInfo{kCFStringEncodingWindowsLatin5, "windows-1254", "windows-1254"},
    CFEncodingInfo{kCFStringEncodingISOLatin5, "ISO-8859-9", "ISO-8859-9"},
    CFEncodingInfo{kCFStringEncodingWindowsHebrew, "windows-1255", "windows-1255"},
    CFEncodingInfo{kCFStringEncodingISOLatinHebrew, "ISO-8859-8", "ISO-8859-8"},
    CFEncodingInfo{kCFStringEncodingWindowsArabic, "windows-1256", "windows-1256"},
    CFEncodingInfo{kCFStringEncodingISOLatinArabic, "ISO-8859-6", "ISO-8859-6"},
    CFEncodingInfo{kCFStringEncodingShiftJIS, "Shift_JIS", "Shift_JIS"},
    CFEncodingInfo{kCFStringEncodingEUC_JP, "EUC-JP", "EUC-JP"},
    CFEncodingInfo{kCFStringEncodingISO_2022_JP, "ISO-2022-JP", "ISO-2022-JP"},
    CFEncodingInfo{kCFStringEncodingEUC_KR, "EUC-KR", "EUC-KR"},
    CFEncodingInfo{kCFStringEncodingISO_2022_KR, "ISO-2022-KR", "ISO-2022-KR"},
    CFEncodingInfo{kCFStringEncodingBig5, "Big5", "Big5"},
    CFEncodingInfo{kCFStringEncodingGB_18030_2000, "GB18030", "GB18030"},
    CFEncodingInfo{kCFStringEncodingISO_2022_CN, "ISO-2022-CN", "ISO-2022-CN"},
    CFEncodingInfo{kCFStringEncodingUTF16BE, "UTF-16BE", "UTF-16BE"},
    CFEncodingInfo{kCFStringEncodingUTF16LE, "UTF-16LE", "UTF-16LE"},
    CFEncodingInfo{kCFStringEncodingUTF32BE, "UTF-32BE", "UTF-32BE"},
    CFEncodingInfo{kCFStringEncodingUTF32LE, "UTF-32LE", "UTF-32LE"},
    CFEncodingInfo{kCFStringEncodingMacRoman, "macintosh", nullptr},
    CFEncodingInfo{kCFStringEncodingASCII, "US-ASCII", nullptr},
};

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

// ICU's own stopping callback lets ignorable characters (zero-width joiners and the like) vanish silently.
void RefuseUnencodable(const void*, UConverterFromUnicodeArgs*, const UChar*, std::int32_t, UChar32,
                       UConverterCallbackReason, UErrorCode*) {}

void CountMalformed(const void* context, UConverterToUnicodeArgs*, const char*, std::int32_t,
                    UConverterCallbackReason reason, UErrorCode* error) {
  if (reason > UCNV_IRREGULAR) return;
  ++*static_cast<std::uint32_t*>(const_cast<void*>(context));
  *error = U_ZERO_ERROR;
}

Converter OpenConverter(CFStringEncoding encoding) {
  Converter converter(nullptr, &ucnv_close);
  const auto* info = std::find_if(kEncodings.begin(), kEncodings.end(),
                                  [&](const CFEncodingInfo& entry) { return entry.encoding == encoding; });
  if (info == kEncodings.end()) return converter;
  UErrorCode error = U_ZERO_ERROR;
  converter.reset(ucnv_open(info->converter, &error));
  if (converter) {
    ucnv_setFallback(converter.get(), false);
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    ucnv_setFromUCallBack(converter.get(), RefuseUnencodable, nullptr, nullptr, nullptr, &error);
  }
  if (U_FAILURE(error)) converter.reset();
  return converter;
}

// Encodings in which the bytes below 0x80 are ASCII, whatever surrounds them.
bool ExtendsASCII(CFStringEncoding encoding) {
  return encoding == kCFStringEncodingMacRoman || encoding == kCFStringEncodingUTF8 ||
         encoding == kCFStringEncodingASCII;
}

template <typename Unit>
bool IsASCII(std::span<const Unit> text) {
  return std::all_of(text.begin(), text.end(), [](Unit unit) { return unit < 0x80; });
}

// No converter makes more than two units of one byte on average.
CFUnits UnitsForBytes(std::size_t count) {
  return CFUnits(2 * count + 1);
}

const char* Chars(std::span<const std::uint8_t> bytes) {
  return reinterpret_cast<const char*>(bytes.data());
}

}  // namespace

std::span<const CFEncodingInfo> CFKnownEncodings() {
  return kEncodings;
}

std::optional<CFUnits> CFDecode(std::span<const std::uint8_t> bytes, CFStringEncoding encoding) {
  if (bytes.size() > static_cast<std::size_t>(kCFStringMaximumLength)) return std::nullopt;
  if (ExtendsASCII(encoding) && IsASCII(bytes)) return CFUnits(bytes.begin(), bytes.end());
  const Converter converter = OpenConverter(encoding);
  if (!converter) return std::nullopt;
  CFUnits units = UnitsForBytes(bytes.size());
  UErrorCode error = U_ZERO_ERROR;
  const std::int32_t length = ucnv_toUChars(converter.get(), units.data(), static_cast<std::int32_t>(units.size()),
                                            Chars(bytes), static_cast<std::int32_t>(bytes.size()), &error);
  if (U_FAILURE(error) || length > kCFStringMaximumLength) return std::nullopt;
  units.resize(static_cast<std::size_t>(length));
  units.shrink_to_fit();
  return units;
}

std::optional<std::string> CFEncode(std::span<const UniChar> units, CFStringEncoding encoding) {
  if (ExtendsASCII(encoding) && IsASCII(units)) return std::string(units.begin(), units.end());
  const Converter converter = OpenConverter(encoding);
  if (!converter) return std::nullopt;
  const auto count = static_cast<std::int32_t>(units.size());
  UErrorCode error = U_ZERO_ERROR;
  const std::int32_t length = ucnv_fromUChars(converter.get(), nullptr, 0, units.data(), count, &error);
  if (error != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(error)) return std::nullopt;
  std::string bytes(static_cast<std::size_t>(length), '\0');
  error = U_ZERO_ERROR;
  ucnv_fromUChars(converter.get(), bytes.data(), length, units.data(), count, &error);
  if (U_FAILURE(error)) return std::nullopt;
  return bytes;
}

std::uint32_t CFCountMalformed(std::span<const std::uint8_t> bytes, CFStringEncoding encoding) {
  const Converter converter = OpenConverter(encoding);
  if (!converter || bytes.size() > static_cast<std::size_t>(kCFStringMaximumLength)) return 1;
  std::uint32_t count = 0;
  UErrorCode error = U_ZERO_ERROR;
  ucnv_setToUCallBack(converter.get(), CountMalformed, &count, nullptr, nullptr, &error);
  CFUnits units = UnitsForBytes(bytes.size());
  ucnv_toUChars(converter.get(), units.data(), static_cast<std::int32_t>(units.size()), Chars(bytes),
                static_cast<std::int32_t>(bytes.size()), &error);
  return U_FAILURE(error) ? std::max(count, 1u) : count;
}

std::string CFReadableUTF8(std::span<const UniChar> units) {
  if (IsASCII(units)) return std::string(units.begin(), units.end());
  constexpr UChar32 kReplacement = 0xFFFD;
  const auto count = static_cast<std::int32_t>(units.size());
  std::int32_t length = 0;
  UErrorCode error = U_ZERO_ERROR;
  u_strToUTF8WithSub(nullptr, 0, &length, units.data(), count, kReplacement, nullptr, &error);
  std::string text(static_cast<std::size_t>(std::max(length, 0)), '\0');
  error = U_ZERO_ERROR;
  u_strToUTF8WithSub(text.data(), length, &length, units.data(), count, kReplacement, nullptr, &error);
  return U_FAILURE(error) ? std::string() : text;
}
