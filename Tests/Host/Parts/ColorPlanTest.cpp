// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/ColorPlan.h"
#include "Host/Color/FileSpace.h"
#include "Host/Color/KnownSpaces.h"
#include "Tests/Host/IccProfiles.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

// The rules of color, without a picture or a library.

namespace {

using host::Channels;
using host::CodePoints;
using host::ColorInput;
using host::ColorSpace;
using host::ColorTag;
using host::Depth;
using host::FileFormat;
using host::KnownSpace;
using host::Primaries;
using Origin = ColorSpace::Origin;

const Primaries kRec709 = host::factsOf(KnownSpace::SRgb).primaries;
const Primaries kWide{{0.7, 0.3}, {0.2, 0.7}, {0.15, 0.05}, {0.3127, 0.329}};

std::vector<std::uint16_t> sRgbTable(int offset = 0) {
  std::vector<std::uint16_t> table;
  for (int i = 0; i < 1024; ++i) {
    const double x = i / 1023.0;
    const double light = x <= 0.04045 ? x / 12.92 : std::pow((x + 0.055) / 1.055, 2.4);
    table.push_back(static_cast<std::uint16_t>(std::lround(65535 * light) + (i == 500 ? offset : 0)));
  }
  return table;
}

host::Bytes changed(host::Bytes bytes, const std::function<void(host::Bytes&)>& change) {
  change(bytes);
  return bytes;
}

// A space as one word: "sRGB", "assumed sRGB", "profile Wide", "described", "raw".
std::string wordsOf(const ColorSpace& space) {
  const std::string assumed = space.origin == Origin::Assumed ? "assumed " : "";
  switch (space.kind) {
    case ColorSpace::Kind::Known:
    case ColorSpace::Kind::Named:
      return assumed + space.name;
    case ColorSpace::Kind::Profile:
      return "profile " + space.name;
    case ColorSpace::Kind::Described:
      return space.isLinear ? "light" : "gamma " + std::to_string(space.curve.exponent).substr(0, 3);
    case ColorSpace::Kind::Raw:
      break;
  }
  return "raw";
}

struct Tagged {
  const char* name;
  std::function<void(ColorTag&)> state;
  Depth depth;
  const char* space;
  const char* remark;  // a part of it
  Channels channels = Channels::RGB;
};

ColorInput input(const std::string& path, const ColorSpace& space, const ColorTag& tag = {}) {
  return {path, space, "", tag, space.origin == Origin::Assumed && space.isLinear};
}
ColorSpace known(KnownSpace space, Origin origin) {
  return host::knownSpace(space, origin);
}

const ColorSpace kAssumedSRgb = known(KnownSpace::SRgb, Origin::Assumed);
const ColorSpace kTaggedSRgb = known(KnownSpace::SRgb, Origin::Tagged);
const ColorSpace kAssumedLight = known(KnownSpace::LinearRec709, Origin::Assumed);
const ColorSpace kToldAcesCg = known(KnownSpace::AcesCg, Origin::Told);
const ColorSpace kTaggedP3 = known(KnownSpace::DisplayP3, Origin::Tagged);

ColorSpace wide() {
  return host::profileSpace(profileBytes(wideProfile()), "Wide", false);
}
ColorTag wideTag() {
  ColorTag tag;
  tag.iccProfile = profileBytes(wideProfile());
  return tag;
}

std::string tagText(const host::OutputPlan& plan) {
  std::string text;
  const auto add = [&](bool isThere, const std::string& word) {
    if (isThere) text += (text.empty() ? "" : " ") + word;
  };
  const ColorTag& tag = plan.tag;
  add(tag.sRGBIntent.has_value(), "sRGB");
  add(tag.gamma.has_value(), "gAMA");
  add(tag.primaries.has_value(), "primaries");
  add(tag.codePoints.has_value(), "cICP");
  add(!tag.iccProfile.empty(), "same profile");
  add(plan.needsProfile, "new profile");
  add(!tag.name.empty(), tag.name);
  return text;
}

}  // namespace

TEST(FileSpace, IsWhatTheFileSays) {
  TestProfile gray;
  gray.model = "GRAY";
  gray.gamma = 1.8;
  TestProfile sRgbProfile;
  sRgbProfile.columns = sRgbColumns();
  sRgbProfile.table = sRgbTable();
  TestProfile almost = sRgbProfile;
  almost.table = sRgbTable(40);
  almost.description = "Almost";
  TestProfile cmyk = wideProfile();
  cmyk.model = "CMYK";
  const auto profile = [](host::Bytes bytes) { return [=](ColorTag& tag) { tag.iccProfile = bytes; }; };
  const auto codes = [](int primaries, int transfer, int matrix = 0, bool isFull = true) {
    return [=](ColorTag& tag) {
      tag.codePoints = CodePoints{static_cast<std::uint8_t>(primaries), static_cast<std::uint8_t>(transfer),
                                  static_cast<std::uint8_t>(matrix), isFull};
    };
  };
  const host::Bytes wideBytes = profileBytes(wideProfile());
  const Tagged rows[] = {
      {"nothing", [](ColorTag&) {}, Depth::Bits8, "assumed sRGB", ""},
      {"nothing, floats", [](ColorTag&) {}, Depth::Half, "assumed Linear Rec.709", ""},
      {"codes", codes(12, 13), Depth::Bits16, "Display P3", ""},
      {"codes of video", codes(9, 15), Depth::Bits16, "Rec.2020", ""},
      {"codes of no name", codes(1, 4), Depth::Bits8, "gamma 2.2", ""},
      {"codes before all", [&](ColorTag& tag) { codes(1, 1)(tag), profile(wideBytes)(tag), tag.sRGBIntent = 0; },
       Depth::Bits8, "Rec.709 (BT.1886)", ""},
      {"HDR falls to the profile", [&](ColorTag& tag) { codes(9, 16)(tag), profile(wideBytes)(tag); }, Depth::Bits16,
       "profile Wide", "cICP"},
      {"narrow range", codes(1, 13, 0, false), Depth::Bits8, "assumed sRGB", "cICP"},
      {"profile before sRGB", [&](ColorTag& tag) { profile(wideBytes)(tag), tag.sRGBIntent = 1, tag.gamma = 1; },
       Depth::Bits8, "profile Wide", ""},
      {"a profile of sRGB", profile(profileBytes(sRgbProfile)), Depth::Bits8, "sRGB", ""},
      {"almost sRGB", profile(profileBytes(almost)), Depth::Bits8, "profile Almost", ""},
      {"gray", profile(profileBytes(gray)), Depth::Bits8, "profile Test", "", Channels::GrayAlpha},
      {"gray for colors", profile(profileBytes(gray)), Depth::Bits8, "assumed sRGB", "gray pictures"},
      {"CMYK", profile(profileBytes(cmyk)), Depth::Bits8, "assumed sRGB", "not for RGB"},
      {"no profile", profile({1, 2, 3}), Depth::Bits8, "assumed sRGB", "no ICC profile"},
      {"cut", profile(changed(wideBytes, [](auto& b) { b.resize(b.size() - 1); })), Depth::Bits8, "assumed sRGB",
       "cut"},
      {"endless tags", profile(changed(wideBytes, [](auto& b) { b[128] = 0xFF; })), Depth::Bits8, "assumed sRGB",
       "damaged"},
      {"tags outside", profile(changed(wideBytes, [](auto& b) { b[136] = 0xFF; })), Depth::Bits8, "profile ", ""},
      {"sRGB before gamma", [](ColorTag& tag) { tag.sRGBIntent = 0, tag.gamma = 1; }, Depth::Bits8, "sRGB", ""},
      {"what writers put for sRGB", [](ColorTag& tag) { tag.gamma = 0.45455, tag.primaries = kRec709; }, Depth::Bits8,
       "sRGB", ""},
      {"gamma 1", [](ColorTag& tag) { tag.gamma = 1; }, Depth::Bits16, "Linear Rec.709", ""},
      {"gamma", [](ColorTag& tag) { tag.gamma = 1 / 1.8; }, Depth::Bits16, "gamma 1.8", ""},
      {"gamma and primaries", [](ColorTag& tag) { tag.gamma = 0.45455, tag.primaries = kWide; }, Depth::Bits8,
       "gamma 2.1", ""},
      {"gamma of nothing", [](ColorTag& tag) { tag.gamma = 0; }, Depth::Bits8, "assumed sRGB", "gamma"},
      {"primaries of a line", [](ColorTag& tag) { tag.primaries = Primaries{}; }, Depth::Half, "assumed Linear Rec.709",
       "chromaticities"},
      {"primaries of ACES", [](ColorTag& tag) { tag.primaries = host::factsOf(KnownSpace::Aces2065).primaries; },
       Depth::Half, "ACES2065-1", ""},
      {"other primaries", [](ColorTag& tag) { tag.primaries = kWide; }, Depth::Float, "light", ""},
      {"a name before primaries", [](ColorTag& tag) { tag.name = "LIN_AP1_scene", tag.primaries = kWide; }, Depth::Half,
       "ACEScg", ""},
      {"a name for data", [](ColorTag& tag) { tag.name = "data"; }, Depth::Half, "raw", ""},
      {"nobody's name", [](ColorTag& tag) { tag.name = "lin_x", tag.primaries = kRec709; }, Depth::Half,
       "Linear Rec.709", "lin_x"},
  };
  for (const Tagged& row : rows) {
    host::PictureInfo info;
    info.depth = row.depth;
    info.channels = row.channels;
    row.state(info.metadata.color);
    const host::FileSpace found = host::spaceOfFile(info, false);
    EXPECT_EQ(wordsOf(found.space), row.space) << row.name;
    EXPECT_NE(found.remark.find(row.remark), std::string::npos) << row.name << ": " << found.remark;
    EXPECT_EQ(found.remark.empty(), !*row.remark) << row.name << ": " << found.remark;
  }
}

TEST(FileSpace, AConfigurationMayKnowOtherNames) {
  host::PictureInfo info;
  info.depth = Depth::Half;
  info.metadata.color.name = "house_linear";
  EXPECT_EQ(wordsOf(host::spaceOfFile(info, true).space), "house_linear");
}

TEST(ColorPlan, InputsMeetInOneSpace) {
  const struct {
    const char* name;
    std::vector<ColorInput> inputs;
    std::optional<ColorSpace> wanted;
    const char* working;
    std::vector<bool> isConverted;
    bool needsFloat;
    std::vector<const char*> sentences;
  } rows[] = {
      {"none", {}, std::nullopt, "assumed sRGB", {}, false, {}},
      {"one", {input("a", wide())}, std::nullopt, "profile Wide", {false}, false, {}},
      {"equal profiles",
       {input("a", wide()), input("b", wide())},
       std::nullopt,
       "profile Wide",
       {false, false},
       false,
       {}},
      {"sRGB, said and not",
       {input("a", kAssumedSRgb), input("b", kTaggedSRgb)},
       std::nullopt,
       "assumed sRGB",
       {false, false},
       false,
       {}},
      {"mixed, assumed",
       {input("a.png", kAssumedSRgb), input("b.exr", kAssumedLight)},
       std::nullopt,
       "assumed sRGB",
       {false, true},
       false,
       {"warning: the inputs are in different color spaces, and not all say in which: a.png is taken as sRGB, b.exr is "
        "taken as Linear Rec.709; --input-space FILE=NAME says otherwise",
        "b.exr is converted from Linear Rec.709 (assumed) to sRGB"}},
      {"mixed, said",
       {input("a.jpg", wide()), input("b.png", kTaggedP3)},
       std::nullopt,
       "profile Wide",
       {false, true},
       false,
       {"b.png is converted from Display P3 to the profile \"Wide\""}},
      {"wanted",
       {input("a.png", kAssumedSRgb)},
       kToldAcesCg,
       "ACEScg",
       {true},
       true,
       {"a.png is converted from sRGB (assumed) to ACEScg"}},
      {"raw",
       {input("a", kTaggedP3), input("b", kAssumedLight)},
       host::rawSpace(Origin::Told),
       "raw",
       {false, false},
       false,
       {}},
      {"one raw",
       {input("a", kTaggedP3), input("b", host::rawSpace(Origin::Told))},
       std::nullopt,
       "Display P3",
       {false, false},
       false,
       {}},
      {"light stays light", {input("a", kAssumedLight)}, std::nullopt, "assumed Linear Rec.709", {false}, true, {}},
      {"gray",
       {input("a", host::profileSpace({}, "Gray", true))},
       std::nullopt,
       "assumed sRGB",
       {true},
       false,
       {"a is converted from the profile \"Gray\" to sRGB"}},
  };
  for (const auto& row : rows) {
    const host::InputPlan plan = host::planInputs(row.inputs, row.wanted);
    EXPECT_EQ(wordsOf(plan.working), row.working) << row.name;
    EXPECT_EQ(plan.isConverted, row.isConverted) << row.name;
    EXPECT_EQ(plan.needsFloat, row.needsFloat) << row.name;
    EXPECT_EQ(plan.sentences, std::vector<std::string>(row.sentences.begin(), row.sentences.end())) << row.name;
  }
}

TEST(ColorPlan, FilesHoldWhatTheirReadersExpect) {
  ColorTag chunks;
  chunks.sRGBIntent = 1;
  ColorTag aces;
  aces.primaries = host::factsOf(KnownSpace::AcesCg).primaries;
  const ColorSpace taggedAces = known(KnownSpace::AcesCg, Origin::Tagged);
  const ColorSpace named = host::namedSpace("House Log", false, false, Origin::Told);
  const ColorSpace toldP3 = known(KnownSpace::DisplayP3, Origin::Told);
  const auto raw = host::rawSpace(Origin::Told);
  const struct {
    const char* name;
    std::vector<ColorInput> inputs;
    std::optional<ColorSpace> working, wanted;
    FileFormat format;
    bool isFloat;
    const char* space;
    bool isConverted;
    const char* tag;
    const char* sentence = "";
  } rows[] = {
      {"untagged", {input("a", kAssumedSRgb)}, {}, {}, FileFormat::Png, false, "assumed sRGB", false, ""},
      {"sRGB's chunks", {input("a", kTaggedSRgb, chunks)}, {}, {}, FileFormat::Png, false, "sRGB", false, "sRGB"},
      {"... in JPEG", {input("a", kTaggedSRgb, chunks)}, {}, {}, FileFormat::Jpeg, false, "sRGB", false, ""},
      {"... in EXR",
       {input("a", kTaggedSRgb, chunks)},
       {},
       {},
       FileFormat::Exr,
       true,
       "assumed Linear Rec.709",
       true,
       "",
       "the result is converted from sRGB to Linear Rec.709"},
      {"sRGB's profile",
       {input("a", kTaggedSRgb, wideTag())},
       {},
       {},
       FileFormat::Tiff,
       false,
       "sRGB",
       false,
       "same profile"},
      {"a profile",
       {input("a", wide(), wideTag())},
       {},
       {},
       FileFormat::WebP,
       false,
       "profile Wide",
       false,
       "same profile"},
      {"a profile in floats",
       {input("a", wide(), wideTag())},
       {},
       {},
       FileFormat::Tiff,
       true,
       "assumed Linear Rec.709",
       true,
       "",
       "the result is converted from the profile \"Wide\" to Linear Rec.709"},
      {"a profile where none can be",
       {input("a", wide(), wideTag())},
       {},
       {},
       FileFormat::Bmp,
       false,
       "profile Wide",
       false,
       "",
       "out holds the profile \"Wide\", and its format cannot say so"},
      {"light in PNG",
       {input("a", kAssumedLight)},
       {},
       {},
       FileFormat::Png,
       false,
       "assumed sRGB",
       true,
       "sRGB gAMA primaries",
       "the result is converted from Linear Rec.709 (assumed) to sRGB"},
      {"light in JPEG",
       {input("a", kAssumedLight)},
       {},
       {},
       FileFormat::Jpeg,
       false,
       "assumed sRGB",
       true,
       "",
       "the result is converted from Linear Rec.709 (assumed) to sRGB"},
      {"light in EXR", {input("a", kAssumedLight)}, {}, {}, FileFormat::Exr, true, "assumed Linear Rec.709", false, ""},
      {"ACES in EXR", {input("a", taggedAces, aces)}, {}, {}, FileFormat::Exr, true, "ACEScg", false, "primaries"},
      {"ACES wanted",
       {input("a", kAssumedSRgb)},
       kToldAcesCg,
       {},
       FileFormat::Exr,
       true,
       "ACEScg",
       false,
       "primaries lin_ap1_scene"},
      {"worked in ACES",
       {input("a", kAssumedSRgb)},
       kToldAcesCg,
       {},
       FileFormat::Png,
       false,
       "assumed sRGB",
       true,
       "sRGB gAMA primaries",
       "the result is converted from ACEScg to sRGB"},
      {"P3 wanted",
       {input("a", kAssumedSRgb)},
       {},
       toldP3,
       FileFormat::Png,
       false,
       "Display P3",
       true,
       "cICP new profile",
       "the result is converted from sRGB (assumed) to Display P3"},
      {"P3 told of the input",
       {input("a", toldP3)},
       {},
       {},
       FileFormat::Jpeg,
       false,
       "Display P3",
       false,
       "new profile"},
      {"a space of the user",
       {input("a", kTaggedSRgb)},
       {},
       named,
       FileFormat::Png,
       false,
       "House Log",
       true,
       "",
       "out holds \"House Log\", and its format cannot say so"},
      {"raw", {input("a", wide(), wideTag())}, raw, toldP3, FileFormat::Jpeg, false, "raw", false, "same profile"},
      {"raw, EXR to PNG", {input("a", taggedAces, aces)}, raw, {}, FileFormat::Png, false, "raw", false, ""},
      {"raw, PNG to EXR", {input("a", kTaggedSRgb, chunks)}, raw, {}, FileFormat::Exr, true, "raw", false, ""},
      {"a generator", {}, {}, {}, FileFormat::Png, false, "assumed sRGB", false, ""},
      {"a generator's light",
       {},
       {},
       {},
       FileFormat::Exr,
       true,
       "assumed Linear Rec.709",
       true,
       "",
       "the result is converted from sRGB (assumed) to Linear Rec.709"},
  };
  for (const auto& row : rows) {
    const host::InputPlan working = host::planInputs(row.inputs, row.working);
    const host::OutputPlan plan = host::planOutput(working, row.inputs, row.wanted, {"out", row.format, row.isFloat});
    EXPECT_EQ(wordsOf(plan.space), row.space) << row.name;
    EXPECT_EQ(plan.isConverted, row.isConverted) << row.name;
    EXPECT_EQ(tagText(plan), row.tag) << row.name;
    EXPECT_EQ(plan.sentences.empty() ? "" : plan.sentences.back(), row.sentence) << row.name;
  }
}
