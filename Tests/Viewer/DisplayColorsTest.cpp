// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/DisplayColors.h"

#include "Host/Color/ColorModuleLoader.h"
#include "Host/Viewer/ByteLook.h"
#include "Tests/Support/ChildProcess.h"

#include <gtest/gtest.h>

namespace {

using host::ColorLook;
using host::ColorSpace;
using host::DisplayChoice;
using host::DisplayColors;
using host::KnownSpace;

ColorSpace known(KnownSpace space) {
  return host::knownSpace(space, ColorSpace::Origin::Told);
}

DisplayColors ownColors() {
  return DisplayColors(host::newColorModule(""));
}

// What an opaque pixel becomes.
std::array<float, 3> converted(DisplayColors& colors, const ColorSpace& space, const ColorLook& look,
                               std::array<float, 3> color) {
  float pixel[] = {color[0], color[1], color[2], 1};
  if (host::ColorConversion* exact = colors.way(space, look).exact) {
    exact->convert(reinterpret_cast<const std::byte*>(pixel), {host::SampleType::Float, host::AlphaKind::None}, pixel,
                   1);
  }
  return {pixel[0], pixel[1], pixel[2]};
}

// Two displays; the film view halves light before the screen's root of it.
constexpr const char* kConfiguration = R"(ocio_profile_version: 2
search_path: .
strictparsing: true
roles: {default: Raw, scene_linear: Studio Light}
file_rules: [!<Rule> {name: Default, colorspace: default}]
displays:
  Monitor:
    - !<View> {name: Plain, colorspace: Root}
    - !<View> {name: Film, colorspace: Dim Root}
  Projector:
    - !<View> {name: Plain, colorspace: Root}
active_displays: [Projector, Monitor]
colorspaces:
  - !<ColorSpace> {name: Raw, isdata: true}
  - !<ColorSpace> {name: Studio Light, encoding: scene-linear}
  - !<ColorSpace>
    name: Camera
    encoding: scene-linear
    to_scene_reference: !<MatrixTransform> {matrix: [4, 0, 0, 0, 0, 4, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1]}
  - !<ColorSpace>
    name: Root
    from_scene_reference: !<ExponentTransform> {value: [0.5, 0.5, 0.5, 1]}
  - !<ColorSpace>
    name: Dim Root
    from_scene_reference: !<GroupTransform>
      children:
        - !<MatrixTransform> {matrix: [0.25, 0, 0, 0, 0, 0.25, 0, 0, 0, 0, 0.25, 0, 0, 0, 0, 1]}
        - !<ExponentTransform> {value: [0.5, 0.5, 0.5, 1]}
)";

}  // namespace

TEST(DisplayColors, SaysWhatIsShown) {
  struct Case {
    ColorSpace space;
    DisplayChoice display;
    const char* text;
    bool isConverted, isFailure;
  };
  using Kind = DisplayChoice::Kind;
  host::CodePoints brightness;
  brightness.transfer = 16;
  const Case cases[] = {
      {known(KnownSpace::LinearRec709), {}, "Linear Rec.709 \u2192 sRGB", true, false},
      {known(KnownSpace::AcesCg), {}, "ACEScg \u2192 sRGB", true, false},
      {known(KnownSpace::SRgb), {}, "sRGB", false, false},
      {known(KnownSpace::AcesCg), {Kind::Off, {}, {}}, "", false, false},
      {host::rawSpace(ColorSpace::Origin::Assumed), {}, "", false, false},
      {known(KnownSpace::AcesCg), {Kind::View, "No", "Such"}, "", false, true},
      {host::statedSpace(brightness), {}, "", false, true},
      {host::profileSpace({1, 2, 3}, "Damaged", false), {}, "", false, true},
  };
  DisplayColors colors = ownColors();
  for (const Case& wanted : cases) {
    ColorLook look;
    look.display = wanted.display;
    EXPECT_EQ(colors.way(wanted.space, look).exact != nullptr, wanted.isConverted) << wanted.text;
    EXPECT_EQ(colors.text(), wanted.text);
    EXPECT_EQ(!colors.reason().empty(), wanted.isFailure) << wanted.text << colors.reason();
    // What nothing is known of is brighter as it is.
    look.exposure = 1;
    const auto brighter = converted(colors, wanted.space, look, {0.125f, 0.25f, 0.5f});
    EXPECT_EQ(brighter == (std::array<float, 3>{0.25f, 0.5f, 1}), colors.text().empty()) << wanted.text;
  }
}

TEST(DisplayColors, ExposureIsInLightAndGammaOnTheScreen) {
  DisplayColors colors = ownColors();
  ColorLook look;
  look.exposure = 2;
  // Light 0.05 becomes 0.2, which sRGB holds as 0.4845.
  for (const auto& [space, sample] :
       {std::pair(KnownSpace::LinearRec709, 0.05f), std::pair(KnownSpace::SRgb, 0.2478f)}) {
    look.gamma = 1;
    EXPECT_NEAR(converted(colors, known(space), look, {sample, sample, sample})[1], 0.4845, 2e-4);
    look.gamma = 2;
    EXPECT_NEAR(converted(colors, known(space), look, {sample, sample, sample})[1], std::sqrt(0.4845), 2e-4);
  }
}

TEST(DisplayColors, TableGivesTheBytesOfTheConversion) {
  DisplayColors colors = ownColors();
  std::mt19937 random(7);
  for (const KnownSpace space :
       {KnownSpace::LinearRec709, KnownSpace::AcesCg, KnownSpace::DisplayP3, KnownSpace::SRgb}) {
    for (const ColorLook& look :
         {ColorLook{{}, 1.3, 1, false}, ColorLook{{}, -6, 0.3, false}, ColorLook{{}, 0, 1, true},
          ColorLook{{}, 4, 1, false}, ColorLook{{}, -16, 10, true}}) {
      const host::ColorWay way = colors.way(known(space), look);
      ASSERT_TRUE(way.exact && way.bytes) << spaceText(known(space));
      int differences = 0;
      for (int i = 0; i < 20000; ++i) {
        float pixel[4] = {0, 0, 0, 1};
        // Over many octaves, some below 0 and above 1; where large ones cancel each other floats are coarse.
        for (int c = 0; c < 3; ++c) {
          pixel[c] = std::exp2(static_cast<float>(random() % 20000) / 1000 - 19.5f) * (random() % 9 ? 1.0f : -1.0f);
        }
        const QRgb bytes = (*way.bytes)(pixel);
        way.exact->convert(reinterpret_cast<const std::byte*>(pixel), {host::SampleType::Float, host::AlphaKind::None},
                           pixel, 1);
        const int shown[] = {qRed(bytes), qGreen(bytes), qBlue(bytes)};
        for (int c = 0; c < 3; ++c) {
          const float exact = 255 * std::clamp(pixel[c], 0.0f, 1.0f);
          ASSERT_LE(std::abs(exact - static_cast<float>(shown[c])), 0.52f) << exact << ", stops " << look.exposure;
          differences += static_cast<int>(exact + 0.5f) != shown[c];
        }
      }
      EXPECT_LT(differences, 150) << "only where rounding is a toss-up";
    }
  }
  const host::ByteCurve root([](double x) { return std::sqrt(x); });
  for (const float nothing : {0.0f, -1.0f, std::numeric_limits<float>::quiet_NaN()}) EXPECT_EQ(root(nothing), 0u);
  for (const float full : {1.0f, 7.0f, std::numeric_limits<float>::infinity()}) EXPECT_EQ(root(full), 255u);
}

TEST(DisplayColors, TakesDisplaysAndViewsOfAConfiguration) {
  const TemporaryFolder folder;
  const std::string path = folder.path() + "/views.ocio";
  std::ofstream(path) << kConfiguration;
  DisplayColors colors(host::newColorModule(path));
  std::vector<std::string> views;
  for (const host::DisplayView& view : colors.views()) {
    views.push_back(view.display + "/" + view.view + (view.isUsual ? " (usual)" : ""));
  }
  EXPECT_EQ(views, (std::vector<std::string>{"Projector/Plain (usual)", "Monitor/Plain", "Monitor/Film"}));

  const ColorSpace camera = host::namedSpace("Camera", true, false, ColorSpace::Origin::Told);
  ColorLook look;
  look.display = {DisplayChoice::Kind::View, "Monitor", "Film"};
  EXPECT_NEAR(converted(colors, camera, look, {0.09f, 0.25f, 0})[0], 0.3, 1e-5) << "the root of 4 x 0.09 / 4";
  EXPECT_EQ(colors.text(), "Camera \u2192 Monitor / Film");
  look.exposure = 2;
  EXPECT_NEAR(converted(colors, camera, look, {0.09f, 0.25f, 0})[0], 0.6, 1e-5);
  look.display.view = "Plain";
  EXPECT_NEAR(converted(colors, camera, look, {0.0225f, 0.25f, 0})[0], 0.6, 1e-5);
  EXPECT_TRUE(ownColors().views().empty());
}
