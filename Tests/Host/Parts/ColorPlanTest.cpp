// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/ColorPlan.h"
#include "Host/Color/FileSpace.h"
#include "Host/Color/KnownSpaces.h"
#include "Tests/Host/IccProfiles.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <sstream>

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
    case ColorSpace::Kind::Stated:
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

// An input, or what the user says, as a word.
ColorInput input(const std::string& word) {
  const auto known = [&](KnownSpace space, Origin origin) {
    return ColorInput{word, host::knownSpace(space, origin), "", {}, word == "light"};
  };
  ColorInput made;
  if (word == "plain") made = known(KnownSpace::SRgb, Origin::Assumed);
  if (word == "light") made = known(KnownSpace::LinearRec709, Origin::Assumed);
  if (word == "chunks" || word == "icc") made = known(KnownSpace::SRgb, Origin::Tagged);
  if (word == "aces") made = known(KnownSpace::AcesCg, Origin::Tagged);
  if (word == "p3") made = known(KnownSpace::DisplayP3, Origin::Tagged);
  if (word == "toldAces") made = known(KnownSpace::AcesCg, Origin::Told);
  if (word == "toldP3") made = known(KnownSpace::DisplayP3, Origin::Told);
  if (word == "wide") made.space = host::profileSpace(profileBytes(wideProfile()), "Wide", false);
  if (word == "gray") made.space = host::profileSpace({}, "Gray", true);
  if (word == "house") made.space = host::namedSpace("House Log", false, false, Origin::Told);
  if (word == "raw" || word == "data") made.space = host::rawSpace(word == "raw" ? Origin::Told : Origin::Tagged);
  if (word == "chunks") made.tag.sRGBIntent = 1;
  if (word == "log") made = known(KnownSpace::SRgb, Origin::Assumed);
  if (word == "log") made.tag.codePoints = host::CodePoints{1, 10, 0, true};
  if (word == "aces") made.tag.primaries = made.space.primaries;
  if (word == "wide" || word == "icc" || word == "raw" || word == "data")
    made.tag.iccProfile = profileBytes(wideProfile());
  made.path = word;
  return made;
}
std::vector<ColorInput> inputs(const std::string& words) {
  std::istringstream stream(words);
  std::vector<ColorInput> list;
  for (std::string word; stream >> word;) list.push_back(input(word));
  return list;
}
std::optional<ColorSpace> wish(const std::string& word) {
  return word.empty() ? std::nullopt : std::optional(input(word).space);
}
std::string joined(const std::vector<std::string>& sentences) {
  std::string text;
  for (const std::string& sentence : sentences) text += (text.empty() ? "" : "\n") + sentence;
  return text;
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
      {"codes of 525 lines", codes(6, 6), Depth::Bits8, "gamma 2.4", ""},
      {"codes of 625 lines", codes(5, 1), Depth::Bits8, "gamma 2.4", ""},
      {"codes of the first color", codes(4, 4), Depth::Bits8, "gamma 2.2", ""},
      {"codes of nobody", codes(3, 1), Depth::Bits8, "assumed sRGB", "code points"},
      {"codes before all", [&](ColorTag& tag) { codes(1, 1)(tag), profile(wideBytes)(tag), tag.sRGBIntent = 0; },
       Depth::Bits8, "Rec.709 (BT.1886)", ""},
      {"HDR falls to the profile", [&](ColorTag& tag) { codes(9, 16)(tag), profile(wideBytes)(tag); }, Depth::Bits16,
       "profile Wide", "code points"},
      {"PQ", codes(9, 16), Depth::Bits16, "PQ", ""},
      {"HLG with what others know", [&](ColorTag& tag) { codes(9, 18)(tag), tag.sRGBIntent = 0; }, Depth::Bits16,
       "sRGB", "code points"},
      {"PQ of no RGB", codes(9, 16, 9), Depth::Bits16, "assumed sRGB", "code points"},
      {"no RGB", codes(1, 13, 1), Depth::Bits8, "assumed sRGB", "code points"},
      {"narrow range", codes(1, 13, 0, false), Depth::Bits8, "assumed sRGB", "code points"},
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
  // The working space, a letter for each input that is converted or stays, and whether the work is in floats.
  const struct {
    const char *inputs, *wanted, *plan, *sentences = "";
  } rows[] = {
      {"", "", "assumed sRGB: "},
      {"wide", "", "profile Wide: s"},
      {"wide wide", "", "profile Wide: ss"},
      {"plain chunks", "", "assumed sRGB: ss"},
      {"plain light", "", "assumed sRGB: sc float",
       "warning: the inputs are in different color spaces, and not all say in which: plain is taken as sRGB, light is "
       "taken as Linear Rec.709; --input-space FILE=NAME says otherwise\n"
       "light is converted from Linear Rec.709 (assumed) to sRGB"},
      {"wide p3", "", "profile Wide: sc float", "p3 is converted from Display P3 to the profile \"Wide\""},
      {"plain", "toldAces", "ACEScg: c float", "plain is converted from sRGB (assumed) to ACEScg"},
      {"p3 light", "raw", "raw: ss"},
      {"p3 raw", "", "Display P3: ss"},
      {"light", "", "assumed Linear Rec.709: s float"},
      {"gray", "", "assumed sRGB: c float", "gray is converted from the profile \"Gray\" to sRGB"},
  };
  for (const auto& row : rows) {
    const host::InputPlan plan = host::planInputs(inputs(row.inputs), wish(row.wanted));
    std::string text = wordsOf(plan.working) + ": ";
    for (const bool isConverted : plan.isConverted) text += isConverted ? 'c' : 's';
    EXPECT_EQ(text + (plan.needsFloat ? " float" : ""), row.plan) << row.inputs;
    EXPECT_EQ(joined(plan.sentences), row.sentences) << row.inputs;
  }
}

TEST(ColorPlan, FilesHoldWhatTheirReadersExpect) {
  using enum FileFormat;
  const struct {
    const char *inputs, *working, *wanted;
    FileFormat format;
    bool isFloat;
    const char *space, *tag;
    std::optional<bool> isGray = std::nullopt;
  } rows[] = {
      {"plain", "", "", Png, false, "assumed sRGB", ""},
      {"chunks", "", "", Png, false, "sRGB", "sRGB"},
      {"chunks", "", "", Jpeg, false, "sRGB", ""},
      {"chunks", "", "", Exr, true, "to assumed Linear Rec.709", ""},
      {"icc", "", "", Tiff, false, "sRGB", "same profile"},
      {"wide", "", "", WebP, false, "to assumed sRGB", ""},
      {"wide", "", "", Tiff, true, "to assumed Linear Rec.709", ""},
      {"wide", "", "toldP3", Bmp, false, "to Display P3", "(cannot say so)"},
      {"light", "", "", Png, false, "to assumed sRGB", "sRGB gAMA primaries"},
      {"light", "", "", Jpeg, false, "to assumed sRGB", ""},
      {"light", "", "", Exr, true, "assumed Linear Rec.709", ""},
      {"p3", "", "", Jpeg2000, false, "to assumed sRGB", ""},
      {"icc", "", "", Heif, false, "sRGB", ""},
      {"aces", "", "", Hdr, true, "to assumed Linear Rec.709", ""},
      {"aces", "", "", Exr, true, "ACEScg", "primaries"},
      {"log", "", "", FileFormat::Clip, false, "assumed sRGB", "cICP"},
      {"log", "", "toldP3", FileFormat::Clip, false, "to Display P3", "cICP"},
      {"plain", "", "", FileFormat::Clip, false, "assumed sRGB", ""},
      {"log", "", "", Png, false, "assumed sRGB", ""},
      {"plain", "toldAces", "", Exr, true, "ACEScg", "primaries lin_ap1_scene"},
      {"plain", "toldAces", "", Png, false, "to assumed sRGB", "sRGB gAMA primaries"},
      {"plain", "", "toldP3", Png, false, "to Display P3", "cICP new profile"},
      {"toldP3", "", "", Jpeg, false, "Display P3", "new profile"},
      {"chunks", "", "house", Png, false, "to House Log", "(cannot say so)"},
      {"wide", "raw", "", Jpeg, false, "raw", "same profile"},
      {"aces", "raw", "", Png, false, "raw", ""},
      {"raw", "", "", Png, false, "raw", ""},
      {"data", "", "toldP3", Png, false, "raw", "same profile(not converted)"},
      {"chunks", "raw", "", Exr, true, "raw", ""},
      {"wide", "", "", Png, false, "to assumed sRGB", "sRGB gAMA primaries", true},
      {"wide", "", "", Png, false, "profile Wide", "same profile", false},
      {"wide", "", "toldP3", Jpeg, false, "to Display P3", "(cannot say so)", true},
      {"icc", "", "", Tiff, false, "sRGB", "", true},
      {"p3", "", "", Tiff, false, "to assumed sRGB", "", true},
      {"p3", "", "", Png, false, "Display P3", "cICP", true},
      {"aces", "", "", Tiff, true, "to assumed Linear Rec.709", "", true},
      {"aces", "", "", Exr, true, "ACEScg", "primaries", true},
      {"wide", "raw", "", Tiff, false, "raw", "(left out)", true},
      {"", "", "", Png, false, "assumed sRGB", ""},
      {"", "", "", Exr, true, "to assumed Linear Rec.709", ""},
  };
  for (const auto& row : rows) {
    const auto given = inputs(row.inputs);
    const host::InputPlan working = host::planInputs(given, wish(row.working));
    const host::OutputPlan plan =
        host::planOutput(working, given, wish(row.wanted), {"out", row.format, row.isFloat, row.isGray});
    const std::string said = joined(plan.sentences);
    const bool cannotSay = said.find("out holds ") != std::string::npos;
    const bool isRefused = said.find("the result is not converted to Display P3") != std::string::npos;
    const bool isLeftOut = said.find("the ICC profile of wide is left out") != std::string::npos;
    EXPECT_EQ((plan.isConverted ? "to " : "") + wordsOf(plan.space), row.space) << row.inputs;
    EXPECT_EQ(tagText(plan) + (cannotSay   ? "(cannot say so)"
                               : isLeftOut ? "(left out)"
                               : isRefused ? "(not converted)"
                                           : ""),
              row.tag)
        << row.inputs << ' ' << row.space;
  }
}
