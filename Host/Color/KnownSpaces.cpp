// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/KnownSpaces.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace host {
namespace {

constexpr Chromaticity kD65{0.3127, 0.3290};          // as ITU-R BT.709 and BT.2020 give it
constexpr Chromaticity kAcesWhite{0.32168, 0.33767};  // SMPTE ST 2065-1

constexpr Primaries kRec709{{0.640, 0.330}, {0.300, 0.600}, {0.150, 0.060}, kD65};      // ITU-R BT.709
constexpr Primaries kRec2020{{0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046}, kD65};     // ITU-R BT.2020
constexpr Primaries kP3{{0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}, kD65};          // SMPTE EG 432-1
constexpr Primaries kAp1{{0.713, 0.293}, {0.165, 0.830}, {0.128, 0.044}, kAcesWhite};   // ACES S-2014-004
constexpr Primaries kAp0{{0.7347, 0.2653}, {0.0, 1.0}, {0.0001, -0.0770}, kAcesWhite};  // SMPTE ST 2065-1

constexpr TransferCurve kLinear{};
constexpr TransferCurve kSRgbCurve{TransferCurve::Kind::SRgb, 1};
constexpr TransferCurve kBt1886{TransferCurve::Kind::Power, 2.4};  // ITU-R BT.1886, of a display with no light in black

constexpr const char* kSRgbNames[] = {"srgb_rec709_scene",
                                      "sRGB - Texture",
                                      "srgb_tx",
                                      "srgb_texture",
                                      "sRGB Encoded Rec.709 (sRGB)",
                                      "Utility - sRGB - Texture",
                                      "sRGB",
                                      "srgb_rec709_display",
                                      "sRGB - Display",
                                      "srgb_display"};
constexpr const char* kLinearRec709Names[] = {
    "lin_rec709_scene",           "Linear Rec.709 (sRGB)",   "lin_rec709_srgb", "lin_rec709",  "lin_srgb",
    "Utility - Linear - Rec.709", "Utility - Linear - sRGB", "Linear Rec.709",  "Linear sRGB", "linear"};
constexpr const char* kRec709Names[] = {"g24_rec709_scene",
                                        "g24_rec709_tx",
                                        "Gamma 2.4 Rec.709 - Texture",
                                        "Gamma 2.4 Encoded Rec.709",
                                        "Rec.709",
                                        "rec709",
                                        "bt709",
                                        "Utility - Rec.709 - Display",
                                        "g24_rec709_display",
                                        "Rec.1886 Rec.709 - Display",
                                        "rec1886_rec709_display"};
constexpr const char* kRec2020Names[] = {"g24_rec2020_scene",
                                         "Rec.2020",
                                         "rec2020",
                                         "bt2020",
                                         "Utility - Rec.2020 - Display",
                                         "g24_rec2020_display",
                                         "Rec.1886 Rec.2020 - Display",
                                         "rec1886_rec2020_display"};
constexpr const char* kLinearRec2020Names[] = {"lin_rec2020_scene", "Linear Rec.2020", "lin_rec2020",
                                               "Utility - Linear - Rec.2020"};
constexpr const char* kDisplayP3Names[] = {
    "srgb_p3d65_scene",   "sRGB Encoded P3-D65 - Texture", "srgb_p3d65_tx",    "Display P3", "display_p3", "displayp3",
    "srgb_p3d65_display", "Display P3 - Display",          "displayp3_display"};
constexpr const char* kLinearP3Names[] = {"lin_p3d65_scene", "Linear P3-D65", "lin_p3d65", "Utility - Linear - P3-D65"};
constexpr const char* kAcesCgNames[] = {"lin_ap1_scene", "ACEScg", "lin_ap1", "ACES - ACEScg"};
constexpr const char* kAces2065Names[] = {"lin_ap0_scene", "ACES2065-1",        "lin_ap0",
                                          "aces2065_1",    "ACES - ACES2065-1", "aces"};

// In the order of KnownSpace.
const KnownSpaceFacts kSpaces[] = {
    {KnownSpace::SRgb, "sRGB", kSRgbNames, kRec709, kSRgbCurve, CodePoints{1, 13}, "srgb_rec709_scene"},
    {KnownSpace::LinearRec709, "Linear Rec.709", kLinearRec709Names, kRec709, kLinear, CodePoints{1, 8},
     "lin_rec709_scene"},
    {KnownSpace::Rec709, "Rec.709 (BT.1886)", kRec709Names, kRec709, kBt1886, CodePoints{1, 1}, "g24_rec709_scene"},
    {KnownSpace::Rec2020, "Rec.2020", kRec2020Names, kRec2020, kBt1886, CodePoints{9, 14}, nullptr},
    {KnownSpace::LinearRec2020, "Linear Rec.2020", kLinearRec2020Names, kRec2020, kLinear, CodePoints{9, 8},
     "lin_rec2020_scene"},
    {KnownSpace::DisplayP3, "Display P3", kDisplayP3Names, kP3, kSRgbCurve, CodePoints{12, 13}, "srgb_p3d65_scene"},
    {KnownSpace::LinearP3, "Linear P3-D65", kLinearP3Names, kP3, kLinear, CodePoints{12, 8}, "lin_p3d65_scene"},
    {KnownSpace::AcesCg, "ACEScg", kAcesCgNames, kAp1, kLinear, std::nullopt, "lin_ap1_scene"},
    {KnownSpace::Aces2065, "ACES2065-1", kAces2065Names, kAp0, kLinear, std::nullopt, "lin_ap0_scene"},
};

bool isNear(const Chromaticity& a, const Chromaticity& b) {
  return std::abs(a.x - b.x) <= 0.001 && std::abs(a.y - b.y) <= 0.001;
}

char lowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

std::span<const KnownSpaceFacts> knownSpaces() {
  return kSpaces;
}

const KnownSpaceFacts& factsOf(KnownSpace space) {
  return kSpaces[static_cast<std::size_t>(space)];
}

std::optional<KnownSpace> knownSpaceNamed(const std::string& name) {
  for (const KnownSpaceFacts& facts : kSpaces) {
    const bool isAlias = std::any_of(facts.aliases.begin(), facts.aliases.end(),
                                     [&](const char* alias) { return equalIgnoringCase(name, alias); });
    if (isAlias || equalIgnoringCase(name, facts.name)) return facts.space;
  }
  return std::nullopt;
}

std::optional<KnownSpace> knownSpaceWith(const Primaries& primaries, const TransferCurve& curve) {
  for (const KnownSpaceFacts& facts : kSpaces) {
    if (facts.curve == curve && isNear(facts.primaries.red, primaries.red) &&
        isNear(facts.primaries.green, primaries.green) && isNear(facts.primaries.blue, primaries.blue) &&
        isNear(facts.primaries.white, primaries.white)) {
      return facts.space;
    }
  }
  return std::nullopt;
}

std::string knownSpaceList() {
  std::string list;
  for (const KnownSpaceFacts& facts : kSpaces) list += (list.empty() ? "" : ", ") + std::string(facts.name);
  return list;
}

bool equalIgnoringCase(const std::string& a, const std::string& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return lowerCase(x) == lowerCase(y); });
}

}  // namespace host
