// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/ColorConversion.h"
#include "Host/Color/ColorModuleLoader.h"
#include "Host/Color/KnownSpaces.h"
#include "Host/Messages/Failure.h"
#include "Host/Pixels/Bitmaps.h"
#include "Host/Pixels/OutputRows.h"
#include "TarnCore/TCBitmap.h"
#include "Tests/Host/IccProfiles.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>

// What the module computes, held against published figures and formulas.

namespace {

using host::AlphaKind;
using host::ColorConversion;
using host::ColorSpace;
using host::KnownSpace;
using host::PixelFormat;
using host::SampleType;
using Origin = ColorSpace::Origin;

ColorSpace known(KnownSpace space) {
  return host::knownSpace(space, Origin::Told);
}
ColorSpace profile(const TestProfile& made) {
  return host::profileSpace(profileBytes(made), made.description, made.model == "GRAY");
}

host::ColorModule& ownModule() {
  static const auto module = host::newColorModule("");
  return *module;
}

std::vector<float> converted(std::vector<float> samples, const ColorSpace& from, const ColorSpace& to,
                             host::ColorModule& module = ownModule()) {
  ColorConversion conversion(module, from, to);
  const auto* bytes = reinterpret_cast<const std::byte*>(samples.data());
  conversion.convert(bytes, {SampleType::Float, AlphaKind::Straight}, samples.data(), samples.size() / 4);
  return samples;
}

double sRgbLight(double value) {  // IEC 61966-2-1
  return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

// Grays and colors: each value with half of it and nothing, or half and a quarter.
template <class Sample>
std::vector<Sample> colorsOf(const std::vector<Sample>& values, bool isSaturated) {
  constexpr Sample full = std::numeric_limits<Sample>::max();
  std::vector<Sample> pixels;
  for (const Sample v : values) {
    const auto half = static_cast<Sample>(v / 2);
    const auto least = static_cast<Sample>(isSaturated ? 0 : v / 4);
    for (const auto& color : {std::array<Sample, 3>{v, v, v}, {v, half, least}, {least, v, half}, {half, least, v}}) {
      pixels.insert(pixels.end(), color.begin(), color.end());
      pixels.push_back(full);
    }
  }
  return pixels;
}

std::vector<std::uint8_t> allBytes() {
  std::vector<std::uint8_t> values(256);
  for (std::size_t i = 0; i < 256; ++i) values[i] = static_cast<std::uint8_t>(i);
  return values;
}
std::vector<std::uint16_t> manyWords() {
  std::vector<std::uint16_t> values;
  for (unsigned i = 0; i <= 65535; i += i < 2048 ? 1 : 13) values.push_back(static_cast<std::uint16_t>(i));
  values.push_back(65535);
  return values;
}

// The most units that a way there and back costs. Between them lie floats.
template <class Sample>
int costOfRoundTrip(const std::vector<Sample>& values, const ColorSpace& there, const ColorSpace& between) {
  constexpr SampleType type = sizeof(Sample) == 1 ? SampleType::UInt8 : SampleType::UInt16;
  // Where a curve begins upright at 0, the rounding of floats in the other colors' light is many units there.
  const bool isUpright =
      there.curve.kind == host::TransferCurve::Kind::Power || there.kind == ColorSpace::Kind::Profile;
  const std::vector<Sample> pixels = colorsOf(values, !isUpright);
  const auto count = static_cast<std::uint32_t>(pixels.size() / 4);
  const auto floats = host::newBitmap(count, 1, host::formatCodeOf(SampleType::Float), "test");
  ColorConversion(ownModule(), there, between)
      .convert(reinterpret_cast<const std::byte*>(pixels.data()), {type, AlphaKind::None},
               reinterpret_cast<float*>(floats->data), count);
  ColorConversion toThere(ownModule(), between, there);
  host::OutputRows rows(*floats, {type, host::Channels::RGBA, AlphaKind::Straight, true, &toThere});
  const auto* const back = reinterpret_cast<const Sample*>(rows.row(0));
  EXPECT_EQ(rows.clippedPixels(), 0u);
  int most = 0;
  for (std::size_t i = 0; i < pixels.size(); ++i) most = std::max(most, std::abs(pixels[i] - back[i]));
  return most;
}

std::vector<ColorSpace> manySpaces() {
  std::vector<ColorSpace> spaces;
  for (const auto& facts : host::knownSpaces()) spaces.push_back(known(facts.space));
  spaces.push_back(profile(wideProfile()));
  spaces.push_back(host::describedSpace({{0.7, 0.3}, {0.2, 0.7}, {0.15, 0.05}, {0.3457, 0.3585}},
                                        {host::TransferCurve::Kind::Power, 1.8}, Origin::Tagged));
  return spaces;
}

// Its curves are tables, which end at 0 and 1.
ColorSpace tableProfile() {
  TestProfile table = wideProfile();
  table.gamma = 0;
  for (int i = 0; i < 1024; ++i) {
    table.table.push_back(static_cast<std::uint16_t>(std::lround(65535 * sRgbLight(i / 1023.0))));
  }
  return profile(table);
}

class TextFile {
 public:
  TextFile(const std::string& name, const std::string& text)
      : path_(std::filesystem::temp_directory_path() / ("vorto-" + std::to_string(getpid()) + name)) {
    std::ofstream(path_) << text;
  }
  ~TextFile() { std::filesystem::remove(path_); }
  std::string path() const { return path_.string(); }

 private:
  std::filesystem::path path_;
};

// Of a user: other names, the reference elsewhere, a variable of the environment in a place.
constexpr const char* kUserConfiguration = R"(ocio_profile_version: 2
search_path: ${VORTO_TEST_PLACE}
strictparsing: true
roles: {default: Raw, scene_linear: ACES - ACEScg}
displays: {none: [!<View> {name: Raw, colorspace: Raw}]}
colorspaces:
  - !<ColorSpace> {name: Raw, isdata: true}
  - !<ColorSpace> {name: ACES - ACEScg, encoding: scene-linear}
  - !<ColorSpace>
    name: Utility - Linear - sRGB
    to_scene_reference: !<MatrixTransform> {matrix: [2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1]}
  - !<ColorSpace>
    name: Half
    aliases: [semi]
    encoding: sdr-video
    to_scene_reference: !<ExponentTransform> {value: 2}
)";

}  // namespace

TEST(ColorModule, MatricesAreThePublishedOnes) {
  const struct {
    KnownSpace from, to;
    double matrix[3][3];
  } rows[] = {
      // ITU-R BT.2087, and the same computation for P3
      {KnownSpace::LinearRec2020,
       KnownSpace::LinearRec709,
       {{1.660491, -0.587641, -0.072850}, {-0.124550, 1.132900, -0.008349}, {-0.018151, -0.100579, 1.118730}}},
      {KnownSpace::LinearP3,
       KnownSpace::LinearRec709,
       {{1.224940, -0.224940, 0}, {-0.042057, 1.042057, 0}, {-0.019638, -0.078636, 1.098274}}},
      // ACES S-2014-004, and over Bradford to the other white
      {KnownSpace::Aces2065,
       KnownSpace::AcesCg,
       {{1.451439, -0.236511, -0.214929}, {-0.076554, 1.176230, -0.099676}, {0.008316, -0.006032, 0.997716}}},
      {KnownSpace::AcesCg,
       KnownSpace::LinearRec709,
       {{1.705051, -0.621792, -0.083259}, {-0.130256, 1.140805, -0.010548}, {-0.024003, -0.128969, 1.152972}}},
  };
  for (const auto& row : rows) {
    for (std::size_t j = 0; j < 3; ++j) {
      std::vector<float> unit{0, 0, 0, 1};
      unit[j] = 1;
      const auto result = converted(unit, known(row.from), known(row.to));
      for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(result[i], row.matrix[i][j], 2e-6) << i << ' ' << j;
    }
  }
}

TEST(ColorModule, CurvesAreTheStandards) {
  const TestProfile wide = wideProfile();
  TestProfile gray;
  gray.model = "GRAY";
  gray.gamma = 1.75;
  const struct {
    ColorSpace from, to;
    std::function<double(double)> light;
  } rows[] = {{known(KnownSpace::SRgb), known(KnownSpace::LinearRec709), sRgbLight},
              {known(KnownSpace::DisplayP3), known(KnownSpace::LinearP3), sRgbLight},
              {known(KnownSpace::Rec709), known(KnownSpace::LinearRec709), [](double v) { return std::pow(v, 2.4); }},
              {profile(wide), known(KnownSpace::LinearRec709), [&](double v) { return std::pow(v, wide.gamma); }},
              {profile(gray), known(KnownSpace::LinearRec709), [](double v) { return std::pow(v, 1.75); }}};
  std::vector<float> grays;
  for (int i = -2000; i <= 65535; i += 3) {
    const auto v = static_cast<float>(i / 65535.0);
    grays.insert(grays.end(), {v, v, v, 1});
  }
  for (const auto& row : rows) {
    const auto result = converted(grays, row.from, row.to);
    for (std::size_t i = 0; i < grays.size(); i += 4) {
      const double value = std::abs(grays[i]);
      if (row.from.isGray && grays[i] < 0) continue;
      const double slope = std::max(1e-4, (row.light(value + 1e-5) - row.light(value)) / 1e-5);
      // Within 0.7 units of 16 bits.
      ASSERT_NEAR(result[i + 1], std::copysign(row.light(value), grays[i]), slope * 0.7 / 65535) << grays[i];
    }
  }
}

TEST(ColorModule, ThereAndBackCostsAtMostOneUnit) {
  const auto expectCheap = [](const ColorSpace& there, const ColorSpace& between) {
    if (host::isSameSpace(there, between)) return;
    EXPECT_EQ(costOfRoundTrip(allBytes(), there, between), 0) << spaceText(there) << ", " << spaceText(between);
    EXPECT_LE(costOfRoundTrip(manyWords(), there, between), 1) << spaceText(there) << ", " << spaceText(between);
  };
  const auto spaces = manySpaces();
  for (const ColorSpace& there : spaces) {
    for (const ColorSpace& between : spaces) expectCheap(there, between);
    expectCheap(tableProfile(), there);
  }
  expectCheap(profile(wideProfile()), tableProfile());
}

TEST(ColorModule, AProfilesMatrixCounts) {
  // A98's red and green in linear sRGB, outside its range.
  const auto red = converted({1, 0, 0, 1}, profile(wideProfile()), known(KnownSpace::LinearRec709));
  const auto green = converted({0, 1, 0, 1}, profile(wideProfile()), known(KnownSpace::LinearRec709));
  const double expected[2][3] = {{1.39836, 0, 0}, {-0.39836, 1, -0.04293}};
  for (std::size_t c = 0; c < 3; ++c) {
    EXPECT_NEAR(red[c], expected[0][c], 3e-4) << c;
    EXPECT_NEAR(green[c], expected[1][c], 3e-4) << c;
  }
}

TEST(ColorModule, ProfilesMadeForASpaceStateIt) {
  for (const KnownSpace space : {KnownSpace::DisplayP3, KnownSpace::Rec2020, KnownSpace::AcesCg}) {
    host::Bytes bytes;
    std::string reason;
    ASSERT_TRUE(ownModule().makeProfile(known(space), &bytes, &reason)) << reason;
    host::Bytes again;
    ASSERT_TRUE(ownModule().makeProfile(known(space), &again, nullptr));
    EXPECT_EQ(bytes, again);
    const std::vector<float> color{0.25f, 0.5f, 0.75f, 1};
    const auto result = converted(color, host::profileSpace(bytes, "", false), known(space));
    for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(result[c], color[c], 2e-5) << host::factsOf(space).name;
  }
}

TEST(ColorModule, TakesTheUsersConfiguration) {
  const TextFile file("-user.ocio", kUserConfiguration);
  setenv("OCIO_OPTIMIZATION_FLAGS", "4294967295", 1);
  const auto module = host::newColorModule(file.path());
  ColorSpace half;
  std::string reason;
  ASSERT_TRUE(module->findSpace("SEMI", &half, &reason)) << reason;
  EXPECT_EQ(half.name, "Half");
  EXPECT_TRUE(half.isDisplay && !half.isLinear);
  ColorSpace light;
  ASSERT_TRUE(module->findSpace("utility - linear - SRGB", &light, &reason)) << reason;
  EXPECT_TRUE(light.isLinear) << "found out: it does not tell";
  const std::vector<float> color{0.5f, 0.25f, 0, 1};
  const auto result = converted(color, half, known(KnownSpace::LinearRec709), *module);
  EXPECT_NEAR(result[0], 0.125, 1e-7);
  EXPECT_NEAR(result[1], 0.03125, 1e-7);
  const auto back = converted(result, light, half, *module);
  EXPECT_NEAR(back[0], 0.5, 1e-6);
  EXPECT_EQ(std::getenv("OCIO_OPTIMIZATION_FLAGS"), nullptr) << "the library would take it";
  EXPECT_FALSE(module->makeTransform(half, known(KnownSpace::DisplayP3), &reason));
  EXPECT_NE(reason.find(file.path()), std::string::npos) << reason;
  EXPECT_NE(reason.find("--input-space"), std::string::npos) << reason;
}

TEST(ColorConversion, TakesAlphaOffAndPutsItBack) {
  ColorConversion toLight(ownModule(), known(KnownSpace::SRgb), known(KnownSpace::LinearRec709));
  // Light without alpha shines.
  std::vector<float> result{0.25f, 0.1f, 0, 0.5f, 0.3f, 0.2f, 0.1f, 0, 0.8f, 0.4f, 0.2f, 1, 0.5f, 0, 0, 1e-30f};
  toLight.convertRow(reinterpret_cast<const std::byte*>(result.data()), SampleType::Float, result.data(), 4);
  EXPECT_NEAR(result[0], 0.5 * sRgbLight(0.5), 1e-6);
  EXPECT_NEAR(result[4], sRgbLight(0.3), 1e-6);
  EXPECT_NEAR(result[8], sRgbLight(0.8), 1e-6);
  EXPECT_NEAR(result[12], sRgbLight(0.5), 1e-6) << "not an infinite color";
  EXPECT_EQ(result[3], 0.5f);
  // Straight colors under no alpha vanish when they are premultiplied.
  const std::uint8_t straight[] = {200, 100, 50, 0, 255, 188, 0, 128};
  toLight.convert(reinterpret_cast<const std::byte*>(straight), {SampleType::UInt8, AlphaKind::Straight}, result.data(),
                  2);
  EXPECT_EQ(std::vector<float>(result.begin(), result.begin() + 4), (std::vector<float>{0, 0, 0, 0}));
  EXPECT_NEAR(result[5], sRgbLight(188 / 255.0) * 128 / 255, 1e-6);
}

TEST(OutputRows, ColorsAreLimitedWithoutTheirAlphaAndCounted) {
  const std::vector<float> pixels{0.6f, 0.1f, 0, 0.5f, 0.25f, 0.25f, 0.25f, 0.5f, 1.5f, 0, 0, 1, 0.3f, 0, 0, 0};
  const struct {
    AlphaKind alpha;
    bool isRoundedStraight;
    std::uint64_t clipped;
    std::vector<int> bytes;
  } rows[] = {
      {AlphaKind::Straight, true, 3, {255, 51, 0, 128, 128, 128, 128, 128, 255, 0, 0, 255, 0, 0, 0, 0}},
      {AlphaKind::Straight, false, 3, {255, 52, 0, 128, 128, 128, 128, 128, 255, 0, 0, 255, 0, 0, 0, 0}},
      {AlphaKind::Premultiplied, true, 3, {128, 26, 0, 128, 64, 64, 64, 128, 255, 0, 0, 255, 0, 0, 0, 0}},
      {AlphaKind::Premultiplied, false, 1, {153, 26, 0, 128, 64, 64, 64, 128, 255, 0, 0, 255, 77, 0, 0, 0}},
      {AlphaKind::None, true, 1, {153, 26, 0, 128, 64, 64, 64, 128, 255, 0, 0, 255, 77, 0, 0, 0}},
  };
  const auto bitmap = host::newBitmap(4, 1, host::formatCodeOf(SampleType::Float), "test");
  std::memcpy(bitmap->data, pixels.data(), pixels.size() * sizeof(float));
  for (const auto& row : rows) {
    host::OutputRows made(*bitmap, {SampleType::UInt8, host::Channels::RGBA, row.alpha, row.isRoundedStraight});
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(made.row(0));
    EXPECT_EQ(std::vector<int>(bytes, bytes + 16), row.bytes) << static_cast<int>(row.alpha);
    EXPECT_EQ(made.clippedPixels(), row.clipped) << static_cast<int>(row.alpha) << row.isRoundedStraight;
  }
}
