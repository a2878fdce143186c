// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSArchiver.h"
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Platform/Foundation/NSKeyedUnarchiver.h"
#include "Platform/Foundation/NSValues.h"
#include "Ports/VRTObjects.h"
#include "Tests/Effects/Harness.h"
#include "Tests/Support/Lists.h"

#include <thread>

// What hosts do: patches and values of their own on every thread. The results are those of one thread; that nothing is
// shared on the way is for the thread sanitizer to see.

namespace {

const PropertyList someGradient =
    linearGradient({{0, 0.1, 0, 0.3}, {0.4, 0.9, 0.2, 0.1}, {1, 1, 0.95, 0.6}}, {{0, 0.5}});

PropertyList someLevels() {
  PropertyList levels = neutralLevels();
  levels.set("gammaRGB", PropertyList::real(1.7));
  levels.set("blackInRed", PropertyList::string("0.125"));
  return levels;
}

using Bytes = std::vector<std::uint8_t>;

// Every effect that takes images, in every layout, with the parameters that it has.
Bytes renderedByAll() {
  Bytes all;
  for (const Layout& layout : layouts) {
    for (const char* name : {"Gradient Map", "Levels", "Duotone", "Gradient Wipe", "Dissolve", "Over", "Multiply"}) {
      const auto patch = effectNamed(name);
      unsigned seed = 5;
      for (const auto& port : patch->inputPorts()) {
        if (std::string(port->kind()) == "image") {
          set(*patch, port->key(), ConstBitmap(randomImage(layout, 61, 23, Noise::Premultiplied, ++seed)));
        }
      }
      if (patch->portForKey("inputGradient")) set(*patch, "inputGradient", someGradient);
      if (patch->portForKey("inputLevels")) set(*patch, "inputLevels", someLevels());
      if (patch->portForKey("inputTime")) set(*patch, "inputTime", 0.3);
      const Bytes bytes = pixelBytes(*rendered(*patch));
      all.insert(all.end(), bytes.begin(), bytes.end());
    }
  }
  return all;
}

// The values of parameters through both coders, both formats and copies, opaque data within opaque data.
Bytes archivedByAll() {
  const auto gradient = VRTGradient::gradient();
  const auto levels = VRTHistogram::histogram();
  EXPECT_TRUE(gradient->initWithStateValue(someGradient) && levels->initWithStateValue(someLevels()));
  const auto inner =
      VRTOpaqueData::dataWithValue(std::make_shared<NSArray>(std::vector<NSObjectRef>{gradient, levels}));
  const auto outer = VRTOpaqueData::dataWithValue(inner->copyWithZone());
  Bytes all;
  for (const auto format : {PropertyListFormat::Xml, PropertyListFormat::Binary}) {
    std::string reason;
    const auto bytes = NSKeyedArchiver::archivedData(outer, format, &reason);
    EXPECT_TRUE(bytes) << reason;
    NSArchiver plain;
    plain.encodeObject(NSKeyedUnarchiver::unarchiveObject(*bytes, &reason));
    const auto again = plain.finishEncoding();
    EXPECT_TRUE(again && reason.empty()) << reason << plain.error();
    all.insert(all.end(), again->begin(), again->end());
  }
  return all;
}

TEST(Threads, RenderAndArchiveWhatIsTheirOwn) {
  effects().loadFailures();  // nothing is left to be loaded
  const Bytes pixels = renderedByAll(), archives = archivedByAll();
  constexpr int rounds = 3;
  std::vector<std::thread> threads;
  std::array<bool, 4> same{};
  for (bool& each : same) {
    threads.emplace_back([&each, &pixels, &archives] {
      each = true;
      for (int i = 0; i < rounds; ++i) each = each && renderedByAll() == pixels && archivedByAll() == archives;
    });
  }
  for (std::thread& each : threads) each.join();
  for (const bool each : same) EXPECT_TRUE(each);
}

}  // namespace
