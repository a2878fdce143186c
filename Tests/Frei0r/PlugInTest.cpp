// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Frei0r/Host.h"
#include "Tests/Host/Program.h"

#include <set>
#include <thread>

namespace {

namespace fs = std::filesystem;

constexpr unsigned kWidth = 40, kHeight = 24;

// Beside the programs of the build.
std::string stubFolder() {
  return fs::read_symlink("/proc/self/exe").parent_path().parent_path() / "frei0r-1";
}

std::string stub(const std::string& name) {
  return stubFolder() + "/vorto_" + name + ".so";
}

constexpr std::uint32_t pixel(unsigned red, unsigned green, unsigned blue, unsigned alpha = 255) {
  return red | green << 8 | blue << 16 | alpha << 24;
}

unsigned channel(std::uint32_t pixel, int index) {
  return pixel >> (8 * index) & 255;
}

Frame noise(unsigned seed, bool opaque = true) {
  std::minstd_rand random(seed);
  Frame frame(std::size_t{kWidth} * kHeight);
  for (std::uint32_t& each : frame) {
    each = static_cast<std::uint32_t>(random() * 2654435761u);
    if (opaque) each |= 0xFF000000u;
  }
  return frame;
}

Frame filled(std::uint32_t pixel) {
  return Frame(std::size_t{kWidth} * kHeight, pixel);
}

// An effect of the user's.
const char* const composition = R"(<plist version="1.0"><dict>
  <key>formatVersion</key><integer>1</integer>
  <key>attributes</key><dict><key>name</key><string>NAME</string><key>protocols</key><dict><key>filter</key><dict>
    <key>inputImagePort</key><string>inputImage</string><key>outputImagePort</key><string>outputImage</string>
  </dict></dict></dict>
  <key>nodes</key><array><dict><key>identifier</key><string>n</string><key>name</key><string>Invert</string></dict></array>
  <key>inputs</key><array><dict><key>key</key><string>inputImage</string><key>node</key><string>n</string>
    <key>port</key><string>inputImage</string></dict></array>
  <key>outputs</key><array><dict><key>key</key><string>outputImage</string><key>node</key><string>n</string>
    <key>port</key><string>outputImage</string></dict></array>
</dict></plist>)";

std::string compositionNamed(const std::string& name) {
  std::string text = composition;
  return text.replace(text.find("NAME"), 4, name);
}

// Of all of the user's effects there is one.
class Frei0r : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    static const TemporaryFolder home;
    setenv("HOME", home.path().c_str(), 1);
    setenv("XDG_CACHE_HOME", home.path().c_str(), 1);
    setenv("XDG_DATA_HOME", home.path().c_str(), 1);
    setenv("FREI0R_PATH", "", 1);
    home.write("effects/Negative.qtz", compositionNamed("My Negative: 2"));
    setenv("VORTO_PLUGIN_PATH", home.path("effects").c_str(), 1);
  }
};

TEST_F(Frei0r, AllPlugInsTellWhatTheyAreAndRender) {
  const std::map<std::string, int> expected{
      {"levels", F0R_PLUGIN_TYPE_FILTER},        {"duotone", F0R_PLUGIN_TYPE_FILTER},
      {"noise", F0R_PLUGIN_TYPE_SOURCE},         {"soft_light", F0R_PLUGIN_TYPE_MIXER2},
      {"gradient_wipe", F0R_PLUGIN_TYPE_MIXER2}, {"gradient_wipe_mixer3", F0R_PLUGIN_TYPE_MIXER3}};
  for (const auto& [name, type] : expected) EXPECT_EQ(LoadedPlugIn(stub(name)).info.plugin_type, type) << name;
  std::set<const void*> functions;
  std::vector<std::unique_ptr<LoadedPlugIn>> all;
  for (const auto& file : fs::directory_iterator(stubFolder())) {
    if (file.path().extension() != ".so") continue;
    SCOPED_TRACE(file.path());
    all.push_back(std::make_unique<LoadedPlugIn>(file.path()));
    const LoadedPlugIn& plugIn = *all.back();
    EXPECT_TRUE(functions.insert(reinterpret_cast<const void*>(plugIn.update)).second) << "is another one's";
    EXPECT_EQ(plugIn.info.color_model, F0R_COLOR_MODEL_RGBA8888);
    EXPECT_TRUE(std::string(plugIn.info.name).starts_with("Vorto ") && *plugIn.info.explanation);
    const std::size_t inputs =
        std::array<std::size_t, 4>{1, 0, 2, 3}.at(static_cast<std::size_t>(plugIn.info.plugin_type));
    std::vector<Frame> frames;
    for (unsigned i = 0; i < inputs; ++i) frames.push_back(noise(i + 1));
    PlugInInstance untouched(plugIn, kWidth, kHeight), again(plugIn, kWidth, kHeight);
    ASSERT_TRUE(untouched.isThere());
    for (int i = 0; i < plugIn.info.num_params; ++i) {
      f0r_param_info_t parameter{};
      plugIn.paramInfo(&parameter, i);
      EXPECT_TRUE(*parameter.name && parameter.type >= F0R_PARAM_BOOL && parameter.type <= F0R_PARAM_STRING);
      if (parameter.type == F0R_PARAM_STRING) again.set(parameter.name, again.text(parameter.name));
      if (parameter.type == F0R_PARAM_DOUBLE) again.set(parameter.name, again.number(parameter.name));
    }
    const Frame result = untouched.rendered(frames);
    EXPECT_EQ(result, again.rendered(frames)) << "the defaults are not what is reported";
    EXPECT_NE(result, filled(0x12345678));
    EXPECT_EQ(result, untouched.rendered(frames)) << "a second time";
  }
  EXPECT_GE(all.size(), 39u);
}

TEST_F(Frei0r, ValuesReachTheEffect) {
  const LoadedPlugIn color(stub("solid_color"));
  PlugInInstance solid(color, kWidth, kHeight);
  solid.set("Color", f0r_param_color_t{192 / 255.0f, 1, 0});
  EXPECT_EQ(solid.rendered({}), filled(pixel(192, 255, 0)));
  solid.set("Color Alpha", 0.2);
  const Frame faint = solid.rendered({});  // 51 of 255: straight colors in steps of 5
  EXPECT_EQ(channel(faint[0], 3), 51u);
  EXPECT_NEAR(channel(faint[0], 0), 192, 3);
  EXPECT_EQ(channel(faint[0], 1), 255u);

  const LoadedPlugIn hsl(stub("hue_saturation_lightness"));
  PlugInInstance light(hsl, kWidth, kHeight);
  EXPECT_EQ(light.number("Lightness"), 0.5);
  light.set("Lightness", 1);
  EXPECT_EQ(light.rendered({noise(3)}), filled(pixel(255, 255, 255)));
  light.set("Lightness", std::nan(""));
  EXPECT_EQ(light.number("Lightness"), 1);
  light.set("Lightness", -7);
  EXPECT_EQ(light.rendered({noise(3)}), filled(pixel(0, 0, 0)));

  const LoadedPlugIn crop(stub("crop"));
  PlugInInstance cropped(crop, kWidth, kHeight);
  cropped.set("Left", "20");
  const Frame half = cropped.rendered({filled(pixel(1, 2, 3))});
  EXPECT_EQ(half[19], 0u);
  EXPECT_EQ(half[20], pixel(1, 2, 3));
  cropped.set("Trim", 1);  // half as wide: shown whole, in the middle
  const Frame trimmed = cropped.rendered({filled(pixel(1, 2, 3))});
  EXPECT_EQ(trimmed[9], 0u);
  EXPECT_EQ(trimmed[10], pixel(1, 2, 3));
  EXPECT_EQ(trimmed[30], 0u);

  const LoadedPlugIn ramp(stub("radial_ramp"));
  PlugInInstance byPoint(ramp, kWidth, kHeight), byNumbers(ramp, kWidth, kHeight);
  f0r_param_position_t center{0.25, 0.75};
  const Frame before = byPoint.rendered({});
  byNumbers.set("inputCenterX", center.x);
  byNumbers.set("inputCenterY", center.y);
  const auto instance = ramp.construct(kWidth, kHeight);
  ramp.set(instance, &center, ramp.parameter("Center"));
  Frame moved(before.size());
  ramp.update(instance, 0, nullptr, moved.data());
  ramp.destruct(instance);
  EXPECT_EQ(moved, byNumbers.rendered({}));
  EXPECT_NE(moved, before);

  const LoadedPlugIn dissolve(stub("dissolve"));
  PlugInInstance mix(dissolve, kWidth, kHeight);
  EXPECT_EQ(mix.rendered({noise(1), noise(2)}), noise(1));
  mix.set("Time", 1);
  EXPECT_EQ(mix.rendered({noise(1), noise(2)}), noise(2));
}

TEST_F(Frei0r, TheThirdFrameOfAMixerIsItsPicture) {
  const LoadedPlugIn wipe(stub("gradient_wipe_mixer3"));
  PlugInInstance instance(wipe, kWidth, kHeight);
  instance.set("Time", 0.5);
  instance.set("Softness", 0);
  Frame shape = filled(pixel(255, 255, 255));
  std::fill_n(shape.begin(), kWidth, pixel(0, 0, 0));
  const Frame result = instance.rendered({filled(pixel(9, 9, 9)), filled(pixel(200, 0, 0)), shape});
  EXPECT_EQ(result.front(), pixel(200, 0, 0)) << "dark comes first";
  EXPECT_EQ(result.back(), pixel(9, 9, 9));
}

TEST_F(Frei0r, AlphaIsStraightAtTheBorder) {
  const LoadedPlugIn invert(stub("invert"));
  PlugInInstance instance(invert, kWidth, kHeight);
  const Frame opaque = noise(1), mixed = noise(2, false);
  Frame expected = opaque;
  for (std::uint32_t& each : expected) each ^= 0x00FFFFFFu;
  EXPECT_EQ(instance.rendered({opaque}), expected);
  const Frame result = instance.rendered({mixed});
  for (std::size_t i = 0; i < mixed.size(); ++i) {
    const unsigned alpha = channel(mixed[i], 3);
    ASSERT_EQ(channel(result[i], 3), alpha);
    // Once to eight bits of a part of full, and back.
    const double step = alpha ? 255.0 / alpha : 256;
    for (int c = 0; alpha && c < 3; ++c) ASSERT_NEAR(channel(result[i], c), 255 - channel(mixed[i], c), step) << alpha;
    ASSERT_TRUE(alpha || result[i] == 0);
  }
  EXPECT_EQ(instance.rendered({opaque}), expected);
}

TEST_F(Frei0r, ABadTextIsSaidOnceAndTheLastGoodOneStays) {
  const TemporaryFolder folder;
  const LoadedPlugIn map(stub("gradient_map"));
  PlugInInstance instance(map, kWidth, kHeight);
  const Frame gray = instance.rendered({noise(1)});
  const std::string initial = instance.text("Gradient");
  instance.set("Gradient", "red, red");
  EXPECT_EQ(instance.rendered({noise(1)}), filled(pixel(255, 0, 0)));
  Capture messages(STDERR_FILENO);
  for (int i = 0; i < 5; ++i) instance.set("Gradient", "nayv, red");
  for (int i = 0; i < 5; ++i) instance.set("Gradient", "./no-such-file");
  const std::string said = messages.text();
  EXPECT_EQ(std::ranges::count(said, '\n'), 2) << said;
  EXPECT_NE(said.find("navy"), std::string::npos) << said;
  EXPECT_EQ(instance.text("Gradient"), "red, red");
  EXPECT_EQ(instance.rendered({noise(1)}), filled(pixel(255, 0, 0)));
  instance.set("Gradient", folder.write("blue.txt", "blue, blue"));
  EXPECT_EQ(instance.rendered({noise(1)}), filled(pixel(0, 0, 255)));
  instance.set("Gradient", "");
  EXPECT_EQ(instance.rendered({noise(1)}), gray);
  instance.set("Gradient", initial);
  EXPECT_EQ(instance.rendered({noise(1)}), gray);
}

TEST_F(Frei0r, WhatCannotRenderIsTheInputOrNothing) {
  const LoadedPlugIn over(stub("over")), invert(stub("invert"));
  EXPECT_FALSE(over.construct(0, 8));
  EXPECT_FALSE(over.construct(1u << 20, 1u << 20));
  PlugInInstance mixer(over, kWidth, kHeight), filter(invert, kWidth, kHeight);
  Capture messages(STDERR_FILENO);
  EXPECT_EQ(mixer.rendered({noise(1)}), filled(0)) << "a frame is missing";
  EXPECT_EQ(mixer.rendered({noise(1)}), filled(0));
  EXPECT_EQ(filter.rendered({}), filled(0));
  const std::string said = messages.text();
  EXPECT_EQ(std::ranges::count(said, '\n'), 2) << said;
}

TEST_F(Frei0r, InstancesWorkOnAnyThread) {
  const LoadedPlugIn map(stub("gradient_map")), duotone(stub("duotone")), wipe(stub("gradient_wipe"));
  const auto renderedByAll = [&] {
    Frame all;
    for (const bool opaque : {true, false}) {
      PlugInInstance first(map, kWidth, kHeight), second(duotone, kWidth, kHeight), third(wipe, kWidth, kHeight);
      first.set("Gradient", "navy, orange smooth 60%, white");
      second.set("Contrast", "gamma=1.4");
      third.set("Time", 0.4);
      for (const Frame& frame : {first.rendered({noise(7, opaque)}), second.rendered({noise(8, opaque)}),
                                 third.rendered({noise(9, opaque), noise(10, opaque)})}) {
        all.insert(all.end(), frame.begin(), frame.end());
      }
    }
    return all;
  };
  const Frame expected = renderedByAll();
  std::vector<std::thread> threads;
  std::array<bool, 4> same{};
  for (bool& each : same) {
    threads.emplace_back([&each, &expected, &renderedByAll] {
      each = true;
      for (int i = 0; i < 3; ++i) each = each && renderedByAll() == expected;
    });
  }
  for (std::thread& each : threads) each.join();
  for (const bool each : same) EXPECT_TRUE(each);
}

TEST_F(Frei0r, UsersCompositionsArePlugIns) {
  const TemporaryFolder folder;
  const RunOptions options{{"FREI0R_PATH=", "VORTO_PLUGIN_PATH=" + std::string(getenv("VORTO_PLUGIN_PATH"))}};
  const std::string output = folder.path("plug-ins");
  const std::string path = output + "/vorto_my_negative_2.so";
  for (int i = 0; i < 2; ++i) {  // the second time over its own
    EXPECT_EQ(vortoSucceeds({"frei0r", "my negative: 2", "--output", output}, options).out,
              "1 plug-in in " + output + "\n");
  }
  const LoadedPlugIn plugIn(path);
  PlugInInstance instance(plugIn, kWidth, kHeight);
  EXPECT_EQ(instance.rendered({filled(pixel(1, 2, 3))}), filled(pixel(254, 253, 252)));
  EXPECT_EQ(std::string(plugIn.info.name), "Vorto My Negative: 2");

  // Others' files stay.
  folder.write("others/vorto_my_negative_2.so", "something else");
  const ProgramRun refused = vorto({"frei0r", "My Negative: 2", "--output", folder.path("others")}, options);
  EXPECT_EQ(refused.exitCode, 4) << refused.err;
  EXPECT_EQ(readFile(folder.path("others/vorto_my_negative_2.so")), "something else");
  EXPECT_EQ(vorto({"frei0r", "My Negativ: 2", "--output", output}, options).exitCode, 2);
}

TEST_F(Frei0r, WithoutItsEffectAPlugInIsNone) {
  const TemporaryFolder folder;
  folder.write("effects/Gone.qtz", compositionNamed("Gone"));
  const RunOptions options{{"FREI0R_PATH=", "VORTO_PLUGIN_PATH=" + folder.path("effects")}};
  vortoSucceeds({"frei0r", "Gone", "--output", folder.path()}, options);
  Capture messages(STDERR_FILENO);
  const LoadedPlugIn gone(folder.path("vorto_gone.so"));
  EXPECT_EQ(gone.info.plugin_type, -1) << "which hosts pass over";
  EXPECT_FALSE(gone.construct(kWidth, kHeight));
  EXPECT_NE(messages.text().find("Gone"), std::string::npos);
}

TEST_F(Frei0r, WhatCameInThroughItDoesNotGoOut) {
  const TemporaryFolder folder;
  folder.write("Foreign.qtz", compositionNamed("Foreign</string><key>foreign</key><string>frei0r"));
  const RunOptions options{{"FREI0R_PATH=", "VORTO_PLUGIN_PATH=" + folder.path()}};
  const std::string list = vortoSucceeds({"frei0r", "--list"}, options).out;
  EXPECT_NE(list.find("\nLeft out: 1 that are plug-ins of frei0r themselves\n"), std::string::npos) << list;
  EXPECT_EQ(list.find("vorto_foreign"), std::string::npos);
  EXPECT_EQ(vorto({"frei0r", "Foreign", "--output", folder.path()}, options).exitCode, 5);
}

}  // namespace
