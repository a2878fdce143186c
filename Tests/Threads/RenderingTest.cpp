// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSArchiver.h"
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Platform/Foundation/NSKeyedUnarchiver.h"
#include "Platform/Foundation/NSValues.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"
#include "TarnCore/TCPrint.h"
#include "TarnCore/TCString.h"
#include "Tests/Effects/Harness.h"
#include "Tests/Support/Lists.h"

#include <thread>

// What hosts do: patches and values of their own on every thread, and values that none of them changes. The results are
// those of one thread; that nothing else is shared on the way is for the thread sanitizer to see.

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

// Every effect in every layout, with parameters that it does not start with.
Bytes renderedByAll() {
  Bytes all;
  for (const Layout& layout : layouts) {
    for (const std::string& name : effects().nodeNames()) {
      const auto patch = effectNamed(name);
      unsigned seed = 5;
      for (const auto& port : patch->inputPorts()) {
        if (std::string(port->kind()) == "image") {
          set(*patch, port->key(), ConstBitmap(randomImage(layout, 61, 23, Noise::Premultiplied, ++seed)));
        } else if (dynamic_cast<VRTGradientPort*>(port.get())) {
          set(*patch, port->key(), someGradient);
        } else if (dynamic_cast<VRTHistogramPort*>(port.get())) {
          set(*patch, port->key(), someLevels());
        }
      }
      for (const auto& [key, value] : {std::pair("inputTime", 0.3), {"inputWidth", 61.0}, {"inputHeight", 23.0}}) {
        if (patch->portForKey(key)) set(*patch, key, value);
      }
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

// Strings that are formatted, looked up as constants, compared, copied from one that others copy too, and printed.
Bytes writtenByAll(const VortoString& shared) {
  Bytes all;
  for (int i = 0; i < 50; ++i) {
    VortoString text;
    text.sprintf("%d: %s", i, std::string(static_cast<std::size_t>(i), 'x').c_str());
    const VortoString copy(shared), again(copy);
    text.append(again);
    text.append(VortoString(CFSTR(std::to_string(i).c_str())));
    text.append(VortoString().cf_str());
    all.push_back(text.caseInsensitiveCompare(again) < 0 ? 1 : 0);
    for (std::uint32_t unit = 0; unit < text.size(); ++unit) {
      all.push_back(static_cast<std::uint8_t>(text.u_str()[unit]));
    }
    VortoPrint("%s", "");
  }
  return all;
}

// What several threads read at a time of values that nobody changes.
Bytes readByAll(const VRTGradient& gradient, const VRTHistogram& levels) {
  Bytes all(4096);
  gradient.getGradient8(all.data(), 1024);
  for (const VRTObject* object : {static_cast<const VRTObject*>(&gradient), static_cast<const VRTObject*>(&levels)}) {
    const auto copy = std::dynamic_pointer_cast<VRTObject>(object->copyWithZone());
    std::string reason;
    const auto state = PropertyListToBytes(*copy->stateValue(), PropertyListFormat::Binary, &reason);
    EXPECT_TRUE(state && *object->stateValue() == *copy->stateValue()) << reason;
    all.insert(all.end(), state->begin(), state->end());
  }
  return all;
}

struct Shared {
  std::shared_ptr<VRTGradient> gradient = VRTGradient::gradient();
  std::shared_ptr<VRTHistogram> levels = VRTHistogram::histogram();
  VortoString text = VortoString(VortoString("shared"));
};

Bytes madeByAll(const Shared& shared) {
  Bytes all = writtenByAll(shared.text);
  for (const Bytes& more : {archivedByAll(), readByAll(*shared.gradient, *shared.levels), renderedByAll()}) {
    all.insert(all.end(), more.begin(), more.end());
  }
  return all;
}

// The threads come first to whatever is made when it is first needed.
TEST(Threads, MakeWhatOneThreadMakes) {
  setenv("FREI0R_PATH", "", 1);  // the effects that ship, whatever is installed
  effects().loadFailures();      // nothing is left to be loaded
  Shared shared;
  EXPECT_TRUE(shared.gradient->initWithStateValue(someGradient) && shared.levels->initWithStateValue(someLevels()));
  std::vector<std::thread> threads;
  std::array<std::vector<Bytes>, 4> made;
  for (std::vector<Bytes>& each : made) {
    threads.emplace_back([&each, &shared] {
      for (int round = 0; round < 2; ++round) each.push_back(madeByAll(shared));
    });
  }
  for (std::thread& each : threads) each.join();
  const Bytes alone = madeByAll(shared);
  for (const std::vector<Bytes>& each : made) EXPECT_EQ(each, std::vector<Bytes>(2, alone));
}

}  // namespace
