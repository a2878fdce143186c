// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Frei0rIn/Foreign.h"

#include <thread>

namespace {

struct ForeignRendering : testing::Test {
  ForeignPlace place{
      {"Rgba", "Bgra", "Packed", "Careless", "Source", "Mixer2", "Mixer3", "Parameters", "Strict", "Turned"}};
  std::shared_ptr<VRTNodeManager> manager = place.registry();

  std::shared_ptr<QCPatch> effect(const std::string& name,
                                  const std::vector<std::pair<std::string, Setting>>& settings) {
    auto patch = manager->nodeInstanceWithName("frei0r " + name);
    if (!patch) throw std::runtime_error("there is no effect " + name);
    for (const auto& [key, setting] : settings) set(*patch, key, setting);
    return patch;
  }
};

// Every premultiplied color of 8 bits comes back from a plug-in that copies it.
TEST_F(ForeignRendering, KeepsEveryColorOf8Bits) {
  for (const Layout& layout : {layouts[0], layouts[1]}) {
    int next = 0;
    const Bitmap image = makeImage(layout, 256, 256, [&] {
      const int color = next % 256, alpha = next / 256;
      ++next;
      return Values{double(std::min(color, alpha)), 0, double(std::min(255 - color, alpha)), double(alpha)};
    });
    const auto out = renderedAt(*effect("Rgba", {{"inputImage", image}}), 0);  // the first of the name copies
    EXPECT_EQ(pixelBytes(*out), pixelBytes(*image)) << layout.name;
  }
}

// What is made full is red, or blue, and under the pixel's alpha.
TEST_F(ForeignRendering, HasTheChannelOrderOfEveryColorModelAtEveryDepth) {
  for (const Layout& layout : layouts) {
    const double full = layout.full;
    const auto quantum = layout.code == 9 ? 1.0 / 255 : layout.code == 4 ? 257.0 : 1.0;
    for (const double alpha : {full, std::round(full * 0.4 / quantum) * quantum, 0.0}) {
      const Values color{0.2 * alpha, 0.6 * alpha, 0.4 * alpha, alpha};
      for (const bool isBgra : {false, true}) {
        const Bitmap image = makeImage(layout, 3, 2, color);
        const auto out = renderedAt(*effect(isBgra ? "Bgra" : "Rgba (Rgba)", {{"inputImage", image}}), 0);
        Values wanted = color;
        wanted[isBgra ? 2 : 0] = alpha;
        SCOPED_TRACE(isBgra);
        EXPECT_EQ(out->formatCode, layout.code);
        expectPixels(out, layout, quantum / 2 + full * 1e-6 + 1 * (layout.code != 9),
                     [&](std::size_t, std::size_t) { return wanted; });
      }
    }
  }
}

TEST_F(ForeignRendering, CutsFloatsToWhatBytesHold) {
  const float inf = std::numeric_limits<float>::infinity();
  const std::pair<Values, Values> cases[] = {
      {{2, -1, 0.5, 1}, {1, 0, 128 / 255.0, 1}},
      {{inf, -inf, std::nan(""), 1}, {1, 0, 0, 1}},
      {{1, 0.25, 0, 0.5}, {128 / 255.0, 128 / 255.0 * 128 / 255.0, 0, 128 / 255.0}},  // color above alpha is full
      {{1, 1, 1, 3}, {85 / 255.0, 85 / 255.0, 85 / 255.0, 1}},
      {{1, 1, 1, std::nan("")}, {0, 0, 0, 0}},
      {{1, 1, 1, -1}, {0, 0, 0, 0}},
  };
  for (const auto& [in, wanted] : cases) {
    const auto out = renderedAt(*effect("Rgba", {{"inputImage", makeImage(layouts[3], 1, 1, in)}}), 0);
    expectPixels(out, layouts[3], 1e-6, [&, wanted = wanted](std::size_t, std::size_t) { return wanted; });
  }
}

// Plug-ins get edges that are multiples of 8, with the image in the middle and its edges continued.
TEST_F(ForeignRendering, PadsToMultiplesOf8AndCropsBack) {
  for (const auto& [width, height] : {std::pair(1U, 1U), std::pair(7U, 9U), std::pair(16U, 8U), std::pair(131U, 3U)}) {
    const Bitmap image = randomImage(layouts[0], width, height, Noise::Premultiplied, width);
    const auto counted = renderedAt(*effect("Strict", {{"inputImage", image}}), 0);
    EXPECT_EQ(std::pair(counted->width, counted->height), std::pair(width, height));
    const auto turned = renderedAt(*effect("Turned", {{"inputImage", image}}), 0);
    const auto at = [](std::size_t i, std::size_t edge) {
      return edge % 2 == 0 ? edge - 1 - i : i == 0 ? edge - 1 : edge - i;  // odd ones are half a pixel off
    };
    expectPixels(turned, layouts[0], 0, [&, w = width, h = height](std::size_t x, std::size_t y) {
      return pixelAt(*image, layouts[0], at(x, w), at(y, h));
    });
  }
  const auto source = renderedAt(*effect("Source", {{"inputWidth", 13.0}, {"inputHeight", 9.0}}), 0.7);
  EXPECT_EQ(std::pair(source->width, source->height), std::pair(13U, 9U));
  expectPixels(source, layouts[0], 0, [](std::size_t, std::size_t) { return Values{7, 16, 16, 255}; });
}

TEST_F(ForeignRendering, GeneratesAtEveryDepthAndRefusesWhatIsNoSize) {
  for (const double depth : {0.0, 1.0, 2.0}) {
    const Layout& layout = layouts[depth == 0 ? 0 : depth == 1 ? 2 : 3];
    const auto out =
        renderedAt(*effect("Source", {{"inputWidth", 8.0}, {"inputHeight", 16.0}, {"inputDepth", depth}}), 1);
    const double unit = layout.full / 255;
    expectPixels(out, layout, 1e-6, [&](std::size_t, std::size_t) {
      return Values{10 * unit, 16 * unit, 8 * unit, layout.full};
    });
  }
  EXPECT_NE(runAt(*effect("Source", {{"inputWidth", 0.0}}), 0).reason.find("is empty"), std::string::npos);
  EXPECT_NE(runAt(*effect("Source", {{"inputDepth", 3.0}}), 0).reason.find("no depth 3"), std::string::npos);
  const Outcome huge = runAt(*effect("Source", {{"inputWidth", 4e9}, {"inputHeight", 4e9}}), 0);
  EXPECT_NE(huge.reason.find("larger than 4 GiB"), std::string::npos) << huge.reason;
}

TEST_F(ForeignRendering, MixesTwoAndThreeImages) {
  const Bitmap first = makeImage(layouts[0], 5, 3, Values{10, 20, 30, 255});
  const Bitmap second = makeImage(layouts[0], 3, 9, Values{40, 50, 60, 255});  // smaller, and larger
  const Bitmap third = makeImage(layouts[3], 5, 3, Values{0, 0, 1, 1});
  const auto inSecond = [](std::size_t x) { return x < 3 ? 50.0 : 0.0; };
  const auto patch = effect("Mixer3", {{"inputBackgroundImage", first}, {"inputForegroundImage", second}});
  expectPixels(renderedAt(*patch, 0), layouts[0], 0, [&](std::size_t x, std::size_t) {
    return Values{10, inSecond(x), 0, 255};
  });
  set(*patch, "inputThirdImage", third);
  expectPixels(renderedAt(*patch, 0), layouts[0], 0, [&](std::size_t x, std::size_t) {
    return Values{10, inSecond(x), 255, 255};
  });
  const auto two = effect("Mixer2", {{"inputBackgroundImage", first}, {"inputForegroundImage", third}});
  EXPECT_NE(runAt(*two, 0).reason.find("differ in layout"), std::string::npos);
  set(*two, "inputForegroundImage", Bitmap());
  const Outcome none = runAt(*two, 0);
  EXPECT_TRUE(none.succeeded && !none.image);
}

TEST_F(ForeignRendering, LeavesTheInputsAlphaWhereAPlugInWritesNone) {
  const auto out =
      renderedAt(*effect("Careless", {{"inputImage", makeImage(layouts[0], 4, 4, Values{0, 0, 0, 51})}}), 0);
  expectPixels(out, layouts[0], 0, [](std::size_t, std::size_t) { return Values{2, 2, 2, 51}; });
}

// Parameters arrive, within their range: at first all, then those that have changed.
TEST_F(ForeignRendering, SendsParametersThatChange) {
  const auto patch = effect("Parameters", {{"inputImage", makeImage(layouts[0], 16, 8, Values{0, 0, 0, 255})}});
  const auto shown = [&] {
    std::vector<int> values;
    const auto out = renderedAt(*patch, 0);
    for (std::size_t x = 0; x < 9; ++x) values.push_back(static_cast<int>(pixelAt(*out, layouts[0], x, 0)[0]));
    return values;
  };
  using Values9 = std::vector<int>;
  EXPECT_EQ(shown(), (Values9{255, 64, 128, 64, 255, 128, 191, 7, 7}));
  set(*patch, "inputOn", 0.0);
  set(*patch, "inputAmountOfIt", 0.5);
  set(*patch, "inputCenterY", 7.0);
  set(*patch, "inputParameter7", std::nan(""));
  set(*patch, "inputTint", NSObjectRef(std::make_shared<QCColor>(1, -3, 0.5, 0.1)));
  setText(*patch, "inputText", "ein längerer Text");
  EXPECT_EQ(shown(), (Values9{0, 128, 255, 0, 128, 128, 255, 18, 12}));
  EXPECT_EQ(shown(), (Values9{0, 128, 255, 0, 128, 128, 255, 18, 12}));
  set(*patch, "inputImage", makeImage(layouts[0], 32, 8, Values{0, 0, 0, 255}));
  EXPECT_EQ(shown(), (Values9{0, 128, 255, 0, 128, 128, 255, 18, 7})) << "a new instance has them too";
  setText(*patch, "inputText", std::string(1 << 20, 'x'));
  EXPECT_NE(runAt(*patch, 0).reason.find("too long"), std::string::npos);
  setText(*patch, "inputText", "");
  EXPECT_EQ(shown()[7], 0);
}

// The state of an instance lasts as long as the size does, and belongs to one patch.
TEST_F(ForeignRendering, KeepsWhatThePlugInKeeps) {
  const auto count = [&](QCPatch& patch) { return pixelAt(*renderedAt(patch, 0), layouts[0], 0, 0)[0]; };
  const Bitmap image = makeImage(layouts[0], 8, 8, Values{0, 0, 0, 255});
  const auto first = effect("Strict", {{"inputImage", image}});
  const auto second = effect("Strict", {{"inputImage", image}});
  EXPECT_EQ(count(*first), 1);
  EXPECT_EQ(count(*first), 2);
  EXPECT_EQ(count(*second), 1);
  EXPECT_EQ(count(*first), 3);
  set(*first, "inputImage", makeImage(layouts[0], 80, 80, Values{0, 0, 0, 255}));
  EXPECT_EQ(count(*first), 1);
  EXPECT_EQ(count(*first), 2);
}

TEST_F(ForeignRendering, RendersOnSeveralThreadsAtOnce) {
  std::vector<std::shared_ptr<QCPatch>> patches;
  for (int i = 0; i < 4; ++i) patches.push_back(effect("Strict", {}));
  std::vector<int> frames(patches.size());
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < patches.size(); ++i) {
    threads.emplace_back([&, i] {
      set(*patches[i], "inputImage", makeImage(layouts[0], 64, 64, Values{0, 0, 0, 255}));
      for (int frame = 1; frame <= 20; ++frame) {
        frames[i] += pixelAt(*renderedAt(*patches[i], 0), layouts[0], 0, 0)[0] == frame;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(frames, std::vector<int>(4, 20));
}

}  // namespace
