// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/Failure.h"
#include "Host/Presets/FavoritePresets.h"
#include "Host/Presets/PresetImport.h"
#include "Host/Presets/PresetLibrary.h"
#include "Host/Presets/PresetNames.h"
#include "Host/Presets/PresetReference.h"
#include "Host/Presets/PresetSearch.h"
#include "Host/Texts/GradientStops.h"
#include "Host/Texts/LevelsText.h"
#include "Tests/Support/ChildProcess.h"

#include <gtest/gtest.h>

#include <set>

namespace {

namespace fs = std::filesystem;
using host::Preset;
using host::PresetOrigin;
using host::SameName;
using host::StateKind;

std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The distances between the colors of a gradient's neighbouring stops in OKLab: the smallest and the largest.
std::pair<double, double> stepsOf(const PropertyList& state) {
  const auto lab = [](const std::array<double, 3>& rgb) {
    std::array<double, 3> light{}, cone{};
    for (std::size_t i = 0; i < 3; ++i) {
      light[i] = rgb[i] <= 0.04045 ? rgb[i] / 12.92 : std::pow((rgb[i] + 0.055) / 1.055, 2.4);
    }
    const auto [r, g, b] = light;
    cone = {0.4122214708 * r + 0.5363325363 * g + 0.0514459929 * b,
            0.2119034982 * r + 0.6806995451 * g + 0.1073969566 * b,
            0.0883024619 * r + 0.2817188376 * g + 0.6299787005 * b};
    for (double& each : cone) each = std::cbrt(each);
    const auto [l, m, s] = cone;
    return std::array<double, 3>{0.2104542553 * l + 0.7936177850 * m - 0.0040720468 * s,
                                 1.9779984951 * l - 2.4285922050 * m + 0.4505937099 * s,
                                 0.0259040371 * l + 0.7827717662 * m - 0.8086757660 * s};
  };
  const std::vector<host::ColorStop> stops = host::stopsOfState(state).colors;
  std::pair<double, double> steps{INFINITY, 0};
  for (std::size_t i = 1; i < stops.size(); ++i) {
    const auto before = lab(stops[i - 1].value), after = lab(stops[i].value);
    const double step = std::hypot(after[0] - before[0], after[1] - before[1], after[2] - before[2]);
    steps = {std::min(steps.first, step), std::max(steps.second, step)};
  }
  return steps;
}

// A user's folder with nothing in it, and one of shipped presets.
class Presets : public testing::Test {
 protected:
  const TemporaryFolder scratch;
  const host::PresetFolders folders{scratch.path("shipped"), scratch.path("user")};

  Preset save(const std::string& name, const std::string& collection = "", SameName same = SameName::Refused) {
    return host::savePreset(folders, StateKind::Levels, name, collection, host::levelsOfText("gamma=2"), same);
  }
  std::vector<std::string> names(StateKind kind) const {
    std::vector<std::string> found;
    for (const Preset& preset : host::listPresets(folders, kind).presets) {
      found.push_back(preset.collection.empty() ? preset.name : preset.collection + "/" + preset.name);
    }
    return found;
  }
  std::string refused(const std::string& name, std::optional<StateKind> kind = std::nullopt) const {
    try {
      return "found " + host::presetOfReference(folders, "preset:" + name, kind).file;
    } catch (const host::Failure& failure) {
      return failure.what();
    }
  }
};

}  // namespace

// Each says what it is without its folder, so that it may be mailed; steps that are to look equal are within what
// rounding to 8 bits does to them.
TEST(ShippedPresets, AreWhatTheySay) {
  const host::PresetFolders folders{host::PresetFolders::standard().shipped, ""};
  const auto gradients = host::readPresets(folders, StateKind::Gradient);
  const auto levels = host::readPresets(folders, StateKind::Levels);
  EXPECT_GE(gradients.entries.size(), 28u);
  EXPECT_GE(levels.entries.size(), 10u);
  std::set<std::string> collections, states;
  for (const auto& library : {gradients, levels}) {
    EXPECT_TRUE(library.faults.empty());
    for (const auto& entry : library.entries) {
      const host::StateFile file = host::readStateFile(entry.preset.file);
      EXPECT_EQ(file.kind, entry.preset.kind) << entry.preset.file;
      EXPECT_EQ(file.textFormat, "text");
      EXPECT_TRUE(contentsOf(entry.preset.file).starts_with("/* ")) << "says what it is for";
      collections.insert(entry.preset.collection);
      if (entry.preset.collection == "Perceptually even" || entry.preset.collection == "Sequential") {
        const auto [least, most] = stepsOf(entry.state);
        EXPECT_LT(most, 1.2 * least) << entry.preset.name;
      }
      states.insert(contentsOf(entry.preset.file).substr(contentsOf(entry.preset.file).find("*/")));
    }
  }
  EXPECT_EQ(states.size(), gradients.entries.size() + levels.entries.size()) << "no two are the same";
  EXPECT_EQ(collections, (std::set<std::string>{"Diverging", "Exposure and contrast", "Looks", "Perceptually even",
                                                "Photographic toning", "Sequential", "Technical", "Transparency"}));
}

TEST_F(Presets, NamesOfAnyKindBecomeFilesAndComeBack) {
  const char* const called[] = {"Abend",
                                "../../etc/passwd",
                                "..",
                                ".hidden",
                                "100%",
                                "50%2F50",
                                "a/b",
                                "\xE5\xA4\x95\xE6\x97\xA5",
                                "\xD8\xBA\xD8\xB1\xD9\x88\xD8\xA8",
                                "My.levels",
                                "tilde~",
                                "it's \"one\" \\",
                                "C:\\con"};
  for (const char* const name : called) {
    const Preset saved = save(name);
    EXPECT_EQ(fs::path(saved.file).parent_path(), folders.user / "levels") << name;
    EXPECT_EQ(saved.name, name);
    EXPECT_EQ(host::userPresetNamed(folders, StateKind::Levels, name, ""), saved) << name;
  }
  EXPECT_EQ(names(StateKind::Levels).size(), std::size(called));
  EXPECT_EQ(save("  of blanks \n").name, "of blanks");
  for (const std::string& name : {std::string(), std::string(" "), std::string("a\nb"), std::string("\xFF"),
                                  std::string("a\0b", 3), std::string(300, 'x'), std::string("\xE2\x80\xAE")}) {
    EXPECT_THROW(save(name), host::Failure) << name;
    EXPECT_THROW(host::renamePreset(folders, save("x", "", SameName::Replaced), name), host::Failure) << name;
  }
  EXPECT_THROW(save("deep", "a/b/c/d/e"), host::Failure);
  EXPECT_EQ(save("in", "My Film/..").collection, "My Film/..");
  EXPECT_EQ(fs::exists(folders.user / "levels/My Film/%2E./in.levels"), true);
}

TEST_F(Presets, ChangesAreWholeOrDoNotHappen) {
  const Preset first = save("One", "Mine"), second = save("Two", "Mine");
  host::FavoritePresets(folders).set(first, true);
  const std::string before = contentsOf(first.file);
  EXPECT_THROW(save("One", "Mine"), host::Failure);
  EXPECT_THROW(host::renamePreset(folders, second, "One"), host::Failure);
  EXPECT_EQ(contentsOf(first.file), before);
  EXPECT_TRUE(fs::exists(second.file));

  const Preset renamed = host::renamePreset(folders, first, "Eins");
  EXPECT_FALSE(fs::exists(first.file));
  EXPECT_TRUE(host::FavoritePresets(folders).contains(renamed)) << "it stays one";
  fs::rename(renamed.file, fs::path(renamed.file).replace_extension(".txt"));
  const Preset replaced = save("Eins", "Mine", SameName::Replaced);
  EXPECT_EQ(names(StateKind::Levels), (std::vector<std::string>{"Mine/Eins", "Mine/Two"})) << "whatever its form was";
  host::deletePreset(folders, replaced);
  EXPECT_FALSE(host::FavoritePresets(folders).contains(replaced));
  EXPECT_EQ(names(StateKind::Levels), (std::vector<std::string>{"Mine/Two"}));

  Preset shipped = second;
  shipped.origin = PresetOrigin::Shipped;
  EXPECT_THROW(host::deletePreset(folders, shipped), host::Failure);
  EXPECT_THROW(host::renamePreset(folders, shipped, "Other"), host::Failure);
  PropertyList wide = host::defaultLevels();
  wide.set("whiteInRed", PropertyList::real(1.5));  // which no text can say
  host::savePreset(folders, StateKind::Levels, "Wide", "", wide, SameName::Refused);
  const auto library = host::readPresets(folders, StateKind::Levels);
  ASSERT_EQ(library.entries.front().preset.name, "Wide");
  EXPECT_EQ(library.entries.front().state, wide);
  EXPECT_EQ(library.entries.back().state, host::levelsOfText("gamma=2"));
}

TEST_F(Presets, WhatIsNoneIsTold) {
  const std::string good = scratch.write("user/gradients/Good.txt", "red, blue");
  scratch.write("user/gradients/Levels.plist", contentsOf(VORTO_TEST_DOCUMENTS "/levels.plist"));
  scratch.write("user/gradients/Broken.ggr", "GIMP Gradient\nName: x\n");
  scratch.write("user/gradients/Large.txt", "red, blue" + std::string(host::kLargestPreset, ' '));
  scratch.write("user/gradients/.hidden", "?");
  scratch.write("user/gradients/Good.txt~", "?");
  fs::create_directory_symlink(folders.user / "gradients", folders.user / "gradients/Circle");
  fs::create_symlink("nowhere", folders.user / "gradients/Dangling.ggr");
  const auto library = host::readPresets(folders, StateKind::Gradient);
  ASSERT_EQ(library.entries.size(), 1u);
  EXPECT_EQ(library.entries[0].preset.file, good);
  std::string reasons;
  for (const auto& fault : library.faults)
    reasons += fs::path(fault.file).filename().string() + ": " + fault.reason + "\n";
  EXPECT_EQ(library.faults.size(), 4u) << reasons;
  for (const char* const part :
       {"Broken.ggr: line ", "Dangling.ggr: cannot open: No such file", "Large.txt: presets have at most",
        "Levels.plist: the file holds a state of the kind levels"}) {
    EXPECT_NE(reasons.find(part), std::string::npos) << part << "\n" << reasons;
  }
}

TEST_F(Presets, DamagedFavoritesCostNothing) {
  const Preset preset = save("One");
  host::FavoritePresets(folders).set(preset, true);
  const std::string path = scratch.path("user/favorites");
  const std::string kept = "user/levels/Elsewhere.levels\n";
  scratch.write("user/favorites", std::string("\xFF\0?\n", 4) + kept);
  host::FavoritePresets(folders).set(preset, true);
  EXPECT_NE(contentsOf(path).find(kept), std::string::npos) << "it may come back";
  EXPECT_TRUE(host::readPresets(folders, StateKind::Levels).entries.front().isFavorite);
  fs::remove(path);
  fs::create_directory(path);
  EXPECT_EQ(host::readPresets(folders, StateKind::Levels).entries.size(), 1u);
  EXPECT_THROW(host::FavoritePresets(folders).set(preset, false), host::Failure);
}

TEST_F(Presets, AreFoundByTheirNames) {
  const std::string shipped = scratch.write("shipped/gradients/Film/\xC3\x89t\xC3\xA9.gradient", "red, blue");
  scratch.write("shipped/gradients/Other/Fade.gradient", "red, blue");
  scratch.write("shipped/levels/Looks/Fade.levels", "gamma=2");
  scratch.write("shipped/gradients/A/Twice.gradient", "red, blue");
  scratch.write("shipped/gradients/B/Twice.gradient", "red, blue");
  for (const char* const name : {"\xC3\x89t\xC3\xA9", "ete", "E\xCC\x81TE", "Film/\xC3\x89t\xC3\xA9", "film/ete",
                                 "gradients/Film/\xC3\x89t\xC3\xA9", "ete.gradient"}) {
    EXPECT_EQ(refused(name), "found " + shipped) << name;
  }
  EXPECT_EQ(refused("Fade"),
            "several presets are called \"Fade\": preset:gradients/Other/Fade and preset:levels/Looks/Fade");
  EXPECT_EQ(refused("Fade", StateKind::Levels), "found " + scratch.path("shipped/levels/Looks/Fade.levels"));
  EXPECT_EQ(refused("levels/Looks/Fade"), "found " + scratch.path("shipped/levels/Looks/Fade.levels"));
  EXPECT_TRUE(refused("Twice").starts_with("several presets"));
  EXPECT_EQ(refused("Fade", StateKind::Opaque), "presets are gradients and levels");
  EXPECT_EQ(refused("Fad", StateKind::Levels), "there is no preset of levels called \"Fad\"; did you mean \"Fade\"?");
  EXPECT_EQ(refused("xyzzy", StateKind::Levels),
            "there is no preset of levels called \"xyzzy\"; vorto state --presets lists them");
  const std::string own = scratch.write("user/gradients/Twice.ggr", "?");
  EXPECT_EQ(refused("Twice"), "found " + own) << "the user's come first";
}

TEST(PresetSearch, FindsWordsWithoutCaseAndAccents) {
  const std::string text = host::foldedForSearch(
      "Abendr\xC3\xB6te \xEF\xBC\xA1 Stra\xC3\x9F"
      "e Photographic toning");
  for (const char* const words :
       {"", "  ", "ABENDROTE", "abendr\xC3\xB6", "ro\xCC\x88te toning", "strasse a", "ton photo"}) {
    EXPECT_TRUE(host::PresetSearch(words).matches(text)) << words;
  }
  for (const char* const words : {"abend morgen", "xy", "\xFF\xFF"}) {
    EXPECT_FALSE(host::PresetSearch(words).matches(text)) << words;
  }
}

TEST_F(Presets, ImportsEachFileForItself) {
  const std::string sea = VORTO_TEST_DOCUMENTS "/sea.cpt", waves = VORTO_TEST_DOCUMENTS "/waves.ggr";
  const std::string wrong = scratch.write("wrong.ggr", "nothing"), missing = scratch.path("missing.svg");
  auto report = host::importPresets(folders, {wrong, sea, missing, waves, VORTO_TEST_DOCUMENTS "/levels.plist",
                                              VORTO_TEST_DOCUMENTS "/opaque.plist"});
  EXPECT_EQ(names(StateKind::Gradient), (std::vector<std::string>{"sea", "waves"}));
  EXPECT_EQ(names(StateKind::Levels), (std::vector<std::string>{"levels"}));
  EXPECT_EQ(contentsOf((folders.user / "gradients/waves.ggr").string()), contentsOf(waves)) << "as it was";
  ASSERT_EQ(report.faults.size(), 3u);
  EXPECT_EQ(report.faults[0].file, wrong);
  EXPECT_EQ(report.faults[1].file, missing);

  const std::string folder = scratch.path("From Elsewhere");
  scratch.write("From Elsewhere/sea.cpt", contentsOf(sea));
  scratch.write("From Elsewhere/deeper/dusk.SVG", contentsOf(VORTO_TEST_DOCUMENTS "/dusk.svg"));
  scratch.write("From Elsewhere/readme.md", "no gradient");
  scratch.write("From Elsewhere/.git/sea.cpt", contentsOf(sea));
  fs::create_directory_symlink(folder, folder + "/circle");
  report = host::importPresets(folders, {folder, folder + "/"});
  EXPECT_EQ(report.added.size(), 2u);
  EXPECT_EQ(report.known, 2u) << "the second time";
  EXPECT_TRUE(report.faults.empty());
  EXPECT_EQ(names(StateKind::Gradient),
            (std::vector<std::string>{"sea", "waves", "From Elsewhere/sea", "From Elsewhere/deeper/dusk"}));
  report = host::importPresets(folders, {scratch.write("sea.cpt", "0 1 2 3 1 4 5 6\n")});
  ASSERT_EQ(report.added.size(), 1u);
  EXPECT_EQ(report.added[0].name, "sea 2") << "another of that name";
}
