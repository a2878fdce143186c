// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/IccProfiles.h"
#include "Tests/Host/Program.h"
#include "Tests/Host/TestImages.h"

#include <gtest/gtest.h>

#include <cmath>

// Colors on their way through the program.

namespace {

class Colors : public testing::Test {
 protected:
  std::string at(const std::string& name) const { return folder_.path() + "/" + name; }

  // What the program says when it passes a picture on; it must succeed.
  std::string say(Words inputs, const std::string& output, const Words& arguments = {}, const RunOptions& options = {},
                  const std::string& effect = "Levels") const {
    Words words{"render", effect, "--input"};
    for (const std::string& input : inputs) words.push_back(at(input));
    words.insert(words.end(), {"--output", at(output)});
    words.insert(words.end(), arguments.begin(), arguments.end());
    const ProgramRun run = vorto(words, options);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    std::string said = run.err;
    for (std::size_t begin; (begin = said.find(folder_.path() + "/")) != std::string::npos;) {
      said.erase(begin, folder_.path().size() + 1);
    }
    return said;
  }

 private:
  const TemporaryFolder folder_;
};

// Whether the module for color was loaded, as the dynamic linker tells it.
class LoaderReport {
 public:
  explicit LoaderReport(std::string path) : path_(std::move(path)) {}
  RunOptions options() const { return {{"LD_DEBUG=files", "LD_DEBUG_OUTPUT=" + path_}}; }
  bool names(const std::string& library) const {
    const std::filesystem::path path(path_);
    for (const auto& entry : std::filesystem::directory_iterator(path.parent_path())) {
      const std::string name = entry.path().filename().string();
      if (!name.starts_with(path.filename().string() + ".")) continue;
      if (readFile(entry.path().string()).find(library) != std::string::npos) return true;
    }
    return false;
  }

 private:
  std::string path_;
};

TestImage grays(int bits) {
  const int full = bits == 8 ? 255 : 65535;
  TestImage image{256, 1, bits, {}};
  for (int i = 0; i < 256; ++i) {
    const double value = std::round(i * full / 255.0);
    image.samples.insert(image.samples.end(), {value, std::round(value / 2), full - value, double(full)});
  }
  return image;
}

double farthest(const TestImage& a, const TestImage& b) {
  double most = a.samples.size() == b.samples.size() && a.bits == b.bits ? 0 : INFINITY;
  for (std::size_t i = 0; i < a.samples.size() && i < b.samples.size(); ++i) {
    most = std::max(most, std::abs(a.samples[i] - b.samples[i]));
  }
  return most;
}

}  // namespace

TEST_F(Colors, DisplayValuesBecomeLightInFilesOfFloatsAndBack) {
  for (const int bits : {8, 16}) {
    const TestImage image = grays(bits);
    writePng(at("in.png"), image);
    EXPECT_EQ(say({"in.png"}, "light.exr"), "vorto: the result is converted from sRGB (assumed) to Linear Rec.709\n");
    EXPECT_NEAR(readImage(at("light.exr")).pixel(128, 0)[0], 0.2158605, 2e-4);
    EXPECT_EQ(say({"light.exr"}, "back.png", {"--depth", std::to_string(bits)}),
              "vorto: the result is converted from Linear Rec.709 (assumed) to sRGB\n");
    EXPECT_LE(farthest(readImage(at("back.png")), image), bits == 8 ? 0 : 1);
  }
}

TEST_F(Colors, AProfileStaysWithItsValues) {
  const auto profile = profileBytes(wideProfile());
  writeTagged(at("in.jpg"), flatImage(16, 16, {200, 100, 50, 255}), profile);
  for (const std::string output : {"out.png", "out.jpg", "out.tif"}) {
    EXPECT_EQ(say({"in.jpg"}, output), "") << output;
    EXPECT_EQ(iccProfileOf(at(output)), profile) << output;
  }
  EXPECT_EQ(say({"in.jpg"}, "srgb.png", {"--output-space", "srgb"}),
            "vorto: the result is converted from the profile \"Wide\" to sRGB\n");
  EXPECT_EQ(iccProfileOf(at("srgb.png")), std::vector<std::uint8_t>());
  EXPECT_GT(readImage(at("srgb.png")).pixel(8, 8)[0], readImage(at("out.png")).pixel(8, 8)[0] + 10) << "a wider red";
}

TEST_F(Colors, ProfilesAreForThePixelsBesideThem) {
  TestProfile grayProfile;
  grayProfile.model = "GRAY";
  grayProfile.gamma = 1.8;
  writeTagged(at("wide.tiff"), flatImage(4, 4, {200, 200, 200, 255}), profileBytes(wideProfile()));
  writeTagged(at("mixed.tiff"), flatImage(4, 4, {200, 200, 200, 255}), profileBytes(grayProfile));
  say({"mixed.tiff"}, "gray.tiff", {"--working-space", "raw", "--channels", "gray"});
  const std::string converted = "vorto: the result is converted from the profile \"Wide\" to sRGB\n";
  const std::string leftOut = "vorto: the ICC profile of INPUT is left out: it is not for pictures like the result\n";
  const struct {
    std::string input, output, channels;
    bool isRaw;
    std::string said, model;
  } rows[] = {
      {"wide.tiff", "out.png", "gray", false, converted, ""},
      {"wide.tiff", "out.jpg", "gray", false, converted, ""},
      {"wide.tiff", "out.tif", "gray+alpha", false, converted, ""},
      {"wide.tiff", "out.tif", "gray", true, leftOut, ""},
      {"wide.tiff", "out.tif", "rgb", true, "", "RGB "},
      {"gray.tiff", "out.tif", "auto", true, "", "GRAY"},
      {"gray.tiff", "out.tif", "rgb", true, leftOut, ""},
      {"gray.tiff", "out.png", "auto", false, "vorto: INPUT is converted from the profile \"Test\" to sRGB\n", ""},
  };
  for (const auto& row : rows) {
    Words options{"--channels", row.channels};
    if (row.isRaw) options.insert(options.end(), {"--working-space", "raw"});
    std::string said = say({row.input}, row.output, options);
    if (const std::size_t place = said.find(row.input); place != std::string::npos) {
      said.replace(place, row.input.size(), "INPUT");
    }
    EXPECT_EQ(said, row.said) << row.input << ' ' << row.output;
    const auto profile = iccProfileOf(at(row.output));
    const std::string model = profile.size() < 20 ? "" : std::string(profile.begin() + 16, profile.begin() + 20);
    EXPECT_EQ(model, row.model) << row.input << ' ' << row.output;
  }
}

TEST_F(Colors, PngsStateTheirSpaceInChunks) {
  writePng(at("plain.png"), grays(8));
  writeExr(at("light.exr"), TestImage{1, 1, 32, {0.5, 0.5, 0.5, 1}});
  const auto chunks = [&](const std::string& name) {
    const std::string file = readFile(at(name));
    std::string found;
    for (const char* chunk : {"sRGB", "gAMA", "cHRM", "cICP", "iCCP"}) {
      if (file.find(chunk) < file.find("IDAT")) found += chunk;
    }
    return found;
  };
  say({"plain.png"}, "same.png");
  EXPECT_EQ(chunks("same.png"), "");
  say({"light.exr"}, "srgb.png");
  EXPECT_EQ(chunks("srgb.png"), "sRGBgAMAcHRM");
  EXPECT_EQ(say({"srgb.png", "plain.png"}, "kept.png", {"--place", "fit"}, {}, "Over"), "") << "both are sRGB";
  EXPECT_EQ(chunks("kept.png"), "sRGBgAMAcHRM");
  say({"light.exr"}, "p3.png", {"--output-space", "DISPLAY P3"});
  EXPECT_EQ(chunks("p3.png"), "cICPiCCP");
  EXPECT_EQ(say({"p3.png"}, "again.jpg"), "");
  EXPECT_EQ(iccProfileOf(at("again.jpg")), iccProfileOf(at("p3.png")));
  // HDR stays what it is, or nothing.
  std::string hdr = readFile(at("plain.png"));
  const char chunk[] =
      "\0\0\0\x04"
      "cICP\x09\x10\0\x01"
      "\x4d\x23\x23\xfe";
  hdr.insert(33, chunk, sizeof chunk - 1);
  writeFile(at("pq.png"), hdr);
  EXPECT_EQ(say({"pq.png"}, "pq2.png"), "");
  EXPECT_EQ(chunks("pq2.png"), "cICP");
  const ProgramRun refused = vorto({"render", "Levels", "--input", at("pq.png"), "--output", at("pq.jpg")});
  EXPECT_EQ(refused.exitCode, 3);
  EXPECT_EQ(refused.err.find("vorto: " + at("pq.png") + ": cannot convert from PQ to sRGB: --input-space"), 0u)
      << refused.err;
  EXPECT_EQ(say({"pq.png"}, "told.jpg", {"--input-space", "sRGB"}), "");
  // A profile for colors is none of gray files.
  say({"plain.png"}, "gray.png", {"--channels", "gray"});
  say({"gray.png"}, "gray.jpg", {"--output-space", "Display P3"});
  EXPECT_FALSE(iccProfileOf(at("gray.jpg")).empty());
}

TEST_F(Colors, InputsMeetInTheSpaceOfTheFirst) {
  writePng(at("back.png"), flatImage(4, 4, {10, 20, 30, 255}));
  TestImage light{4, 4, 32, {}};
  for (int i = 0; i < 16; ++i) light.samples.insert(light.samples.end(), {0.25, 0.1, 0.0, 0.5});
  writeExr(at("front.exr"), light);
  const std::string warning =
      "vorto: warning: the inputs are in different color spaces, and not all say in which: back.png is taken as sRGB, "
      "front.exr is taken as Linear Rec.709; --input-space FILE=NAME says otherwise\n";
  EXPECT_EQ(say({"back.png", "front.exr"}, "out.png", {}, {}, "Over"),
            warning + "vorto: front.exr is converted from Linear Rec.709 (assumed) to sRGB\n");
  const auto pixel = readImage(at("out.png")).pixel(0, 0);
  const double full = readImage(at("out.png")).bits == 8 ? 255 : 65535;
  EXPECT_NEAR(pixel[0] / full, 0.5 * 0.735357 + 0.5 * 10 / 255, 1e-3) << "0.5 of light is 0.735 of sRGB";
  EXPECT_EQ(say({"back.png", "front.exr"}, "out.png", {"--input-space", at("front.exr") + "=sRGB"}, {}, "Over"), "");
  // For one file wherever it is an input, whatever holds for all.
  const Words one{"--input-space", at("back.png") + "=Display P3", "--input-space", "sRGB"};
  EXPECT_EQ(say({"back.png", "back.png"}, "p3.png", one, {}, "Over"), "");
  EXPECT_FALSE(iccProfileOf(at("p3.png")).empty());
  EXPECT_EQ(say({"back.png", "front.exr"}, "out.exr", {"--working-space", "ACEScg"}, {}, "Over"),
            warning + "vorto: back.png is converted from sRGB (assumed) to ACEScg\n" +
                "vorto: front.exr is converted from Linear Rec.709 (assumed) to ACEScg\n");
  EXPECT_EQ(readImage(at("out.exr")).bits, 32);
}

TEST_F(Colors, RawConvertsNothing) {
  const auto profile = profileBytes(wideProfile());
  const TestImage image = grays(8);
  writeTagged(at("in.png"), image, profile);
  EXPECT_EQ(say({"in.png"}, "out.exr", {"--working-space", "raw", "--depth", "float"}), "");
  const TestImage values = readImage(at("out.exr"));
  for (std::size_t i = 0; i < image.samples.size(); ++i) {
    ASSERT_EQ(values.samples[i], static_cast<double>(static_cast<float>(image.samples[i]) / 255.0f)) << i;
  }
  EXPECT_EQ(say({"in.png"}, "out.png", {"--working-space", "raw"}), "");
  EXPECT_EQ(readImage(at("out.png")), image);
  EXPECT_EQ(iccProfileOf(at("out.png")), profile);
}

TEST_F(Colors, TagsThatAreLostAreToldWhenWanted) {
  writePng(at("plain.png"), grays(8));
  say({"plain.png"}, "p3.png", {"--output-space", "Display P3"});
  writeExr(at("light.exr"), TestImage{1, 1, 32, {0.5, 0.5, 0.5, 1}});
  say({"light.exr"}, "srgb.png");
  say({"plain.png"}, "acescg.exr", {"--working-space", "ACEScg"});
  const auto lost = [](const std::string& format) {
    return "vorto: " + format + " does not hold the color space of the first input\n";
  };
  const struct {
    std::string input, output, said;
  } rows[] = {
      {"p3.png", "out.jpg", ""},
      {"p3.png", "out.bmp", lost("BMP")},
      {"srgb.png", "out.exr", lost("EXR")},
      {"acescg.exr", "out.png", lost("PNG")},
      {"acescg.exr", "out.exr", ""},
      {"plain.png", "out.exr", ""},
      {"srgb.png", "out.jpg", lost("JPEG")},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(say({row.input}, row.output, {"--working-space", "raw", "--verbose"}), row.said)
        << row.input << ' ' << row.output;
  }
  EXPECT_EQ(say({"srgb.png"}, "out.jpg", {"--verbose"}), "") << "as its readers take it";
}

TEST_F(Colors, WhatLiesOutsideIsClippedAndCounted) {
  writeExr(at("in.exr"), TestImage{4, 1, 32, {4, 1, 0.5, 1, 0.5, 0.5, 0.5, 1, 0.2, -0.1, 0, 1, 1.0005, NAN, 0, 1}});
  EXPECT_EQ(say({"in.exr"}, "out.png"),
            "vorto: the result is converted from Linear Rec.709 (assumed) to sRGB\n"
            "vorto: 3 pixels of the result lie outside sRGB and were clipped\n");
  EXPECT_EQ(say({"in.exr"}, "p3.tif", {"--output-space", "Display P3", "--depth", "8"}),
            "vorto: the result is converted from Linear Rec.709 (assumed) to Display P3\n"
            "vorto: 3 pixels of the result lie outside Display P3 and were clipped\n");
  EXPECT_FALSE(iccProfileOf(at("p3.tif")).empty()) << "readers would take it for sRGB";
}

// Wherever integers are made, converted to the file's space there, before or never.
TEST_F(Colors, ClippingIsSaidOnEveryWay) {
  const auto said = [](const std::string& text) {
    const std::size_t begin = text.rfind("vorto: ");
    return text.find("clipped") == std::string::npos ? "" : text.substr(begin + 7, text.size() - begin - 8);
  };
  writeTagged(at("wide.png"), flatImage(2, 1, {0, 255, 0, 255}), profileBytes(wideProfile()));
  writeExr(at("light.exr"), TestImage{4, 1, 32, {2, 0, 0, 1, INFINITY, 0, 0, 1, 0.6, 0.1, 0, 0.5, 0.1, 0.1, 0.1, 0.5}});
  writePng(at("black.png"), flatImage(4, 1, {0, 0, 0, 255}));
  const struct {
    Words inputs, options;
    std::string output, said, effect = "Levels";
  } rows[] = {
      {{"wide.png"}, {"--working-space", "sRGB"}, "a.png", "2 pixels of the result lie outside sRGB and were clipped"},
      {{"light.exr"}, {}, "b.png", "3 pixels of the result lie outside sRGB and were clipped"},
      {{"light.exr"}, {}, "b.jpg", "2 pixels of the result lie outside sRGB and were clipped"},
      {{"light.exr"},
       {"--working-space", "sRGB", "--depth", "float"},
       "c.png",
       "3 pixels of the result lie outside sRGB and were clipped"},
      {{"light.exr"}, {"--working-space", "raw"}, "d.png", ""},
      {{"black.png", "light.exr"}, {}, "e.png", "2 pixels of the result lie outside sRGB and were clipped", "Over"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(said(say(row.inputs, row.output, row.options, {}, row.effect)), row.said) << row.output;
  }
  EXPECT_EQ(readImage(at("b.png")).pixel(2, 0)[0], 65535);
}

TEST_F(Colors, LaterFramesMayBeInOtherSpaces) {
  const auto sRgb = flatImage(2, 2, {100, 100, 100, 255});
  auto hollow = profileBytes(wideProfile());
  const std::string gone = "gTRC";
  *std::search(hollow.begin(), hollow.end(), gone.begin(), gone.end()) = 'x';
  writePng(at("plain.png"), sRgb);
  say({"plain.png"}, "still.png", {"--output-space", "lin_rec709"});
  say({"plain.png"}, "f.1.png", {"--output-space", "lin_rec709"});
  writePng(at("f.2.png"), sRgb);
  writeTagged(at("f.3.png"), sRgb, hollow);
  say({"plain.png"}, "f.4.png", {"--output-space", "lin_rec709"});
  for (const std::string frame : {"5", "7"}) writeTagged(at("f." + frame + ".png"), sRgb, hollow);
  writePng(at("f.6.png"), sRgb);
  const std::string said = say({"still.png", "f.%d.png"}, "o.%d.png", {}, {}, "Multiply");
  const std::size_t reason = said.find("vorto: f.3.png: its ICC profile is not used: ");
  EXPECT_EQ(said.substr(0, reason),
            "vorto: the result is converted from Linear Rec.709 to sRGB\n"
            "vorto: f.2.png is converted from sRGB (assumed) to Linear Rec.709\n"
            "vorto: warning: the inputs are in different color spaces, and not all say in which: f.2.png is taken as "
            "sRGB; --input-space FILE=NAME says otherwise\n");
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 4) << said;
  for (const std::string frame : {"1", "2", "3", "7"}) {
    const TestImage made = readImage(at("o." + frame + ".png"));
    EXPECT_EQ(made.bits, 8) << frame;
    EXPECT_NEAR(made.pixel(0, 0)[0], 34, 1) << frame << ": the square of the light";
  }
}

TEST_F(Colors, AWayThroughAnotherSpaceCostsAtMostAUnit) {
  for (const int bits : {8, 16}) {
    const double full = bits == 8 ? 255 : 65535;
    TestImage image = grays(bits);
    for (int i = 0; i < 256; ++i) {
      const auto value = [&](int shift) { return std::round((i >> shift) % 8 * full / 7); };
      image.samples.insert(image.samples.end(), {value(0), value(3), std::round((i >> 6) * full / 3), full});
    }
    image.height = 2;
    writePng(at("in.png"), image);
    for (const std::string space : {"Display P3", "Rec.2020", "ACEScg"}) {
      const std::string said = say({"in.png"}, "out.png", {"--working-space", space, "--output-space", "sRGB"});
      EXPECT_EQ(said.find("clipped"), std::string::npos) << said;
      EXPECT_LE(farthest(readImage(at("out.png")), image), bits == 8 ? 0 : 1) << space;
    }
  }
}

TEST_F(Colors, ProfilesThatCannotBeUsedCountAsNone) {
  auto cut = profileBytes(wideProfile());
  cut.resize(cut.size() / 2);
  auto hollow = profileBytes(wideProfile());
  const std::string gone = "gTRC";
  *std::search(hollow.begin(), hollow.end(), gone.begin(), gone.end()) = 'x';
  const TestImage image = grays(8);
  writeTagged(at("cut.tiff"), image, cut);
  writeTagged(at("hollow.png"), image, hollow);
  EXPECT_EQ(say({"cut.tiff"}, "cut.tif"),
            "vorto: cut.tiff: its ICC profile is not used: it is cut short; it counts as untagged\n");
  EXPECT_EQ(readImage(at("cut.tif")), image);
  const std::string said = say({"hollow.png"}, "hollow.exr");
  EXPECT_EQ(said.find("vorto: hollow.png: its ICC profile is not used: "), 0u) << said;
  EXPECT_NE(said.find("vorto: the result is converted from sRGB (assumed) to Linear Rec.709\n"), std::string::npos)
      << said;
  EXPECT_NEAR(readImage(at("hollow.exr")).pixel(128, 0)[0], 0.2158605, 2e-4);
}

TEST_F(Colors, TheUsersConfigurationIsReadWhereItIsNeeded) {
  writePng(at("in.png"), grays(8));
  writeFile(at("broken.ocio"), "ocio_profile_version: [");
  const RunOptions broken{{"OCIO=" + at("broken.ocio")}};
  EXPECT_EQ(say({"in.png"}, "out.png", {}, broken), "");
  const ProgramRun run = vorto({"render", "Levels", "--input", at("in.png"), "--output", at("out.exr")}, broken);
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_NE(run.err.find(at("broken.ocio") + " (from $OCIO) cannot be used"), std::string::npos) << run.err;
  writeFile(at("user.ocio"), R"(ocio_profile_version: 2
roles: {default: sRGB, scene_linear: Linear Rec.709}
displays: {none: [!<View> {name: Raw, colorspace: sRGB}]}
colorspaces:
  - !<ColorSpace> {name: Linear Rec.709}
  - !<ColorSpace> {name: sRGB, to_scene_reference: !<ExponentTransform> {value: 2}}
  - !<ColorSpace> {name: Twice, encoding: scene-linear, to_scene_reference: !<MatrixTransform> {matrix: [2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1]}}
)");
  const RunOptions user{{"OCIO=" + at("user.ocio"), "OCIO_LOGGING_LEVEL=debug", "OCIO_OPTIMIZATION_FLAGS=0"}};
  EXPECT_EQ(say({"in.png"}, "out.exr", {"--working-space", "TWICE"}, user),
            "vorto: in.png is converted from sRGB (assumed) to \"Twice\"\n"
            "vorto: out.exr holds \"Twice\", and its format cannot say so\n");
  EXPECT_NEAR(readImage(at("out.exr")).pixel(128, 0)[0], 0.5 * std::pow(128 / 255.0, 2), 1e-4);
  const ProgramRun missing = vorto(
      {"render", "Levels", "--input", at("in.png"), "--output", at("p3.png"), "--output-space", "Display P3"}, user);
  EXPECT_EQ(missing.exitCode, 3);
  EXPECT_NE(missing.err.find("has no space \"Display P3\""), std::string::npos) << missing.err;
}

TEST_F(Colors, AConfigurationMayLackWhatFilesName) {
  writeFile(at("user.ocio"), R"(ocio_profile_version: 2
roles: {default: sRGB, scene_linear: House Light}
displays: {none: [!<View> {name: Raw, colorspace: sRGB}]}
colorspaces:
  - !<ColorSpace> {name: House Light, encoding: scene-linear}
  - !<ColorSpace> {name: sRGB, to_scene_reference: !<ExponentTransform> {value: 2}}
)");
  const RunOptions user{{"OCIO=" + at("user.ocio")}};
  writePng(at("in.png"), grays(8));
  EXPECT_EQ(say({"in.png"}, "out.exr", {}, user),
            "vorto: the configuration of $OCIO has no Linear Rec.709: its scene_linear is taken instead\n"
            "vorto: the result is converted from sRGB (assumed) to \"House Light\"\n"
            "vorto: out.exr holds \"House Light\", and its format cannot say so\n");
  EXPECT_NEAR(readImage(at("out.exr")).pixel(128, 0)[0], std::pow(128 / 255.0, 2), 2e-4);
  // A name that neither knows counts as none, as it does without a configuration.
  writeExr(at("named.exr"), TestImage{1, 1, 32, {0.25, 0.25, 0.25, 1}}, "nobodys_space");
  const std::string remark =
      "vorto: named.exr: nothing is known of its color space \"nobodys_space\"; it counts as untagged\n";
  const std::string said = "vorto: the result is converted from Linear Rec.709 (assumed) to sRGB\n";
  EXPECT_EQ(say({"named.exr"}, "named.png"), remark + said);
  const std::string light = R"(  - !<ColorSpace> {name: Linear Rec.709, encoding: scene-linear}
)";
  writeFile(at("light.ocio"), readFile(at("user.ocio")) + light);
  EXPECT_EQ(say({"named.exr"}, "named.png", {}, {{"OCIO=" + at("light.ocio")}}), remark + said);
  EXPECT_EQ(say({"named.exr"}, "kept.exr", {}, {{"OCIO=" + at("light.ocio")}}), "");
}

TEST_F(Colors, SheetsShowSRgb) {
  TestImage light{16, 16, 32, {}};
  for (int i = 0; i < 256; ++i) light.samples.insert(light.samples.end(), {0.25, 0.25, 0.25, 1});
  writeExr(at("light.exr"), light);
  writeTagged(at("wide.png"), flatImage(16, 16, {100, 150, 100, 255}), profileBytes(wideProfile()));
  vortoSucceeds({"sheet", at("light.exr"), at("wide.png"), "--labels", "", "", "--output", at("sheet.png")});
  const TestImage sheet = readImage(at("sheet.png"));
  EXPECT_NEAR(sheet.pixel(40 + 240, 40 + 160)[0], 137, 1);
  const auto wide = sheet.pixel(40 + 480 + 32 + 240, 40 + 160);
  EXPECT_LT(wide[0], 85) << "greener in a smaller range";
  EXPECT_NEAR(wide[1], 150, 2);
}

TEST_F(Colors, NothingIsLoadedWhereNothingDiffers) {
  writePng(at("a.png"), grays(8));
  writePng(at("b.png"), grays(8));
  writeTagged(at("c.jpg"), flatImage(8, 8, {1, 2, 3, 255}), profileBytes(wideProfile()));
  const LoaderReport quiet(at("quiet"));
  say({"a.png", "b.png"}, "out.png", {}, quiet.options(), "Over");
  say({"c.jpg", "c.jpg"}, "out.tif", {}, quiet.options(), "Over");
  EXPECT_TRUE(quiet.names("libvorto.so"));
  EXPECT_FALSE(quiet.names("vorto-color.so"));
  const LoaderReport busy(at("busy"));
  say({"a.png"}, "out.exr", {}, busy.options());
  EXPECT_TRUE(busy.names("vorto-color.so"));
}
