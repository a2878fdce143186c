// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/IccProfile.h"

#include <array>
#include <cmath>

namespace host {
namespace {

using Span = std::span<const std::uint8_t>;

constexpr std::size_t kHeaderBytes = 128;
constexpr std::size_t kTagEntryBytes = 12;
constexpr std::size_t kMostTags = 256;

// Offsets are checked by the callers.
std::uint32_t number16(Span bytes, std::size_t at) {
  return std::uint32_t{bytes[at]} << 8 | bytes[at + 1];
}
std::uint32_t number32(Span bytes, std::size_t at) {
  return number16(bytes, at) << 16 | number16(bytes, at + 2);
}
double fixed32(Span bytes, std::size_t at) {  // s15Fixed16Number
  return static_cast<std::int32_t>(number32(bytes, at)) / 65536.0;
}
constexpr std::uint32_t code(const char (&text)[5]) {
  const auto byte = [&](int i) { return std::uint32_t{static_cast<std::uint8_t>(text[i])}; };
  return byte(0) << 24 | byte(1) << 16 | byte(2) << 8 | byte(3);
}

// A tag's data, starting with its type; empty when there is none or it lies outside.
Span tagData(Span profile, std::uint32_t signature) {
  const std::size_t count = number32(profile, kHeaderBytes);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t entry = kHeaderBytes + 4 + i * kTagEntryBytes;
    if (number32(profile, entry) != signature) continue;
    const std::uint64_t offset = number32(profile, entry + 4);
    const std::uint64_t size = number32(profile, entry + 8);
    return size >= 8 && offset + size <= profile.size() ? profile.subspan(offset, size) : Span();
  }
  return {};
}

double sRgbLight(double value) {
  return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

bool isSRgbTable(Span data, std::size_t count) {
  if (count < 256 || data.size() < 12 + 2 * count) return false;
  for (std::size_t i = 0; i < count; ++i) {
    const double expected = sRgbLight(static_cast<double>(i) / static_cast<double>(count - 1));
    if (std::abs(number16(data, 12 + 2 * i) / 65535.0 - expected) > 5e-5) return false;
  }
  return true;
}

// Type 3 of parametric curves: (a x + b)^g from d on, c x below.
bool isSRgbFormula(Span data) {
  if (data.size() < 12 + 5 * 4 || number16(data, 8) != 3) return false;
  std::array<double, 5> p{};
  for (std::size_t i = 0; i < p.size(); ++i) p[i] = fixed32(data, 12 + 4 * i);
  for (int i = 0; i <= 255; ++i) {
    const double x = i / 255.0;
    const double light = x >= p[4] ? std::pow(p[1] * x + p[2], p[0]) : p[3] * x;
    if (!(std::abs(light - sRgbLight(x)) <= 5e-5)) return false;  // NaN too
  }
  return true;
}

bool isSRgbCurve(Span data) {
  if (data.size() < 12) return false;
  if (number32(data, 0) == code("para")) return isSRgbFormula(data);
  return number32(data, 0) == code("curv") && isSRgbTable(data, number32(data, 8));
}

bool isNear(Span data, const std::array<double, 3>& xyz) {
  if (data.size() < 20 || number32(data, 0) != code("XYZ ")) return false;
  for (std::size_t i = 0; i < 3; ++i) {
    if (std::abs(fixed32(data, 8 + 4 * i) - xyz[i]) > 5e-4) return false;
  }
  return true;
}

bool isSRgb(Span profile, bool isGray) {
  if (number32(profile, 20) != code("XYZ ") || !tagData(profile, code("A2B0")).empty()) return false;
  if (isGray) return isSRgbCurve(tagData(profile, code("kTRC")));
  // IEC 61966-2-1's primaries, adapted to D50.
  return isNear(tagData(profile, code("rXYZ")), {0.43607, 0.22249, 0.01392}) &&
         isNear(tagData(profile, code("gXYZ")), {0.38515, 0.71687, 0.09708}) &&
         isNear(tagData(profile, code("bXYZ")), {0.14307, 0.06061, 0.71410}) &&
         isSRgbCurve(tagData(profile, code("rTRC"))) && isSRgbCurve(tagData(profile, code("gTRC"))) &&
         isSRgbCurve(tagData(profile, code("bTRC")));
}

std::string asciiDescription(Span data) {
  const std::size_t count = number32(data, 8);
  std::string text;
  for (std::size_t i = 12; i < data.size() && i - 12 < count && data[i] != 0; ++i) {
    text += data[i] >= 0x20 && data[i] < 0x7F ? static_cast<char>(data[i]) : '?';
  }
  return text;
}

// The first of the translations, its ASCII letters.
std::string translatedDescription(Span data) {
  if (data.size() < 28 || number32(data, 8) == 0) return "";
  const std::uint64_t size = number32(data, 20);
  const std::uint64_t offset = number32(data, 24);
  if (offset + size > data.size()) return "";
  std::string text;
  for (std::size_t i = offset; i + 1 < offset + size; i += 2) {
    const std::uint32_t unit = number16(data, i);
    if (unit == 0) break;
    text += unit >= 0x20 && unit < 0x7F ? static_cast<char>(unit) : '?';
  }
  return text;
}

std::string descriptionOf(Span profile) {
  constexpr std::size_t mostLetters = 80;
  const Span data = tagData(profile, code("desc"));
  if (data.size() < 12) return "";
  std::string text;
  if (number32(data, 0) == code("desc")) text = asciiDescription(data);
  if (number32(data, 0) == code("mluc")) text = translatedDescription(data);
  return text.substr(0, mostLetters);
}

const char* faultOf(Span bytes) {
  if (bytes.size() < kHeaderBytes + 4 || number32(bytes, 36) != code("acsp")) return "it is no ICC profile";
  const std::uint32_t size = number32(bytes, 0);
  if (size < kHeaderBytes + 4 || size > bytes.size()) return "it is cut short";
  const std::size_t count = number32(bytes, kHeaderBytes);
  if (count == 0 || count > kMostTags || count * kTagEntryBytes > size - kHeaderBytes - 4) return "it is damaged";
  const std::uint32_t kind = number32(bytes, 12);
  const bool isOfPictures =
      kind == code("mntr") || kind == code("scnr") || kind == code("prtr") || kind == code("spac");
  const std::uint32_t model = number32(bytes, 16);
  if (!isOfPictures || (model != code("RGB ") && model != code("GRAY"))) return "it is not for RGB or gray pictures";
  return nullptr;
}

}  // namespace

std::optional<IccSummary> readIccProfile(Span bytes, std::string* reason) {
  if (const char* fault = faultOf(bytes)) {
    if (reason) *reason = fault;
    return std::nullopt;
  }
  const Span profile = bytes.first(number32(bytes, 0));
  IccSummary summary;
  summary.isGray = number32(profile, 16) == code("GRAY");
  summary.isSRgb = isSRgb(profile, summary.isGray);
  summary.description = descriptionOf(profile);
  return summary;
}

}  // namespace host
