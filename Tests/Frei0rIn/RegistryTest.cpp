// SPDX-License-Identifier: BSD-3-Clause
#include "Registry/VRTExecutionTraits.h"
#include "Registry/VRTProtocols.h"
#include "Tests/Frei0rIn/Foreign.h"

namespace {

using Names = ForeignPlace::Names;

std::string attribute(const VRTNodeManager& manager, const std::string& name, const char* key) {
  const PropertyList* const value = const_cast<VRTNodeManager&>(manager).nodeAttributesWithName(name)->find(key);
  return value ? value->stringValue() : "";
}

// Failures by file name.
std::map<std::string, std::string> failuresOf(VRTNodeManager& manager) {
  std::map<std::string, std::string> failures;
  for (const auto& failure : manager.loadFailures()) {
    failures[std::filesystem::path(failure.path).stem().string()] = failure.reason;
  }
  return failures;
}

TEST(ForeignRegistry, ListsWhatThereIsByKindWithItsAttributes) {
  const ForeignPlace place({"Rgba", "Packed", "Source", "Mixer2", "Mixer3"});
  place.add("Bgra", "frei0r/vorto_bgra.so");
  place.add("Bgra", "frei0r/.hidden.so");
  const auto manager = place.registry();
  EXPECT_EQ(manager->nodeNames(),
            (Names{"frei0r Mixer2", "frei0r Mixer3", "frei0r Rgba", "frei0r Rgba (Rgba)", "frei0r Source"}));
  EXPECT_TRUE(manager->loadFailures().empty());
  EXPECT_EQ(attribute(*manager, "frei0r Rgba", "foreignPath"), place.path("frei0r/Packed.so"));
  EXPECT_EQ(attribute(*manager, "frei0r Rgba (Rgba)", "foreignPath"), place.path("frei0r/Rgba.so"));
  EXPECT_EQ(attribute(*manager, "frei0r Mixer2", "description"),
            "Copies. A frei0r plug-in by Somebody; works at 8 bits.");
  EXPECT_EQ(attribute(*manager, "frei0r Mixer2", "author"), "Somebody");
  EXPECT_EQ(attribute(*manager, "frei0r Mixer2", "version"), "2.7");
  EXPECT_EQ(attribute(*manager, "frei0r Mixer2", "foreign"), "frei0r");
  const auto instance = [&](const char* name) { return manager->nodeInstanceWithName(name); };
  EXPECT_TRUE(isVortoFilter(*instance("frei0r Rgba")) && filterInputImagePort(*instance("frei0r Rgba")));
  EXPECT_TRUE(isVortoGenerator(*instance("frei0r Source")));
  for (const char* const name : {"frei0r Mixer2", "frei0r Mixer3"}) {
    const auto mixer = instance(name);
    EXPECT_TRUE(isVortoBlendMode(*mixer) && blendModeInputImageForegroundPort(*mixer)) << name;
    EXPECT_TRUE(keepsState(*mixer) && dependsOnTime(*mixer)) << name;
  }
}

TEST(ForeignRegistry, MakesPortsOfParametersWithNamesRangesAndDefaults) {
  const auto manager = ForeignPlace({"Parameters"}).registry();
  const auto patch = manager->nodeInstanceWithName("frei0r Parameters");
  const auto shown = [](const QCPort& port) {
    std::string text = port.key() + "|" + port.name() + "|" + port.kind();
    for (const char* const key : {"minimum", "maximum"}) {
      if (const PropertyList* value = port.attributes().find(key)) text += "|" + std::to_string(value->doubleValue());
    }
    if (const PropertyList* value = port.attributes().find("description")) text += "|" + value->stringValue();
    return text;
  };
  Names ports;
  for (const auto& port : patch->inputPorts()) ports.push_back(shown(*port));
  EXPECT_EQ(ports, (Names{"inputImage|Image|image", "inputOn|on|boolean|Whether",
                          "inputAmountOfIt|amount of it|number|0.000000|1.000000", "inputTint|tint|color",
                          "inputCenterX|center X|number|0.000000|1.000000|Where it is",
                          "inputCenterY|center Y|number|0.000000|1.000000|Where it is",
                          "inputText|text|string|\xEF\xBF\xBDwords", "inputImage2|image|number|0.000000|1.500000",
                          "inputParameter7|Parameter 7|number|0.000000|1.000000"}));
  const auto& color = dynamic_cast<const QCColorPort&>(*patch->portForKey("inputTint")).colorValue();
  EXPECT_EQ((std::array{color->red, color->green, color->blue, color->alpha}), (std::array{0.5, 0.25, 1.0, 1.0}));
  EXPECT_TRUE(dynamic_cast<const QCBooleanPort&>(*patch->portForKey("inputOn")).booleanValue());
  EXPECT_EQ(dynamic_cast<const QCStringPort&>(*patch->portForKey("inputText")).stringValue(), "seven..");
  const std::pair<const char*, double> numbers[] = {{"inputAmountOfIt", 0.25},
                                                    {"inputCenterX", 0.5},
                                                    {"inputCenterY", 0.75},
                                                    {"inputImage2", 1.5},
                                                    {"inputParameter7", 0}};
  for (const auto& [key, value] : numbers) {
    EXPECT_EQ(dynamic_cast<const QCNumberPort&>(*patch->portForKey(key)).doubleValue(), value) << key;
  }
}

TEST(ForeignRegistry, LooksInTheFoldersThatTheInterfaceNames) {
  const ForeignPlace place;
  place.add("Rgba", "first/vendor/same.so");
  place.add("Source", "second/same.so");
  place.add("Bgra", "second/other.so");
  place.add("Careless", "home/.frei0r-1/lib/own.so");
  const auto namesWith = [&](const char* list) {
    list ? setenv("FREI0R_PATH", list, 1) : unsetenv("FREI0R_PATH");
    return place.registry()->nodeNames();
  };
  EXPECT_EQ(namesWith((place.path("first") + "::" + place.path("nowhere") + ":" + place.path("second")).c_str()),
            (Names{"frei0r Rgba", "frei0r Bgra"}));
  EXPECT_EQ(namesWith(""), Names{});
  setenv("VORTO_FREI0R_TIMEOUT", "nonsense", 1);
  const Names usual = namesWith(nullptr);
  ASSERT_FALSE(usual.empty());
  EXPECT_EQ(usual.front(), "frei0r Careless") << "the home folder comes before what is installed";
}

// What cannot be described is a failure with its reason, also in the runs that look into the cache; the others are
// there.
TEST(ForeignRegistry, NamesWhatCannotBeDescribedAndRemembersIt) {
  const ForeignPlace place({"CrashOnLoad", "HangOnLoad", "NoInstance", "Newer", "Unknown", "Loaded"});
  std::ofstream(place.path("frei0r/Text.so")) << "no binary";
  setenv("VORTO_FREI0R_TIMEOUT", "1", 1);
  Capture out(STDOUT_FILENO);
  const auto first = place.registry();
  EXPECT_EQ(out.text(), "");
  EXPECT_EQ(place.loads(), 1U);
  for (const auto& manager : {first, place.registry()}) {
    EXPECT_EQ(manager->nodeNames(), Names{"frei0r Loaded"});
    auto failures = failuresOf(*manager);
    EXPECT_EQ(failures.size(), 6U);
    EXPECT_EQ(failures["CrashOnLoad"], "the process that loads it was ended by signal 6 (Aborted)");
    EXPECT_EQ(failures["HangOnLoad"], "loading it takes longer than 1 second");
    EXPECT_EQ(failures["NoInstance"], "it makes no instance");
    EXPECT_EQ(failures["Newer"], "it was built for version 2 of the interface");
    EXPECT_EQ(failures["Unknown"], "it has an unknown color model, 17");
    EXPECT_TRUE(failures["Text"].starts_with("it cannot be loaded: ")) << failures["Text"];
  }
  EXPECT_EQ(place.loads(), 1U) << "the second time it is in the cache";
}

// Whatever is in the file of the cache, or stands in its place, the effects are there.
TEST(ForeignRegistry, GoesOnWithoutItsCache) {
  const ForeignPlace place({"Loaded"});
  place.registry();
  const std::string cache = place.path("cache/vorto/frei0r");
  std::ifstream file(cache, std::ios::binary);
  const std::string good{std::istreambuf_iterator<char>(file), {}};
  ASSERT_GT(good.size(), 100U);
  std::size_t loads = 1;
  for (std::size_t at = 0; at < good.size(); at += 7) {
    std::string damaged = good.substr(0, at);  // cut off, or with one byte changed
    if (at % 2) damaged = std::string(good).replace(at, 1, 1, static_cast<char>(good[at] ^ 4));
    std::ofstream(cache, std::ios::binary) << damaged;
    ASSERT_EQ(place.registry()->nodeNames(), Names{"frei0r Loaded"}) << at;
    ASSERT_EQ(place.loads(), ++loads) << at;
  }
  place.registry();
  EXPECT_EQ(place.loads(), loads) << "it was written anew";
  std::filesystem::last_write_time(place.path("frei0r/Loaded.so"), std::filesystem::file_time_type::clock::now());
  place.registry();
  EXPECT_EQ(place.loads(), ++loads) << "the plug-in has changed";
  std::filesystem::remove(cache);
  std::filesystem::create_directory(cache);
  EXPECT_EQ(place.registry()->nodeNames(), Names{"frei0r Loaded"});
  unsetenv("XDG_CACHE_HOME");
  setenv("HOME", "", 1);
  EXPECT_EQ(place.registry()->nodeNames(), Names{"frei0r Loaded"});
}

}  // namespace
